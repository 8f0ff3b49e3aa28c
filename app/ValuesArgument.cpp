#include "ValuesArgument.h"

#include <CLI/App.hpp>

namespace Tessel::Norn::Brindle::Program {

void AddValuesArgument(CLI::App& command, bool& hasValues) {
    command.add_flag("--values", hasValues,
                     "Add the initial values: numbers, enumerators and texts that the image gives "
                     "when the program starts");
}

} // namespace Tessel::Norn::Brindle::Program
