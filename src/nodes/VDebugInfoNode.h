// The in-memory form of one debug entry (DIE): the base class of all nodes. Every stage after the
// decoding of entries works through its operations. It has each field that any entry can fill, so
// that nobody needs to know the class of a node. Nodes live in the arena of their tree and own
// nothing.
#pragma once

#include "dwarf/codes/DwarfConstants.h"
#include "dwarf/codes/VAttributeValue.h"
#include "host/ObjectId.h"
#include "nodes/VCompileUnitHeader.h"
#include "nodes/VExtrasOrDelivery.h"
#include "nodes/VNodeArena.h"
#include "nodes/VNodeReference.h"
#include "nodes/VNodeText.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VCLIFactoryWrapper;
class VDebugInfoNodeArray;
class VDie2;
class VDieNodes;
class VDwarf2Section;
class ReferenceCycles;
class VNodeEmission;
class VReferenceFinder;
enum class BasicType : std::int32_t;
enum class NodeTask : std::uint8_t;
struct EmissionInputs;

using DataModel::ObjectId;

/// Numbers the scopes of lexical blocks outside any subprogram. Continues over all reads.
extern std::uint32_t nGlobalLexicalBlockCounter;

/// Most links of a chain of types, specifications or scopes that queries without an exact end
/// follow; only damaged files have longer chains.
constexpr int sMaximumChainLength = 1000;

/// The origin of a bit offset, as the entry gives it.
enum class BitNumbering : std::uint8_t {
    /// There is no bit offset.
    Unsaid,
    /// The high-order bit of the storage.
    Storage,
    /// The first bit of the structure, in the order of the target's memory.
    Structure,
};

/// How the value of a node lies in its storage; only for bit fields and scalar types.
struct VNodeStorage {
    std::uint32_t mBitOffset = 0;
    std::uint32_t mBitSize = 0;
    std::uint32_t mEncoding = 0;
    bool mHasEncoding = false;
    bool mHasOtherByteOrder = false;
    BitNumbering mBitNumbering = BitNumbering::Unsaid;
};

/// Attributes that few nodes have, and the delivery of such a node.
struct VNodeExtras : VNodeDelivery {
    bool mHasLinkageName = false;
    bool mIsSpecificationResolved = false;
    bool mIsSpecificationOrigin = false;
    VAttributeKind mSpecificationKind = VAttributeKind::Undefined;
    VAttributeKind mAccessibilityKind = VAttributeKind::Undefined;
    VNodeText mLinkageName;
    /// Value of the specification attribute; once its entry is found, the entry itself.
    VNodeReference mSpecification;
    std::uint32_t mAccessibility = 0;
    VNodeLink<VNodeStorage> mStorage;
};

/// What the grouping of types of one name has found for a node.
struct VTypeGroupLinks {
    VNodeLink<class VDebugInfoNode> mDeclarationResolved;
    VNodeLink<class VDebugInfoNode> mCanonicalTypeNode;
};

/// One debug entry.
///
/// A node is a child of its parent from construction on. Links to other nodes are non-owning, and
/// null if the reference did not resolve. An operation that a class of the family replaces is
/// virtual; the base version of such a query returns 0, false, null or an empty value.
class VDebugInfoNode {
public:
    /// Appends the node to the children of the parent, if there is one.
    VDebugInfoNode(dwarf_tag tag, std::uint32_t sectionOffset, VCompileUnitHeader* header,
                   VDebugInfoNode* parent);
    VDebugInfoNode(const VDebugInfoNode&) = delete;
    VDebugInfoNode& operator=(const VDebugInfoNode&) = delete;
    VDebugInfoNode(VDebugInfoNode&&) = delete;
    VDebugInfoNode& operator=(VDebugInfoNode&&) = delete;
    virtual ~VDebugInfoNode() = default;

    /// @name Identity
    /// @{

