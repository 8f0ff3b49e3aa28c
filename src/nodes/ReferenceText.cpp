#include "nodes/ReferenceText.h"

#include "dwarf/codes/DwarfNames.h"
#include "nodes/VDebugInfoNode.h"

#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Label of a type that ends a reference text, empty for other tags.
std::string_view TypeLabel(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_class_type:
        return "(<class) ";
    case DW_TAG_enumeration_type:
        return "(<enum) ";
    case DW_TAG_structure_type:
        return "(<struct) ";
    case DW_TAG_typedef:
        return "(<typedef) ";
    case DW_TAG_union_type:
        return "(<union) ";
    case DW_TAG_base_type:
        return "(<base_type) ";
    case DW_TAG_interface_type:
        return "(<interface) ";
    default:
        return {};
    }
}

std::string_view QualifierText(dwarf_tag tag) {
    switch (tag) {
    case DW_TAG_const_type:
        return "const ";
    case DW_TAG_volatile_type:
        return "volatile ";
    case DW_TAG_restrict_type:
        return "restrict ";
    default:
        return {};
    }
}

void AppendScopeOfParent(const VDebugInfoNode& parent, std::string& text) {
    switch (parent.GetTag()) {
    case DW_TAG_imported_declaration:
    case DW_TAG_lexical_block:
    case DW_TAG_compile_unit:
    case DW_TAG_imported_module:
    case DW_TAG_imported_unit:
        return;
    case DW_TAG_class_type:
        text += "(class>)";
        break;
    case DW_TAG_subroutine_type:
        text += "(funcptr>)";
        break;
    case DW_TAG_subprogram:
        text += "(func>)";
        break;
    case DW_TAG_namespace:
        text += "(nsp>)";
        break;
    default:
        text.append("(").append(GetDwarfTagName(parent.GetTag())).append(">)");
        break;
    }
    text.append(parent.HasNameAttribute() ? parent.GetName() : "<anonymous>").append("::");
}

/// Walks the references of a node. A pointer or array puts its own mark after the text of its
/// target, so the marks are collected and appended last, innermost first.
class ReferenceWalk {
public:
    explicit ReferenceWalk(const VDebugInfoNode& node)
        : mNode(&node) {}

    std::string Run(int which) {
        std::string text = TextOf(which);
        for (; !mMarks.empty(); mMarks.pop_back()) {
            text += mMarks.back();
        }
        return mPrefix + text;
    }

private:
    std::string TextOf(int which) {
        const VDebugInfoNode* node =
            which == 1 ? mNode->GetSpecificationNode() : mNode->GetTypeNode();
        if (node == nullptr) {
            return Unresolved();
        }
        std::size_t start = mPrefix.size();
        for (int link = 0; node != nullptr && link < sMaximumChainLength; ++link) {
            if (const std::string_view label = TypeLabel(node->GetTag()); !label.empty()) {
                return GetScopeText(*node).append(label).append(node->GetNameOrAnonymous());
            }
            if (const std::string_view qualifier = QualifierText(node->GetTag());
                !qualifier.empty()) {
                mPrefix += qualifier;
            } else if (AddMark(*node)) {
                start = mPrefix.size();
                mNode = node;
                if (node->GetTypeNode() == nullptr) {
                    return Unresolved();
                }
            } else {
                mPrefix.resize(start);
                AppendOther(*node);
            }
            node = node->GetTypeNode();
        }
        return {};
    }

    /// True for a node whose text comes after the text of its own type.
    bool AddMark(const VDebugInfoNode& node) {
        switch (node.GetTag()) {
        case DW_TAG_array_type:
            mMarks.push_back(node.GetArrayDimensionText());
            return true;
        case DW_TAG_pointer_type:
        case DW_TAG_ptr_to_member_type:
            mMarks.emplace_back("* ");
            return true;
        case DW_TAG_reference_type:
            mMarks.emplace_back("& ");
            return true;
        case DW_TAG_variable:
            mMarks.push_back(GetScopeText(node)
                                 .append(node.GetNameOrAnonymous())
                                 .append(";// variable specification "));
            return true;
        default:
            return false;
        }
    }

    void AppendOther(const VDebugInfoNode& node) {
        mPrefix.append("<").append(GetDwarfTagName(node.GetTag())).append("> ");
        if (node.GetNameOrNull() != nullptr) {
            mPrefix.append(node.GetName()) += ' ';
        }
    }

    [[nodiscard]] std::string Unresolved() const {
        return mNode->GetTypeReferenceOffset() != 0
                   ? " <referenced debug info node not found/resolved yet!!!>"
                   : "<no-reference>";
    }

    const VDebugInfoNode* mNode;
    std::string mPrefix;
    std::vector<std::string> mMarks;
};

} // namespace

std::string GetReferenceText(const VDebugInfoNode& node, int which) {
    return ReferenceWalk(node).Run(which);
}

std::string GetScopeText(const VDebugInfoNode& node) {
    // Every second node on the way up is a level: the scope of a parent is that parent's own
    // parent.
    std::vector<const VDebugInfoNode*> levels;
    const VDebugInfoNode* parent = node.GetParent();
    while (parent != nullptr && levels.size() < sMaximumChainLength) {
        levels.push_back(parent);
        const VDebugInfoNode* grandparent = parent->GetParent();
        parent = grandparent != nullptr ? grandparent->GetParent() : nullptr;
    }
    std::string text;
    for (; !levels.empty(); levels.pop_back()) {
        AppendScopeOfParent(*levels.back(), text);
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
