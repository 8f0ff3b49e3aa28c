#include "nodes/VNodeMarks.h"

#include "nodes/VDebugInfoNode.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

void VNodeMarks::Insert(std::span<const VNodeInsertion> insertions) {
    InsertForEach(insertions, mMarks, [](const VDebugInfoNode& node) {
        return static_cast<std::uint8_t>(node.GetTasks());
    });
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
