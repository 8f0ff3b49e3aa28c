#include "emit/VNodeEmission.h"

#include "container/VElfFile.h"
#include "core/ConsoleOutput.h"
#include "core/Prefetch.h"
#include "core/VElfOptions.h"
#include "diagnostics/ElfLog.h"
#include "dwarf/VDwarf2Section.h"
#include "emit/VCLIFactoryWrapper.h"
#include "nodes/VDebugInfoNodeStructures.h"

#include <ostream>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The node around this one, or around the one that it completes.
VDebugInfoNode* NodeAround(const VDebugInfoNode& node) {
    const VDebugInfoNode* specification = node.GetSpecificationNode();
    return (specification != nullptr ? *specification : node).GetParent();
}

bool IsAnswer(const VDebugInfoNode* scope) {
    return scope == nullptr || scope->IsEntryScope();
}

bool HasBaseClasses(const VDebugInfoNode& node) {
    return node.GetTag() == DW_TAG_class_type || node.GetTag() == DW_TAG_structure_type;
}

} // namespace

VNodeEmission::VNodeEmission(VDwarf2Section& section, VCLIFactoryWrapper& factory)
    : mSection(section)
    , mFactory(factory)
    , mRules(DeliveryRules::Of(section.mElfFile->mManner))
    , mVariables(section, factory)
    , mTypeChains(mRules) {}

ObjectId VNodeEmission::Deliver(VDebugInfoNode& node) {
    const std::size_t outerFrames = mFrames.size();
    if (Open(node)) {
        while (mFrames.size() > outerFrames) {
            Advance();
        }
        mHasResult = false;
    }
    return mResult;
}

bool VNodeEmission::Open(VDebugInfoNode& node) {
    const std::uint32_t outerFrame = node.GetEmissionFrame();
    const bool hasAnswer = node.GetEntryObject() != 0 || node.IsDeliveryRefused();
    mIsInVain =
        !hasAnswer && outerFrame != 0 && mInnerRequests.IsInVain(mFrames[outerFrame - 1].note);
    if (mIsInVain && IsFindingReturnType(mFrames[outerFrame - 1])) {
        // The return type lies in the function itself, which therefore gets none.
        CreateObject(mFrames[outerFrame - 1]);
    }
    if (hasAnswer || mIsInVain) {
        mResult = node.GetEntryObject();
        return false;
    }
    const InnerRequests::Note note =
        mInnerRequests.Begin(outerFrame != 0 ? &mFrames[outerFrame - 1].note : nullptr);
    Frame& frame = mFrames.emplace_back();
    frame.node = &node;
    frame.outerFrame = outerFrame;
    frame.note = note;
    frame.firstParameter = mParameters.size();
    node.SetEmissionFrame(static_cast<std::uint32_t>(mFrames.size()));
    return true;
}

void VNodeEmission::Close() {
    const Frame& frame = mFrames.back();
    frame.node->SetEmissionFrame(frame.outerFrame);
    mParameters.resize(frame.firstParameter);
    mInnerRequests.End(frame.outerFrame != 0);
    mResult = frame.node->GetEntryObject();
    mHasResult = true;
    mIsInVain = false;
    mFrames.pop_back();
}

void VNodeEmission::Advance() {
    switch (mFrames.back().stage) {
    case Stage::Needs:
        if (MeetNeeds()) {
            mFrames.back().stage = Stage::BaseClasses;
        }
        break;
    case Stage::BaseClasses:
        AddBaseClasses(mFrames.back());
        break;
    case Stage::Children:
        CreateChildEntryObjects(mFrames.back());
        break;
    }
}

/// @return false if a frame was opened whose result must come first
bool VNodeEmission::Await(VDebugInfoNode& node, ObjectId& object) {
    if (!mHasResult && Open(node)) {
        return false;
    }
    mHasResult = false;
    object = mResult;
    return true;
}

bool VNodeEmission::IsFindingReturnType(const Frame& frame) const {
    const std::span<const EntryNeed> needs = mRules.needsOf(frame.node->GetTag());
    return frame.stage == Stage::Needs && frame.metNeeds < needs.size() &&
           needs[frame.metNeeds] == EntryNeed::ReturnType;
}

