#include "host/ContainerDetection.h"

#include "container/VInputStream.h"

#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// The container that begins with these bytes.
DWARFContainerType ContainerOf(VInputStream& stream) {
    std::array<char, 4> bytes{};
    const std::size_t count = stream.Seek(0) ? stream.Read(bytes.data(), bytes.size()) : 0;
    const std::string_view start(bytes.data(), count);
    if (start.empty() || start == "\x7F"
                                  "ELF") {
        return DWARFContainerType::Container_ELF;
    }
    return start.starts_with("MZ") ? DWARFContainerType::Container_PE
                                   : DWARFContainerType::Container_COFF;
}

} // namespace

DWARFContainerType DetectContainer(const std::string& file) {
    VInputStream stream;
    return stream.Open(file) == 0 ? ContainerOf(stream) : DWARFContainerType::Container_ELF;
}

DWARFContainerType DetectContainer(const FileContent& content) {
    VInputStream stream;
    stream.Open(content);
    return ContainerOf(stream);
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
