// The reader of one file's DWARF 2 to 5 information. It turns `.debug_info` into a tree of
// nodes, has the tree resolved and delivered, and ends with the read. Decoding is implemented in
// dwarf/, the passes over the tree and its delivery in emit/.
#pragma once

#include "container/VElfFileCache.h"
#include "container/VValueRangeMap.h"
#include "core/KeyMixing.h"
#include "dwarf/DebugTexts.h"
#include "dwarf/DieForms.h"
#include "dwarf/UnitHeaderFormat.h"
#include "dwarf/VSkippedEntries.h"
#include "dwarf/VUnitLinks.h"
#include "nodes/VCompileUnitHeader.h"
#include "nodes/VDieNodes.h"
#include "nodes/VNodeArena.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VAbrSectionBuffer;
class VCompileUnitReader;
class VDWARFReaderWrapper;
class VDebugInfoNode;
class VElfBuffer;
class VElfFile;
class VLocTabBuffer;
class VLocationLists;
class VUnitTables;
struct Elf64_Shdr;
enum class NodeChoice : std::uint8_t;

/// The number of debug entries visited in this read, null entries included.
extern std::uint32_t recCnt;

/// Non-zero if `.debug_info` is read in the extended sense, as set in
/// `VElfOptions::mUseCppExtensionDWARF2` at the start of the section. No result depends on it.
extern std::int32_t gOptExt;

/// How the search for units ended.
enum class MappingOutcome : std::uint8_t {
    Mapped,
    /// The units after a damaged one were given up.
    GaveUp,
    /// With an error set.
    Failed,
};

/// Section reader of one read.
///
/// There are three kinds of offset, and names say which is meant: a file position; a unit offset,
/// which counts from the first byte of its unit; a section offset, which counts from the start of
/// `.debug_info` and is the key of all nodes. All of them are 32-bit numbers. `.debug_types` counts
/// as if it followed `.debug_info`: the section offset of an entry in it is the size of
/// `.debug_info` plus its own position.
class VDwarf2Section {
public:
    VDwarf2Section();
    ~VDwarf2Section();
    VDwarf2Section(const VDwarf2Section&) = delete;
    VDwarf2Section& operator=(const VDwarf2Section&) = delete;
    VDwarf2Section(VDwarf2Section&&) = delete;
    VDwarf2Section& operator=(VDwarf2Section&&) = delete;

    /// Loads the sections that stay in memory for the whole read. The file and the reader, which
    /// may be null, are borrowed. Errors: those of loading, `ELFERR_NO_MEMORY`.
    bool Init(VElfFile& file, VDWARFReaderWrapper* reader);

    /// Reads, resolves and delivers. Errors: those of mapping and loading units. After a failure
    /// only the unknown types are delivered.
    bool ProcessDebugSection();

    /// @name Reading
    /// Units are found in dwarf/CompileUnitMapping and read in dwarf/SectionReading;
    /// dwarf/UnitRemarks reports what was not read.
    /// @{

