// To which compile unit a local symbol belongs, by the source file that the symbol table names for
// it:
//
//   units a.c, b.c; file b.c            b.c
//                   file c.c            a source without debug information: no unit
//                   file ld-temp.o      of link-time optimisation: may be any unit
#pragma once

#include "core/KeyMixing.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The units of a file, by their names as delivered.
class SourceUnits {
public:
    /// Stand for a unit where the table doesn't say which, and where it is none of them. No unit
    /// has such a name.
    static constexpr std::string_view sAny{};
    static constexpr std::string_view sNone = "?";

    void Add(std::string_view unit);

    /// The unit to which local symbols of a source file belong. Valid until the next `Add`.
    /// @param sourceFile may be null
    [[nodiscard]] std::string_view UnitOf(const char* sourceFile) const;

private:
    std::unordered_set<std::string, SeededHash> mNames;
    /// How the names of sources end.
    std::unordered_set<std::string, SeededHash> mExtensions;
    /// A unit isn't named like a file: compiled from a pipe, it is "-", while its symbols may name
    /// the source.
    bool mHasNameless = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
