// The decoded form of the debug entry (DIE) that is being read. One object serves all entries of a
// unit, one after the other: each is decoded, turned into a node and forgotten.
#pragma once

#include "core/ReadingManner.h"
#include "dwarf/BodyEntries.h"
#include "dwarf/CodeEntries.h"
#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"
#include "dwarf/codes/VAttributeValue.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VAbrTab;
class VCompileUnitReader;
class VDebugInfoNode;
class VDwarf2Section;
class VElfBuffer;
class VLocTabBuffer;
struct TAbrTabItem;
struct VLocationResult;
struct TDieAttribute;
struct VCompileUnitHeader;

/// What the attributes of one entry tell. Values are 32 bits wide, except for the address; wider
/// forms are cut.
struct VDieAttributes {
    dwarf_tag mTag = 0;
    /// Section offset of the entry.
    std::uint32_t mOffset = 0;
    std::uint32_t mAbbrevCode = 0;
    /// `recCnt` when the entry was read.
    std::uint32_t mRecordNumber = 0;
    /// Value of the type attribute: a section offset if the next field says so, else a unit offset;
    /// 0 if there is none.
    std::uint32_t mTypeRef = 0;
    bool mTypeRefIsSectionOffset = false;
    bool mIsRegisterOrStackLocation = false;
    bool mHasName = false;
    bool mHasLinkageName = false;
    bool mBitFieldFromLocation = false;
    bool mHasEncoding = false;
    bool mHasByteSize = false;
    bool mIsDeclaration = false;
    bool mIsExternal = false;
    bool mHasMemberLocation = false;
    bool mHasLocation = false;
    /// In those bits that count in the manner of reading.
    std::uint64_t mLocationAddress = 0;
    std::uint32_t mMemberOffset = 0;
    std::uint32_t mBitOffset = 0;
    std::uint32_t mBitSize = 0;
    std::uint32_t mByteSize = 0;
    std::uint32_t mEncoding = 0;
    /// At most `sMaximumNameLength` characters.
    VDieText mName;
    VDieText mLinkageName;
    VAttributeValue mSpecification;
    VAttributeValue mAccessibility;
    /// The specification is the abstract origin of an instance.
    bool mIsAbstractOrigin = false;
    bool mHasBitOffset = false;
    /// The bit offset counts from the start of the structure.
    bool mHasDataBitOffset = false;
    /// Of a type whose bytes lie in the order that the target doesn't have.
    bool mHasOtherByteOrder = false;
    bool mHasRareAttributes = false;
};

/// What the attributes of few entries tell.
struct VRareDieAttributes {
    VAttributeString mCompDir;
    /// At most 1024 characters.
    VAttributeString mProducer;
    VAttributeValue mCount;
    VAttributeValue mUpperBound;
    VAttributeValue mLowerBound;
    VAttributeValue mConstValue;
    /// Value of the ordering attribute, if there is one.
    std::optional<std::uint32_t> mOrdering;
    /// From one element to the next, in bits; 0 if that isn't told.
    std::uint64_t mStrideInBits = 0;
    bool mHasComputedPlace = false;
    bool mHasComputedLowerBound = false;
    /// Section offset of the type that the entry stands for, 0 if it stands for itself.
    std::uint32_t mSignatureType = 0;
};

/// The number or text that a form gave.
struct VDieFormValue {
    std::uint32_t mNumber = 0;
    /// Null for forms that are no texts and for texts that aren't there.
    const char* mString = nullptr;
};

/// Which entries of a unit get nodes.
enum class NodeChoice : std::uint8_t {
    All,
    /// All that anything can ask for, see `CodeEntry`.
    WithoutCode,
    /// All of these but those in the bodies of types, see `BodyEntry`.
    WithoutBodies,
    /// Those that were skipped: the unit was read without code or bodies before.
    Skipped,
};

/// The current debug entry of one unit.
class VDie2 : public VDieAttributes {
public:
    /// The reader has its bytes and abbreviations loaded.
    VDie2(VCompileUnitReader& reader, NodeChoice choice);