    /// Finds every unit of the sections; see `VCompileUnitHeader`. True may come with error
    /// `ELFERR_COMPILE_UNIT_SIZE` set, when a search for damaged units was given up.
    bool MapCompileUnits();
    /// Reads the entries of all units into nodes. Entries of code that nobody needs get no node,
    /// nor, at first, do entries in bodies of types that may be left for later, unless nodes are
    /// dumped or units overlap.
    bool ProcessCompileUnits();
    /// Makes every entry get its node. Call it before `ProcessCompileUnits`.
    void KeepAllEntries() { mKeepsAllEntries = true; }
    /// Leaves the bodies of types for later if the result stays the same, see `BodyEntry`. Call it
    /// before `ProcessCompileUnits`.
    void LeaveBodies() { mLeavesBodies = CanLeaveBodies(); }
    [[nodiscard]] bool LeavesBodies() const { return mLeavesBodies; }
    /// Records that the result may depend on bodies to which no variable leads. The section is then
    /// read anew with all of them.
    void RequireBodies() { mRequiresBodies = true; }
    [[nodiscard]] bool RequiresBodies() const { return mRequiresBodies; }
    /// Reports how far the reading of entries has come.
    void TellProgress(std::uint32_t sectionOffset);
    /// The buffer of the latest unit, whose memory serves the next one; null if there is none.
    std::unique_ptr<VElfBuffer> LendUnitBuffer();
    void TakeUnitBuffer(std::unique_ptr<VElfBuffer> buffer);
    /// Makes the nodes of skipped entries in the units that contain the offsets.
    /// @return these nodes; empty if the units have all their nodes already
    std::vector<VDebugInfoNode*> ReadSkippedEntries(std::span<const std::uint32_t> offsets);
    /// Makes the nodes of all skipped entries.
    std::vector<VDebugInfoNode*> ReadAllSkippedEntries();
    /// Loads bytes and abbreviations of a unit. Errors: those of loading, `ELFERR_DWARF_VERSION`.
    bool LoadCompileUnit(VCompileUnitReader& reader) const;
    /// Decides the options whose value 2 means "by the compiler" from the first producer text.
    void AutodetectProducerOptions(std::string_view producer, VCompileUnitReader* reader);
    /// Bucket count for a table with an entry for each debug entry, from the size of the section.
    [[nodiscard]] std::int32_t EstimateBestHashMapBucketsCountFromDebugSectionSize() const;

    [[nodiscard]] static std::uint32_t UnitToSectionOffset(const VCompileUnitHeader& unit,
                                                           std::uint32_t unitOffset) {
        return unitOffset + unit.mSectionOffset;
    }
    [[nodiscard]] static std::uint32_t SectionToUnitOffset(const VCompileUnitHeader& unit,
                                                           std::uint32_t sectionOffset) {
        return sectionOffset - unit.mSectionOffset;
    }

    /// Section offset of the type with a signature, 0 if no type unit has it.
    [[nodiscard]] std::uint32_t FindTypeOfSignature(std::uint64_t signature) const;

    /// Number of entries, including skipped ones.
    [[nodiscard]] std::size_t EntryCount() const { return mDieNodes.Size() + mSkipped.Count(); }
    /// Number of entries before the node at an index of all nodes, including skipped ones.
    [[nodiscard]] std::size_t EntriesBefore(std::size_t index) const;

    /// @}
    /// @name Resolution and delivery
    /// Implemented in emit/ResolveNodes and emit/EmitNodes; the dump in
    /// dwarf/NodeDumpFiles.
    /// @{

    /// Runs the passes that finish the tree, up to the one that requires bodies. Always true.
    bool ResolveNodes();
    /// Asks each root of delivery for its host object. Always true.
    bool EmitNodes();
    /// True if the node is delivered on its own account.
    /// @param allTypes types count as roots too
    static bool IsEmissionRoot(const VDebugInfoNode& node, bool allTypes);
    /// The host's unknown type of a size in the global namespace.
    std::uint64_t GetUnknownEntryTypeObject(std::uint32_t byteSize);
    /// The host's void type in the global namespace.
    std::uint64_t GetVoidEntryTypeObject();
    /// Writes the whole tree to files beside the input. False if one can't be opened.
    bool DumpDebugInfoNodes();

    /// @}

