// The readable text of a node's references and of its scope, for the dump of the tree. For use
// after cycles of references are cut.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// The text of the node's type (`which` 0) or specification (`which` 1), pointers and arrays
/// included. At most 1000 links are followed.
std::string GetReferenceText(const VDebugInfoNode& node, int which);

/// The scope part of a dump line, empty without a parent.
std::string GetScopeText(const VDebugInfoNode& node);

} // namespace Tessel::Norn::Brindle::Reader::DWARF
