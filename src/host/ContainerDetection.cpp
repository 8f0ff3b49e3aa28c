#include "host/ContainerDetection.h"

#include "container/VInputStream.h"

#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

DWARFContainerType DetectContainer(const std::string& file) {
    std::array<char, 4> bytes{};
    VInputStream stream;
    const bool isOpen = stream.Open(file) == 0 && stream.Seek(0);
    const std::size_t count = isOpen ? stream.Read(bytes.data(), bytes.size()) : 0;
    const std::string_view start(bytes.data(), count);
    if (start.empty() || start == "\x7F"
                                  "ELF") {
        return DWARFContainerType::Container_ELF;
    }
    return start.starts_with("MZ") ? DWARFContainerType::Container_PE
                                   : DWARFContainerType::Container_COFF;
}

std::string_view ContainerName(DWARFContainerType container) {
    switch (container) {
    case DWARFContainerType::Container_COFF:
        return "coff";
    case DWARFContainerType::Container_PE:
        return "pe";
    default:
        return "elf";
    }
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
