// How nodes turn references into links and find their sizes: the operations of `VDebugInfoNode` and
// its family that the resolution passes call node by node. Chains of any length are followed
// without recursion.
#include "nodes/VDebugInfoNode.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "nodes/VDebugInfoNodeDerivedTypes.h"
#include "nodes/VReferenceFinder.h"

#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Calls that may nest before a chain is followed in a list instead.
constexpr int sMaximumNesting = 100;

/// Typedefs and qualifiers of one type that are looked through in one step.
constexpr int sMaximumOtherNames = 32;

bool IsPointerOrReference(const VDebugInfoNode& node) {
    return node.GetTag() == DW_TAG_pointer_type || node.GetTag() == DW_TAG_reference_type;
}

/// True for entries that never have a size of their own.
bool IsWithoutSize(dwarf_tag tag) {
    switch (tag) {
    case 0:
    case DW_TAG_imported_declaration:
    case DW_TAG_label:
    case DW_TAG_lexical_block:
    case DW_TAG_compile_unit:
    case DW_TAG_unspecified_parameters:
    case DW_TAG_common_block:
    case DW_TAG_common_inclusion:
    case DW_TAG_inlined_subroutine:
    case DW_TAG_with_stmt:
    case DW_TAG_access_declaration:
    case DW_TAG_catch_block:
    case DW_TAG_enumerator:
    case DW_TAG_file_type:
    case DW_TAG_friend:
    case DW_TAG_namelist:
    case DW_TAG_namelist_item:
    case DW_TAG_subprogram:
    case DW_TAG_try_block:
    case DW_TAG_namespace:
    case DW_TAG_imported_module:
    case DW_TAG_partial_unit:
    case DW_TAG_imported_unit:
    case DW_TAG_condition:
    case DW_TAG_MIPS_loop:
    case DW_TAG_format_label:
        return true;
    default:
        return false;
    }
}

/// The node that a reference leads to, null for other values.
VDebugInfoNode* FindReferred(const VAttributeValue& value, VReferenceFinder& references) {
    return value.IsDefined() && value.IsReference() && value.mValue != 0
               ? references.Find(static_cast<std::uint32_t>(value.mValue))
               : nullptr;
}

/// The node of a bound. Skipped entries don't count: none of them has a static place.
VDebugInfoNode* FindBound(const VAttributeValue& value, VReferenceFinder& references) {
    return value.IsDefined() && value.IsReference() && value.mValue != 0
               ? references.FindIfThere(static_cast<std::uint32_t>(value.mValue))
               : nullptr;
}

} // namespace

NodeTask VDebugInfoNode::GetTasks() const {
    const bool hasName = mHasNameAttribute || mTag == DW_TAG_compile_unit;
    const bool hasReferences = mIsTypeResolved || mType.Offset() != 0 ||
                               mTag == DW_TAG_subrange_type ||
                               GetSpecificationAttribute().IsReference();
    const bool hasSize = (!mHasByteSize && !IsWithoutSize(mTag)) || GetStorage() != nullptr ||
                         mTag == DW_TAG_array_type;
    return (hasName ? NodeTask::Name : NodeTask::None) |
           (hasReferences ? NodeTask::References : NodeTask::None) |
           (hasSize ? NodeTask::Size : NodeTask::None);
}

bool VDebugInfoNode::DependsOnSizesBefore() const {
    if (!mHasExtras || mByteSize > 0 || GetBitSize() == 0) {
        return false;
    }
    const VDebugInfoNode* type = GetTypeNode();
    if (type == nullptr) {
        return false;
    }
    if (HasByteSize() || IsWithoutSize(mTag)) {
        return true;
    }
    for (int link = 0; link < sMaximumNesting; ++link) {
        if (IsPointerOrReference(*type)) {
            return false;
        }
        const VDebugInfoNode* next = type->GetTypeNode();
        if (next == nullptr) {
            return false;
        }
        if (type->HasByteSize()) {
            return type->mByteSize <= 0;
        }
        if (type->mTag == DW_TAG_array_type || IsWithoutSize(type->mTag)) {
            return true;
        }
        type = next;
    }
    return true;
}

void VDebugInfoNode::ResolveReferences(VReferenceFinder& references) {
    if (!mIsTypeResolved && mType.Offset() != 0) {
        if (VDebugInfoNode* type = references.Find(mType.Offset())) {
            SetTypeNode(*type);
        }
        if (mIsTypeResolved && mType.Node() == this) {
            ClearType();
        }
    }
    if (mHasExtras) {
        VDebugInfoNode* specification = FindReferred(GetSpecificationAttribute(), references);
        if (specification == this) {
            ClearSpecification();
        } else if (specification != nullptr) {
            SetSpecificationNode(*specification);
        }
    }
}

void VDebugInfoNodeSubrange::ResolveReferences(VReferenceFinder& references) {
    VDebugInfoNode::ResolveReferences(references);
    mLowerBoundNode = FindBound(mLowerBound, references);
    mUpperBoundNode = FindBound(mUpperBound, references);
    mCountNode = FindBound(mCount, references);
}

bool VDebugInfoNode::ResolveSizes(const VDieNodes& nodes, VDwarf2Section& /*section*/) {
    ResolveByteSize(nodes);
    ConvertBitOffset();
    return NormalizeEncoding();
}

bool VDebugInfoNodeArray::ResolveSizes(const VDieNodes& nodes, VDwarf2Section& section) {
    VDebugInfoNode::ResolveSizes(nodes, section);
    ResolveArrayDimensions(nodes);
    return true;
}

