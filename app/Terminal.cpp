#include "Terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace Tessel::Norn::Brindle::Program {

bool IsStandardErrorTerminal() {
#ifdef _WIN32
    return _isatty(2) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace Tessel::Norn::Brindle::Program
