// The section reader over an image without resolution and delivery, so that a test sees the nodes
// as decoding made them.
#pragma once

#include "container/VElfFile.h"
#include "dwarf/VDwarf2Section.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

/// One file, opened up to its section records. Target properties may be changed before `Init`. The
/// test must hold a `ScopedReaderState`; with a log, it sets `mIsLogFile` before the run is made.
class SectionRun {
public:
    explicit SectionRun(const ElfImage& image);
    ~SectionRun();
    SectionRun(const SectionRun&) = delete;
    SectionRun& operator=(const SectionRun&) = delete;
    SectionRun(SectionRun&&) = delete;
    SectionRun& operator=(SectionRun&&) = delete;

    bool Init() { return mSection.Init(mFile, nullptr); }
    /// `Init`, mapping and reading of all units. Every entry gets its node. Standard output is
    /// discarded.
    bool Read();
    /// The same without nodes for entries that nothing asks for, as for a host.
    bool ReadWithoutCode();

    [[nodiscard]] Reader::DWARF::VElfFile& File() { return mFile; }
    [[nodiscard]] Reader::DWARF::VDwarf2Section& Section() { return mSection; }
    /// The node at a section offset; the test fails if there is none.
    [[nodiscard]] const Reader::DWARF::VDebugInfoNode& At(std::uint32_t sectionOffset) const;
    /// All nodes as "depth:tag name", by offset, the tag without its prefix.
    [[nodiscard]] std::vector<std::string> Outline() const;
    /// Start and length of each unit that was mapped, relative to the section's start.
    [[nodiscard]] std::vector<std::string> Units() const;
    /// The log so far, with time stamps replaced by "@".
    [[nodiscard]] std::string Log() const;

private:
    TemporaryFolder mFolder;
    std::string mPath;
    Reader::DWARF::VElfFile mFile;
    Reader::DWARF::VDwarf2Section mSection;
};

} // namespace Tessel::Norn::Brindle::Tests
