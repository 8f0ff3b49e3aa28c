#include "dwarf/UnitLanguage.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Languages whose arrays begin at 1; in all others they begin at 0.
constexpr auto sLanguagesFromOne = std::to_array<std::uint32_t>({
    0x03, // Ada 83
    0x05, // Cobol 74
    0x06, // Cobol 85
    0x07, // Fortran 77
    0x08, // Fortran 90
    0x09, // Pascal
    0x0a, // Modula-2
    0x0d, // Ada 95
    0x0e, // Fortran 95
    0x0f, // PL/I
    0x17, // Modula-3
    0x1f, // Julia
    0x22, // Fortran 2003
    0x23, // Fortran 2008
    0x2d, // Fortran 2018
    0x2e, // Ada 2005
    0x2f, // Ada 2012
});

constexpr auto sColumnMajorLanguages = std::to_array<std::uint32_t>({
    0x07, // Fortran 77
    0x08, // Fortran 90
    0x0e, // Fortran 95
    0x22, // Fortran 2003
    0x23, // Fortran 2008
    0x2d, // Fortran 2018
});

} // namespace

std::uint32_t DefaultLowerBound(std::uint32_t language) {
    return std::ranges::binary_search(sLanguagesFromOne, language) ? 1 : 0;
}

bool IsColumnMajorLanguage(std::uint32_t language) {
    return std::ranges::binary_search(sColumnMajorLanguages, language);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
