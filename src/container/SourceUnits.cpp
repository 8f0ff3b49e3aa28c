#include "container/SourceUnits.h"

#include "core/UnitName.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

/// What follows the last dot of a source file, for which its unit's name has a "_".
std::string_view ExtensionOf(std::string_view unitName) {
    return unitName.substr(unitName.rfind('_') + 1);
}

} // namespace

void SourceUnits::Add(std::string_view unit) {
    if (unit.empty() || !mNames.emplace(unit).second) {
        return;
    }
    if (unit.find('_') != std::string_view::npos) {
        mExtensions.emplace(ExtensionOf(unit));
    } else {
        mHasNameless = true;
    }
}

std::string_view SourceUnits::UnitOf(const char* sourceFile) const {
    if (sourceFile == nullptr) {
        return sAny;
    }
    const std::string name = ShortUnitName(sourceFile);
    const auto unit = mNames.find(name);
    if (unit != mNames.end()) {
        return *unit;
    }
    return !mHasNameless && mExtensions.contains(std::string(ExtensionOf(name))) ? sNone : sAny;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
