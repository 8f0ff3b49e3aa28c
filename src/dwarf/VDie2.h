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

/// The attributes of one entry. Values are 32 bits wide, except for the address and, in the full
/// reading, constants; wider forms are cut.
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
    /// As `VLocationResult::mIsFromTombstone`; meaningless for members.
    bool mIsFromTombstone = false;
    /// The location computes the value of a variable that isn't stored as such.
    bool mIsComputed = false;
    /// Only the bits that count in the manner of reading.
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
    /// For a type whose bytes are in the order opposite to the target's.
    bool mHasOtherByteOrder = false;
    bool mHasRareAttributes = false;
};

/// Attributes that few entries have.
struct VRareDieAttributes {
    VAttributeString mCompDir;
    /// The name of a unit with its folders, which `mName` lacks; only in a full reading.
    VAttributeString mUnitPath;
    /// At most 1024 characters.
    VAttributeString mProducer;
    VAttributeValue mCount;
    VAttributeValue mUpperBound;
    VAttributeValue mLowerBound;
    VAttributeValue mConstValue;
    /// Value of the ordering attribute, if there is one.
    std::optional<std::uint32_t> mOrdering;
    /// Distance between elements in bits; 0 if the entry doesn't give it.
    std::uint64_t mStrideInBits = 0;
    bool mHasComputedPlace = false;
    bool mHasComputedLowerBound = false;
    /// Section offset of the type that the entry stands for, 0 if it stands for itself.
    std::uint32_t mSignatureType = 0;
};

/// The number or text of a form.
struct VDieFormValue {
    std::uint32_t mNumber = 0;
    /// Null for forms that are no texts and for texts that don't exist.
    const char* mString = nullptr;
};

/// Which entries of a unit get nodes.
enum class NodeChoice : std::uint8_t {
    All,
    /// Every entry that may be needed, see `CodeEntry`.
    WithoutCode,
    /// The same without entries in the bodies of types, see `BodyEntry`.
    WithoutBodies,
    /// Entries that were skipped: the unit was read without code or bodies before.
    Skipped,
    /// Entries that were skipped in the bodies of types. Those of code stay skipped.
    SkippedOfBodies,
};

/// The current debug entry of one unit.
class VDie2 : public VDieAttributes {
public:
    /// The reader has its bytes and abbreviations loaded.
    VDie2(VCompileUnitReader& reader, NodeChoice choice);

    /// Reads the entry at the cursor with all its descendants and makes the chosen nodes (DWARF 4,
    /// 2.3 and 7.5.2). Unknown abbreviation codes are skipped byte by byte; an entry that the end
    /// of the unit truncates makes no node and ends the walk.
    /// @return false only on a failure that ends the unit
    bool ReadDieTree(VCompileUnitHeader* header);

    /// Makes the nodes of the skipped entries in the body of a type, and in the bodies of types
    /// within it.
    /// @return section offset of the body's end
    std::uint32_t ReadBody(VDebugInfoNode& type);

    /// The nodes of entries that were skipped before. They are in no map yet.
    [[nodiscard]] const std::vector<VDebugInfoNode*>& GetMadeNodes() const { return mMadeNodes; }
    [[nodiscard]] std::vector<VDebugInfoNode*> TakeMadeNodes() {
        return std::exchange(mMadeNodes, {});
    }

    /// Reads the facts of the whole unit from the entry at the cursor, without moving: values of
    /// this entry may depend on attributes after them.
    void ReadUnitFacts();

    /// Lower bound of arrays that don't have one, if it isn't 0.
    [[nodiscard]] VAttributeValue DefaultLowerBoundOfUnit() const;
    /// True for an array whose first index runs fastest in memory.
    [[nodiscard]] bool IsColumnMajor() const;
    [[nodiscard]] const VRareDieAttributes& GetRareAttributes() const { return mRareAttributes; }

private:
    enum class Entry { Null, Unknown, Decoded, Skipped };

