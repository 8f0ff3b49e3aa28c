// From the decoded entry to its node: which class a tag gets, and what happens immediately when a
// node is made. A tag without a class of its own becomes a general node.
#include "container/VElfFile.h"
#include "dwarf/VAbrTab.h"
#include "dwarf/VCompileUnitReader.h"
#include "dwarf/VDie2.h"
#include "dwarf/VDwarf2Section.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "nodes/VDebugInfoNodeConstants.h"
#include "nodes/VDebugInfoNodeDerivedTypes.h"
#include "nodes/VDebugInfoNodeScopes.h"
#include "nodes/VDebugInfoNodeStructures.h"
#include "nodes/VDebugInfoNodeVariable.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Units report progress if their root entry lies before this unit offset, as it does after a
/// header of normal size.
constexpr std::uint32_t sProgressOffset = 16;

constexpr std::uint8_t sGlobalBinding = 0x10;

} // namespace

bool VDie2::MapCurrentDieToNode(VCompileUnitHeader* header, VDebugInfoNode* parent) {
    if (mTag == DW_TAG_compile_unit &&
        VDwarf2Section::SectionToUnitOffset(*header, mOffset) < sProgressOffset) {
        mSection->TellProgress(mOffset);
    }
    mNode = CreateNode(header, parent);
    mSection->mDieNodes.Insert(*mNode);
    return true;
}

VDebugInfoNode* VDie2::CreateNode(VCompileUnitHeader* header, VDebugInfoNode* parent) {
    if (mTag == DW_TAG_variable && mLocationAddress != 0) {
        const Elf32_Sym* symbol =
            mSection->mElfFile->FindSymbolByAddress(mLocationAddress, mName.Get());
        mIsExternal = mIsExternal || (symbol != nullptr && (symbol->st_info & sGlobalBinding) != 0);
    }
    VDebugInfoNode* node = CreateNodeByTag(header, parent);
    node->InitFromDie(*this, *mSection);
    return node;
}

VDebugInfoNode* VDie2::CreateUnitNode(VCompileUnitHeader* header) {
    auto* unit = mSection->mArena.Create<VDebugInfoNodeCompileUnit>(
        mOffset, header, mSection->mTexts.Keep(mName),
        VAttributeString{mSection->mTexts.Keep(mRareAttributes.mProducer.mValue),
                         mRareAttributes.mProducer.mDefined});
    if (mItem->mIsPartialUnit) {
        unit->SetPartial();
    }
    return unit;
}

VDebugInfoNode* VDie2::CreateNodeByTag(VCompileUnitHeader* header, VDebugInfoNode* parent) {
    VNodeArena& arena = mSection->mArena;
    const auto plain = [&]<typename Node>() { return arena.Create<Node>(mOffset, header, parent); };
    const auto name = [&] { return mSection->mTexts.Keep(mName); };
    const auto named = [&]<typename Node>() {
        return arena.Create<Node>(mOffset, header, parent, name());
    };
    const auto constant = [&]<typename Node>() {
        return arena.Create<Node>(mOffset, header, parent, name(), mRareAttributes.mConstValue);
    };
    const auto markTemplate = [parent](VDebugInfoNode* parameter) {
        if (parent != nullptr) {
            parent->SetHasTemplateParameters(true);
        }
        return parameter;
    };
    switch (mTag) {
    case DW_TAG_array_type:
        return plain.operator()<VDebugInfoNodeArray>();
    case DW_TAG_class_type:
        return named.operator()<VDebugInfoNodeClass>();
    case DW_TAG_enumeration_type:
        return named.operator()<VDebugInfoNodeEnumType>();
    case DW_TAG_lexical_block:
        return plain.operator()<VDebugInfoNodeBlock>();
    case DW_TAG_member:
        return named.operator()<VDebugInfoNodeMember>();
    case DW_TAG_pointer_type:
        return plain.operator()<VDebugInfoNodePointerType>();
    case DW_TAG_reference_type:
        return plain.operator()<VDebugInfoNodeReferenceType>();
    case DW_TAG_compile_unit:
        return CreateUnitNode(header);
    case DW_TAG_structure_type:
        return named.operator()<VDebugInfoNodeStructure>();
    case DW_TAG_subroutine_type:
        return plain.operator()<VDebugInfoSubroutineType>();
    case DW_TAG_typedef:
        return named.operator()<VDebugInfoNodeTypeDefinition>();
    case DW_TAG_union_type:
        return named.operator()<VDebugInfoNodeUnion>();
    case DW_TAG_inheritance: {
        auto* inheritance = plain.operator()<VDebugInfoNodeInheritance>();
        if (parent != nullptr) {
            parent->AddInheritance(inheritance);
        }
        return inheritance;
    }
    case DW_TAG_subrange_type:
        return plain.operator()<VDebugInfoNodeSubrange>();
    case DW_TAG_base_type:
        return named.operator()<VDebugInfoNodeBaseType>();
    case DW_TAG_enumerator:
        return constant.operator()<VDebugInfoNodeEnumerator>();
    case DW_TAG_subprogram:
        return named.operator()<VDebugInfoNodeSubprogram>();
    case DW_TAG_template_type_param:
        return markTemplate(named.operator()<VDebugInfoNodeTemplateTypeParameter>());
    case DW_TAG_template_value_param:
        return markTemplate(constant.operator()<VDebugInfoNodeTemplateValueParam>());
    case DW_TAG_variable:
        return arena.Create<VDebugInfoNodeVariable>(mOffset, header, parent, name(),
                                                    mLocationAddress);
    case DW_TAG_namespace:
        return named.operator()<VDebugInfoNodeNamespace>();
    case DW_TAG_class_template:
        return named.operator()<VDebugInfoNodeClassTemplate>();
    default:
        if (VDebugInfoNodeGeneral::IsWideTag(mTag)) {
            return arena.Create<VDebugInfoNodeOfWideTag>(mTag, mOffset, header, parent, name());
        }
        return arena.Create<VDebugInfoNodeGeneral>(mTag, mOffset, header, parent, name());
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