    /// Reads the entry at the cursor with all its descendants and makes the nodes that are chosen
    /// (DWARF 4, 2.3 and 7.5.2). Unknown abbreviation codes are passed over byte by byte; an entry
    /// that is cut off by the end of the unit makes no node and ends the walk.
    /// @return false only on a failure that ends the unit
    bool ReadDieTree(VCompileUnitHeader* header);

    /// Makes the nodes of the skipped entries in the body of a type, and in those of types within
    /// it.
    /// @return section offset of the body's end
    std::uint32_t ReadBody(VDebugInfoNode& type);

    /// The nodes that `NodeChoice::Skipped` made. They are in no map yet.
    [[nodiscard]] const std::vector<VDebugInfoNode*>& GetMadeNodes() const { return mMadeNodes; }
    [[nodiscard]] std::vector<VDebugInfoNode*> TakeMadeNodes() {
        return std::exchange(mMadeNodes, {});
    }

    /// Reads what the entry at the cursor says of the whole unit and stays there: values of that
    /// very entry may depend on attributes behind them.
    void ReadUnitFacts();

    /// Lower bound of arrays that tell none, where it isn't 0.
    [[nodiscard]] VAttributeValue DefaultLowerBoundOfUnit() const;
    /// True for an array whose first index runs fastest in memory.
    [[nodiscard]] bool IsColumnMajor() const;
    [[nodiscard]] const VRareDieAttributes& GetRareAttributes() const { return mRareAttributes; }

private:
    enum class Entry { Null, Unknown, Decoded, Skipped };

    /// Where the children of an entry stand.
    enum class Surroundings : std::uint8_t {
        Other,
        Function,
        CodeOfFunction,
        Body,
        /// A function that is declared in a body and has no node.
        FunctionOfBody
    };

    /// An entry whose children are being read.
    struct OpenEntry {
        /// Null as long as the entry waits for a child that needs it.
        VDebugInfoNode* node = nullptr;
        Surroundings surroundings = Surroundings::Other;
        bool isInFunction = false;
        /// What the node is made of, if it comes to that.
        std::int32_t unitOffset = 0;
        std::uint32_t recordNumber = 0;
        std::uint32_t nodeRecord = 0;
        /// Section offset of the type that it refers to as long as it has no node, 0 if that
        /// doesn't count.
        std::uint32_t type = 0;
    };

    void ReadNextEntry(VCompileUnitHeader* header);
    void CloseEntry();
    Entry ReadEntry();
    Entry ReadAbbrevCode();
    /// Reads the attributes of the entry; the cursor is just after its abbreviation code.
    Entry DecodeEntry(std::int32_t unitOffset, std::uint32_t recordNumber);
    void ReadAttributes();

    /// @name Entries of code and of bodies
    /// Implemented in dwarf/DieOfCode and dwarf/DieOfBody.
    /// @{

    [[nodiscard]] CodeEntry CodeEntryHere() const;
    [[nodiscard]] BodyEntry BodyEntryHere() const;
    /// What surrounds the children of an entry that is skipped.
    [[nodiscard]] Surroundings SurroundingsInSkipped() const;
    /// True if it counts which entries stand in bodies.
    [[nodiscard]] bool TellsBodiesApart() const;
    /// Takes note that an entry without node refers to a type.
    void NoteSkippedType(std::uint32_t offset);
    Entry SkipEntry(std::int32_t unitOffset, std::uint32_t recordNumber);
    /// Skips a variable without place, makes the node of any other.
    Entry ReadVariableOfCode(std::int32_t unitOffset, std::uint32_t recordNumber);
    void SkipVariable();
    /// Makes the nodes of the open entries that wait for one. The entry that is being read has to
    /// be read again.
    /// @return false if none waited
    bool MakeWaitingNodes();
    void OpenCurrentEntry();
    /// Makes the node of the current entry if it has none, and gives it back its place among the
    /// children of its parent.
    void MakeSkippedNode(VCompileUnitHeader* header);
    /// Takes all children off, for `MakeSkippedNode` to put them back one by one.
    static void TakeOffChildren(VDebugInfoNode& node);
    [[nodiscard]] VDebugInfoNode* InnermostOpenNode() const {
        return mOpenEntries.empty() ? nullptr : mOpenEntries.back().node;
    }

    /// @}

