// What each kind of node writes about itself into the dump of the tree, for a person who examines a
// file that was read wrongly. dwarf/NodeDumpFiles makes the files.
#include "core/FormatText.h"
#include "dwarf/codes/DwarfNames.h"
#include "nodes/ReferenceText.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "nodes/VDebugInfoNodeScopes.h"
#include "nodes/VDebugInfoNodeStructures.h"
#include "nodes/VDebugInfoNodeVariable.h"

#include <cinttypes>
#include <cstdarg>
#include <ostream>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumIndent = 28;

/// A list of members ends at about this many characters.
constexpr std::size_t sMaximumListLength = std::size_t{1} << 20U;

BRINDLE_PRINTF_LIKE(2, 3) void Print(std::ostream& stream, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    stream << FormatText(format, arguments);
    va_end(arguments);
}

std::string NameOf(const VDebugInfoNode* node, const char* otherwise) {
    return node != nullptr ? std::string(node->GetName()) : otherwise;
}

/// Number of parents up to the root, as far as it matters for an indent.
std::size_t IndentOf(const VDebugInfoNode& node) {
    std::size_t depth = 0;
    const VDebugInfoNode* parent = node.GetParent();
    for (; parent != nullptr && depth < sMaximumIndent; parent = parent->GetParent()) {
        ++depth;
    }
    return depth;
}

void DumpLink(std::ostream& stream, const VDebugInfoNode& node, const VDebugInfoNode* target,
              const char* indent, const char* kind) {
    if (target == nullptr) {
        return;
    }
    Print(stream, "%s  [1LNr offset: 0x%8.8" PRIx64 " %s '%16.16s' %s->", indent,
          std::uint64_t{node.GetOffset()}, GetDwarfTagName(node.GetTag()),
          NameOf(&node, "").c_str(), kind);
    target->DumpSummary(stream);
    stream << "]\n";
}

void DumpReferences(std::ostream& stream, const VDebugInfoNode& node, const char* indent) {
    if (node.GetTypeReferenceOffset() != 0) {
        Print(stream, "%s  Type-Reference....: 0x%8.8" PRIx64 " -> {%s}\n", indent,
              std::uint64_t{node.GetTypeReferenceOffset()}, GetReferenceText(node, 0).c_str());
    }
    if (const VAttributeValue specification = node.GetSpecificationAttribute();
        specification.IsDefined()) {
        Print(stream, "%s  Specification.....: 0x%8.8" PRIx64 " -> {%s}\n", indent,
              specification.IsReference() ? specification.mValue : 0,
              GetReferenceText(node, 1).c_str());
    }
}

void DumpSizes(std::ostream& stream, const VDebugInfoNode& node, const char* indent) {
    if (node.HasMemberOffset()) {
        Print(stream, "%s  Address Offset....: 0x%8.8" PRIx64 "\n", indent,
              static_cast<std::uint64_t>(
                  std::int64_t{static_cast<std::int32_t>(node.GetMemberOffset())}));
    }
    if (node.HasByteSize()) {
        Print(stream, "%s  Byte-size.........: %d\n", indent, node.GetByteSize());
    }
    if (node.HasEncoding()) {
        Print(stream, "%s  Encoding..........: %s\n", indent,
              GetDwarfEncodingName(node.GetEncoding()));
    }
}

void DumpProperties(std::ostream& stream, const VDebugInfoNode& node, const char* indent) {
    if (node.IsDeclaration()) {
        Print(stream, "%s  Declaration       : Yes\n", indent);
    }
    if (node.IsExternal()) {
        Print(stream, "%s  External(global)  : Yes\n", indent);
    }
    if (node.IsBitFieldFromLocation()) {
        Print(stream, "%s  [BIT-FIELD INFO FROM LOCATION (address)]\n", indent);
    }
    if (node.GetBitSize() != 0) {
        Print(stream, "%s  Bit size..........: %d\n", indent,
              static_cast<std::int32_t>(node.GetBitSize()));
        Print(stream, "%s  Bit offset........: %d\n", indent,
              static_cast<std::int32_t>(node.GetBitOffset()));
    }
    if (node.HasAnonymousName()) {
        Print(stream, "%s  [Has ANONYMOUS (generated) name]\n", indent);
    }
}

void DumpBound(std::ostream& stream, const VAttributeValue& bound, const std::string& indent,
               const char* label) {
    if (bound.IsDefined()) {
        Print(stream, "%s  %s\n", indent.c_str(), bound.ToString(label).c_str());
    }
}

} // namespace

