#include "nodes/VDebugInfoNode.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

std::uint32_t nGlobalLexicalBlockCounter = 0;

VDebugInfoNode::VDebugInfoNode(dwarf_tag tag, std::uint32_t sectionOffset,
                               VCompileUnitHeader* header, VDebugInfoNode* parent)
    : mTag(static_cast<std::uint16_t>(std::min<dwarf_tag>(tag, kWideTag)))
    , mCompileUnitHeader(header)
    , mParent(parent)
    , mOffset(sectionOffset)
    , mNodeRecord(static_cast<std::int32_t>(TakeNodeRecord())) {
    if (parent != nullptr) {
        parent->AddChild(this);
    }
}

std::size_t VDebugInfoNode::GetDepth() const {
    std::size_t depth = 0;
    for (const VDebugInfoNode* parent = mParent; parent != nullptr; parent = parent->mParent) {
        ++depth;
    }
    return depth;
}

void VDebugInfoNode::AddChild(VDebugInfoNode* child) {
    if (VDebugInfoNode* last = mLastChild) {
        child->mNextSibling = last->mNextSibling;
        last->mNextSibling = child;
    } else {
        child->mNextSibling = child;
    }
    mLastChild = child;
}

VDebugInfoNode* VDebugInfoNode::DetachChildren() {
    VDebugInfoNode* first = FirstChild();
    if (first != nullptr) {
        mLastChild->mNextSibling = nullptr;
        mLastChild = nullptr;
    }
    return first;
}

VDebugInfoNode* VDebugInfoNode::TakeNext(VDebugInfoNode*& chain) {
    VDebugInfoNode* node = chain;
    chain = node->mNextSibling;
    node->mNextSibling = nullptr;
    return node;
}

void VDebugInfoNode::CopyFrom(const VDebugInfoNode& other, VNodeArena& arena) {
    mTagRecord = other.mTagRecord;
    mByteSize = other.mByteSize;
    mHasByteSize = other.mHasByteSize;
    mByteSizeFromTypeReference = other.mByteSizeFromTypeReference;
    mIsDeclaration = other.mIsDeclaration;
    mIsExternal = other.mIsExternal;
    mHasNameAttribute = other.mHasNameAttribute;
    mBitFieldFromLocation = other.mBitFieldFromLocation;
    mType = other.mType;
    mIsTypeResolved = other.mIsTypeResolved;
    if (const VNodeExtras* extras = other.GetExtras()) {
        auto* copy = arena.Create<VNodeExtras>(*extras);
        static_cast<VNodeDelivery&>(*copy) = {};
        mExtrasOrDelivery.Set(*copy);
        mHasExtras = true;
    }
}

bool VDebugInfoNode::NormalizeEncoding() {
    if (HasEncoding() && GetEncoding() == DW_ATE_address) {
        GetStorage()->mEncoding = DW_ATE_signed;
        if (!HasByteSize()) {
            mHasByteSize = mCompileUnitHeader->mTargetAddressSize != 0;
        }
    }
    return true;
}

void VDebugInfoNode::ConvertBitOffset() {
    if (GetBitSize() == 0) {
        return;
    }
    bool isAddressSize = false;
    const std::int32_t resolvedSize = GetResolvedByteSize(isAddressSize);
    const auto storageSize =
        static_cast<std::uint32_t>(resolvedSize > 0 ? resolvedSize : mByteSize);
    // In 32 bits: a field that begins before its storage was read with a negative offset.
    const std::uint32_t bitOffset = storageSize * 8 - GetBitOffset() - GetBitSize();
    if (static_cast<std::int32_t>(bitOffset) >= 0) {
        SetBitOffset(bitOffset);
    }
}