    void ReadAttribute(const TDieAttribute& attribute);
    void ReadDirectAttribute(const TDieAttribute& attribute);
    TDieAttribute FollowIndirectForm(const TDieAttribute& attribute);
    /// False if there is no value, or none that is at hand.
    bool ReadFormValue(const TDieAttribute& attribute, VDieFormValue& value);
    /// Section offset of the type that the value of a type attribute names, 0 if there is none.
    [[nodiscard]] std::uint32_t TypeOffsetOf(const TDieAttribute& attribute,
                                             const VDieFormValue& value) const;
    bool ReadIndexedValue(FormReading reading, VDieFormValue& value);
    std::uint32_t ReadIndex(FormReading reading);
    /// Null if there is none.
    const char* FindIndexedText(std::uint32_t index);
    void StoreUnitFact(AttributeTarget target, const VDieFormValue& value);
    std::uint32_t ReadBlockLength(FormReading reading);
    std::uint32_t ReadOffset();
    [[nodiscard]] bool HasWideReferencesByOption() const;
    std::uint32_t ReadReferenceAddress(bool hasOffsetWidth);
    /// Moves behind a block; one that passes the end of the unit cuts the entry off.
    void MoveBehindBlock(std::uint32_t length);

    /// Forgets the entry before this one.
    void Reset();
    /// The rare attributes, to change them.
    VRareDieAttributes& Rare() {
        mHasRareAttributes = true;
        return mRareAttributes;
    }
    void StoreAttribute(const TDieAttribute& attribute, const VDieFormValue& value);
    /// What few types and arrays say of their layout.
    void StoreLayoutAttribute(AttributeTarget target, std::uint32_t value);
    /// The origin of an instance says what a specification says.
    void StoreOrigin(const TDieAttribute& attribute, std::uint32_t origin);
    void StoreImport(const TDieAttribute& attribute, std::uint32_t value);
    void StoreSignature(const TDieAttribute& attribute, std::uint32_t value);
    void RenameEnumerationWithoutSize();
    void StoreName(const char* name);
    void StoreProducer(const char* producer);
    [[nodiscard]] VAttributeString MakeAttributeString(const char* text) const;
    void SetAttributeValue(VAttributeValue& target, const TDieAttribute& attribute,
                           std::uint32_t value) const;
    void OnProducer();
    void ShortenUnitName();

    void ReadLocation(const TDieAttribute& attribute);
    bool ReadLocationBlock(FormReading reading, std::uint64_t& value);
    VLocationResult EvaluateLocationBlock(std::int32_t end);
    /// True if a value of the attribute's form is the offset of a location list.
    [[nodiscard]] bool NamesLocationList(const TDieAttribute& attribute) const;
    /// True while the children of a function are read, at any depth.
    [[nodiscard]] bool IsInFunction() const;
    bool ReadClassicLocationNumber(const TDieAttribute& attribute, std::uint64_t& value);
    bool ReadFullLocationNumber(const TDieAttribute& attribute, std::uint64_t& value);
    std::uint64_t ReadPlainLocation(const TDieAttribute& attribute);

    /// Makes the node of the entry under a parent, which may be null, and files it. Always true.
    bool MapCurrentDieToNode(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateNode(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateNodeByTag(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateUnitNode(VCompileUnitHeader* header);

    VElfBuffer* mBuffer;
    VAbrTab* mAbbrevTable;
    VLocTabBuffer* mLocTabBuffer;
    VDwarf2Section* mSection;
    VCompileUnitReader* mUnitReader;
    /// Those of the manner of reading.
    const DieForms* mForms;
    ReadingManner mManner;
    bool (VDie2::*mReadLocationNumber)(const TDieAttribute& attribute, std::uint64_t& value);
    /// Taken off the addresses of variables; 0 unless the container has set it.
    std::uint64_t mImageBase;
    /// Cleared only behind an entry that has any.
    VRareDieAttributes mRareAttributes;
    const TAbrTabItem* mItem = nullptr;
    /// The node made of the current entry.
    VDebugInfoNode* mNode = nullptr;
    /// Entries whose children are being read, outermost first.
    std::vector<OpenEntry> mOpenEntries;
    std::vector<VDebugInfoNode*> mMadeNodes;
    NodeChoice mChoice;
    /// Attributes that the unit may still have.
    std::int64_t mAttributesLeft;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
