#include "support/TemporaryFolder.h"

#include <fstream>
#include <random>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {

namespace {

/// Names are UTF-8, as the reader takes them. The tests of the C interface have no FilePath.
std::filesystem::path Utf8Path(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        mPath = std::filesystem::temp_directory_path() /
                ("brindle-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(mPath));
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TemporaryFolder::Path(std::string_view name) const {
    const std::u8string path = (mPath / Utf8Path(name)).u8string();
    return {path.begin(), path.end()};
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    std::ofstream file(mPath / Utf8Path(name), std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    return Path(name);
}

std::string TemporaryFolder::Read(std::string_view name) const {
    std::ifstream file(mPath / Utf8Path(name), std::ios::binary);
    return (std::ostringstream() << file.rdbuf()).str();
}

} // namespace Tessel::Norn::Brindle::Tests
