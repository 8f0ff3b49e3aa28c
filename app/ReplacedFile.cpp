#include "ReplacedFile.h"

#include "Platform.h"

#include "core/FilePath.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

namespace fs = std::filesystem;
using Reader::DWARF::PathToOpen;

/// An unused name beside the file.
std::string PartOf(const std::string& file) {
    std::random_device random;
    std::string part;
    std::error_code ignored;
    do {
        part = file + "." + std::to_string(random()) + ".part";
    } while (fs::exists(FileStatus(part, ignored)));
    return part;
}

[[noreturn]] void Fail(const std::error_code& error) {
    const std::error_condition reason = error.default_error_condition();
    throw std::system_error(reason.value(), reason.category());
}

} // namespace

ReplacedFile::ReplacedFile(const std::string& file)
    : mFile(TargetOfLinks(file)) {
    std::error_code error;
    const fs::file_status status = FileStatus(mFile, error);
    if (status.type() == fs::file_type::none) {
        Fail(error);
    }
    if (fs::is_directory(status)) {
        Fail(std::make_error_code(std::errc::is_a_directory));
    }
    const bool isReplaceable = !fs::exists(status) || fs::is_regular_file(status);
    mPart = isReplaceable ? PartOf(mFile) : mFile;
    errno = 0;
    if (mBuffer.open(PathToOpen(mPart), std::ios::out | std::ios::binary | std::ios::trunc) ==
        nullptr) {
        Fail(std::error_code(errno != 0 ? errno : EIO, std::generic_category()));
    }
    mOutput.emplace(mBuffer);
}

ReplacedFile::~ReplacedFile() {
    if (!mIsCommitted && mPart != mFile) {
        mBuffer.close();
        RemoveFile(mPart);
    }
}

void ReplacedFile::Commit() {
    mOutput->Sync();
    errno = 0;
    if (mBuffer.close() == nullptr) {
        throw OutputError(errno != 0 ? errno : EIO);
    }
    if (mPart != mFile) {
        std::error_code error;
        fs::rename(PathToOpen(mPart), PathToOpen(mFile), error);
        if (error) {
            Fail(error);
        }
    }
    mIsCommitted = true;
}

} // namespace Tessel::Norn::Brindle::Program
