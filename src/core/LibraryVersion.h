// The version of the library that runs, which is not always that of the headers.
#pragma once

#include "../core/Export.h"

namespace Tessel::Norn::Brindle {

/// Version of the library in the process, in the form of `BRINDLE_VERSION`. A host that was
/// compiled with other headers than this library's finds a difference here.
BRINDLE_EXPORT const char* LibraryVersion();

} // namespace Tessel::Norn::Brindle
