// Runs a fuzz target over saved inputs in builds without libFuzzer: every file that the arguments
// name, and every file in folders that they name.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> InputFiles(const std::vector<std::string>& arguments) {
    std::vector<std::filesystem::path> files;
    for (const std::string& argument : arguments) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(argument, error)) {
            files.push_back(entry.path());
        }
        if (std::filesystem::is_regular_file(argument)) {
            files.emplace_back(argument);
        }
    }
    std::ranges::sort(files);
    return files;
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::filesystem::path> files =
        InputFiles({arguments + std::min(count, 1), arguments + count});
    if (files.empty()) {
        std::cerr << "no inputs\n";
        return 1;
    }
    for (const std::filesystem::path& path : files) {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            std::cerr << path << " can't be read\n";
            return 1;
        }
        // Printed before, so that the input is known if the process ends in it.
        std::cerr << path.filename().string() << '\n';
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return 0;
}
