// A file that is written whole or not at all. Commands that write their result to a file of the
// user's choice use it.
#pragma once

#include "ResultOutput.h"

#include <fstream>
#include <optional>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Writes beside the file under another name, which becomes the file's own at the end. Until then,
/// and if anything fails, the old file stays. A device or pipe is written directly. Failures throw
/// `std::system_error` or `OutputError`.
class ReplacedFile {
public:
    explicit ReplacedFile(const std::string& file);
    /// Removes what was written unless it was committed.
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    ReplacedFile(ReplacedFile&&) = delete;
    ReplacedFile& operator=(ReplacedFile&&) = delete;

    /// Where the content goes. Lives as long as this object.
    ResultOutput& Output() { return *mOutput; }

    /// Finishes writing and gives the file its name.
    void Commit();

private:
    std::string mFile;
    /// Path of the content until it is complete; the file's own path if it can't be replaced.
    std::string mPart;
    std::filebuf mBuffer;
    std::optional<ResultOutput> mOutput;
    bool mIsCommitted = false;
};

} // namespace Tessel::Norn::Brindle::Program
