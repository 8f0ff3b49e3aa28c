// The walk that delivers a finished tree: which nodes are roots of delivery, and the objects that
// the section keeps for all of them.
#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "emit/VNodeEmission.h"
#include "host/VDWARFReaderWrapper.h"
#include "nodes/VDebugInfoNode.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// From this number of nodes on, progress is told a hundred times.
constexpr std::size_t sManyNodes = 200;

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
    const std::span<VDebugInfoNode* const> nodes = mDieNodes.InOffsetOrder();
    const std::size_t step = nodes.size() >= sManyNodes ? nodes.size() / 100 : 1;
    const bool allTypes = mReader != nullptr && mReader->IsReadAllTypes();
    if (mReader != nullptr) {
        mReader->SetProgressInterval(0, static_cast<std::int32_t>(nodes.size()));
        mReader->SetProgressValue(0);
        mReader->SetProgressText("Post-Processing...");
    }
    VNodeEmission emission(*this, *mElfFile->mFactory);
    std::size_t last = 0;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        if (IsEmissionRoot(*nodes[index], allTypes)) {
            emission.Deliver(*nodes[index]);
        }
        if (step + last < index) {
            if (mReader != nullptr) {
                mReader->SetProgressValue(static_cast<std::int32_t>(index));
            }
            last = index;
        }
    }
    if (VElfOptions::mDumpDebugInfoNodes != 0) {
        DumpDebugInfoNodes();
    }
    return true;
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
