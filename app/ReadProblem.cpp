#include "ReadProblem.h"

#include "Phrases.h"
#include "Platform.h"

#include "core/FilePath.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

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

} // namespace Tessel::Norn::Brindle::Program