void VDebugInfoNode::GetEntryName(std::string_view& out, VDwarf2Section& /*section*/) {
    VDebugInfoNode* node = this;
    for (int link = 0; link < sMaximumChainLength; ++link) {
        if (node->mHasNameAttribute && node->GetNameOrNull() != nullptr) {
            out = node->GetName();
            return;
        }
        VDebugInfoNode* specification = node->GetSpecificationNode();
        if (specification == nullptr) {
            break;
        }
        node->mHasAnonymousName = false;
        if (!specification->mHasNameAttribute) {
            return;
        }
        node = specification;
    }
    const VAttributeString linkageName = node->GetLinkageNameAttribute();
    out = linkageName.mDefined ? linkageName.mValue : node->GetDefaultName();
    node->mHasAnonymousName = !linkageName.mDefined;
}

std::string_view VDebugInfoNode::GetNameOrAnonymous() const {
    const std::string_view name = GetName();
    return !name.empty() ? name : "<anonymous>";
}

const char* VDebugInfoNode::GetNameOrNull() const {
    const char* name = GetNameStart();
    return *name != '\0' ? name : nullptr;
}

const VDebugInfoNode* VDebugInfoNode::FindUnit() const {
    const VDebugInfoNode* node = this;
    for (int link = 0; link < sMaximumChainLength && node != nullptr; ++link) {
        if (node->mTag == DW_TAG_compile_unit) {
            return node;
        }
        node = node->mParent;
    }
    return nullptr;
}

bool VDebugInfoNode::StandsInFunction() const {
    const VDebugInfoNode* scope = mParent;
    for (int link = 0; link < sMaximumChainLength && scope != nullptr; ++link) {
        switch (scope->mTag) {
        case DW_TAG_subprogram:
        case DW_TAG_lexical_block:
        case DW_TAG_inlined_subroutine:
            return true;
        default:
            scope = scope->mParent;
        }
    }
    return scope != nullptr;
}

/// The subprogram or outer block that numbers this one, null if there is none.
VDebugInfoNode* VDebugInfoNode::FindNumberingOwner() const {
    VDebugInfoNode* owner = mParent;
    for (int link = 0; link < sMaximumChainLength && owner != nullptr; ++link) {
        if (owner->mTag == DW_TAG_subprogram) {
            return owner;
        }
        VDebugInfoNode* outer = owner->mParent;
        if (owner->mTag == DW_TAG_lexical_block) {
            return outer != nullptr && outer->mTag == DW_TAG_subprogram ? outer : owner;
        }
        owner = outer;
    }
    return nullptr;
}

void VDebugInfoNode::GetLexicalBlockName(std::string& out) {
    VDebugInfoNode* owner = FindNumberingOwner();
    out = std::to_string(owner != nullptr ? owner->GetNextLexicalBlockNumber()
                                          : nGlobalLexicalBlockCounter++);
}

VAttributeString VDebugInfoNode::GetLinkageNameAttribute() const {
    const VNodeExtras* extras = GetExtras();
    return extras != nullptr && extras->mHasLinkageName
               ? VAttributeString{extras->mLinkageName.Get(mCompileUnitHeader->mDebugStr), true}
               : VAttributeString{};
}

VAttributeValue VDebugInfoNode::GetSpecificationAttribute() const {
    const VNodeExtras* extras = GetExtras();
    if (extras == nullptr) {
        return {};
    }
    return extras->mIsSpecificationResolved
               ? VAttributeValue::Reference(extras->mSpecification.Node()->mOffset)
               : ValueOf(extras->mSpecificationKind, extras->mSpecification.Offset());
}

VAttributeValue VDebugInfoNode::GetAccessibilityAttribute() const {
    const VNodeExtras* extras = GetExtras();
    return extras != nullptr ? ValueOf(extras->mAccessibilityKind, extras->mAccessibility)
                             : VAttributeValue{};
}

void VDebugInfoNode::SetSpecificationNode(VDebugInfoNode& node) {
    if (VNodeExtras* extras = GetExtras()) {
        extras->mSpecification = VNodeReference(node);
        extras->mIsSpecificationResolved = true;
    }
}