/// @return false if a frame was opened whose result must come first
bool VNodeEmission::MeetNeeds() {
    const std::size_t index = mFrames.size() - 1;
    if (!mFrames[index].hasStarted) {
        mFrames[index].hasStarted = true;
        if (!mRules.PassesFilter(*mFrames[index].node)) {
            return true;
        }
    }
    const std::span<const EntryNeed> needs = mRules.needsOf(mFrames[index].node->GetTag());
    while (mFrames[index].metNeeds < needs.size()) {
        const EntryNeed need = needs[mFrames[index].metNeeds];
        if (need == EntryNeed::Guard && mFrames[index].node->GetEntryObject() != 0) {
            return true;
        }
        if (!MeetNeed(mFrames[index], need)) {
            return false;
        }
        ++mFrames[index].metNeeds;
    }
    CreateObject(mFrames[index]);
    return true;
}

bool VNodeEmission::MeetNeed(Frame& frame, EntryNeed need) {
    switch (need) {
    case EntryNeed::Scope:
        return GetScopeEntryObject(frame, frame.inputs.scope);
    case EntryNeed::Type:
        return GetTypeEntryObject(frame, *frame.node, frame.inputs.type);
    case EntryNeed::BaseType:
        return MeetBaseType(frame);
    case EntryNeed::CompileUnit:
        return GetCompileUnitEntryObject(frame);
    case EntryNeed::FirstUnit:
        return MeetFirstUnit(frame);
    case EntryNeed::Parameters:
        return MeetParameters(frame);
    case EntryNeed::FunctionScope:
        return GetScopeEntryObject(frame, frame.inputs.functionScope);
    case EntryNeed::ReturnType:
        return MeetReturnType(frame);
    case EntryNeed::Guard:
        break;
    }
    return true;
}

// Usually the first node around is the scope. If it isn't, siblings of the node or of its parent
// share all else of the way, which may be long.
VDebugInfoNode* VNodeEmission::FindScopeNode(const VDebugInfoNode& node) {
    VDebugInfoNode* parent = NodeAround(node);
    if (IsAnswer(parent)) {
        return parent;
    }
    VDebugInfoNode* outer = NodeAround(*parent);
    return IsAnswer(outer) ? outer : mScopesAround.Get(outer, [](const VDebugInfoNode* inner) {
        return inner->FindScopeNode();
    });
}

bool VNodeEmission::GetScopeEntryObject(Frame& frame, ObjectId& scope) {
    frame.inputs.scopeNode = FindScopeNode(*frame.node);
    if (frame.inputs.scopeNode == nullptr) {
        scope = mFactory.GetGlobalNamespace();
        return true;
    }
    return Await(*frame.inputs.scopeNode, scope);
}

bool VNodeEmission::GetTypeEntryObject(Frame& frame, VDebugInfoNode& node, ObjectId& type) {
    if (frame.chain == nullptr) {
        frame.chain = mTypeChains.SkipUndelivered(&node);
    }
    while (VDebugInfoNode* next = frame.chain->GetTypeNode()) {
        if (!Await(*next, type)) {
            return false;
        }
        if (type == 0 && mIsInVain) {
            type = UnknownTypeFor(*next);
        }
        if (type != 0 || mIsInVain) {
            frame.chain = nullptr;
            return true;
        }
        frame.chain = mTypeChains.SkipUndelivered(next);
    }
    type = TypeAtEndOfChain(*frame.chain);
    frame.chain = nullptr;
    return true;
}

ObjectId VNodeEmission::TypeAtEndOfChain(const VDebugInfoNode& node) {
    return node.GetTag() == DW_TAG_pointer_type ? mSection.GetVoidEntryTypeObject()
                                                : UnknownTypeFor(node);
}

ObjectId VNodeEmission::UnknownTypeFor(const VDebugInfoNode& node) {
    return mSection.GetUnknownEntryTypeObject(static_cast<std::uint32_t>(node.GetByteSize()));
}

bool VNodeEmission::MeetBaseType(Frame& frame) {
    if (frame.chain == nullptr) {
        frame.chain = frame.node->GetBaseTypeNode();
    }
    ObjectId& type = frame.inputs.type;
    if (frame.chain != nullptr && !Await(*frame.chain, type)) {
        return false;
    }
    frame.chain = nullptr;
    if (type == 0) {
        type = UnknownTypeFor(*frame.node);
    }
    return true;
}

