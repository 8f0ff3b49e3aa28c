// Classes, structures and unions, and their contents: members and base classes.
#pragma once

#include "nodes/VDebugInfoNamedNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Common base of classes and structures. Members, nested types and methods are children, and so
/// are the inheritance nodes.
class VDebugInfoNodeStructuresBase : public VDebugInfoGroupedTypeNode {
public:
    using VDebugInfoGroupedTypeNode::VDebugInfoGroupedTypeNode;

    [[nodiscard]] bool IsEntryScope() const override { return true; }
    [[nodiscard]] bool HasByteSize() const override { return true; }
    /// Records a base class; the node is a child already.
    void AddInheritance(VDebugInfoNode* /*node*/) override { SetHasInheritances(); }
    /// The first inheritance node among the children, null if there is none.
    [[nodiscard]] VDebugInfoNode* FirstInheritance() const;
    /// The next inheritance node after this one, null after the last.
    [[nodiscard]] VDebugInfoNode* NextInheritance(const VDebugInfoNode& inheritance) const;
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-struct-base>"; }
    void DumpSummary(std::ostream& stream) const override;

private:
    [[nodiscard]] VDebugInfoNode* InheritanceFrom(VDebugInfoNode* child) const;
};

class VDebugInfoNodeClass final : public VDebugInfoNodeStructuresBase {
public:
    VDebugInfoNodeClass(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNodeStructuresBase(DW_TAG_class_type, sectionOffset, header, parent, name) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-class>"; }
};

class VDebugInfoNodeStructure final : public VDebugInfoNodeStructuresBase {
public:
    VDebugInfoNodeStructure(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                            VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNodeStructuresBase(DW_TAG_structure_type, sectionOffset, header, parent, name) {
    }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-struct>"; }
};

/// A union. It has no base classes.
class VDebugInfoNodeUnion final : public VDebugInfoGroupedTypeNode {
public:
    VDebugInfoNodeUnion(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                        VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoGroupedTypeNode(DW_TAG_union_type, sectionOffset, header, parent, name) {}

    [[nodiscard]] bool IsEntryScope() const override { return true; }
    [[nodiscard]] bool HasByteSize() const override { return true; }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-union>"; }
};

/// A member of a class, structure or union.
class VDebugInfoNodeMember final : public VDebugInfoNamedNode {
public:
    VDebugInfoNodeMember(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                         VDebugInfoNode* parent, VNodeText name)
        : VDebugInfoNamedNode(DW_TAG_member, sectionOffset, header, parent, name) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    /// Makes an equal member of another structure.
    VDebugInfoNodeMember& CopyTo(VDebugInfoNode& parent, VNodeArena& arena) const;
    /// Offset in the enclosing object in bytes.
    [[nodiscard]] std::uint32_t GetMemberOffset() const override { return mMemberOffset; }
    void SetMemberOffset(std::uint32_t offset) override { mMemberOffset = offset; }
    /// True if the entry has an offset.
    [[nodiscard]] bool HasMemberOffset() const override { return mHasMemberOffset; }
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-member>"; }

private:
    std::uint32_t mMemberOffset = 0;
    bool mHasMemberOffset = false;
};

/// The link of a class to one of its base classes, which is the node's type.
class VDebugInfoNodeInheritance final : public VDebugInfoNode {
public:
    VDebugInfoNodeInheritance(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                              VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_inheritance, sectionOffset, header, parent) {}

    void InitFromDie(const VDie2& die, VDwarf2Section& section) override;
    /// Offset of the base class in the class in bytes.
    [[nodiscard]] std::uint32_t GetMemberOffset() const override { return mMemberOffset; }
    void SetMemberOffset(std::uint32_t offset) override { mMemberOffset = offset; }
    [[nodiscard]] bool HasMemberOffset() const override { return mHasMemberOffset; }

private:
    std::uint32_t mMemberOffset = 0;
    bool mHasMemberOffset = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
