// What a read skipped, for the user of the file: even a read that ends well may leave out what the
// reader can't take.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Why something was skipped.
enum class ReadRemarkKind : std::uint8_t {
    /// Debug sections are compressed.
    CompressedSections,
    /// Units keep their debug information in other files.
    SplitUnits,
    /// The file has no addresses yet.
    RelocatableObject,
    /// Names are in a supplementary file.
    SupplementaryFile,
    /// Units are of a version, or of a type, that isn't read.
    UnitsNotRead,
};

/// One remark.
struct ReadRemark {
    /// Why it was made, for hosts with words of their own.
    ReadRemarkKind kind = ReadRemarkKind::CompressedSections;
    /// What is the matter and what to do about it, in the language of the messages when the remark
    /// was made: one line, UTF-8 if the names in the file are.
    std::string text;
    /// Units that the remark is about; 0 if it isn't about units.
    std::uint32_t count = 0;
    /// Units of the file; 0 if the remark isn't about units.
    std::uint32_t total = 0;
};

/// The remarks of one read, in the order in which they came up. Only the full manner of reading
/// makes any.
class BRINDLE_EXPORT ReadRemarks {
public:
    /// The remarks; the view is valid until the next one is added.
    [[nodiscard]] std::span<const ReadRemark> All() const { return mRemarks; }
    /// True if there is a remark of this kind.
    [[nodiscard]] bool Has(ReadRemarkKind kind) const;

    /// @name What the reader reports
    /// @{

    /// A section is compressed. One is reported: that of the debug entries, else the first.
    void AddCompressedSection(std::string_view section);
    /// `count` of the `total` units have their entries in other files.
    void AddSplitUnits(std::uint32_t count, std::uint32_t total);
    /// The file isn't linked yet.
    void AddRelocatableObject();
    /// Names are in another file.
    /// @param file its name as this file has it
    void AddSupplementaryFile(std::string_view file);
    /// `count` of the `total` units are of a version of DWARF, or a type in it, that isn't read.
    void AddUnitsNotRead(std::int32_t version, std::uint32_t count, std::uint32_t total);

    /// @}

private:
    std::vector<ReadRemark> mRemarks;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