bool VNodeEmission::GetCompileUnitEntryObject(Frame& frame) {
    VDebugInfoNode* compileUnit = frame.node->GetCompileUnitHeader()->mCompileUnitNode;
    return compileUnit == nullptr || Await(*compileUnit, frame.inputs.compileUnit);
}

bool VNodeEmission::MeetFirstUnit(Frame& frame) {
    VDebugInfoNode* first = frame.node->GetFirstKindOfCompileUnit();
    return first == nullptr || first == frame.node || Await(*first, frame.inputs.compileUnit);
}

bool VNodeEmission::MeetParameters(Frame& frame) {
    if (frame.child == nullptr) {
        frame.child = frame.node->FirstChild();
    }
    for (; frame.child != nullptr; frame.child = frame.child->NextSiblingIn(*frame.node)) {
        if (frame.child->GetTag() != DW_TAG_formal_parameter) {
            continue;
        }
        ObjectId type = 0;
        if (!GetTypeEntryObject(frame, *frame.child, type)) {
            return false;
        }
        if (type != 0) {
            mParameters.push_back(type);
        }
    }
    return true;
}

bool VNodeEmission::MeetReturnType(Frame& frame) {
    return frame.node->GetTypeOrSpecificationNode() == nullptr ||
           GetTypeEntryObject(frame, *frame.node, frame.inputs.type);
}

void VNodeEmission::CreateObject(Frame& frame) {
    VDebugInfoNode& node = *frame.node;
    if (node.IsDeliveryRefused()) {
        return;
    }
    frame.inputs.parameters = std::span(mParameters).subspan(frame.firstParameter);
    ObjectId object = 0;
    bool isAlreadyRegistered = false;
    if (!node.CreateEntryObject(*this, frame.inputs, object, isAlreadyRegistered)) {
        if (node.GetEntryObject() == 0) {
            node.SetDropped(mSection.mArena);
        }
        return;
    }
    frame.object = object;
    node.SetEntryObject(object, mSection.mArena);
    mInnerRequests.CountObject();
    if (object == 0) {
        node.SetDeliveryRefused(mSection.mArena);
        ConsoleOutput() << "Object ID = 0 (node-rec.: " << node.GetNodeRecord() << ")";
    }
}

void VNodeEmission::AddBaseClasses(Frame& frame) {
    VDebugInfoNode& node = *frame.node;
    if (frame.object == 0 || !HasBaseClasses(node)) {
        frame.child = nullptr;
        frame.stage = Stage::Children;
        return;
    }
    const auto& structure = static_cast<const VDebugInfoNodeStructuresBase&>(node);
    if (frame.child == nullptr) {
        frame.child = structure.FirstInheritance();
    }
    while (VDebugInfoNode* inheritance = frame.child) {
        if (VDebugInfoNode* type = inheritance->GetTypeNode()) {
            ObjectId baseClass = 0;
            if (!Await(*type->FindStructuredTypeNode(), baseClass)) {
                return;
            }
            if (baseClass != 0) {
                mFactory.AddBaseClass(frame.object, baseClass, inheritance->GetMemberOffset());
            }
        } else if (VElfOptions::mIsLogFile != 0) {
            elflog("%s[Class Reference %8.8x  defined in Inheritance tag %8.8x not found!]",
                   tag_alignment.c_str(), inheritance->GetTypeReferenceOffset(),
                   inheritance->GetOffset());
        }
        frame.child = structure.NextInheritance(*inheritance);
    }
    frame.stage = Stage::Children;
}

/// The next child's name is needed first, and it may lie anywhere in a large section.
BRINDLE_FETCHES void VNodeEmission::PrefetchNextChild(const Frame& frame) const {
    std::uint32_t depth = frame.depth;
    if (const VDebugInfoNode* next = mRules.nextOf(*frame.node, *frame.child, depth)) {
        Prefetch(next->GetNameStart());
    }
}

void VNodeEmission::CreateChildEntryObjects(Frame& frame) {
    VDebugInfoNode& node = *frame.node;
    if (IsAggregate(node.GetTag())) {
        if (frame.child == nullptr) {
            frame.child = node.FirstChild();
        }
        while (frame.child != nullptr) {
            PrefetchNextChild(frame);
            ObjectId object = 0;
            if (frame.child->GetNameOrNull() != nullptr && !Await(*frame.child, object)) {
                return;
            }
            frame.child = mRules.nextOf(node, *frame.child, frame.depth);
        }
    }
    Close();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
