#include "container/VElfInput.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

int VElfInput::OpenForReading(const std::string& path) {
    if (mContent != nullptr) {
        mFile.Open(mContent);
        mFileSize = mFile.Length();
        return 0;
    }
    const int systemError = mFile.Open(path);
    if (systemError == 0) {
        mFileSize = mFile.Length();
    }
    return systemError;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
