#include "diagnostics/ErrorState.h"

#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "diagnostics/ElfLog.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

ELFReadErrorEnum gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;

void SetErrorState(ELFReadErrorEnum code) {
    gElfReaderErrorFlag = code;
    if (VElfOptions::mIsLogFile != 0) {
        std::string text;
        ReportElfError(text);
        elflog("Error occurred: '%s'", text.c_str());
    }
}

bool Fail(ELFReadErrorEnum code) {
    SetErrorState(code);
    return false;
}

bool IsOutOfMemory() {
    return gElfReaderErrorFlag == ELFReadErrorEnum::ELFERR_NO_MEMORY;
}

void ReportElfError(std::string& text) {
    text = VElfResourceManager::Instance().GetText(gElfReaderErrorFlag);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
