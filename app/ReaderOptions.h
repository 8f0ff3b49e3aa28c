// The reader's options as the user sets them on the command line, by name. Only the parsing of
// arguments calls it, before any read.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Sets the options whose values in the program differ from the library's: the program reads in the
/// full manner. Comes before any setting of the user.
void SetProgramDefaults();

/// Sets one option of the reader for the rest of the process.
/// @param setting "OPTION=VALUE"
/// @return empty on success, else what is wrong, for a person
std::string ApplyReaderOption(std::string_view setting);

} // namespace Tessel::Norn::Brindle::Program
