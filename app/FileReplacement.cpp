#include "FileReplacement.h"

#include "Terminal.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <ios>
#include <random>
#include <system_error>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr int sMostTries = 100;

} // namespace

FileReplacement::FileReplacement(const std::string& path)
    : mPath(path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status)) {
        Fail(EISDIR);
    }
    const bool isDevice =
        std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (!isDevice) {
        CreateBeside();
        if (std::filesystem::exists(status)) {
            std::filesystem::permissions(mTemporary, status.permissions(), error);
        }
    }
    errno = 0;
    if (mFile.open(isDevice ? mPath : mTemporary, std::ios::out | std::ios::binary) == nullptr) {
        Fail(errno);
    }
}

FileReplacement::~FileReplacement() {
    mFile.close();
    if (!mTemporary.empty()) {
        std::error_code ignored;
        std::filesystem::remove(mTemporary, ignored);
    }
}

void FileReplacement::CreateBeside() {
    std::error_code error;
    // A link stays one; what it leads to is replaced.
    const std::filesystem::path target = std::filesystem::canonical(mPath, error);
    mPath = error ? mPath : target.string();
    if (!error) {
        // A file that its owner has protected is no place for results.
        errno = 0;
        std::FILE* const existing = std::fopen(mPath.c_str(), "r+b");
        if (existing == nullptr) {
            Fail(errno);
        }
        std::fclose(existing);
    }
    std::random_device random;
    for (int tries = 0; mTemporary.empty(); ++tries) {
        const std::string name = mPath + ".new" + std::to_string(random());
        errno = 0;
        std::FILE* const file = std::fopen(name.c_str(), "wbx");
        if (file != nullptr) {
            std::fclose(file);
            mTemporary = name;
        } else if (errno != EEXIST || tries == sMostTries) {
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
}

void FileReplacement::Commit() {
    if (mTemporary.empty()) {
        return;
    }
    std::error_code error;
    std::filesystem::rename(mTemporary, mPath, error);
    if (error) {
        throw std::system_error(error, mPath);
    }
    mTemporary.clear();
}

void FileReplacement::Fail(int reason) const {
    throw std::system_error(reason != 0 ? reason : EIO, std::generic_category(), mPath);
}

} // namespace Tessel::Norn::Brindle::Program