    [[nodiscard]] dwarf_tag GetTag() const { return mTag != kWideTag ? mTag : GetWideTag(); }
    /// Section offset of the entry.
    [[nodiscard]] std::uint32_t GetOffset() const { return mOffset; }
    [[nodiscard]] VCompileUnitHeader* GetCompileUnitHeader() const { return mCompileUnitHeader; }
    /// True for a bit field that doesn't give the size of its storage, but counts from its
    /// high-order bit.
    [[nodiscard]] bool IsBitFieldWithoutSize() const {
        return mHasExtras && mByteSize <= 0 && GetBitSize() != 0 &&
               GetBitNumbering() != BitNumbering::Structure;
    }
    /// True for a bit field whose own type may not settle its size. Its place then depends on
    /// whether entries before it, even skipped ones, have settled the sizes of the types that this
    /// type leads to. Call it before any size is settled.
    [[nodiscard]] bool DependsOnSizesBefore() const;
    /// What the passes have to do at the node, as far as its attributes show.
    [[nodiscard]] NodeTask GetTasks() const;
    /// Running number of the entry when it was decoded; -1 until `InitFromDie`.
    [[nodiscard]] std::int32_t GetTagRecord() const { return mTagRecord; }
    /// Running number of the entry in the process, counting entries with nodes and skipped ones.
    [[nodiscard]] std::int32_t GetNodeRecord() const { return mNodeRecord; }
    /// Takes the number of an entry that gets no node now.
    static std::uint32_t TakeNodeRecord() { return sNextNodeRecord++; }
    [[nodiscard]] static std::uint32_t NextNodeRecord() { return sNextNodeRecord; }
    /// Sets the number of the next node.
    /// @return the number that it would have had
    static std::uint32_t SetNextNodeRecord(std::uint32_t number) {
        return std::exchange(sNextNodeRecord, number);
    }

    /// @}
    /// @name Tree
    /// @{

    [[nodiscard]] VDebugInfoNode* GetParent() const { return mParent; }
    /// The unit that the entry lies in or is; null if it has none, as in damaged files.
    [[nodiscard]] const VDebugInfoNode* FindUnit() const;
    /// True in the code of a function, blocks and inlined functions included; also if the scopes
    /// around the entry have no end, as those of a damaged file may.
    [[nodiscard]] bool StandsInFunction() const;
    void SetParent(VDebugInfoNode* parent) { mParent = parent; }
    /// Number of parents up to the root.
    [[nodiscard]] std::size_t GetDepth() const;

    /// The children of a node, in order.
    class ChildRange;
    [[nodiscard]] ChildRange Children() const;
    [[nodiscard]] VDebugInfoNode* FirstChild() const;
    /// The next child of `parent` after this one, null after the last.
    [[nodiscard]] VDebugInfoNode* NextSiblingIn(const VDebugInfoNode& parent) const;
    /// Appends a node that is in no list of children, without touching its parent.
    void AddChild(VDebugInfoNode* child);
    /// Takes out all children and returns them as a chain for `TakeNext`.
    VDebugInfoNode* DetachChildren();
    /// Cuts the first node off a detached chain; `chain` becomes the rest, null at its end.
    static VDebugInfoNode* TakeNext(VDebugInfoNode*& chain);

    /// @}
    /// @name Filling and resolving
    /// Implemented in dwarf/NodeInitialization and nodes/NodeResolution.
    /// @{

    /// Takes the attributes of the decoded entry. Runs once, right after construction.
    virtual void InitFromDie(const VDie2& die, VDwarf2Section& section);
    /// Turns offsets into links. A reference to the node itself is cut.
    virtual void ResolveReferences(VReferenceFinder& references);
    /// Finds the byte size of a node without one, from its type if it has one. Always true.
    bool ResolveByteSize(const VDieNodes& nodes);
    /// Cuts the links of the node if a chain of types or specifications leads back to it.
    /// @return true if a link was cut
    bool BreakReferenceCycles(ReferenceCycles& cycles);
    /// Turns address encodings into signed ones. Always true.
    bool NormalizeEncoding();
    /// Brings byte size, bit offset and encoding to their final form. Always true.
    virtual bool ResolveSizes(const VDieNodes& nodes, VDwarf2Section& section);
    /// Converts the bit offset, which counts from the most significant bit of the storage, to count
    /// from the least significant bit.
    void ConvertBitOffset();

