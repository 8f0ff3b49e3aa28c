// A file that a host holds in memory, such as one that it took out of an archive.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// All bytes of one file, which never change. Shared by those that read them: a read, and a data
/// model that is asked for bytes of the image. Null where the file is read by its path.
using FileContent = std::shared_ptr<const std::vector<std::uint8_t>>;

} // namespace Tessel::Norn::Brindle::Reader::DWARF
