#include "diagnostics/ElfLog.h"

#include "core/ConsoleOutput.h"
#include "core/FilePath.h"
#include "core/FormatText.h"
#include "core/VElfOptions.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <ostream>
#include <string_view>
#include <system_error>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t sMaximumComponentLength = 255;
constexpr std::size_t sLongestLogFileName = 259;

Clock::time_point gProgStart;

bool IsLogOpen() {
    return VElfOptions::mIsLogFile != 0 && VElfOptions::mLogFile.is_open();
}

std::string LogFileName(const std::string& inputPath) {
    const std::filesystem::path path = PathOfText(inputPath);
    std::string fileName = TextOfPath(path.filename());
    fileName.resize(std::min(fileName.rfind('.'), fileName.size()));
    fileName.resize(std::min(fileName.size(), sMaximumComponentLength));
    return TextOfPath(path.parent_path() / PathOfText(fileName + ".log"));
}

/// Opening a file for writing must not destroy the input that is about to be read.
bool IsSameFile(const std::string& first, const std::string& second) {
    const std::filesystem::path firstPath = PathToOpen(first);
    const std::filesystem::path secondPath = PathToOpen(second);
    std::error_code error;
    // Windows doesn't say what lies at the longest paths.
    return std::filesystem::equivalent(firstPath, secondPath, error) ||
           (firstPath == secondPath && std::ifstream(firstPath).is_open());
}

std::errc Open(std::ofstream& file, const std::string& name, const std::string& inputPath,
               std::ios::openmode mode) {
    if (IsSameFile(inputPath, name)) {
        return std::errc::file_exists;
    }
    errno = 0;
    file.clear();
    file.open(PathToOpen(name), mode | std::ios::binary);
    return file.is_open() ? std::errc() : static_cast<std::errc>(errno);
}

bool ReportFailedCreation(const std::string& name, std::errc error) {
    ConsoleOutput() << '\n'
                    << GetLogTimeStamp() << ": error_code='"
                    << std::make_error_code(error).message() << "': Failed to create log file: '"
                    << name << "' ";
    return false;
}

void Write(std::string_view text) {
    VElfOptions::mLogFile.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (VElfOptions::mLogAutoFlush) {
        VElfOptions::mLogFile.flush();
    }
}

std::string Indentation() {
    std::string indentation(4, ' ');
    if (VElfOptions::mLogNestLevel < 0) {
        indentation += "  --too big or negative nesting level--  ";
    } else {
        indentation.append(static_cast<std::size_t>(VElfOptions::mLogNestLevel), ' ');
    }
    return indentation;
}

} // namespace

std::string tag_alignment;

bool CreateLogFile(const std::string& inputPath) {
    VElfOptions::mIsLoggingPaused = false;
    const std::string& name = VElfOptions::mLogFileName = LogFileName(inputPath);
    if (name.size() > sLongestLogFileName) {
        return ReportFailedCreation(name, std::errc::filename_too_long);
    }
    return OpenDiagnosticFile(VElfOptions::mLogFile, name, inputPath, std::ios::trunc);
}

void CloseLogFile() {
    if (VElfOptions::mLogFile.is_open()) {
        VElfOptions::mLogFile.close();
    }
}

bool OpenDiagnosticFile(std::ofstream& file, const std::string& name, const std::string& inputPath,
                        std::ios::openmode mode) {
    const std::errc error = Open(file, name, inputPath, mode);
    return error == std::errc() || ReportFailedCreation(name, error);
}

void elflog(const char* format, ...) {
    if (!IsLogOpen()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    Write(FormatText(format, arguments) + '\n');
    va_end(arguments);
}

void elfelog(const char* format, ...) {
    if (!IsLogOpen()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    Write(FormatText(format, arguments));
    va_end(arguments);
}

void elfilog(const char* format, ...) {
    if (!IsLogOpen()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    Write(Indentation() + FormatText(format, arguments) + '\n');
    va_end(arguments);
}

void s_initElfLogTimer() {
    gProgStart = Clock::now();
}

double GetLogTimeMs() {
    return std::chrono::duration<double, std::milli>(Clock::now() - gProgStart).count();
}

const char* GetLogTimeStamp() {
    static char sTimeStamp[31];
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    if (local == nullptr ||
        std::strftime(sTimeStamp, sizeof sTimeStamp, "%Y/%m/%d %H:%M:%S ", local) == 0) {
        sTimeStamp[0] = '\0';
    }
    return sTimeStamp;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