    /// @}
    /// @name Names
    /// @{

    [[nodiscard]] std::string_view GetName() const { return GetNameStart(); }
    /// The name's text, terminated.
    [[nodiscard]] const char* GetNameStart() const {
        const VCompileUnitHeader* header = mCompileUnitHeader;
        return mName.Get(header != nullptr ? header->mDebugStr : nullptr);
    }
    [[nodiscard]] VNodeText GetNameText() const { return mName; }
    void SetName(VNodeText text) { mName = text; }
    [[nodiscard]] bool HasNameAttribute() const { return mHasNameAttribute; }
    /// True if the name given to the host was made by the reader.
    [[nodiscard]] bool HasAnonymousName() const { return mHasAnonymousName; }
    void SetAnonymousName(bool isAnonymous) { mHasAnonymousName = isAnonymous; }
    /// The name for the host. `out` doesn't change if the specification should have the name and
    /// doesn't.
    void GetEntryName(std::string_view& out, VDwarf2Section& section);
    [[nodiscard]] virtual const char* GetDefaultName() const { return "<unnamed-entry>"; }
    /// The name, or "<anonymous>" if there is none.
    [[nodiscard]] std::string_view GetNameOrAnonymous() const;
    /// The name's text, or null if there is none.
    [[nodiscard]] const char* GetNameOrNull() const;
    /// Makes a name with the next number of a lexical block's owner.
    void GetLexicalBlockName(std::string& out);
    virtual std::uint32_t GetNextLexicalBlockNumber() { return 0; }
    [[nodiscard]] VAttributeString GetLinkageNameAttribute() const;

    /// @}
    /// @name Links
    /// @{

    /// Section offset in the type attribute, 0 if there is none.
    [[nodiscard]] std::uint32_t GetTypeReferenceOffset() const {
        return mIsTypeResolved ? mType.Node()->GetOffset() : mType.Offset();
    }
    /// The type; instead of a resolved declaration, its definition.
    [[nodiscard]] VDebugInfoNode* GetTypeNode() const;
    /// Makes the type reference lead to this node.
    void SetTypeNode(VDebugInfoNode& node) {
        mType = VNodeReference(node);
        mIsTypeResolved = true;
    }
    [[nodiscard]] VAttributeValue GetSpecificationAttribute() const;
    /// The entry that this one completes; instead of a resolved declaration, its definition.
    [[nodiscard]] VDebugInfoNode* GetSpecificationNode() const;
    /// The type, or the specification of a node without a type; null if it has neither.
    [[nodiscard]] VDebugInfoNode* GetTypeOrSpecificationNode() const;
    /// Makes the specification reference lead to this node. Only for nodes with a specification
    /// attribute; others don't keep the link.
    void SetSpecificationNode(VDebugInfoNode& node);
    /// Cuts the link to the specification, and the reference with it.
    void ClearSpecification();
    /// True for an entry that refers to one that it completes, but has no link to it.
    [[nodiscard]] bool LacksSpecification() const;
    /// True if the specification is an abstract origin, whether or not it is found.
    [[nodiscard]] bool IsInstance() const;
    /// The entry that this one is an instance of: the specification, if it is an abstract origin.
    [[nodiscard]] VDebugInfoNode* GetAbstractOriginNode() const;
    /// Cuts the link to the type, and the reference with it.
    void ClearType();
    /// For a declaration: the definition that stands in for it.
    [[nodiscard]] VDebugInfoNode* GetDeclarationResolved() const;
    /// Only for class, structure, union and typedef nodes; others don't keep the link.
    void SetDeclarationResolved(VDebugInfoNode* definition);
    /// The node that represents all types of this name.
    [[nodiscard]] VDebugInfoNode* GetCanonicalTypeNode() const;
    /// Only for class, structure, union and typedef nodes; others don't keep the link.
    void SetCanonicalTypeNode(VDebugInfoNode* node);
    /// The base type at the end of the type chain, or null. Pointers and references end the chain.
    [[nodiscard]] VDebugInfoNode* GetBaseTypeNode();
    /// The class, structure or union at the end of the type chain, or the chain's last node.
    [[nodiscard]] VDebugInfoNode* FindStructuredTypeNode();
    /// The type without typedefs and qualifiers, null if there is none or the chain is too long.
    [[nodiscard]] VDebugInfoNode* GetPlainTypeNode() const;
    /// True if the type has a name attribute with the name of this node.
    [[nodiscard]] bool IsTypedefOfSameName() const;
    virtual VDebugInfoNodeArray* AsArrayNode() { return nullptr; }
    [[nodiscard]] virtual VDebugInfoNode* GetFirstKindOfCompileUnit() const { return nullptr; }
    virtual void SetFirstKindOfCompileUnit(VDebugInfoNode* /*node*/) {}
    /// Records that another unit imports this one.
    virtual void SetImported() {}
    virtual void AddInheritance(VDebugInfoNode* /*node*/) {}