bool VDebugInfoNode::ResolveByteSize(const VDieNodes& nodes) {
    SettleByteSize(nodes, 0);
    return true;
}

void VDebugInfoNode::SettleByteSize(const VDieNodes& nodes, int nesting) {
    if (nesting == sMaximumNesting) {
        SettleByteSizeOfChain(nodes);
        return;
    }
    if (PrepareByteSize(nodes) != SizeSource::Type) {
        return;
    }
    VDebugInfoNode* type = GetTypeNode();
    if (!type->HasByteSize()) {
        type->SettleByteSize(nodes, nesting + 1);
    }
    TakeByteSizeOfType(*type);
}

void VDebugInfoNode::SettleByteSizeOfChain(const VDieNodes& nodes) {
    std::vector<VDebugInfoNode*> chain;
    for (VDebugInfoNode* node = this;
         !node->HasByteSize() && node->PrepareByteSize(nodes) == SizeSource::Type;
         node = node->GetTypeNode()) {
        chain.push_back(node);
        if (chain.size() > nodes.Size()) {
            break;
        }
    }
    for (; !chain.empty(); chain.pop_back()) {
        chain.back()->TakeByteSizeOfType(*chain.back()->GetTypeNode());
    }
}

VDebugInfoNode::SizeSource VDebugInfoNode::PrepareByteSize(const VDieNodes& /*nodes*/) {
    if (HasByteSize()) {
        return SizeSource::Known;
    }
    const VDebugInfoNode* type = GetTypeNode();
    return type == nullptr || type == this || IsWithoutSize(mTag) ? SizeSource::None
                                                                  : SizeSource::Type;
}

void VDebugInfoNode::TakeByteSizeOfType(const VDebugInfoNode& type) {
    SetByteSize(type.GetByteSize());
}

VDebugInfoNode::SizeSource VDebugInfoNodePointerType::PrepareByteSize(const VDieNodes& /*nodes*/) {
    if (!HasByteSize()) {
        SetByteSize(GetCompileUnitHeader()->mTargetAddressSize);
    }
    return SizeSource::Known;
}

VDebugInfoNode::SizeSource
VDebugInfoNodeReferenceType::PrepareByteSize(const VDieNodes& /*nodes*/) {
    if (!HasByteSize()) {
        SetByteSize(GetCompileUnitHeader()->mTargetAddressSize);
    }
    return SizeSource::Known;
}

VDebugInfoNode::SizeSource VDebugInfoNodeArray::PrepareByteSize(const VDieNodes& nodes) {
    if (HasByteSize()) {
        return SizeSource::Known;
    }
    ResolveArrayDimensions(nodes);
    const VDebugInfoNode* type = GetTypeNode();
    if (type == nullptr || type == this) {
        SetByteSize(0);
        return SizeSource::Known;
    }
    return SizeSource::Type;
}

void VDebugInfoNodeArray::TakeByteSizeOfType(const VDebugInfoNode& type) {
    if (mHasStrides && !mHasUnknownDimensions) {
        const Extent extent = ExtentOf(type.GetByteSize());
        mHasUnknownDimensions = !extent.isDense && HasElementsOfIndexWithGaps();
        SetByteSize(mHasUnknownDimensions ? 0 : static_cast<std::int32_t>((extent.bits + 7) / 8));
        return;
    }
    SetByteSize(static_cast<std::int32_t>(static_cast<std::uint32_t>(type.GetByteSize()) *
                                          GetTotalElementCount()));
}

std::int32_t VDebugInfoNode::GetResolvedByteSize(bool& isAddressSize) const {
    const VDebugInfoNode* node = this;
    for (int link = 0; link < sMaximumChainLength; ++link) {
        if (node->mByteSize > 0) {
            return node->mByteSize;
        }
        const VDebugInfoNode* type = node->GetTypeNode();
        if (type == nullptr) {
            return 0;
        }
        if (IsPointerOrReference(*type)) {
            isAddressSize = true;
            return node->mCompileUnitHeader->mTargetAddressSize;
        }
        node = type;
    }
    return 0;
}

VDebugInfoNode* VDebugInfoNode::GetBaseTypeNode() {
    std::vector<VDebugInfoNode*> open{this};
    for (int visit = 0; visit < sMaximumChainLength && !open.empty(); ++visit) {
        VDebugInfoNode* node = open.back();
        open.pop_back();
        if (node->mTag == DW_TAG_base_type) {
            return node;
        }
        // The type is visited first, hence pushed last.
        for (VDebugInfoNode* next : {node->GetSpecificationNode(), node->GetTypeNode()}) {
            if (next != nullptr && !IsPointerOrReference(*next)) {
                open.push_back(next);
            }
        }
    }
    return nullptr;
}

VDebugInfoNode* VDebugInfoNode::GetPlainTypeNode() const {
    VDebugInfoNode* type = GetTypeNode();
    for (int link = 0; link < sMaximumOtherNames && type != nullptr; ++link) {
        if (!IsOtherNameOfType(type->GetTag())) {
            return type;
        }
        type = type->GetTypeNode();
    }
    return nullptr;
}

VDebugInfoNode* VDebugInfoNode::FindStructuredTypeNode() {
    VDebugInfoNode* node = this;
    for (int link = 0; link < sMaximumChainLength && !IsAggregate(node->GetTag()); ++link) {
        VDebugInfoNode* next = node->GetTypeOrSpecificationNode();
        if (next == nullptr) {
            break;
        }
        node = next;
    }
    return node;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
