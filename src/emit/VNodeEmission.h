// Delivery of nodes to the host, on demand and depth first: a node asks for the objects of its
// scope and its type, which do the same, before its own object is made; a class then links its base
// classes and delivers its named children. What the factory receives for each tag stands in
// EntryObjects.cpp.
#pragma once

#include "core/KeyMixing.h"
#include "core/ReadingManner.h"
#include "nodes/VDebugInfoNode.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What a node needs of others before its own object can be made.
enum class EntryNeed : std::uint8_t {
    Scope,
    /// The object of the type, or what stands for it where the type delivers none.
    Type,
    /// The object of the base type behind an enumeration.
    BaseType,
    CompileUnit,
    /// The unit that this one shares its object with, if it isn't the first of its kind.
    FirstUnit,
    /// The types of the formal parameters.
    Parameters,
    /// The delivery ends here if a nested one has made the object already.
    Guard,
    /// Scope and return type of a subprogram's function type.
    FunctionScope,
    ReturnType,
};

/// The objects that the needs of a node came to; 0 where there is none.
struct EmissionInputs {
    ObjectId scope = 0;
    /// The node that is the scope, null for the global namespace.
    VDebugInfoNode* scopeNode = nullptr;
    ObjectId type = 0;
    ObjectId compileUnit = 0;
    ObjectId functionScope = 0;
    std::span<const ObjectId> parameters;
};

class VNodeEmission;

/// What a manner of reading delivers of which node.
struct DeliveryRules {
    static const DeliveryRules& Of(ReadingManner manner);

    /// The needs of a tag, in the order in which they are met. A tag that never delivers an object
    /// has none: qualifiers, subranges, enumerators and all unknown ones.
    std::span<const EntryNeed> (*needsOf)(dwarf_tag tag);
    /// Makes the object of a node that has none yet, see `VDebugInfoNode::CreateEntryObject`.
    bool (*createObject)(VDebugInfoNode& node, VNodeEmission& emission,
                         const EmissionInputs& inputs, ObjectId& id, bool& alreadyRegistered);
    /// The name of a type that has none, and completes an entry that has none. May mark it as
    /// anonymous.
    std::string_view (*nameOfNameless)(VDebugInfoNode& type);
};

/// The delivery of one tree.
///
/// The calls that a recursive delivery would nest stand in a list of frames, so that chains of any
/// length need no stack. A node may be asked for while its own delivery is in progress, since its
/// scope delivers it as a child: it is then delivered by the inner request, and the guard ends the
/// outer one. An inner request that comes although no object at all was made since the outer one
/// would come again and again. It is in vain and answered with 0, and so is one that comes when
/// very many are in progress.
class VNodeEmission {
public:
    VNodeEmission(VDwarf2Section& section, VCLIFactoryWrapper& factory);

    /// The node's object, made now if it wasn't yet; 0 if the node delivers none.
    ObjectId Deliver(VDebugInfoNode& node);

    [[nodiscard]] const DeliveryRules& Rules() const { return mRules; }
    [[nodiscard]] VDwarf2Section& Section() const { return mSection; }
    [[nodiscard]] VCLIFactoryWrapper& Factory() const { return mFactory; }

    /// Finds a free name for a variable whose name is taken in its scope.
    /// @param newName the name itself, or the name with a point and a number from 2 on
    /// @return false if the variable was delivered already, at this address
    bool MakeUniqueGlobalName(ObjectId scope, const std::string& name, std::string& newName,
                              std::uint64_t address);
    /// Takes note of a delivered variable, for `MakeUniqueGlobalName`.
    void RegisterVariable(ObjectId object, VDebugInfoNode& variable);

private:
    enum class Stage : std::uint8_t { Needs, BaseClasses, Children };

    struct Frame {
        VDebugInfoNode* node = nullptr;
        Stage stage = Stage::Needs;
        /// Needs that are met already.
        std::uint8_t metNeeds = 0;
        bool hasStarted = false;
        /// Frame of the same node that was in progress before, 0 if there is none.
        std::uint32_t outerFrame = 0;
        /// Frames of the same node that were in progress before.
        std::uint32_t outerFrameCount = 0;
        /// Objects made when the frame began.
        std::uint64_t objectCount = 0;
        ObjectId object = 0;
        EmissionInputs inputs;
        std::size_t firstParameter = 0;
        /// Where a walk over children or base classes stands.
        VDebugInfoNode* child = nullptr;
        /// Where a walk along a chain of types stands.
        VDebugInfoNode* chain = nullptr;
    };

    /// What is known of the variables of one name in one scope.
    struct TakenNames {
        /// All numbers before this one are taken.
        std::uint32_t nextNumber = 1;
        /// Addresses of the variables that have them.
        std::unordered_set<std::uint64_t, SeededHash> addresses;
    };

    bool Open(VDebugInfoNode& node);
    void Close();
    void Advance();
    bool Await(VDebugInfoNode& node, ObjectId& object);

    [[nodiscard]] bool PassesFilter(const VDebugInfoNode& node) const;
    [[nodiscard]] bool IsUndelivered(const VDebugInfoNode& node) const;
    [[nodiscard]] bool IsInVain(const Frame& outerFrame) const;
    [[nodiscard]] bool IsFindingReturnType(const Frame& frame) const;
    bool MeetNeeds();
    bool MeetNeed(Frame& frame, EntryNeed need);
    bool GetScopeEntryObject(Frame& frame, ObjectId& scope);
    bool GetTypeEntryObject(Frame& frame, VDebugInfoNode& node, ObjectId& type);
    bool MeetBaseType(Frame& frame);
    bool GetCompileUnitEntryObject(Frame& frame);
    bool MeetFirstUnit(Frame& frame);
    bool MeetParameters(Frame& frame);
    bool MeetReturnType(Frame& frame);
    VDebugInfoNode* SkipUndelivered(VDebugInfoNode* node);
    ObjectId TypeAtEndOfChain(const VDebugInfoNode& node);
    ObjectId UnknownTypeFor(const VDebugInfoNode& node);
    void CreateObject(Frame& frame);
    void AddBaseClasses(Frame& frame);
    void CreateChildEntryObjects(Frame& frame);
    static void PrefetchNextChild(const Frame& frame);

    VDwarf2Section& mSection;
    VCLIFactoryWrapper& mFactory;
    const DeliveryRules& mRules;
    std::vector<Frame> mFrames;
    /// Parameter types of all function types in progress, the innermost last.
    std::vector<ObjectId> mParameters;
    /// Answer to the last request.
    ObjectId mResult = 0;
    /// True when the innermost frame has an answer to take.
    bool mHasResult = false;
    /// True if the last request was in vain.
    bool mIsInVain = false;
    std::uint64_t mObjectCount = 0;
    /// Frames in progress that are inner requests.
    std::size_t mInnerFrameCount = 0;
    /// Ends of long chains of nodes without object, for some of their nodes.
    std::unordered_map<const VDebugInfoNode*, VDebugInfoNode*> mChainShortcuts;
    std::unordered_map<ObjectId, std::unordered_map<std::string, TakenNames, SeededHash>>
        mTakenNames;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