    /// @}
    /// @name Sizes and encoding
    /// What takes more than a line is implemented in nodes/NodeResolution.
    /// @{

    [[nodiscard]] std::int32_t GetByteSize() const { return mByteSize; }
    void SetByteSize(std::int32_t byteSize);
    [[nodiscard]] virtual bool HasByteSize() const { return mHasByteSize; }
    [[nodiscard]] bool IsByteSizeFromTypeReference() const { return mByteSizeFromTypeReference; }
    /// The own size if it is positive, else the size of the type.
    /// @param isAddressSize set if the size is that of an address; else unchanged
    [[nodiscard]] std::int32_t GetResolvedByteSize(bool& isAddressSize) const;
    [[nodiscard]] std::uint32_t GetEncoding() const;
    [[nodiscard]] bool HasEncoding() const;
    /// Base type code of the encoding.
    [[nodiscard]] BasicType ConvertBaseTypeForSymbolProvider() const;
    [[nodiscard]] std::uint32_t GetBitOffset() const;
    [[nodiscard]] std::uint32_t GetBitSize() const;
    [[nodiscard]] BitNumbering GetBitNumbering() const;
    /// True for a type whose bytes are in the order opposite to the target's.
    [[nodiscard]] bool HasOtherByteOrder() const;
    /// Only for nodes with extras; others don't keep the value.
    void SetBitOffset(std::uint32_t bitOffset);
    void SetBitSize(std::uint32_t bitSize);
    [[nodiscard]] bool IsBitFieldFromLocation() const { return mBitFieldFromLocation; }
    /// The dimensions as text; one blank for a node that is no array.
    [[nodiscard]] virtual std::string GetArrayDimensionText() const { return " "; }

    /// @}
    /// @name Properties
    /// @{

    [[nodiscard]] bool IsDeclaration() const { return mIsDeclaration; }
    [[nodiscard]] bool IsExternal() const { return mIsExternal; }
    void SetExternal() { mIsExternal = true; }
    [[nodiscard]] bool HasTemplateParameters() const { return mHasTemplateParameters; }
    void SetHasTemplateParameters(bool hasThem) { mHasTemplateParameters = hasThem; }
    [[nodiscard]] VAttributeValue GetAccessibilityAttribute() const;
    /// The value for nodes without such an attribute.
    static constexpr VAttributeValue sEmptyAttributeValue{};
    [[nodiscard]] virtual VAttributeValue GetConstValueAttribute() const {
        return sEmptyAttributeValue;
    }
    [[nodiscard]] virtual VAttributeString GetCompUnitDirAttribute() const { return {}; }
    /// The name of a unit with its folders.
    [[nodiscard]] virtual VAttributeString GetUnitPath() const { return {}; }
    [[nodiscard]] virtual VAttributeString GetProducer() const { return {}; }

    /// @}
    /// @name Locations
    /// @{

