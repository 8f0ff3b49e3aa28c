#include "emit/TypeChains.h"

#include "emit/DeliveryRules.h"
#include "nodes/VDebugInfoNode.h"

#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// Links between two shortcuts of a chain: a walk looks for one only after this many links.
constexpr int sShortcutDistance = 64;

} // namespace

VDebugInfoNode* TypeChains::SkipUndelivered(VDebugInfoNode* node) {
    std::vector<VDebugInfoNode*> landmarks;
    for (int link = 1;; ++link) {
        VDebugInfoNode* type = node->GetTypeNode();
        VDebugInfoNode* next = node->GetTypeOrSpecificationNode();
        if (next == nullptr || (type != nullptr && !mRules.IsUndelivered(*type))) {
            break;
        }
        node = next;
        if (link < sShortcutDistance) {
            continue;
        }
        if (const auto shortcut = mShortcuts.find(node); shortcut != mShortcuts.end()) {
            node = shortcut->second;
            break;
        }
        if (link % sShortcutDistance == 0) {
            landmarks.push_back(node);
        }
    }
    for (const VDebugInfoNode* landmark : landmarks) {
        mShortcuts.emplace(landmark, node);
    }
    return node;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
