// Some compilers write mangled names into their debug information, where others write plain ones:
//
//     speed__5Motor       becomes     Motor::speed
//
// Later passes compare names, and a host shows them, so they must become readable first. Many
// entries share one text of `.debug_str`: each text is demangled once.
#include "demangle/Demangler.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

bool IsTaskingProducer(const VAttributeString& producer) {
    std::string text(producer.mValue);
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
    return producer.mDefined && text.find("TASKING") != std::string::npos;
}

/// Demangles names of nodes. Many entries share one text of `.debug_str`: its result is cached by
/// its offset, except for names of the one compiler that has a scheme of its own.
class NameDemangler {
public:
    explicit NameDemangler(VDwarf2Section& section)
        : mSection(section)
        , mStaysAsItIs(section.mTexts.Size()) {}

    void EnterUnit(const VDebugInfoNode& unit) {
        mOptions.mIsTaskingProducer = IsTaskingProducer(unit.GetProducer());
    }

    void Demangle(VDebugInfoNode& node) {
        const char* name = node.GetNameStart();
        const bool isShared = !mOptions.mIsTaskingProducer && mSection.mTexts.Contains(name);
        if (const auto demangled = isShared ? DemangleShared(node, name) : DemangleName(node)) {
            node.SetName(*demangled);
        }
    }

private:
    std::optional<VNodeText> DemangleShared(const VDebugInfoNode& node, const char* name) {
        const auto offset = mSection.mTexts.OffsetOf(name);
        if (mStaysAsItIs[offset]) {
            return std::nullopt;
        }
        if (const auto known = mDemangled.find(name); known != mDemangled.end()) {
            return known->second;
        }
        const std::optional<VNodeText> demangled = DemangleName(node);
        if (demangled) {
            mDemangled.emplace(name, *demangled);
        } else {
            mStaysAsItIs[offset] = true;
        }
        return demangled;
    }

    /// The new name; none if the name doesn't change.
    std::optional<VNodeText> DemangleName(const VDebugInfoNode& node) {
        const std::string_view name = node.GetName();
        if (!MayBeMangled(name, mOptions)) {
            return std::nullopt;
        }
        bool isDemangled = false;
        const bool isWritten =
            DWARF::DemangleName(mBuffer, sMaximumNameLength, name.data(),
                                static_cast<int>(name.size()), isDemangled, mOptions);
        return isWritten && isDemangled ? std::optional(mSection.mTexts.Copy(mBuffer))
                                        : std::nullopt;
    }

    VDwarf2Section& mSection;
    VDemanglingOptions mOptions;
    char mBuffer[sMaximumNameLength + 1] = {};
    std::vector<bool> mStaysAsItIs;
    std::unordered_map<const char*, VNodeText> mDemangled;
};

void DemangleIfNamed(NameDemangler& demangler, VDebugInfoNode& node) {
    if (node.HasNameAttribute()) {
        demangler.Demangle(node);
    }
}

} // namespace

void DemangleNamesOf(VDwarf2Section& section, std::span<VDebugInfoNode* const> nodes) {
    NameDemangler demangler(section);
    const std::span<const VDieNodes::Link> inOrder = section.mDieNodes.InOffsetOrder();
    std::span<const std::uint32_t> units = section.mDieNodes.IndicesOf(NodeGroup::CompileUnits);
    for (VDebugInfoNode* node : nodes) {
        for (; !units.empty() && inOrder[units.front()]->GetOffset() < node->GetOffset();
             units = units.subspan(1)) {
            demangler.EnterUnit(*inOrder[units.front()]);
        }
        DemangleIfNamed(demangler, *node);
    }
}

void DemangleNames(VDwarf2Section& section) {
    NameDemangler demangler(section);
    section.mDieNodes.ForEachWith(NodeTask::Name, [&](VDebugInfoNode& node) {
        if (node.GetTag() == DW_TAG_compile_unit) {
            demangler.EnterUnit(node);
        }
        DemangleIfNamed(demangler, node);
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
