#include "FileReplacement.h"

#include "Platform.h"

#include "core/FilePath.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ios>
#include <random>
#include <system_error>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using Reader::DWARF::PathToOpen;

constexpr int sMostTries = 100;

} // namespace

FileReplacement::FileReplacement(const std::string& path)
    : FileReplacement() {
    mPath = path;
    std::error_code error;
    const std::filesystem::file_status status = FileStatus(path, error);
    if (std::filesystem::is_directory(status)) {
        Fail(EISDIR);
    }
    const bool isDevice =
        std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (!isDevice) {
        CreateBeside(std::filesystem::exists(status));
        if (std::filesystem::exists(status)) {
            std::filesystem::permissions(PathToOpen(mTemporary), status.permissions(), error);
        }
    }
    errno = 0;
    if (mFile.open(PathToOpen(isDevice ? mPath : mTemporary), std::ios::out | std::ios::binary) ==
        nullptr) {
        Fail(errno);
    }
}

FileReplacement::~FileReplacement() {
    mFile.close();
    if (!mTemporary.empty()) {
        RemoveFile(mTemporary);
    }
}

void FileReplacement::CreateBeside(bool doesExist) {
    if (doesExist) {
        // A link stays a link; its target is replaced.
        mPath = TargetOfLinks(mPath);
        // Don't replace a file that its owner has write-protected.
        errno = 0;
        const std::fstream existing(PathToOpen(mPath),
                                    std::ios::in | std::ios::out | std::ios::binary);
        if (!existing.is_open()) {
            Fail(errno);
        }
    }
    std::random_device random;
    for (int tries = 0;; ++tries) {
        std::string name = mPath + ".new" + std::to_string(random());
        errno = 0;
        if (CreateNewFile(name)) {
            mTemporary = std::move(name);
            return;
        }
        if (errno != EEXIST || tries == sMostTries) {
            Fail(errno);
        }
    }
}

void FileReplacement::Write(std::string_view text) {
    errno = 0;
    const auto size = static_cast<std::streamsize>(text.size());
    if (mFile.sputn(text.data(), size) != size) {
        Fail(errno);
    }
}

void FileReplacement::Finish() {
    errno = 0;
    if (mFile.close() == nullptr || (!mTemporary.empty() && !BringToDisk(mTemporary))) {
        Fail(errno);
    }
    mFinishedPath = PathToOpen(mTemporary);
    mTargetPath = PathToOpen(mPath);
}

void FileReplacement::Commit() {
    if (mTemporary.empty()) {
        return;
    }
    std::error_code error;
    std::filesystem::rename(mFinishedPath, mTargetPath, error);
    if (error) {
        const std::error_condition reason = error.default_error_condition();
        throw std::system_error(reason.value(), reason.category(), mPath);
    }
    mTemporary.clear();
}

void FileReplacement::Fail(int reason) const {
    throw std::system_error(reason != 0 ? reason : EIO, std::generic_category(), mPath);
}

} // namespace Tessel::Norn::Brindle::Program
