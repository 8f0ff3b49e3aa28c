// Chains of types that deliver no object, such as qualifiers. For
//
//     const volatile Gain* const table;
//
// the delivery of `table` looks past `const` to the pointer, and the delivery of the pointer past
// `const` and `volatile` to `Gain`.
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

    /// Follows the chain to the node whose type delivers an object, or to the chain's end. The
    /// nodes before it deliver none and would only pass the request on. Asking again, from any node
    /// of a chain of any length, costs at most 128 steps.
    VDebugInfoNode* SkipUndelivered(VDebugInfoNode* node);

private:
    const DeliveryRules& mRules;
    /// Ends of long chains, for some of their nodes.
    std::unordered_map<const VDebugInfoNode*, VDebugInfoNode*> mShortcuts;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
