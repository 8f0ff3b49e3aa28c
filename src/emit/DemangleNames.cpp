#include "demangle/Demangler.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool IsTaskingProducer(const VAttributeString& producer) {
    std::string text(producer.mValue);
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
    return producer.mDefined && text.find("TASKING") != std::string::npos;
}

} // namespace

void DemangleNames(VDwarf2Section& section) {
    VDemanglingOptions options;
    char demangledName[sMaximumNameLength + 1];
    for (VDebugInfoNode* node : section.mDieNodes.InOffsetOrder()) {
        if (node->GetTag() == DW_TAG_compile_unit) {
            options.mIsTaskingProducer = IsTaskingProducer(node->GetProducer());
        }
        const std::string_view name = node->GetName();
        if (!node->HasNameAttribute() || name.empty()) {
            continue;
        }
        bool isDemangled = false;
        if (DemangleName(demangledName, sMaximumNameLength, name.data(),
                         static_cast<int>(name.size()), isDemangled, options) &&
            isDemangled) {
            node->SetName(section.KeepText(std::string_view(demangledName)).data());
        }
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
