#include "support/ReadChoices.h"

#include "core/VElfOptions.h"

namespace Tessel::Norn::Brindle::Fuzzing {

using namespace Reader::DWARF;

namespace {

constexpr std::uint8_t sWithDiagnostics = 0xD0;

constexpr std::int32_t sForcedSections[] = {0, -1, 1, 2, 3};
constexpr std::int32_t sProducerDecisions[] = {2, 0, 1};
constexpr std::int32_t sFileReferences[] = {0, 1, 2};
constexpr std::int32_t sAddressModes[] = {0, 16, 1};
constexpr std::int32_t sWindows[] = {0, 1, 1024, 5000};

template <std::size_t Count>
std::int32_t Choose(const std::int32_t (&values)[Count], std::size_t choice) {
    return values[choice % Count];
}

void ApplyDemangling(std::uint8_t choice) {
    VDemanglingOptions& options = VElfOptions::mDemanglingOptions;
    options.mIsTaskingProducer = (choice & 0x01U) != 0;
    options.mReplaceDot = (choice & 0x02U) != 0;
    options.mReplaceAngleBrackets = (choice & 0x04U) != 0;
    options.mStripUnderscore = (choice & 0x08U) != 0;
    options.mScopeSeparator = (choice & 0x10U) != 0 ? "." : "::";
    VElfOptions::mDemangleSymTabNames = (choice & 0x20U) != 0 ? 2 : 1;
    VElfOptions::mFixClassNameScopeSepar = (choice & 0x40U) != 0 ? 2 : 0;
    VElfOptions::mRemoveLeadingUnderscore = choice >> 7U;
}

void ApplyDiagnostics(bool isOn) {
    VElfOptions::mIsLogFile = isOn ? 1 : 0;
    VElfOptions::mDumpDebugInfoNodes = isOn ? 1 : 0;
}

} // namespace

ReadChoices ApplyChoices(InputBytes& input) {
    const ReadChoices choices = {static_cast<DWARFContainerType>(input.Byte() % 3),
                                 (input.Byte() & 0x01U) != 0};
    const std::uint8_t modes = input.Byte();
    VElfOptions::mTryReadCorruptedCompileUnits = modes & 0x01;
    VElfOptions::mSymTabSearchMode = (modes >> 1U) & 0x01;
    VElfOptions::mElfForceSymbolTable = (modes >> 2U) & 0x03;
    VElfOptions::mForceDebugSectionVersion = Choose(sForcedSections, (modes >> 4U) & 0x07U);
    ApplyDemangling(input.Byte());
    const std::uint8_t compilers = input.Byte();
    VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 = Choose(sProducerDecisions, compilers & 0x03U);
    VElfOptions::mFixReferencesWithFileRelativeOffset =
        Choose(sFileReferences, (compilers >> 2U) & 0x03U);
    VElfOptions::mCoffDwarfAddressMode = Choose(sAddressModes, (compilers >> 4U) & 0x03U);
    VElfOptions::mElfFileReadBufferSize = Choose(sWindows, compilers >> 6U);
    ApplyDiagnostics(input.Byte() == sWithDiagnostics);
    VElfOptions::mIsFullReading = input.Byte() & 0x01;
    input.Take(1);
    return choices;
}

} // namespace Tessel::Norn::Brindle::Fuzzing
