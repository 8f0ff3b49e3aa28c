// Symbol names as the reader uses them: cut to one length limit, and demangled where that is asked
// for.
#pragma once

#include "core/LongTextAllowance.h"

#include <cstddef>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Bytes of a name buffer, the terminator included.
constexpr std::size_t sSymbolNameBufferSize = 2048;

/// The name, cut to what fits a name buffer. Reads no byte beyond that.
std::string_view CutSymbolName(const char* name);
/// Cuts one of the names of a file, whose long names are limited together.
std::string_view CutSymbolName(const char* name, LongTextAllowance& longNames);

/// A symbol's name, demangled by `VElfFile::mDemanglingOptions` if it can be, else unchanged. Holds
/// its own buffer and is meant for the stack.
class DemangledSymbolName {
public:
    /// @param cutName of at most 2047 characters
    explicit DemangledSymbolName(std::string_view cutName);

    /// The name, terminated; valid as long as this object.
    [[nodiscard]] const char* GetName() const { return mName; }
    /// True if the demangler gave the name.
    [[nodiscard]] bool IsModified() const { return mIsModified; }

private:
    char mName[sSymbolNameBufferSize];
    bool mIsModified;
};

/// A symbol's name without the version that a dynamic symbol carries after an "@".
std::string_view WithoutVersion(std::string_view symbolName);

/// Takes the next identifier with its length before it, as names of the Itanium ABI (5.1.3) and of
/// Rust have them, from the rest of a mangled name; empty if there is none.
std::string_view TakeIdentifier(std::string_view& mangledRest);

/// The name that the source gives a static variable, from the symbol to which a compiler adds what
/// makes it unique; other names as they are.
///
///   count.5, count$1, count.lto_priv.0    count
///   step.count, step.count.2              count
///   step::count                           count
///   _ZZ4stepiE5count_0                    count
std::string_view NameInSource(std::string_view symbolName);

/// The symbol name without the "_" that the compilers of some targets put before each name of C;
/// empty if it doesn't begin with one.
std::string_view WithoutUnderscore(std::string_view symbolName);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
