#include "ReplacedFile.h"

#include <cerrno>
#include <random>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

namespace fs = std::filesystem;

/// A name beside the file that nothing else has.
fs::path PartOf(const fs::path& file) {
    std::random_device random;
    fs::path part;
    do {
        part = file;
        part += "." + std::to_string(random()) + ".part";
    } while (fs::exists(fs::symlink_status(part)));
    return part;
}

/// The file that a chain of links leads to.
fs::path WithoutLinks(const fs::path& file) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(file, error);
    return error ? file : target;
}

} // namespace

ReplacedFile::ReplacedFile(const fs::path& file)
    : mFile(WithoutLinks(file)) {
    const fs::file_status status = fs::status(mFile);
    if (fs::is_directory(status)) {
        throw fs::filesystem_error("", std::make_error_code(std::errc::is_a_directory));
    }
    const bool isReplaceable = !fs::exists(status) || fs::is_regular_file(status);
    mPart = isReplaceable ? PartOf(mFile) : mFile;
    errno = 0;
    if (mBuffer.open(mPart, std::ios::out | std::ios::binary | std::ios::trunc) == nullptr) {
        throw fs::filesystem_error(
            "", std::error_code(errno != 0 ? errno : EIO, std::generic_category()));
    }
    mOutput.emplace(mBuffer);
}

ReplacedFile::~ReplacedFile() {
    if (!mIsCommitted && mPart != mFile) {
        mBuffer.close();
        std::error_code ignored;
        fs::remove(mPart, ignored);
    }
}

void ReplacedFile::Commit() {
    mOutput->Sync();
    errno = 0;
    if (mBuffer.close() == nullptr) {
        throw OutputError(errno != 0 ? errno : EIO);
    }
    if (mPart != mFile) {
        fs::rename(mPart, mFile);
    }
    mIsCommitted = true;
}

} // namespace Tessel::Norn::Brindle::Program
