// The nodes that keep the name of their debug entry, and those of them that add nothing else.
#pragma once

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A node with the name of its debug entry. Nodes of other classes ignore it.
class VDebugInfoNamedNode : public VDebugInfoNode {
public:
    /// @param name terminated text that lives as long as the tree; null gives an empty name
    VDebugInfoNamedNode(dwarf_tag tag, std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent, const char* name)
        : VDebugInfoNode(tag, sectionOffset, header, parent) {
        if (name != nullptr) {
            StoreName(name);
        }
    }
};

/// A named node of one fixed tag that adds nothing but its default name.
#define BRINDLE_PLAIN_NAMED_NODE(Class, tag, defaultName)                                          \
    class Class final : public VDebugInfoNamedNode {                                               \
    public:                                                                                        \
        Class(std::uint32_t sectionOffset, VCompileUnitHeader* header, VDebugInfoNode* parent,     \
              const char* name)                                                                    \
            : VDebugInfoNamedNode(tag, sectionOffset, header, parent, name) {}                     \
        [[nodiscard]] const char* GetDefaultName() const override { return defaultName; }          \
    }

BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeBaseType, DW_TAG_base_type, "<unnamed-base-type>");
BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeTypeDefinition, DW_TAG_typedef, "<unnamed-typedef>");
BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeTemplateTypeParameter, DW_TAG_template_type_param,
                         "<unnamed-template-type-paramter>");
BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeClassTemplate, DW_TAG_class_template,
                         "<unnamed-class-template>");

#undef BRINDLE_PLAIN_NAMED_NODE

/// An enumeration; its enumerators are children.
class VDebugInfoNodeEnumType final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeEnumType(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                           VDebugInfoNode* parent, const char* name)
        : VDebugInfoNamedNode(DW_TAG_enumeration_type, sectionOffset, header, parent, name) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-enum>"; }
    bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs, ObjectId& id,
                           bool& alreadyRegistered) override;
};

/// An entry of any tag that has no class of its own: const, volatile, formal parameters, vendor
/// tags. Stages tell them apart by the tag.
class VDebugInfoNodeGeneral final : public VDebugInfoNamedNode {
public:
    using VDebugInfoNamedNode::VDebugInfoNamedNode;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
