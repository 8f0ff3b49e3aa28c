// The reference for a whole read: walks over all debug entries of a file with libdw and reads the
// value of every attribute, in the cheapest way that libdw offers for its form. It resolves and
// keeps nothing, and prints its counts; peers.py runs it beside the reader.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dwarf.h>
#include <elfutils/libdw.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

struct Counts {
    std::uint64_t units = 0;
    std::uint64_t entries = 0;
    std::uint64_t attributes = 0;
    std::uint64_t unreadable = 0;
    /// A checksum of all values, so that no read can be optimized away.
    std::uint64_t checksum = 0;
};

bool ReadBlock(Dwarf_Attribute* attribute, std::uint64_t& value) {
    Dwarf_Block block{};
    if (dwarf_formblock(attribute, &block) != 0) {
        return false;
    }
    value = block.length;
    return true;
}

bool ReadText(Dwarf_Attribute* attribute, std::uint64_t& value) {
    const char* text = dwarf_formstring(attribute);
    value = text != nullptr ? static_cast<unsigned char>(*text) : 0;
    return text != nullptr;
}

bool ReadReference(Dwarf_Attribute* attribute, std::uint64_t& value) {
    if (attribute->form == DW_FORM_ref_addr || attribute->form == DW_FORM_ref_sig8) {
        Dwarf_Die target{};
        if (dwarf_formref_die(attribute, &target) == nullptr) {
            return false;
        }
        value = dwarf_dieoffset(&target);
        return true;
    }
    // Marked as deprecated, since it can't say in which unit the target lies; but only this
    // function reads just the offset.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    return dwarf_formref(attribute, &value) == 0;
#pragma GCC diagnostic pop
}

bool ReadFlag(Dwarf_Attribute* attribute, std::uint64_t& value) {
    bool flag = false;
    if (dwarf_formflag(attribute, &flag) != 0) {
        return false;
    }
    value = flag ? 1 : 0;
    return true;
}

bool ReadConstant(Dwarf_Attribute* attribute, std::uint64_t& value) {
    return dwarf_formudata(attribute, &value) == 0;
}

bool ReadSignedConstant(Dwarf_Attribute* attribute, std::uint64_t& value) {
    Dwarf_Sword number = 0;
    if (dwarf_formsdata(attribute, &number) != 0) {
        return false;
    }
    value = static_cast<std::uint64_t>(number);
    return true;
}

bool ReadValue(Dwarf_Attribute* attribute, std::uint64_t& value) {
    switch (attribute->form) {
    case DW_FORM_addr:
        return dwarf_formaddr(attribute, &value) == 0;
    case DW_FORM_string:
    case DW_FORM_strp:
    case DW_FORM_line_strp:
    case DW_FORM_strx:
    case DW_FORM_strx1:
    case DW_FORM_strx2:
    case DW_FORM_strx3:
    case DW_FORM_strx4:
        return ReadText(attribute, value);
    case DW_FORM_ref1:
    case DW_FORM_ref2:
    case DW_FORM_ref4:
    case DW_FORM_ref8:
    case DW_FORM_ref_udata:
    case DW_FORM_ref_addr:
    case DW_FORM_ref_sig8:
        return ReadReference(attribute, value);
    case DW_FORM_flag:
    case DW_FORM_flag_present:
        return ReadFlag(attribute, value);
    case DW_FORM_block:
    case DW_FORM_block1:
    case DW_FORM_block2:
    case DW_FORM_block4:
    case DW_FORM_exprloc:
        return ReadBlock(attribute, value);
    case DW_FORM_sdata:
    case DW_FORM_implicit_const:
        return ReadSignedConstant(attribute, value);
    default:
        return ReadConstant(attribute, value);
    }
}

int VisitAttribute(Dwarf_Attribute* attribute, void* argument) {
    auto& counts = *static_cast<Counts*>(argument);
    std::uint64_t value = 0;
    if (!ReadValue(attribute, value)) {
        ++counts.unreadable;
    }
    ++counts.attributes;
    counts.checksum += value;
    return DWARF_CB_OK;
}

/// Visits an entry, its children and all its siblings. A recursion goes as deep as the tree.
void VisitEntries(Dwarf_Die entry, Counts& counts) {
    for (;;) {
        ++counts.entries;
        dwarf_getattrs(&entry, VisitAttribute, &counts, 0);
        Dwarf_Die child{};
        if (dwarf_child(&entry, &child) == 0) {
            VisitEntries(child, counts);
        }
        if (dwarf_siblingof(&entry, &entry) != 0) {
            return;
        }
    }
}

bool VisitUnits(Dwarf* dwarf, Counts& counts) {
    Dwarf_CU* unit = nullptr;
    Dwarf_Die unitEntry{};
    int result = 0;
    while ((result = dwarf_get_units(dwarf, unit, &unit, nullptr, nullptr, &unitEntry, nullptr)) ==
           0) {
        ++counts.units;
        VisitEntries(unitEntry, counts);
    }
    return result == 1;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: libdw_walk FILE\n");
        return 2;
    }
    const int file = open(arguments[1], O_RDONLY | O_CLOEXEC);
    Dwarf* dwarf = file >= 0 ? dwarf_begin(file, DWARF_C_READ) : nullptr;
    Counts counts;
    const bool isWalked = dwarf != nullptr && VisitUnits(dwarf, counts);
    if (isWalked) {
        std::printf("units %ju, entries %ju, attributes %ju, unreadable %ju, checksum %jx\n",
                    counts.units, counts.entries, counts.attributes, counts.unreadable,
                    counts.checksum);
    } else {
        std::fprintf(stderr, "%s: can't be walked\n", arguments[1]);
    }
    dwarf_end(dwarf);
    if (file >= 0) {
        close(file);
    }
    return isWalked ? EXIT_SUCCESS : EXIT_FAILURE;
}
