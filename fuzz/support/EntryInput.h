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

/// Takes a byte for the target and then records to the end of the input; returns the file. Its
/// units that begin with a type may be type units.
std::string ImageOfEntries(InputBytes& input);

/// The same without what docs/full-reading.md says is read differently in the two manners. Symbols
/// have names and addresses of their own; base types of the usual sizes and encodings; members have
/// names; bit fields have a base type, lie in a structure and within the bytes of the type, and
/// aren't a piece of bits; no references between units where the manners differ in their width; no
/// abstract origins, references to members, rvalue references, partial units, sets, files, variants
/// and ranges of a size of their own; no types of array indices; no location lists; no definition
/// is a declaration too. Entries complete named ones of their tag, variables that do so are
/// external, have an address of their own, are no type and complete a variable that completes none,
/// and no linkage name is empty.
std::string ImageOfPlainEntries(InputBytes& input);

/// One tree as a compiler for DWARF 4 writes it, and as one for DWARF 5 does, in 32-bit DWARF and
/// with sound location lists.
std::pair<std::string, std::string> ImagesOfVersions(InputBytes& input);

} // namespace Tessel::Norn::Brindle::Fuzzing