    [[nodiscard]] virtual bool IsGlobalVariable() const { return false; }
    [[nodiscard]] virtual std::uint64_t GetLocationAddress() const { return 0; }
    virtual void SetLocationAddress(std::uint64_t /*address*/) {}
    virtual void SetLocationFromSymbolTable(std::uint64_t /*address*/) {}
    [[nodiscard]] virtual bool HasLocation() const { return false; }
    [[nodiscard]] virtual bool IsRegisterOrStackLocation() const { return false; }
    [[nodiscard]] virtual bool IsAddressFromSymbolTable() const { return false; }
    /// True if the location counts from an address that linkers write for what they discarded.
    [[nodiscard]] virtual bool IsFromTombstone() const { return false; }
    /// True if the location computes the value; then memory doesn't hold it as such.
    [[nodiscard]] virtual bool IsComputed() const { return false; }
    /// True if an address of 0 is known to be correct.
    [[nodiscard]] virtual bool IsAddressConfirmed() const { return false; }
    virtual void ConfirmAddress() {}
    /// The variable has no place in the image.
    virtual void DiscardLocation() {}
    [[nodiscard]] virtual bool IsRedundantDeclaration() const { return false; }
    virtual void SetRedundantDeclaration(bool /*isRedundant*/) {}
    [[nodiscard]] virtual std::uint32_t GetMemberOffset() const { return 0; }
    virtual void SetMemberOffset(std::uint32_t /*offset*/) {}
    [[nodiscard]] virtual bool HasMemberOffset() const { return false; }

    /// @}
    /// @name Delivery
    /// Implemented in emit/EntryObjects.
    /// @{

    /// The host's object of this node, 0 until it is delivered.
    [[nodiscard]] ObjectId GetEntryObject() const { return mExtrasOrDelivery.Object(); }
    /// @param arena the arena of the tree, as for the other setters
    void SetEntryObject(ObjectId object, VNodeArena& arena) {
        mExtrasOrDelivery.SetObject(object, arena);
    }
    /// True if this node is the scope of its children's objects.
    [[nodiscard]] virtual bool IsEntryScope() const { return false; }
    /// The node that is the scope of this one's object, null for the global namespace.
    [[nodiscard]] VDebugInfoNode* FindScopeNode() const;
    /// The node's object, delivered now if it wasn't yet; 0 if the node delivers none.
    ObjectId GetOrCreateEntryObject(VDwarf2Section& section, VCLIFactoryWrapper& factory,
                                    const char* label);
    /// Makes the object from the delivery's inputs: the guard against re-entry, the name and the
    /// factory call.
    /// @param id the object, if the result is true
    /// @param alreadyRegistered true if the object belongs to another node
    virtual bool CreateEntryObject(VNodeEmission& emission, const EmissionInputs& inputs,
                                   ObjectId& id, bool& alreadyRegistered);
    /// Index of the node's innermost delivery in progress, 0 if there is none. Once the node has
    /// its object, the index may be 0 although the delivery goes on.
    [[nodiscard]] std::uint32_t GetEmissionFrame() const { return mExtrasOrDelivery.Frame(); }
    void SetEmissionFrame(std::uint32_t frame) { mExtrasOrDelivery.SetFrame(frame); }

    /// True if the host returned no object or has it from another node; it isn't asked again.
    [[nodiscard]] bool IsDeliveryRefused() const {
        const VNodeDelivery* delivery = mExtrasOrDelivery.Get();
        return delivery != nullptr && delivery->mIsRefused;
    }
    void SetDeliveryRefused(VNodeArena& arena) {
        mExtrasOrDelivery.InArena(arena).mIsRefused = true;
    }
    /// True for a variable that the host already has from another node.
    [[nodiscard]] bool IsDropped() const {
        const VNodeDelivery* delivery = mExtrasOrDelivery.Get();
        return delivery != nullptr && delivery->mIsDropped;
    }
    void SetDropped(VNodeArena& arena) { mExtrasOrDelivery.InArena(arena).mIsDropped = true; }

    /// @}
    /// @name Dump for a person
    /// Implemented in nodes/NodeDump.
    /// @{

