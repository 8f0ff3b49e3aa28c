// The order of the passes over a complete tree, and the passes that are one call for each node.
#include "container/VElfFile.h"
#include "core/KeyMixing.h"
#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/ReferenceCycles.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNode.h"

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

using ResolutionPass = void (*)(VDwarf2Section&);

constexpr ResolutionPass sClassicPasses[] = {
    ResolveAllReferences,
    // Types are grouped by their names.
    DemangleNames,
    // From here on, following a type leads to definitions.
    GroupTypesOfSameName,
    // A declaration may have got a definition that leads back to it; walks over types must end.
    BreakAllReferenceCycles,
    ReadEntriesForSizes,
    UnifyCompileUnits,
    // Variables are compared by their addresses, so all addresses must be known.
    ResolveExternVariables,
    // It is known now which variables are delivered.
    ReadReachedBodies,
    ResolveAllSizes,
    MarkRedundantVariables,
    // Last, since sizes and groups count members where the file has them.
    FlattenAnonymousMembers,
};

constexpr ResolutionPass sFullPasses[] = {
    ResolveAllReferences,
    DemangleNames,
    GroupTypesOfSameName,
    LinkUnits,
    BreakAllReferenceCycles,
    ReadEntriesForSizes,
    UnifyUnitsOfOneSource,
    LeaveOutDiscardedVariables,
    ResolveDeclaredVariables,
    TakeOverFromOrigins,
    // It is known now which variables are delivered.
    ReadReachedBodies,
    PlaceBitFields,
    SettlePointerSizes,
    CountIndexedElements,
    ResolveAllSizes,
    MarkRedundantDeclarations,
    FlattenAllAnonymousMembers,
};

/// Such a pointer is a pair of a function address and the displacement of its object.
bool IsPointerToMemberFunction(const VDebugInfoNode& pointer) {
    if (pointer.GetTag() != DW_TAG_ptr_to_member_type) {
        return false;
    }
    const VDebugInfoNode* type = pointer.GetPlainTypeNode();
    return type != nullptr && type->GetTag() == DW_TAG_subroutine_type;
}

std::span<const ResolutionPass> PassesOf(ReadingManner manner) {
    return manner == ReadingManner::Full ? std::span<const ResolutionPass>(sFullPasses)
                                         : std::span<const ResolutionPass>(sClassicPasses);
}

/// Gives each unit the first one of its name, as `nameOf` sees it, and directory.
template <typename NameOf>
void UnifyUnits(VDwarf2Section& section, NameOf&& nameOf) {
    std::unordered_map<std::string, VDebugInfoNode*, SeededHash> firstOfKind;
    section.mDieNodes.ForEachOf(NodeGroup::CompileUnits, [&](VDebugInfoNode& unit) {
        std::string key(nameOf(unit));
        if (const VAttributeString directory = unit.GetCompUnitDirAttribute(); directory.mDefined) {
            key.append(";").append(directory.mValue);
        }
        unit.SetFirstKindOfCompileUnit(firstOfKind.try_emplace(key, &unit).first->second);
    });
}

} // namespace

bool VDwarf2Section::ResolveNodes() {
    VElfOptions::mLogNestLevel = 0;
    tag_alignment.clear();
    for (const ResolutionPass pass : PassesOf(mElfFile->mManner)) {
        pass(*this);
        if (mRequiresBodies) {
            break;
        }
    }
    return true;
}

void BreakAllReferenceCycles(VDwarf2Section& section) {
    ReferenceCycles cycles;
    // No other nodes are on a cycle.
    section.mDieNodes.ForEachReferredAndReferring(
        [&](VDebugInfoNode& node) { node.BreakReferenceCycles(cycles); });
}

/// After `typedef struct Gain Gain_t; Gain_t gains[3];` only the structure has a size in the file.
/// Here the typedef gets the same size, and the array three times that.
void ResolveAllSizes(VDwarf2Section& section) {
    section.mDieNodes.ForEachWith(NodeTask::Size, [&](VDebugInfoNode& node) {
        node.ResolveSizes(section.mDieNodes, section);
    });
}

/// Compilers write no size for pointers to members: `int Motor::*` is an offset as wide as an
/// address, `int (Motor::*)(void)` takes twice as much. Otherwise they would get the size of the
/// type that they lead to.
void SettlePointerSizes(VDwarf2Section& section) {
    section.mDieNodes.ForEachOf(NodeGroup::OtherPointers, [](VDebugInfoNode& pointer) {
        if (!pointer.HasByteSize()) {
            const std::int32_t addressSize = pointer.GetCompileUnitHeader()->mTargetAddressSize;
            pointer.SetByteSize(IsPointerToMemberFunction(pointer) ? 2 * addressSize : addressSize);
        }
    });
}

/// A source that is compiled twice, such as channel.c with -DFN=left and with -DFN=right, makes
/// two units of one name and directory. A host sees them as one object, that of the first.
void UnifyCompileUnits(VDwarf2Section& section) {
    UnifyUnits(section, [](const VDebugInfoNode& unit) { return unit.GetName(); });
}

/// The names of units have no folders, so that left/gains.c and right/gains.c, compiled in one
/// directory, would look like one source.
void UnifyUnitsOfOneSource(VDwarf2Section& section) {
    UnifyUnits(section, [](const VDebugInfoNode& unit) -> std::string_view {
        const VAttributeString path = unit.GetUnitPath();
        return path.mDefined ? path.mValue : unit.GetName();
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
