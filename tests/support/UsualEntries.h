// The entries that most test trees consist of.
#pragma once

#include "support/DwarfSections.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

inline Die UnitDie(std::vector<Die> entries, std::vector<DieAttribute> attributes = {Name("a.c")}) {
    return Die(Reader::DWARF::DW_TAG_compile_unit, std::move(attributes), std::move(entries));
}

/// One unit named "a.c".
inline DwarfSections Unit(std::vector<Die> entries) {
    return DwarfSections().Unit({UnitDie(std::move(entries))});
}

/// The signed integer of four bytes.
inline Die Int(DieLabel label) {
    return Die(label, Reader::DWARF::DW_TAG_base_type,
               {Name("int"), ByteSize(4), Encoding(Reader::DWARF::DW_ATE_signed)});
}

inline Die Struct(DieLabel label, const std::string& name, std::uint64_t size,
                  std::vector<Die> children = {}) {
    return Die(label, Reader::DWARF::DW_TAG_structure_type, {Name(name), ByteSize(size)},
               std::move(children));
}

inline Die Member(const std::string& name, DieLabel type, std::uint64_t offset) {
    return Die(Reader::DWARF::DW_TAG_member, {Name(name), Type(type), MemberOffset(offset)});
}

inline Die Typedef(DieLabel label, const std::string& name, DieLabel type) {
    return Die(label, Reader::DWARF::DW_TAG_typedef, {Name(name), Type(type)});
}

inline Die Pointer(DieLabel label, DieLabel type) {
    return Die(label, Reader::DWARF::DW_TAG_pointer_type, {Type(type)});
}

/// An external variable.
inline Die Variable(const std::string& name, DieLabel type, std::uint64_t address = 0x1000) {
    return Die(Reader::DWARF::DW_TAG_variable,
               {Name(name), Type(type), External(), Address(address)});
}

} // namespace Tessel::Norn::Brindle::Tests