    /// Writes everything about the node, in the form of the dump of a tree.
    /// @param count position in the dump, from 1
    void DumpWithHead(std::ostream& stream, int count) const;
    /// Writes the lines with what is known about the node, each after the indent.
    virtual void Dump(std::ostream& stream, const std::string& indent) const;
    /// Writes the node in one line without line end.
    virtual void DumpSummary(std::ostream& stream) const;

    /// @}
    /// @name Marks of the search for reference cycles
    /// The search itself is in emit/ReferenceCycles.
    /// @{

    /// How far the search has followed the chain that begins here.
    enum class WalkState : std::uint8_t { Unseen, Walking, Safe, OnCycle };

    [[nodiscard]] WalkState GetTypeWalkState() const { return mTypeWalkState; }
    void SetTypeWalkState(WalkState state) { mTypeWalkState = state; }
    [[nodiscard]] WalkState GetSpecificationWalkState() const { return mSpecificationWalkState; }
    void SetSpecificationWalkState(WalkState state) { mSpecificationWalkState = state; }

    /// @}

protected:
    /// Copies the contents of another node of the same class, except its delivery.
    void CopyFrom(const VDebugInfoNode& other, VNodeArena& arena);

    /// Initial state of a node without a size: asks for the size of its type.
    enum class SizeSource { Known, Type, None };

    /// Where `ResolveByteSize` takes a missing size from; a source other than the type is used
    /// immediately.
    virtual SizeSource PrepareByteSize(const VDieNodes& nodes);
    /// Takes the size of the type, which is settled already.
    virtual void TakeByteSizeOfType(const VDebugInfoNode& type);

    /// From this tag on, tags are kept by nodes of `VDebugInfoNodeOfWideTag`.
    static constexpr std::uint16_t kWideTag = 0xFFFF;
    [[nodiscard]] virtual dwarf_tag GetWideTag() const { return kWideTag; }
    /// Null for nodes whose tags aren't grouped.
    virtual VTypeGroupLinks* GetTypeGroupLinks() { return nullptr; }
    [[nodiscard]] virtual const VTypeGroupLinks* GetTypeGroupLinks() const { return nullptr; }
    /// Records a base class.
    void SetHasInheritances() { mHasInheritances = true; }
    [[nodiscard]] bool HasInheritances() const { return mHasInheritances; }

private:
    VNodeExtras& MakeExtras(const VDie2& die, VDwarf2Section& section);
    [[nodiscard]] const VNodeExtras* GetExtras() const {
        return mHasExtras ? static_cast<const VNodeExtras*>(mExtrasOrDelivery.Get()) : nullptr;
    }
    [[nodiscard]] VNodeExtras* GetExtras() {
        return mHasExtras ? static_cast<VNodeExtras*>(mExtrasOrDelivery.Get()) : nullptr;
    }
    [[nodiscard]] VNodeStorage* GetStorage() const {
        const VNodeExtras* extras = GetExtras();
        return extras != nullptr ? extras->mStorage.Get() : nullptr;
    }
    void SettleByteSize(const VDieNodes& nodes, int nesting);
    void SettleByteSizeOfChain(const VDieNodes& nodes);
    [[nodiscard]] VDebugInfoNode* FindNumberingOwner() const;
    static VDebugInfoNode* WithDefinition(VDebugInfoNode* node);

    static inline std::uint32_t sNextNodeRecord = 0;

