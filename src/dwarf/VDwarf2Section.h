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

/// The count of debug entries visited in this read, null entries included.
extern std::uint32_t recCnt;

/// Non-zero if `.debug_info` is taken in the extended sense, as
/// `VElfOptions::mUseCppExtensionDWARF2` says at the start of the section. No result depends on it.
extern std::int32_t gOptExt;

/// How the search for units ended.
enum class MappingOutcome : std::uint8_t {
    Mapped,
    /// The units behind a damaged one were given up.
    GaveUp,
    /// With an error set.
    Failed,
};

/// Section reader of one read.
///
/// Three kinds of offset occur, and each name says which is meant: a file position; a unit offset,
/// which counts from the first byte of its unit; a section offset, which counts from the start of
/// `.debug_info` and is the key of all nodes. All of it is 32-bit arithmetic. `.debug_types` counts
/// as if it stood right behind `.debug_info`: an entry of it has the size of `.debug_info` and its
/// own place for a section offset.
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
    /// nothing of the debug information is delivered but the unknown types.
    bool ProcessDebugSection();

    /// @name Reading
    /// Units are found in dwarf/CompileUnitMapping, read in dwarf/SectionReading; what was passed
    /// over is told in dwarf/UnitRemarks.
    /// @{

    /// Finds every unit of the sections; see `VCompileUnitHeader`. True may come with error
    /// `ELFERR_COMPILE_UNIT_SIZE` set, when a search for damaged units was given up.
    bool MapCompileUnits();
    /// Reads the entries of all units into nodes. Those of code that nothing can ask for get none,
    /// nor do, at first, those in bodies of types where these may be left for later, unless nodes
    /// are to be dumped or units overlap.
    bool ProcessCompileUnits();
    /// Lets every entry have its node. For the time before `ProcessCompileUnits`.
    void KeepAllEntries() { mKeepsAllEntries = true; }
    /// Leaves the bodies of types for later where that gives the same result, see `BodyEntry`. For
    /// the time before `ProcessCompileUnits`.
    void LeaveBodies() { mLeavesBodies = CanLeaveBodies(); }
    [[nodiscard]] bool LeavesBodies() const { return mLeavesBodies; }
    /// Takes note that the result may depend on bodies that no variable leads to. The section is
    /// read anew with all of them.
    void RequireBodies() { mRequiresBodies = true; }
    [[nodiscard]] bool RequiresBodies() const { return mRequiresBodies; }
    /// Tells how far the reading of entries has come.
    void TellProgress(std::uint32_t sectionOffset);
    /// The buffer of the latest unit, whose memory serves the next one; null if there is none.
    std::unique_ptr<VElfBuffer> LendUnitBuffer();
    void TakeUnitBuffer(std::unique_ptr<VElfBuffer> buffer);
    /// Makes the nodes of skipped entries in the units where the offsets lie.
    /// @return these nodes; none if the units have theirs already
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

    /// Section offset of the type of a signature, 0 if no type unit has it.
    [[nodiscard]] std::uint32_t FindTypeOfSignature(std::uint64_t signature) const;

    /// Number of entries, the skipped ones too.
    [[nodiscard]] std::size_t EntryCount() const { return mDieNodes.Size() + mSkipped.Count(); }
    /// Number of entries before the node at an index of all nodes, the skipped ones too.
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
    /// True if the node is delivered for its own sake.
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
    /// The nodes, their texts and the unit headers live here.
    VNodeArena mArena;
    DebugTexts mTexts{mArena};
    std::unique_ptr<VLocTabBuffer> mLocTabBuffer;
    std::unique_ptr<VAbrSectionBuffer> mAbrSectionBuffer;
    /// Whole `.debug_info`, compressed; only for dsPIC targets.
    VElfFileCachePtr mDebugInfoCache;
    /// How far the file is linked, as far as decoding has to know.
    Linkage mLinkage = Linkage::Linked;
    /// Those of the manner of reading and the file.
    const DieForms* mForms = nullptr;
    /// Only in the full manner of reading.
    std::unique_ptr<VUnitTables> mUnitTables;
    /// Only in the full manner of reading.
    std::unique_ptr<VLocationLists> mLocationLists;
    /// Signature of a type to its section offset. The first unit of a signature counts.
    std::unordered_map<std::uint64_t, std::uint32_t, SeededHash> mTypeOffsets;
    VUnitLinks mUnitLinks;
    /// Units that are passed over, by their version.
    std::map<std::int32_t, std::uint32_t> mUnitsNotRead;
    /// Units whose entries lie in another file.
    std::uint32_t mSplitUnitCount = 0;
    /// Every unit found that is read, in file order; they lie in the arena.
    std::vector<VCompileUnitHeader*> mCompileUnits;
    VValueRangeMap<std::uint32_t, VCompileUnitHeader*> mCompileUnitRanges;
    bool mAutodetectPending = true;
    VDieNodes mDieNodes;
    VSkippedEntries mSkipped;
    /// Host object to the node that was delivered as it first.
    std::unordered_map<std::uint64_t, VDebugInfoNode*> mObjectNodes;
    /// Sizes of the unknown types that are kept at hand.
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
    /// Tells the file's remarks what was passed over.
    void AddRemarks();
    /// @param nameOffset place of the supplementary file's name in the section
    void RemarkOnSupplement(const Elf64_Shdr& section, std::uint32_t nameOffset) const;
    bool ProcessCompileUnit(VCompileUnitHeader& header);
    /// Reads a unit with all its entries.
    /// @param made takes the nodes of `NodeChoice::Skipped`
    bool ReadUnit(VCompileUnitHeader& header, NodeChoice choice,
                  std::vector<VDebugInfoNode*>& made);
    std::vector<VDebugInfoNode*>
    ReadSkippedEntriesOf(const std::vector<VCompileUnitHeader*>& units);
    /// True if each unit begins behind the one before.
    [[nodiscard]] bool AreUnitsApart() const;

    /// True if the choice of nodes shows in nothing but the cost of the read.
    [[nodiscard]] bool CanLeaveBodies() const;
    /// True if a first part of the section was read by now, large enough to predict the rest.
    [[nodiscard]] bool HasReadSample(std::size_t unitCount) const;
    /// True if variables lead to so many of the bodies that skipping them first costs more than it
    /// saves. Works on what was read up to now, which has to be forgotten then.
    [[nodiscard]] bool DoVariablesLeadToMostBodies();
    /// Forgets all entries, to read them again.
    void ForgetEntries();
    [[nodiscard]] bool KeepsAllEntries() const;
    bool mKeepsAllEntries = false;
    bool mLeavesBodies = false;
    bool mRequiresBodies = false;
    /// Units whose facts were taken.
    std::uint32_t mCountedUnits = 0;
    bool mIsReadAgain = false;
    /// The latest offset that was told as progress.
    std::int64_t mToldOffset = -1;
    /// Number of the first node of the section.
    std::uint32_t mFirstNodeRecord = 0;
    std::unique_ptr<VElfBuffer> mUnitBuffer;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