    /// Where the children of an entry are.
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
        /// Null while the entry waits for a child that needs it.
        VDebugInfoNode* node = nullptr;
        Surroundings surroundings = Surroundings::Other;
        bool isInFunction = false;
        /// What the node will be made of, if it is needed.
        std::int32_t unitOffset = 0;
        std::uint32_t recordNumber = 0;
        std::uint32_t nodeRecord = 0;
        /// Section offset of the type that it refers to, while it has no node; 0 if the reference
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
    /// The same for any choice of nodes.
    [[nodiscard]] CodeEntry CodeEntryBySurroundings() const;
    [[nodiscard]] BodyEntry BodyEntryHere() const;
    /// Where the children of a skipped entry are.
    [[nodiscard]] Surroundings SurroundingsInSkipped() const;
    /// True if it counts which entries are in bodies.
    [[nodiscard]] bool TellsBodiesApart() const;
    /// Records that an entry without a node refers to a type.
    void NoteSkippedType(std::uint32_t offset);
    Entry SkipEntry(std::int32_t unitOffset, std::uint32_t recordNumber);
    /// Moves past the attributes. False if the entry is cut off.
    /// @param type set to the section offset of the type if that counts as a reference
    bool SkipAttributes(std::uint32_t& type);
    /// True while a body is read later, for an entry of code that has no node.
    [[nodiscard]] bool IsSkippedAgain(std::int32_t unitOffset) const;
    /// Skips an entry that was counted when its unit was read.
    Entry SkipAgain(std::int32_t unitOffset, std::uint32_t recordNumber);
    /// Skips a variable without a place, makes the node of any other.
    Entry ReadVariableOfCode(std::int32_t unitOffset, std::uint32_t recordNumber);
    void SkipVariable();
    /// Makes the nodes of the open entries that wait for one. The current entry must then be read
    /// again.
    /// @return false if none waited
    bool MakeWaitingNodes();
    void OpenCurrentEntry();
    /// Makes the node of the current entry if it has none, and restores its place among the
    /// children of its parent.
    void MakeSkippedNode(VCompileUnitHeader* header);
    [[nodiscard]] bool MakesSkippedNodes() const {
        return mChoice == NodeChoice::Skipped || mChoice == NodeChoice::SkippedOfBodies;
    }
    /// Takes all children off; `MakeSkippedNode` puts them back one by one.
    static void TakeOffChildren(VDebugInfoNode& node);
    [[nodiscard]] VDebugInfoNode* InnermostOpenNode() const {
        return mOpenEntries.empty() ? nullptr : mOpenEntries.back().node;
    }

    /// @}

    void ReadAttribute(const TDieAttribute& attribute);
    void ReadDirectAttribute(const TDieAttribute& attribute);
    TDieAttribute FollowIndirectForm(const TDieAttribute& attribute);
    /// False if there is no value, or none in this file.
    bool ReadFormValue(const TDieAttribute& attribute, VDieFormValue& value);
    /// Reads a constant value in the full reading.
    void ReadWholeConstant(const TDieAttribute& attribute);
    /// Section offset of the type in a type attribute, 0 if there is none.
    [[nodiscard]] std::uint32_t TypeOffsetOf(const TDieAttribute& attribute,
                                             const VDieFormValue& value) const;
    bool ReadIndexedValue(FormReading reading, VDieFormValue& value);
    std::uint32_t ReadIndex(FormReading reading);
    /// The text of an index, null if there is none.
    const char* FindIndexedText(std::uint32_t index);
    void StoreUnitFact(AttributeTarget target, const VDieFormValue& value);
    std::uint32_t ReadBlockLength(FormReading reading);
    std::uint32_t ReadOffset();
    [[nodiscard]] bool HasWideReferencesByOption() const;
    std::uint32_t ReadReferenceAddress(bool hasOffsetWidth);
    /// Moves past a block; one that exceeds the end of the unit truncates the entry.
    void MoveBehindBlock(std::uint32_t length);

    /// Clears the previous entry.
    void Reset();
    /// The rare attributes, for changing.
    VRareDieAttributes& Rare() {
        mHasRareAttributes = true;
        return mRareAttributes;
    }
    void StoreAttribute(const TDieAttribute& attribute, const VDieFormValue& value);
    /// Stores the layout attributes that few types and arrays have.
    void StoreLayoutAttribute(AttributeTarget target, std::uint32_t value);
    /// Stores the origin of an instance like a specification.
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

    /// Makes the node of the entry under a parent, which may be null, and maps it. Always true.
    bool MapCurrentDieToNode(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateNode(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateNodeByTag(VCompileUnitHeader* header, VDebugInfoNode* parent);
    VDebugInfoNode* CreateUnitNode(VCompileUnitHeader* header);

    VElfBuffer* mBuffer;
    VAbrTab* mAbbrevTable;
    VLocTabBuffer* mLocTabBuffer;
    VDwarf2Section* mSection;
    VCompileUnitReader* mUnitReader;
    /// The forms of the manner of reading.
    const DieForms* mForms;
    ReadingManner mManner;
    bool (VDie2::*mReadLocationNumber)(const TDieAttribute& attribute, std::uint64_t& value);
    /// Subtracted from the addresses of variables; 0 unless the container has set it.
    std::uint64_t mImageBase;
    /// Cleared only after an entry that has any.
    VRareDieAttributes mRareAttributes;
    const TAbrTabItem* mItem = nullptr;
    /// The node made of the current entry.
    VDebugInfoNode* mNode = nullptr;
    /// Entries whose children are being read, outermost first.
    std::vector<OpenEntry> mOpenEntries;
    std::vector<VDebugInfoNode*> mMadeNodes;
    NodeChoice mChoice;
    /// Number of attributes that the unit may still have.
    std::int64_t mAttributesLeft;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
