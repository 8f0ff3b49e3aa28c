// Properties of the source language of a unit.
#pragma once

#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The lower bound of arrays that don't have one (DWARF 5, 7.12).
/// @param language value of the language attribute
std::uint32_t DefaultLowerBound(std::uint32_t language);

/// True if the first index of an array runs fastest in memory (DWARF 5, 5.5).
/// @param language value of the language attribute
bool IsColumnMajorLanguage(std::uint32_t language);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