    VElfFile* mElfFile = nullptr;
    VDWARFReaderWrapper* mReader = nullptr;
    /// The unit headers live here, as long as the reader.
    VNodeArena mUnitArena;
    /// The nodes and their texts live here, until all entries are read again.
    VNodeArena mArena;
    DebugTexts mTexts{mArena};
    std::unique_ptr<VLocTabBuffer> mLocTabBuffer;
    std::unique_ptr<VAbrSectionBuffer> mAbrSectionBuffer;
    /// Whole `.debug_info`, compressed; only for dsPIC targets.
    VElfFileCachePtr mDebugInfoCache;
    /// How far the file is linked, as decoding must know.
    Linkage mLinkage = Linkage::Linked;
    /// The forms of the manner of reading and the file.
    const DieForms* mForms = nullptr;
    /// Only in the full manner of reading.
    std::unique_ptr<VUnitTables> mUnitTables;
    /// Only in the full manner of reading.
    std::unique_ptr<VLocationLists> mLocationLists;
    /// From the signature of a type to its section offset. The first unit of a signature counts.
    std::unordered_map<std::uint64_t, std::uint32_t, SeededHash> mTypeOffsets;
    VUnitLinks mUnitLinks;
    /// Number of units that are not read, by version.
    std::map<std::int32_t, std::uint32_t> mUnitsNotRead;
    /// Number of units whose entries are in another file.
    std::uint32_t mSplitUnitCount = 0;
    /// Every unit found that is read, in file order; they lie in `mUnitArena`.
    std::vector<VCompileUnitHeader*> mCompileUnits;
    VValueRangeMap<std::uint32_t, VCompileUnitHeader*> mCompileUnitRanges;
    bool mAutodetectPending = true;
    VDieNodes mDieNodes;
    VSkippedEntries mSkipped;
    /// From a host object to the node that was first delivered as it.
    std::unordered_map<std::uint64_t, VDebugInfoNode*> mObjectNodes;
    /// Sizes of the unknown types that are made in advance.
    static constexpr std::array<std::uint32_t, 5> kUnknownEntryTypeSizes = {0, 1, 2, 4, 8};
    /// Host objects of the unknown types of these sizes.
    std::array<std::uint64_t, kUnknownEntryTypeSizes.size()> mUnknownEntryTypes{};
    std::uint64_t mVoidEntryType = 0;

private:
    bool LoadUnitTables(VElfFile& file);
    /// @param startOffset section offset of the section's first byte
    MappingOutcome MapUnitsOf(const Elf64_Shdr& record, UnitSection section,
                              std::uint32_t startOffset);
    bool LoadWholeSection(VElfFileCachePtr& cache, const Elf64_Shdr& section) const;
    void AutodetectFileRelativeReferences(const std::string& producer);
    void AutodetectReferenceWidth(const std::string& producer, const VCompileUnitHeader& unit);
    bool OpenNextDumpFile(std::ofstream& file, const std::string& inputName, int& part,
                          std::int32_t record) const;
    void CreateUnknownEntryTypes();
    /// Adds remarks on what was not read to those of the file.
    void AddRemarks();
    /// @param nameOffset offset of the supplementary file's name in the section
    void RemarkOnSupplement(const Elf64_Shdr& section, std::uint32_t nameOffset) const;
    bool ProcessCompileUnit(VCompileUnitHeader& header);
    /// Reads a unit with all its entries.
    /// @param made receives the nodes of `NodeChoice::Skipped`
    bool ReadUnit(VCompileUnitHeader& header, NodeChoice choice,
                  std::vector<VDebugInfoNode*>& made);
    std::vector<VDebugInfoNode*>
    ReadSkippedEntriesOf(const std::vector<VCompileUnitHeader*>& units);
    /// True if each unit begins after the end of the one before.
    [[nodiscard]] bool AreUnitsApart() const;

    /// True if the choice of nodes affects only the cost of the read.
    [[nodiscard]] bool CanLeaveBodies() const;
    /// True if a first part of the section was read that is large enough to predict the rest.
    [[nodiscard]] bool HasReadSample(std::size_t unitCount) const;
    /// True if variables lead to so many bodies that skipping them first costs more than it saves.
    /// Works on what was read so far, which must be forgotten afterwards.
    [[nodiscard]] bool DoVariablesLeadToMostBodies();
    /// Forgets all entries, to read them again.
    void ForgetEntries();
    [[nodiscard]] bool KeepsAllEntries() const;
    bool mKeepsAllEntries = false;
    bool mLeavesBodies = false;
    bool mRequiresBodies = false;
    /// Number of units whose facts were counted.
    std::uint32_t mCountedUnits = 0;
    bool mIsReadAgain = false;
    /// The latest offset that was reported as progress.
    std::int64_t mToldOffset = -1;
    /// Number of the first node of the section.
    std::uint32_t mFirstNodeRecord = 0;
    std::unique_ptr<VElfBuffer> mUnitBuffer;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
