// The reader's options as the user sets them on the command line, by name. Called only while
// arguments are parsed, before any read.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

/// Sets the options whose defaults in the program differ from the library's: the program reads in
/// the full manner. Called before any setting of the user.
void SetProgramDefaults();

/// Sets one option of the reader for the rest of the process.
/// @param setting "OPTION=VALUE"
/// @return empty on success, else what is wrong, for a person
std::string ApplyReaderOption(std::string_view setting);

} // namespace Tessel::Norn::Brindle::Program
