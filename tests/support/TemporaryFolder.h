// Files for the length of one test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Tests {

/// A folder of its own that is removed with the object, with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    [[nodiscard]] std::string Path(std::string_view name) const;
    /// Writes a file of this name and returns its path.
    // NOLINTNEXTLINE(modernize-use-nodiscard): some tests want only the file
    std::string Write(std::string_view name, std::string_view content) const;
    [[nodiscard]] std::string Read(std::string_view name) const;

private:
    std::filesystem::path mPath;
};

} // namespace Tessel::Norn::Brindle::Tests
