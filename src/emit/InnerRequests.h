// Requests for a node while its own delivery is in progress. They are common:
//
//     struct Node {
//         struct Link { Node* next; } link;
//     };
//
// If `Link` is requested first, it requests its scope `Node`, which delivers its children and so
// requests `Link` again. That inner request makes the object, and the outer one finds it made. But
// if types need each other before either object can be made, the inner request would come again and
// again. Such requests are in vain.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Judges the inner requests of one delivery.
class InnerRequests {
public:
    /// What is kept about a request in progress.
    struct Note {
        /// Requests for the same node that were in progress before.
        std::uint32_t outerCount = 0;
        /// Objects made when the request began.
        std::uint64_t objectCount = 0;
    };

    /// True if an inner request must be answered with 0 at once: no object at all was made since
    /// the outer one, so that nothing has changed for it, or too many are in progress.
    [[nodiscard]] bool IsInVain(const Note& outer) const {
        return outer.objectCount == mObjectCount || outer.outerCount + 1 >= kMostOfNode ||
               mInProgress >= kMostOfAll;
    }

    /// Begins a request.
    /// @param outer the request for the same node that is in progress, null if there is none
    Note Begin(const Note* outer) {
        mInProgress += outer != nullptr ? 1 : 0;
        return {outer != nullptr ? outer->outerCount + 1 : 0, mObjectCount};
    }
    /// @param isInner as for `Begin`
    void End(bool isInner) { mInProgress -= isInner ? 1 : 0; }

    void CountObject() { ++mObjectCount; }

private:
    /// Requests for one node that may be in progress at a time, and inner requests for all nodes.
    /// Types that refer to each other through many structures nest only a few; a damaged file could
    /// fill the memory with them.
    static constexpr std::uint32_t kMostOfNode = 100;
    static constexpr std::size_t kMostOfAll = 100'000;

    std::uint64_t mObjectCount = 0;
    std::size_t mInProgress = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
