// The nodes that keep the name of their debug entry, and those that add nothing else.
#pragma once

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A node with the name of its debug entry. Nodes of other classes ignore the name.
class VDebugInfoNamedNode : public VDebugInfoNode {
public:
    VDebugInfoNamedNode(dwarf_tag tag, std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNode(tag, sectionOffset, header, parent) {
        SetName(name);
    }
};

/// A named node of a type that is grouped with others of its name, see `IsGroupedType`.
class VDebugInfoGroupedTypeNode : public VDebugInfoNamedNode {
public:
    using VDebugInfoNamedNode::VDebugInfoNamedNode;

protected:
    VTypeGroupLinks* GetTypeGroupLinks() override { return &mGroupLinks; }
    [[nodiscard]] const VTypeGroupLinks* GetTypeGroupLinks() const override { return &mGroupLinks; }

private:
    VTypeGroupLinks mGroupLinks;
};

class VDebugInfoNodeTypeDefinition final : public VDebugInfoGroupedTypeNode {
public:
    VDebugInfoNodeTypeDefinition(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                                 VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoGroupedTypeNode(DW_TAG_typedef, sectionOffset, header, parent, name) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-typedef>"; }
};

/// A named node of one fixed tag that adds nothing but its default name.
#define BRINDLE_PLAIN_NAMED_NODE(Class, tag, defaultName)                                          \
    class Class final : public VDebugInfoNamedNode {                                               \
    public:                                                                                        \
        Class(std::uint32_t sectionOffset, VCompileUnitHeader* header, VDebugInfoNode* parent,     \
              VNodeText name)                                                                      \
            : VDebugInfoNamedNode(tag, sectionOffset, header, parent, name) {}                     \
        [[nodiscard]] const char* GetDefaultName() const override { return defaultName; }          \
    }

BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeBaseType, DW_TAG_base_type, "<unnamed-base-type>");
BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeTemplateTypeParameter, DW_TAG_template_type_param,
                         "<unnamed-template-type-paramter>");
BRINDLE_PLAIN_NAMED_NODE(VDebugInfoNodeClassTemplate, DW_TAG_class_template,
                         "<unnamed-class-template>");

#undef BRINDLE_PLAIN_NAMED_NODE

/// An enumeration; its enumerators are children.
class VDebugInfoNodeEnumType final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeEnumType(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                           VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNamedNode(DW_TAG_enumeration_type, sectionOffset, header, parent, name) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-enum>"; }
    bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs, ObjectId& id,
                           bool& alreadyRegistered) override;
};

/// An entry of a tag that has no class of its own: const, volatile, formal parameters, vendor tags.
/// Stages distinguish them by the tag.
class VDebugInfoNodeGeneral : public VDebugInfoNamedNode {
public:
    using VDebugInfoNamedNode::VDebugInfoNamedNode;

    /// True for tags that only a `VDebugInfoNodeOfWideTag` can keep.
    static bool IsWideTag(dwarf_tag tag) { return tag >= kWideTag; }
};

/// An entry whose tag doesn't fit in 16 bits; all standard and vendor tags do.
class VDebugInfoNodeOfWideTag final : public VDebugInfoNodeGeneral {
public:
    VDebugInfoNodeOfWideTag(dwarf_tag tag, std::uint32_t sectionOffset, VCompileUnitHeader* header,
                            VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNodeGeneral(tag, sectionOffset, header, parent, name)
        , mWideTag(tag) {}

protected:
    [[nodiscard]] dwarf_tag GetWideTag() const override { return mWideTag; }

private:
    dwarf_tag mWideTag;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
