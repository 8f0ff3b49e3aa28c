// Pointers, references and function types: types without a name of their own.
#pragma once

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A pointer. Without a size of its own it has the size of an address.
class VDebugInfoNodePointerType final : public VDebugInfoNode {
public:
    VDebugInfoNodePointerType(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                              VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_pointer_type, sectionOffset, header, parent) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-pointer-type>"; }

protected:
    SizeSource PrepareByteSize(const VDieNodes& nodes) override;
};

/// A reference. Without a size of its own it has the size of an address.
class VDebugInfoNodeReferenceType final : public VDebugInfoNode {
public:
    VDebugInfoNodeReferenceType(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                                VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_reference_type, sectionOffset, header, parent) {}
    [[nodiscard]] const char* GetDefaultName() const override { return "<unnamed-reference-type>"; }

protected:
    SizeSource PrepareByteSize(const VDieNodes& nodes) override;
};

/// A function type; its parameters are children.
class VDebugInfoSubroutineType final : public VDebugInfoNode {
public:
    VDebugInfoSubroutineType(std::uint32_t sectionOffset, VCompileUnitHeader* header,
                             VDebugInfoNode* parent)
        : VDebugInfoNode(DW_TAG_subroutine_type, sectionOffset, header, parent) {}
    [[nodiscard]] const char* GetDefaultName() const override {
        return "<unnamed-subroutine-type>";
    }
    bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs, ObjectId& id,
                           bool& alreadyRegistered) override;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
