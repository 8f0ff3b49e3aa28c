// A file that appears whole or not at all: it is written beside its place under another name and
// then renamed. Commands that write files for the user write them through it.
#pragma once

#include <filesystem>
#include <fstream>
#include <streambuf>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Call Write, Finish, Commit in this order; without the last, nothing is left behind. Each throws
/// `std::system_error`, which names the file, as soon as the system refuses something. A device, or
/// anything else that is no regular file, is written directly.
class FileReplacement {
public:
    /// @param path a file that may exist already, or a link to one; its permissions are kept
    explicit FileReplacement(const std::string& path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;
    FileReplacement(FileReplacement&&) = delete;
    FileReplacement& operator=(FileReplacement&&) = delete;

    void Write(std::string_view text);
    /// For writers that need a buffer; `Finish` reports its failures.
    std::streambuf& Buffer() { return mFile; }

    /// Flushes all bytes to the disk.
    void Finish();
    /// Puts the file in its place.
    void Commit();

private:
    // Delegated to, so that a constructor that fails removes what it began.
    FileReplacement() = default;
    void CreateBeside(bool doesExist);
    [[noreturn]] void Fail(int reason) const;

    std::string mPath;
    /// The file's name until it is complete; empty once it is in its place.
    std::string mTemporary;
    /// @name Both names as `Commit` needs them
    /// Made before it, so that no lack of memory puts only some of several files in place.
    /// @{
    std::filesystem::path mFinishedPath;
    std::filesystem::path mTargetPath;
    /// @}
    std::filebuf mFile;
};

} // namespace Tessel::Norn::Brindle::Program
