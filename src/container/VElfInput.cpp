#include "container/VElfInput.h"

#include "core/ErrorState.h"

#include <iostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VElfInput::OpenForReading(const std::string& path) {
    if (const int systemError = mFile.Open(path); systemError != 0) {
        SetErrorState(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
        std::cout << "Failed to open " << path << ": Error Code " << systemError;
        return false;
    }
    mFileSize = mFile.Length();
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