void VDebugInfoNode::DumpWithHead(std::ostream& stream, int count) const {
    const std::string indent(IndentOf(*this), '\t');
    Print(stream, "%s%8.8x {%d. node-rec.: %d; tag-rec.: %d; )}\n", indent.c_str(), GetOffset(),
          count, GetNodeRecord(), GetTagRecord());
    Print(stream, "%s%s(0x%x)>\n", indent.c_str(), GetDwarfTagName(GetTag()), GetTag());
    Dump(stream, indent);
    stream << '\n';
}

void VDebugInfoNode::Dump(std::ostream& stream, const std::string& indentText) const {
    const char* indent = indentText.c_str();
    if (HasNameAttribute()) {
        Print(stream, "%s  Name..............: \"%s\" [Parent name \"%s\"]\n", indent,
              NameOf(this, "").c_str(), NameOf(GetParent(), "").c_str());
    }
    DumpReferences(stream, *this, indent);
    DumpSizes(stream, *this, indent);
    DumpProperties(stream, *this, indent);
    if (const VDebugInfoNode* definition = GetDeclarationResolved()) {
        Print(stream, "%s  Declaration Resolv:", indent);
        definition->DumpSummary(stream);
        stream << '\n';
    }
    if (IsByteSizeFromTypeReference()) {
        Print(stream, "%s  [Byte-size resolved from type-reference]\n", indent);
    }
    DumpLink(stream, *this, GetTypeNode(), indent, "type");
    DumpLink(stream, *this, GetSpecificationNode(), indent, "specification-type");
}

void VDebugInfoNodeVariable::Dump(std::ostream& stream, const std::string& indentText) const {
    VDebugInfoNode::Dump(stream, indentText);
    const char* indent = indentText.c_str();
    Print(stream, "%s  Has Location      : %s\n", indent, HasLocation() ? "Yes" : "No");
    if (HasLocation()) {
        Print(stream, "%s  Address (location): 0x%8.8" PRIx64 " %s\n", indent, GetLocationAddress(),
              IsRegisterOrStackLocation() && !mIsDiscarded ? "[REGISTER/STACK ADDRESS]" : " ");
    }
    if (mIsDiscarded) {
        Print(stream, "%s  Is-Discarded......: Yes\n", indent);
    }
    if (IsAddressFromSymbolTable()) {
        Print(stream, "%s  Addr. from.symtab : Yes\n", indent);
    }
    if (IsRedundantDeclaration()) {
        Print(stream, "%s  Is-Redundant-Decl.: Yes\n", indent);
    }
}

void VDebugInfoNodeCompileUnit::Dump(std::ostream& stream, const std::string& indentText) const {
    VDebugInfoNode::Dump(stream, indentText);
    const char* indent = indentText.c_str();
    Print(stream, "%s  Compile Directory : \"%s\"\n", indent,
          mCompUnitDir.mDefined ? std::string(mCompUnitDir.mValue).c_str() : "<none>");
    const VDebugInfoNode* first = GetFirstKindOfCompileUnit();
    if (first != nullptr && first != this) {
        Print(stream, "%s  First-Kind-Of c.u.: 0x%8.8" PRIx64 " [name = \"%s\"]\n", indent,
              std::uint64_t{first->GetOffset()}, NameOf(first, "").c_str());
    }
}

void VDebugInfoNodeSubrange::Dump(std::ostream& stream, const std::string& indentText) const {
    VDebugInfoNode::Dump(stream, indentText);
    DumpBound(stream, mLowerBound, indentText, "Lower Bound");
    DumpBound(stream, mUpperBound, indentText, "Upper Bound");
    DumpBound(stream, mCount, indentText, "Array Items Count");
}

void VDebugInfoNode::DumpSummary(std::ostream& stream) const {
    Print(stream, "0x%8.8" PRIx64 " %s, tag-rec.: %d, Name:'%16.16s', Parent:'%16.16s'",
          std::uint64_t{GetOffset()}, GetDwarfTagName(GetTag()), GetTagRecord(),
          NameOf(this, "").c_str(), NameOf(GetParent(), "<none>").c_str());
}

void VDebugInfoNodeStructuresBase::DumpSummary(std::ostream& stream) const {
    VDebugInfoNode::DumpSummary(stream);
    std::ptrdiff_t childCount = 0;
    int memberCount = 0;
    std::string names;
    for (const VDebugInfoNode* child : Children()) {
        if (child->GetTag() == DW_TAG_member) {
            if (names.size() < sMaximumListLength) {
                names.append(childCount > 0 ? ", '" : "'").append(child->GetName()) += '\'';
            }
            ++memberCount;
        }
        ++childCount;
    }
    Print(stream, ", children: %td, members: %d {%s}", childCount, memberCount, names.c_str());
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
