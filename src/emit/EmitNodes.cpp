// The walk that delivers a finished tree: which nodes are roots of delivery, and the objects that
// the section keeps for all of them. For
//
//     struct Gain { float p; };
//     enum Mode { Off, On };
//     struct Gain gain;
//
// `gain` is a root; `Gain` and `float` are delivered because it needs them. `Mode` is delivered
// only if the host wants all types: then named types are roots as well.
#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "emit/VNodeEmission.h"
#include "host/VDWARFReaderWrapper.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this number of entries on, progress is reported a hundred times.
constexpr std::size_t sManyEntries = 200;

bool IsRootVariable(const VDebugInfoNode& variable) {
    return (variable.HasLocation() || !variable.IsDeclaration()) &&
           !variable.IsRegisterOrStackLocation() &&
           (variable.HasNameAttribute() || variable.GetSpecificationNode() != nullptr);
}

bool IsRootType(const VDebugInfoNode& type) {
    const VDebugInfoNode* canonical = type.GetCanonicalTypeNode();
    return type.HasNameAttribute() && !type.IsDeclaration() &&
           (canonical == nullptr || canonical == &type);
}

/// Places of nodes that may be roots, ascending.
std::vector<std::uint32_t> IndicesOfRoots(const VDieNodes& nodes, bool hasAddresses,
                                          bool allTypes) {
    std::vector<std::uint32_t> indices;
    if (hasAddresses) {
        const std::span<const std::uint32_t> variables = nodes.IndicesOf(NodeGroup::Variables);
        indices.assign(variables.begin(), variables.end());
    }
    if (allTypes) {
        for (const NodeGroup group : {NodeGroup::GroupedTypes, NodeGroup::MembersAndEnumerations}) {
            std::vector<std::uint32_t> merged;
            merged.reserve(indices.size() + nodes.IndicesOf(group).size());
            std::ranges::merge(indices, nodes.IndicesOf(group), std::back_inserter(merged));
            indices = std::move(merged);
        }
    }
    return indices;
}

} // namespace

bool VDwarf2Section::IsEmissionRoot(const VDebugInfoNode& node, bool allTypes) {
    switch (node.GetTag()) {
    case DW_TAG_variable:
        return IsRootVariable(node);
    case DW_TAG_class_type:
    case DW_TAG_enumeration_type:
    case DW_TAG_member:
    case DW_TAG_structure_type:
    case DW_TAG_typedef:
    case DW_TAG_union_type:
        return allTypes && IsRootType(node);
    default:
        return false;
    }
}

bool VDwarf2Section::EmitNodes() {
    const std::span<const VDieNodes::Link> nodes = mDieNodes.InOffsetOrder();
    const std::size_t entryCount = EntryCount();
    const std::size_t step = entryCount >= sManyEntries ? entryCount / 100 : 1;
    const bool allTypes = mReader != nullptr && mReader->IsReadAllTypes();
    if (mReader != nullptr) {
        mReader->SetProgressInterval(0, static_cast<std::int32_t>(entryCount));
        mReader->SetProgressValue(0);
        mReader->SetProgressText("Post-Processing...");
    }
    VNodeEmission emission(*this, *mElfFile->mFactory);
    std::size_t last = 0;
    const auto tellProgressBefore = [&](std::size_t index) {
        while (last + step + 1 < index) {
            last += step + 1;
            if (mReader != nullptr) {
                mReader->SetProgressValue(static_cast<std::int32_t>(last));
            }
        }
    };
    mDieNodes.ForEachIndex(IndicesOfRoots(mDieNodes, !mElfFile->IsUnlinked(), allTypes),
                           [&](std::uint32_t index) {
                               tellProgressBefore(EntriesBefore(index));
                               if (IsEmissionRoot(*nodes[index], allTypes)) {
                                   emission.Deliver(*nodes[index]);
                               }
                           });
    tellProgressBefore(entryCount);
    if (VElfOptions::mDumpDebugInfoNodes != 0) {
        DumpDebugInfoNodes();
    }
    return true;
}

void VDwarf2Section::CreateUnknownEntryTypes() {
    VCLIFactoryWrapper& factory = *mElfFile->mFactory;
    const ObjectId globalNamespace = factory.GetGlobalNamespace();
    for (std::size_t index = 0; index < mUnknownEntryTypes.size(); ++index) {
        mUnknownEntryTypes[index] = sGetSymbolTableBaseEntryTypeObjId(
            factory, globalNamespace, kUnknownEntryTypeSizes[index]);
    }
}

ObjectId VDwarf2Section::GetUnknownEntryTypeObject(std::uint32_t byteSize) {
    const auto* const kept = std::ranges::find(kUnknownEntryTypeSizes, byteSize);
    if (kept != kUnknownEntryTypeSizes.end()) {
        const ObjectId object =
            mUnknownEntryTypes[static_cast<std::size_t>(kept - kUnknownEntryTypeSizes.begin())];
        if (object != 0) {
            return object;
        }
    }
    VCLIFactoryWrapper& factory = *mElfFile->mFactory;
    return sGetSymbolTableBaseEntryTypeObjId(factory, factory.GetGlobalNamespace(), byteSize);
}

ObjectId VDwarf2Section::GetVoidEntryTypeObject() {
    if (mVoidEntryType == 0) {
        VCLIFactoryWrapper& factory = *mElfFile->mFactory;
        const ObjectId globalNamespace = factory.GetGlobalNamespace();
        mVoidEntryType = factory.GetBaseEntryType(BasicType::Void, 0, globalNamespace);
        if (mVoidEntryType == 0) {
            mVoidEntryType = factory.CreateBaseEntryType(BasicType::Void, 0, globalNamespace);
        }
    }
    return mVoidEntryType;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
