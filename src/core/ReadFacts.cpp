#include "core/ReadFacts.h"

#include "core/HostText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// A sound file has a few groups; a damaged one may have one for each unit.
constexpr std::size_t sMostGroups = 64;
constexpr std::size_t sLongestProducer = 1023;

struct NamedLanguage {
    std::uint32_t language;
    std::string_view name;
};

constexpr auto sLanguages = std::to_array<NamedLanguage>({
    {0x0001, "C89"},
    {0x0002, "C"},
    {0x0003, "Ada 83"},
    {0x0004, "C++"},
    {0x0005, "COBOL 74"},
    {0x0006, "COBOL 85"},
    {0x0007, "Fortran 77"},
    {0x0008, "Fortran 90"},
    {0x0009, "Pascal"},
    {0x000a, "Modula-2"},
    {0x000b, "Java"},
    {0x000c, "C99"},
    {0x000d, "Ada 95"},
    {0x000e, "Fortran 95"},
    {0x000f, "PL/I"},
    {0x0010, "Objective-C"},
    {0x0011, "Objective-C++"},
    {0x0012, "UPC"},
    {0x0013, "D"},
    {0x0014, "Python"},
    {0x0015, "OpenCL"},
    {0x0016, "Go"},
    {0x0017, "Modula-3"},
    {0x0018, "Haskell"},
    {0x0019, "C++03"},
    {0x001a, "C++11"},
    {0x001b, "OCaml"},
    {0x001c, "Rust"},
    {0x001d, "C11"},
    {0x001e, "Swift"},
    {0x001f, "Julia"},
    {0x0020, "Dylan"},
    {0x0021, "C++14"},
    {0x0022, "Fortran 2003"},
    {0x0023, "Fortran 2008"},
    {0x0024, "RenderScript"},
    {0x0025, "BLISS"},
    {0x0026, "Kotlin"},
    {0x0027, "Zig"},
    {0x0028, "Crystal"},
    {0x002a, "C++17"},
    {0x002b, "C++20"},
    {0x002c, "C17"},
    {0x002d, "Fortran 2018"},
    {0x002e, "Ada 2005"},
    {0x002f, "Ada 2012"},
    {0x8001, "assembler"},
});

} // namespace

void ReadFacts::AddUnit(std::int32_t version, std::uint32_t language, std::string_view producer) {
    const auto group = std::ranges::find_if(mUnits, [&](const UnitGroup& known) {
        return known.version == version && known.language == language;
    });
    if (group != mUnits.end()) {
        ++group->count;
    } else if (mUnits.size() < sMostGroups) {
        mUnits.push_back({version, language, 1});
    }
    if (producer.empty()) {
        return;
    }
    const std::string text = ToHostText(producer.substr(0, sLongestProducer));
    const auto known = std::ranges::find(mProducers, text, &ProducerCount::producer);
    if (known != mProducers.end()) {
        ++known->count;
    } else if (mProducers.size() < sMostGroups) {
        mProducers.push_back({text, 1});
    }
}

std::string_view LanguageName(std::uint32_t language) {
    const auto* const known = std::ranges::find(sLanguages, language, &NamedLanguage::language);
    return known != sLanguages.end() ? known->name : std::string_view();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
