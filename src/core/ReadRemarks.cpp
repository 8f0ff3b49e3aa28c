#include "core/ReadRemarks.h"

#include "core/VElfResourceManager.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// A text with gaps for what it is about: "%1", "%2" and so on.
struct RemarkText {
    std::string_view english;
    std::string_view german;
};

constexpr RemarkText sCompressed = {
    "%1 is compressed, not damaged. Compressed sections aren't read: "
    "objcopy --decompress-debug-sections IN OUT writes a file that is.",
    "%1 ist komprimiert, nicht beschädigt. Komprimierte Sections werden nicht gelesen: "
    "objcopy --decompress-debug-sections EIN AUS schreibt eine lesbare Datei."};
constexpr RemarkText sUnit = {"unit", "Unit"};
constexpr RemarkText sUnits = {"units", "Units"};
constexpr RemarkText sSplitUnit = {
    "%1 of %2 %3 keeps its debug information in .dwo files, which aren't read: compile without "
    "-gsplit-dwarf.",
    "%1 von %2 %3 hat ihre Debug-Information in .dwo-Dateien, die nicht gelesen werden: ohne "
    "-gsplit-dwarf übersetzen."};
constexpr RemarkText sSplitUnits = {
    "%1 of %2 %3 keep their debug information in .dwo files, which aren't read: compile without "
    "-gsplit-dwarf.",
    "%1 von %2 %3 haben ihre Debug-Information in .dwo-Dateien, die nicht gelesen werden: ohne "
    "-gsplit-dwarf übersetzen."};
constexpr RemarkText sRelocatable = {
    "This is a relocatable object: the linker assigns its addresses. Read the linked image.",
    "Dies ist eine Objekt-Datei, deren Adressen erst der Linker vergibt: die gelinkte Datei "
    "lesen."};
constexpr RemarkText sSupplement = {"Names and types stand in %1, which isn't read.",
                                    "Namen und Typen stehen in %1, das nicht gelesen wird."};
constexpr RemarkText sUnitNotRead = {"%1 of %2 %3 is of DWARF %4, which isn't read.",
                                     "%1 von %2 %3 ist in DWARF %4, das nicht gelesen wird."};
constexpr RemarkText sUnitsNotRead = {"%1 of %2 %3 are of DWARF %4, which isn't read.",
                                      "%1 von %2 %3 sind in DWARF %4, das nicht gelesen wird."};

std::string_view InLanguage(const RemarkText& text) {
    return VElfResourceManager::Instance().IsGerman() ? text.german : text.english;
}

/// @param values for the gaps, of which there are at most 9
std::string Filled(const RemarkText& text, std::initializer_list<std::string_view> values) {
    std::string filled;
    std::string_view rest = InLanguage(text);
    for (std::size_t gap = rest.find('%'); gap != std::string_view::npos; gap = rest.find('%')) {
        filled += rest.substr(0, gap);
        filled += values.begin()[rest[gap + 1] - '1'];
        rest.remove_prefix(gap + 2);
    }
    return filled.append(rest);
}

std::string FilledForUnits(const RemarkText& one, const RemarkText& several, std::uint32_t count,
                           std::uint32_t total, std::string_view more = {}) {
    return Filled(count == 1 ? one : several, {std::to_string(count), std::to_string(total),
                                               InLanguage(total == 1 ? sUnit : sUnits), more});
}

} // namespace

bool ReadRemarks::Has(ReadRemarkKind kind) const {
    return std::ranges::find(mRemarks, kind, &ReadRemark::kind) != mRemarks.end();
}

void ReadRemarks::AddCompressedSection(std::string_view section) {
    const auto known =
        std::ranges::find(mRemarks, ReadRemarkKind::CompressedSections, &ReadRemark::kind);
    if (known == mRemarks.end()) {
        mRemarks.push_back({ReadRemarkKind::CompressedSections, Filled(sCompressed, {section})});
    } else if (section.ends_with("debug_info")) {
        known->text = Filled(sCompressed, {section});
    }
}

void ReadRemarks::AddSplitUnits(std::uint32_t count, std::uint32_t total) {
    mRemarks.push_back({ReadRemarkKind::SplitUnits,
                        FilledForUnits(sSplitUnit, sSplitUnits, count, total), count, total});
}

void ReadRemarks::AddRelocatableObject() {
    mRemarks.push_back({ReadRemarkKind::RelocatableObject, Filled(sRelocatable, {})});
}

void ReadRemarks::AddSupplementaryFile(std::string_view file) {
    mRemarks.push_back({ReadRemarkKind::SupplementaryFile, Filled(sSupplement, {file})});
}

void ReadRemarks::AddUnitsNotRead(std::int32_t version, std::uint32_t count, std::uint32_t total) {
    mRemarks.push_back(
        {ReadRemarkKind::UnitsNotRead,
         FilledForUnits(sUnitNotRead, sUnitsNotRead, count, total, std::to_string(version)), count,
         total});
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
