#include "host/ContainerDetection.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <ios>

namespace Tessel::Norn::Brindle::Reader::DWARF {

DWARFContainerType DetectContainer(const std::string& file) {
    std::array<char, 4> bytes{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(bytes.data(), bytes.size());
    const std::string_view start(bytes.data(), static_cast<std::size_t>(stream.gcount()));
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
