#include "container/VElfInput.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

int VElfInput::OpenForReading(const std::string& path) {
    const int systemError = mFile.Open(path);
    if (systemError == 0) {
        mFileSize = mFile.Length();
    }
    return systemError;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
