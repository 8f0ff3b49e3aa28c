// Delivery of nodes to the host, on demand and depth first: a node requests the objects of its
// scope and its type, which do the same, before its own object is made; a class then links its base
// classes and delivers its named children. EntryObjects.cpp says what the factory receives for each
// tag. For
//
//     namespace motor {
//     struct Gain { float p; };
//     Gain gain;
//     }
//
// the request for `gain` leads to these calls of the host:
//
//     CreateCompileUnit a_cpp             the scope of `motor`
//     GetNamespace, CreateNamespace motor the scope of `gain`
//     CreateClassEntryType Gain           the type of `gain`, whose scope is there by now
//     CreateBaseEntryType float           asked for by the child `p` of `Gain`
//     CreateMemberData p
//     GetGlobalData gain                  is the name free?
//     CreateGlobalData gain
#pragma once

#include "emit/DeliveredVariables.h"
#include "emit/DeliveryRules.h"
#include "emit/InnerRequests.h"
#include "emit/OfLastScope.h"
#include "emit/TypeChains.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// The delivery of one tree.
///
/// The calls that a recursive delivery would nest are in a list of frames, so that chains of any
/// length need no stack. A node may be requested while its own delivery is in progress, since its
/// scope delivers it as a child: the inner request then delivers it, and the guard ends the outer
/// one. An inner request in vain, see `InnerRequests`, is answered with 0.
class VNodeEmission {
public:
    VNodeEmission(VDwarf2Section& section, VCLIFactoryWrapper& factory);

    /// The node's object, made now if it wasn't yet; 0 if the node delivers none.
    ObjectId Deliver(VDebugInfoNode& node);

    [[nodiscard]] const DeliveryRules& Rules() const { return mRules; }
    [[nodiscard]] VDwarf2Section& Section() const { return mSection; }
    [[nodiscard]] VCLIFactoryWrapper& Factory() const { return mFactory; }

    [[nodiscard]] DeliveredVariables& Variables() { return mVariables; }

private:
    enum class Stage : std::uint8_t { Needs, BaseClasses, Children };

    struct Frame {
        VDebugInfoNode* node = nullptr;
        Stage stage = Stage::Needs;
        /// Number of needs that are already met.
        std::uint8_t metNeeds = 0;
        bool hasStarted = false;
        /// Frame of the same node that was already in progress, 0 if there is none.
        std::uint32_t outerFrame = 0;
        InnerRequests::Note note;
        ObjectId object = 0;
        EmissionInputs inputs;
        std::size_t firstParameter = 0;
        /// Current position of a walk over children or base classes.
        VDebugInfoNode* child = nullptr;
        /// How deep in variants `child` lies.
        std::uint32_t depth = 0;
        /// Current position of a walk along a chain of types.
        VDebugInfoNode* chain = nullptr;
    };

    bool Open(VDebugInfoNode& node);
    void Close();
    void Advance();
    bool Await(VDebugInfoNode& node, ObjectId& object);

    [[nodiscard]] bool IsFindingReturnType(const Frame& frame) const;
    bool MeetNeeds();
    bool MeetNeed(Frame& frame, EntryNeed need);
    VDebugInfoNode* FindScopeNode(const VDebugInfoNode& node);
    bool GetScopeEntryObject(Frame& frame, ObjectId& scope);
    bool GetTypeEntryObject(Frame& frame, VDebugInfoNode& node, ObjectId& type);
    bool MeetBaseType(Frame& frame);
    bool GetCompileUnitEntryObject(Frame& frame);
    bool MeetFirstUnit(Frame& frame);
    bool MeetParameters(Frame& frame);
    bool MeetReturnType(Frame& frame);
    ObjectId TypeAtEndOfChain(const VDebugInfoNode& node);
    ObjectId UnknownTypeFor(const VDebugInfoNode& node);
    void CreateObject(Frame& frame);
    void AddBaseClasses(Frame& frame);
    void CreateChildEntryObjects(Frame& frame);
    void PrefetchNextChild(const Frame& frame) const;

    VDwarf2Section& mSection;
    VCLIFactoryWrapper& mFactory;
    const DeliveryRules& mRules;
    std::vector<Frame> mFrames;
    /// Parameter types of all function types in progress, the innermost last.
    std::vector<ObjectId> mParameters;
    /// Answer to the last request.
    ObjectId mResult = 0;
    /// True if the innermost frame has a result to take.
    bool mHasResult = false;
    /// True if the last request was in vain.
    bool mIsInVain = false;
    DeliveredVariables mVariables;
    TypeChains mTypeChains;
    OfLastScope<VDebugInfoNode*> mScopesAround;
    InnerRequests mInnerRequests;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
