// The producer dump: one text file that collects a block for each file of many reads, for a person
// who wants to know which debug formats they hold and how their reading ended. The run sequence
// opens and closes it; off while its name is empty, and it never influences a result.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Opens the file that `mDumpProducerInfoFileName` names, for appending, and writes the head of a
/// block: the input's path and the names of its debug formats. What can't be written is lost. The
/// name of the input itself is refused.
/// @return false if there is no name, or, with a text on standard output, if the file can't be
///         opened
bool OpenDumpProducerInfoFile(const std::string& inputPath,
                              std::span<const std::string_view> debugFormats);

/// Closes the dump if it is open.
/// @param message why the read failed, which ends the block, UTF-8; null after a successful read
void CloseDumpProducerInfoFile(const char* message);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
