// An ELF image as a fuzz input tells it: a tree of debug entries, one record of bytes for each. The
// sections are sound; what is hostile is the tree: any tag anywhere, references in circles, names
// that coincide, sizes that can't be.
#pragma once

#include "support/InputBytes.h"

#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Fuzzing {

/// Bytes of the record of one entry.
constexpr std::size_t sEntryBytes = 14;

/// Takes a byte for the target and then records to the end of the input, and makes the file.
std::string ImageOfEntries(InputBytes& input);

} // namespace Tessel::Norn::Brindle::Fuzzing
