// What a file says about itself apart from its symbols: container, machine, byte order, and the
// sections in the target's memory. The reader hands it to the data model before it delivers
// anything.
#pragma once

#include "../core/Export.h"
#include "../core/FileContent.h"
#include "../host/DWARFContainerType.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

enum class ByteOrder : std::uint8_t { Little, Big };

/// What a section of the target's memory holds.
enum class SectionKind : std::uint8_t {
    Code,
    /// Constants: mapped, neither written nor executed. TI COFF doesn't mark them; there they are
    /// `Data`.
    ReadOnlyData,
    Data,
    /// Cleared or left alone when the program starts; the file has no bytes for it. In a file
    /// without contents the full reading finds none: there `Data` may be cleared at the start.
    Zero,
};

/// One section that lies in the target's memory. Addresses are those of variables, in bytes.
struct ImageSection {
    /// Valid UTF-8; at most 255 bytes of the file's text.
    std::string name;
    /// Address of the first byte.
    std::uint64_t address = 0;
    /// Size in memory in bytes.
    std::uint64_t size = 0;
    /// File position of its first byte.
    std::uint64_t filePosition = 0;
    /// Bytes of it in the file, at most `size`; those missing at the end are zero,
    /// or unknown in a file without contents.
    std::uint64_t fileSize = 0;
    /// What it holds.
    SectionKind kind = SectionKind::Data;

    /// True if the section holds the byte at an address.
    [[nodiscard]] bool Holds(std::uint64_t byteAddress) const {
        return byteAddress >= address && byteAddress - address < size;
    }
};

/// One input file.
struct BRINDLE_EXPORT ImageDescription {
    /// Path of the file as the host gave it; empty before the first read.
    std::string path;
    /// The file in memory, if the host gave it so; the path then only names it. Null otherwise.
    Reader::DWARF::FileContent content;
    /// Length of the file in bytes.
    std::uint64_t fileSize = 0;
    /// The container that the host named to the reader.
    Reader::DWARF::DWARFContainerType container = Reader::DWARF::DWARFContainerType::Container_ELF;
    /// ELF class 64 or PE32+.
    bool is64Bit = false;
    /// Byte order of the target's memory.
    ByteOrder byteOrder = ByteOrder::Little;
    /// `e_machine` of ELF, the target id of TI COFF, the machine of PE.
    std::uint16_t machine = 0;
    /// False for relocatable object files, whose sections have no addresses yet.
    bool isLinked = true;
    /// The target counts memory in words of 16 bits. All addresses and sizes are in bytes even so.
    bool isWordAddressed = false;
    /// False for a file of debug information that was split off its image, by
    /// `objcopy --only-keep-debug`, say: it has the headers of all sections, but not their bytes.
    /// What memory holds at the start is unknown then, zeros too.
    bool hasContents = true;
    /// Sections with an address, ascending by it.
    std::vector<ImageSection> sections;

    /// Width of an address in bytes by the file's class: 4 or 8.
    [[nodiscard]] std::uint8_t AddressSize() const { return is64Bit ? 8 : 4; }
    /// The section that holds the byte at an address, the innermost of several; null if there is
    /// none.
    [[nodiscard]] const ImageSection* SectionAt(std::uint64_t address) const;
    /// True if several sections hold bytes of a range, as those of an overlay do: the address
    /// doesn't say which of them a variable is in, nor what memory holds at the start.
    /// @param size bytes of the range; 0 counts as 1
    [[nodiscard]] bool IsOverlaid(std::uint64_t address, std::uint64_t size) const;
};

} // namespace Tessel::Norn::Brindle::DataModel
