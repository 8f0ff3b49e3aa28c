#include "ReadProblem.h"

#include "Phrases.h"
#include "Platform.h"

#include "core/FilePath.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Comments may come before the first keyword of an A2L file.
constexpr std::size_t sStartSize = 4096;

/// A mark, and after it digits that are all hexadecimal.
bool IsRecord(std::string_view start, std::string_view mark, std::size_t digits) {
    return start.starts_with(mark) && start.size() >= mark.size() + digits &&
           std::ranges::all_of(start.substr(mark.size(), digits),
                               [](unsigned char digit) { return std::isxdigit(digit) != 0; });
}

bool IsArchive(std::string_view start) {
    return start.starts_with("!<arch>\n") || start.starts_with("!<thin>\n");
}

bool IsDescription(std::string_view start) {
    return start.find("ASAP2_VERSION") != std::string_view::npos ||
           start.find("/begin PROJECT") != std::string_view::npos;
}

/// Files that users take for images. The packages for Python and C# know the same.
struct ForeignFile {
    bool (*isOne)(std::string_view start);
    Phrase problem;
};

constexpr std::array sForeignFiles = {
    ForeignFile{[](std::string_view start) { return IsRecord(start, ":", 10); },
                "an Intel HEX file has the bytes of memory only: read the linked image that it "
                "was made from"},
    ForeignFile{[](std::string_view start) { return IsRecord(start, "S", 7); },
                "a file of S-records has the bytes of memory only: read the linked image that it "
                "was made from"},
    ForeignFile{IsArchive, "an archive of object files, which have no addresses yet: read the "
                           "linked image"},
    ForeignFile{IsDescription, "an A2L file: read the image that it describes"},
};

} // namespace

std::string SystemProblem(const std::string& file) {
    std::error_code error;
    const std::filesystem::file_status status = FileStatus(file, error);
    if (error) {
        return SystemReason(error);
    }
    if (std::filesystem::is_directory(status)) {
        return Phrased("Is a directory");
    }
    if (std::filesystem::is_fifo(status)) {
        return Phrased("a pipe can't be read: seeking is required");
    }
    errno = 0;
    std::ifstream stream(Reader::DWARF::PathToOpen(file), std::ios::binary);
    if (!stream) {
        return SystemReason(std::error_code(errno, std::generic_category()));
    }
    stream.seekg(0, std::ios::end);
    return stream.tellg() == 0 ? Phrased("The file is empty") : std::string();
}

std::string ForeignFileProblem(const std::string& file) {
    // Opening a pipe would wait for somebody who writes.
    if (!SystemProblem(file).empty()) {
        return {};
    }
    std::ifstream stream(Reader::DWARF::PathToOpen(file), std::ios::binary);
    std::string start(sStartSize, '\0');
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(stream.gcount()));
    const auto* const foreign = std::ranges::find_if(
        sForeignFiles, [&start](const ForeignFile& known) { return known.isOne(start); });
    return foreign == sForeignFiles.end() ? std::string() : Phrased(foreign->problem);
}

} // namespace Tessel::Norn::Brindle::Program
