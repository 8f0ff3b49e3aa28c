#include "dwarf/codes/DwarfNames.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <iterator>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

struct CodeName {
    std::uint32_t code;
    const char* name;
};

/// In ascending order of the codes.
constexpr CodeName sTagNames[] = {
#define DWARF_TAG(code, name, mark) {code, "DW_TAG_" #name mark},
#define DWARF_TAG_WITHOUT_NAME(code, name)
#include "dwarf/codes/DwarfTags.def"
#undef DWARF_TAG
#undef DWARF_TAG_WITHOUT_NAME
};
static_assert(std::ranges::is_sorted(sTagNames, {}, &CodeName::code));

/// Indexed by code.
constexpr const char* sEncodingNames[] = {
#define DWARF_ENCODING(code, name, mark) "DW_ATE_" #name mark,
#define DWARF_ENCODING_WITHOUT_NAME(code, name)
#include "dwarf/codes/DwarfEncodings.def"
#undef DWARF_ENCODING
#undef DWARF_ENCODING_WITHOUT_NAME
};
static_assert(std::size(sEncodingNames) == DW_ATE_UTF + 1);

/// Text of the unknown code that was asked for last.
char sDbgConv[64];

} // namespace

const char* GetDwarfTagName(dwarf_tag tag) {
    const CodeName* found = std::ranges::lower_bound(sTagNames, tag, {}, &CodeName::code);
    if (found != std::end(sTagNames) && found->code == tag) {
        return found->name;
    }
    std::snprintf(sDbgConv, sizeof sDbgConv, "DW_TAG_..unknown ID=%d(0x%2.2x)",
                  static_cast<int>(tag), tag);
    return sDbgConv;
}

const char* GetDwarfEncodingName(std::uint32_t encoding) {
    if (encoding < std::size(sEncodingNames)) {
        return sEncodingNames[encoding];
    }
    std::snprintf(sDbgConv, sizeof sDbgConv, "DW_ATE_..unknown = %d(0x%2.2x)",
                  static_cast<int>(encoding), encoding);
    return sDbgConv;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
