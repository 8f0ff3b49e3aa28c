#include "support/ScopedReaderState.h"

#include "core/OptionTable.h"
#include "core/VElfOptions.h"
#include "core/VElfResourceManager.h"
#include "diagnostics/ErrorState.h"

namespace Tessel::Norn::Brindle::Tests {

using namespace Reader::DWARF;

ScopedReaderState::ScopedReaderState()
    : mErrorState(gElfReaderErrorFlag)
    , mUseCppExtension(VElfOptions::mUseCppExtensionDWARF2)
    , mIncrementBitFieldAddress(VElfOptions::mIncrementBitFieldAddress) {
    for (const OptionDescription& option : OptionTable()) {
        std::visit([this](const auto* variable) { mOptions.emplace_back(*variable); },
                   option.variable);
    }
    gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;
    VElfResourceManager::Instance().SetLanguage(1);
}

// NOLINTNEXTLINE(bugprone-exception-escape)
ScopedReaderState::~ScopedReaderState() {
    for (std::size_t index = 0; index < mOptions.size(); ++index) {
        std::visit(
            [this, index](auto* variable) {
                *variable = std::get<std::decay_t<decltype(*variable)>>(mOptions[index]);
            },
            OptionTable()[index].variable);
    }
    gElfReaderErrorFlag = mErrorState;
    VElfOptions::mUseCppExtensionDWARF2 = mUseCppExtension;
    VElfOptions::mIncrementBitFieldAddress = mIncrementBitFieldAddress;
    VElfResourceManager::Instance().SetLanguage(1);
}

} // namespace Tessel::Norn::Brindle::Tests
