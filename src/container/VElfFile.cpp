#include "container/VElfFile.h"

#include "emit/VCLIFactoryWrapper.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sMaximumFileNameLength = 260;

} // namespace

VElfFile::VElfFile(const std::string& path, VDWARFReaderWrapper* reader)
    : mFactory(std::make_unique<VCLIFactoryWrapper>())
    , mReader(reader)
    , mPath(path)
    , mFileName(path, 0, sMaximumFileNameLength) {}

VElfFile::~VElfFile() = default;

bool VElfFile::OpenInput() {
    return OpenForReading(mPath);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
