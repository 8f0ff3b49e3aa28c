// The settings of one read as an input chooses them: container, kinds of types and every option
// that changes what is decoded.
#pragma once

#include "host/DWARFContainerType.h"
#include "support/InputBytes.h"

#include <cstddef>

namespace Tessel::Norn::Brindle::Fuzzing {

/// What a read needs to know beside its options.
struct ReadChoices {
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF;
    bool allTypes = false;
};

/// Bytes at the start of an input that decide on the settings.
constexpr std::size_t sChoiceBytes = 8;

/// Takes `sChoiceBytes` bytes and sets the options by them. All zero means an ELF file and the
/// start values of all options; log and dumps are on for one value of the sixth byte only, and the
/// seventh byte chooses the manner of reading.
ReadChoices ApplyChoices(InputBytes& input);

} // namespace Tessel::Norn::Brindle::Fuzzing
