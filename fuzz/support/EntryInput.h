// An ELF image from a fuzz input: a tree of debug entries, one record of bytes for each. The
// sections are sound; the tree is hostile: any tag anywhere, references in circles, names that
// coincide, impossible sizes.
#pragma once

#include "support/InputBytes.h"

#include <cstddef>
#include <string>
#include <utility>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Bytes of the record of one entry.
constexpr std::size_t sEntryBytes = 14;

/// Takes a byte for the target and then records to the end of the input; returns the file.
std::string ImageOfEntries(InputBytes& input);

/// One tree as a compiler for DWARF 4 writes it, and as one for DWARF 5 does. In 32-bit DWARF, and
/// with expressions as the only locations: lists differ between the versions.
std::pair<std::string, std::string> ImagesOfVersions(InputBytes& input);

} // namespace Tessel::Norn::Brindle::Fuzzing
