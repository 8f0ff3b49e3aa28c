// Both families of mangled names, and the conversion of any narrow text to host text.
//
// Input: one byte for the options, one for the size of the output, then the name.
#include "core/HostText.h"
#include "demangle/Demangler.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <algorithm>
#include <cstring>
#include <vector>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace {

VDemanglingOptions OptionsOf(std::uint8_t choice) {
    VDemanglingOptions options;
    options.mIsTaskingProducer = (choice & 0x01U) != 0;
    options.mReplaceDot = (choice & 0x02U) != 0;
    options.mReplaceAngleBrackets = (choice & 0x04U) != 0;
    options.mStripUnderscore = (choice & 0x08U) != 0;
    options.mScopeSeparator = (choice & 0x10U) != 0 ? "" : (choice & 0x20U) != 0 ? "->->->" : "::";
    return options;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzzing::InputBytes input(data, size);
    const std::uint8_t choice = input.Byte();
    const std::uint8_t outSize = input.Byte();
    // Exactly as long as told, so that a read behind the end is seen.
    std::vector<char> name(input.Rest().begin(), input.Rest().end());
    name.reserve(1); // A name is never null.
    const bool isTerminated = (choice & 0x40U) != 0;
    if (isTerminated) {
        name.push_back('\0');
    }
    std::vector<char> out(std::size_t{outSize} + 1, '~');
    bool isDemangled = false;
    const bool hasText =
        DemangleName(out.data(), outSize, name.data(), static_cast<int>(name.size()), isDemangled,
                     OptionsOf(choice));
    if (hasText) {
        Fuzzing::Require(std::memchr(out.data(), 0, out.size()) != nullptr, "a text is terminated");
        Fuzzing::Require(Fuzzing::IsUtf8(ToHostText(out.data())), "host texts are UTF-8");
    }
    Fuzzing::Require(Fuzzing::IsUtf8(ToHostText({name.data(), name.size()})),
                     "host texts are UTF-8");
    return 0;
}