void VDebugInfoNode::ClearSpecification() {
    if (VNodeExtras* extras = GetExtras()) {
        extras->mSpecification = {};
        extras->mSpecificationKind = VAttributeKind::Undefined;
        extras->mIsSpecificationResolved = false;
    }
}

bool VDebugInfoNode::LacksSpecification() const {
    const VNodeExtras* extras = GetExtras();
    return extras != nullptr && !extras->mIsSpecificationResolved &&
           GetSpecificationAttribute().IsReference() && extras->mSpecification.Offset() != 0;
}

bool VDebugInfoNode::IsInstance() const {
    const VNodeExtras* extras = GetExtras();
    return extras != nullptr && extras->mIsSpecificationOrigin;
}

VDebugInfoNode* VDebugInfoNode::GetAbstractOriginNode() const {
    return IsInstance() ? GetSpecificationNode() : nullptr;
}

void VDebugInfoNode::ClearType() {
    mType = {};
    mIsTypeResolved = false;
}

VDebugInfoNode* VDebugInfoNode::GetDeclarationResolved() const {
    const VTypeGroupLinks* links = GetTypeGroupLinks();
    return links != nullptr ? links->mDeclarationResolved.Get() : nullptr;
}

void VDebugInfoNode::SetDeclarationResolved(VDebugInfoNode* definition) {
    if (VTypeGroupLinks* links = GetTypeGroupLinks()) {
        links->mDeclarationResolved = definition;
        mIsDeclarationResolved = definition != nullptr;
    }
}

VDebugInfoNode* VDebugInfoNode::GetCanonicalTypeNode() const {
    const VTypeGroupLinks* links = GetTypeGroupLinks();
    return links != nullptr ? links->mCanonicalTypeNode.Get() : nullptr;
}

void VDebugInfoNode::SetCanonicalTypeNode(VDebugInfoNode* node) {
    if (VTypeGroupLinks* links = GetTypeGroupLinks()) {
        links->mCanonicalTypeNode = node;
    }
}

std::uint32_t VDebugInfoNode::GetEncoding() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr ? storage->mEncoding : 0;
}

bool VDebugInfoNode::HasEncoding() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr && storage->mHasEncoding;
}

std::uint32_t VDebugInfoNode::GetBitOffset() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr ? storage->mBitOffset : 0;
}

std::uint32_t VDebugInfoNode::GetBitSize() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr ? storage->mBitSize : 0;
}

BitNumbering VDebugInfoNode::GetBitNumbering() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr ? storage->mBitNumbering : BitNumbering::Unsaid;
}

bool VDebugInfoNode::HasOtherByteOrder() const {
    const VNodeStorage* storage = GetStorage();
    return storage != nullptr && storage->mHasOtherByteOrder;
}

void VDebugInfoNode::SetBitOffset(std::uint32_t bitOffset) {
    if (VNodeStorage* storage = GetStorage()) {
        storage->mBitOffset = bitOffset;
    }
}

void VDebugInfoNode::SetBitSize(std::uint32_t bitSize) {
    if (VNodeStorage* storage = GetStorage()) {
        storage->mBitSize = bitSize;
    }
}

void VDebugInfoNode::SetByteSize(std::int32_t byteSize) {
    mByteSize = byteSize;
    mHasByteSize = true;
    mByteSizeFromTypeReference = true;
}

bool VDebugInfoNode::IsTypedefOfSameName() const {
    const VDebugInfoNode* type = GetTypeNode();
    return type != nullptr && type->mHasNameAttribute && type->GetName() == GetName();
}

VDebugInfoNode* VDebugInfoNode::FindScopeNode() const {
    const VDebugInfoNode* node = this;
    for (int link = 0; link < sMaximumChainLength; ++link) {
        const VDebugInfoNode* specification = node->GetSpecificationNode();
        VDebugInfoNode* scope = specification != nullptr ? specification->mParent : node->mParent;
        if (scope == nullptr || scope->IsEntryScope()) {
            return scope;
        }
        node = scope;
    }
    return nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
