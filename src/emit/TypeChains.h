// Chains of types that deliver no object: qualifiers, and whatever else has none. For
//
//     const volatile Gain* const table;
//
// the delivery of `table` looks past `const` to the pointer, and that of the pointer past `const`
// and `volatile` to `Gain`.
#pragma once

#include <unordered_map>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;
struct DeliveryRules;

/// The chains of one tree.
class TypeChains {
public:
    /// Borrows the rules.
    explicit TypeChains(const DeliveryRules& rules)
        : mRules(rules) {}

    /// Goes along the chain to the node whose type delivers an object, or to the chain's end. Nodes
    /// without object on the way would answer 0 and pass the question on. A chain of any length
    /// costs a few steps when it is asked for again, from any of its nodes.
    VDebugInfoNode* SkipUndelivered(VDebugInfoNode* node);

private:
    const DeliveryRules& mRules;
    /// Ends of long chains, for some of their nodes.
    std::unordered_map<const VDebugInfoNode*, VDebugInfoNode*> mShortcuts;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