    // There are millions of nodes: what not all of them need is stored elsewhere, and no byte is
    // unused. Links take 4 bytes, since they are offsets in the arena. The fields that passes read
    // come first, so that they mostly lie in one cache line:
    //
    //      0  virtual table            28  unit header
    //      8  name                     32  parent
    //     12  tag                      36  next sibling (of the last child: the first child)
    //     14  flags, walk states       40  last child, so that appending needs no walk
    //     16  type: offset, then link  44  section offset
    //     20  extras or delivery       48  record of the entry
    //     24  byte size                52  record of the node
    //
    // `mExtrasOrDelivery` leads to what few nodes have. A bit field has `VNodeExtras` there from
    // the start, with its storage and room for its delivery. A variable without specification has
    // nothing there until its delivery begins, and afterwards the number of its object.
    VNodeText mName;
    std::uint16_t mTag;
    bool mIsTypeResolved : 1 = false;
    bool mIsDeclaration : 1 = false;
    bool mIsExternal : 1 = false;
    bool mHasByteSize : 1 = false;
    bool mByteSizeFromTypeReference : 1 = false;
    bool mHasNameAttribute : 1 = false;
    bool mHasAnonymousName : 1 = false;
    bool mHasExtras : 1 = false;
    bool mBitFieldFromLocation : 1 = false;
    bool mHasTemplateParameters : 1 = false;
    bool mIsDeclarationResolved : 1 = false;
    bool mHasInheritances : 1 = false;
    WalkState mTypeWalkState : 2 = WalkState::Unseen;
    WalkState mSpecificationWalkState : 2 = WalkState::Unseen;
    /// Section offset of the type; once it is found, the type itself.
    VNodeReference mType;
    VExtrasOrDelivery mExtrasOrDelivery;
    std::int32_t mByteSize = 0;
    VNodeLink<VCompileUnitHeader> mCompileUnitHeader;
    VNodeLink<VDebugInfoNode> mParent;
    /// The next child of the parent; for the last child, the first.
    VNodeLink<VDebugInfoNode> mNextSibling;
    VNodeLink<VDebugInfoNode> mLastChild;
    std::uint32_t mOffset;
    std::int32_t mTagRecord = -1;
    std::int32_t mNodeRecord;
};
static_assert(sizeof(void*) != 8 || sizeof(VDebugInfoNode) == 56);

/// A view of the children of a node, valid until the list changes.
class VDebugInfoNode::ChildRange {
public:
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = VDebugInfoNode*;
        using difference_type = std::ptrdiff_t;
        using pointer = VDebugInfoNode* const*;
        using reference = VDebugInfoNode*;

        Iterator() = default;
        Iterator(const VDebugInfoNode* parent, VDebugInfoNode* child)
            : mParent(parent)
            , mChild(child) {}

        VDebugInfoNode* operator*() const { return mChild; }
        Iterator& operator++() {
            mChild = mChild->NextSiblingIn(*mParent);
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const Iterator& other) const { return mChild == other.mChild; }

    private:
        const VDebugInfoNode* mParent = nullptr;
        VDebugInfoNode* mChild = nullptr;
    };

    explicit ChildRange(const VDebugInfoNode& parent)
        : mParent(&parent) {}

    [[nodiscard]] Iterator begin() const { return {mParent, mParent->FirstChild()}; }
    [[nodiscard]] Iterator end() const { return {mParent, nullptr}; }

private:
    const VDebugInfoNode* mParent;
};

inline VDebugInfoNode::ChildRange VDebugInfoNode::Children() const {
    return ChildRange(*this);
}

inline VDebugInfoNode* VDebugInfoNode::FirstChild() const {
    const VDebugInfoNode* last = mLastChild;
    return last == nullptr ? nullptr : last->mNextSibling.Get();
}

inline VDebugInfoNode* VDebugInfoNode::NextSiblingIn(const VDebugInfoNode& parent) const {
    return this == parent.mLastChild.Get() ? nullptr : mNextSibling.Get();
}

inline VDebugInfoNode* VDebugInfoNode::WithDefinition(VDebugInfoNode* node) {
    return node != nullptr && node->mIsDeclarationResolved ? node->GetDeclarationResolved() : node;
}

inline VDebugInfoNode* VDebugInfoNode::GetTypeNode() const {
    return mIsTypeResolved ? WithDefinition(mType.Node()) : nullptr;
}

inline VDebugInfoNode* VDebugInfoNode::GetSpecificationNode() const {
    const VNodeExtras* extras = GetExtras();
    return extras != nullptr && extras->mIsSpecificationResolved
               ? WithDefinition(extras->mSpecification.Node())
               : nullptr;
}

inline VDebugInfoNode* VDebugInfoNode::GetTypeOrSpecificationNode() const {
    VDebugInfoNode* type = GetTypeNode();
    return type != nullptr ? type : GetSpecificationNode();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
