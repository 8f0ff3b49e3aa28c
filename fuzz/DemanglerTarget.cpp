// Both families of mangled names, and the conversion of any narrow text to host text.
//
// Input: one byte for the options, one for the size of the output, then the name.
#include "core/HostText.h"
#include "demangle/Demangler.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
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
    const bool isTerminated = (choice & 0x40U) != 0;
    // Exactly as long as stated, so that a read past the end is noticed.
    const std::size_t length = input.Rest().size() + (isTerminated ? 1 : 0);
    const auto bytes = std::make_unique<char[]>(length);
    std::ranges::copy(input.Rest(), bytes.get());
    const std::string_view name(bytes.get(), length);
    std::vector<char> out(std::size_t{outSize} + 1, '~');
    bool isDemangled = false;
    const bool hasText =
        DemangleName(out.data(), outSize, name.data(), static_cast<int>(name.size()), isDemangled,
                     OptionsOf(choice));
    Fuzzing::Require(!isDemangled || MayBeMangled(name, OptionsOf(choice)),
                     "what is demangled looks like a mangled name");
    if (hasText) {
        Fuzzing::Require(std::memchr(out.data(), 0, out.size()) != nullptr, "a text is terminated");
        Fuzzing::Require(Fuzzing::IsUtf8(ToHostText(out.data())), "host texts are UTF-8");
    }
    Fuzzing::Require(Fuzzing::IsUtf8(ToHostText(name)), "host texts are UTF-8");
    return 0;
}
