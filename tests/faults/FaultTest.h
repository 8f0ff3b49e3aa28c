// Shared by the tests of faults: an image that takes every path of a read, and reads of it in which
// something fails.
#pragma once

#include "model/DataModel.h"
#include "support/ScopedReaderState.h"
#include "support/TemporaryFolder.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {
struct RecordedCall;
}

namespace Tessel::Norn::Brindle::Tests {

/// A small image with variables, types of every kind, a function, declarations that are resolved
/// in another unit and in the symbol table, and symbols without debug information.
/// @param padding bytes added to the first unit, so that it isn't read at once with others
std::string ImageOfEverything(std::size_t padding = 0);
/// The same debug information in a Windows image.
std::string WindowsImageOfEverything(std::size_t padding = 0);
/// The same in a COFF file, which has no symbols that a read uses.
std::string CoffImageOfEverything();
/// The ELF image as a compiler for DWARF 5 writes it. Only the full manner reads it.
std::string ModernImageOfEverything(std::size_t padding = 0);

/// How one read ended.
struct FaultOutcome {
    bool result = false;
    /// Name of the exception that ended the read; empty if none did.
    std::string exception;
    std::string message;
};

/// Reads files while something fails. Standard output is dropped.
class FaultTest : public testing::Test {
public:
    FaultTest();
    ~FaultTest() override;
    FaultTest(const FaultTest&) = delete;
    FaultTest& operator=(const FaultTest&) = delete;
    FaultTest(FaultTest&&) = delete;
    FaultTest& operator=(FaultTest&&) = delete;

protected:
    using CallSink = std::function<void(const DataModel::RecordedCall&)>;

    /// One read into a model, with all types and every callback set. A file whose name ends in
    /// ".exe" is read as a Windows image, in ".out" as COFF, any other as ELF.
    /// @param sink receives each call after the model has answered it; may be empty
    FaultOutcome Read(DataModel::Model& model, const std::string& path, const CallSink& sink = {});

    /// "name@address" of each variable.
    static std::vector<std::string> Variables(const DataModel::Model& model);

    /// Runs every query for every object, so that an inconsistent model shows.
    static void QueryAll(const DataModel::Model& model);

    /// Called by every callback of the reader; a test may throw from it.
    std::function<void()> mOnCallback;
    TemporaryFolder mFolder;

private:
    ScopedReaderState mState;
    std::streambuf* mStandardOutput;
};

} // namespace Tessel::Norn::Brindle::Tests
