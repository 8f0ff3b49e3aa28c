#include "container/DeliveredSymbols.h"

#include "container/SourceUnits.h"
#include "container/SymbolName.h"
#include "core/KeyMixing.h"

#include <algorithm>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

std::uint64_t KeyOf(std::uint64_t address, std::string_view name) {
    return HashOfText(name, Mix(address ^ ProcessSeed()));
}

} // namespace

void DeliveredSymbols::AddVariable(std::uint64_t address, std::string_view name) {
    if (!name.empty()) {
        mVariables.Insert(KeyOf(address, name));
    }
}

void DeliveredSymbols::AddValue(std::string_view name, std::string_view unit) {
    if (!name.empty()) {
        mValues.Insert(KeyOf(KeyOf(0, unit), name));
        mValues.Insert(KeyOf(0, name));
    }
}

bool DeliveredSymbols::AddSymbol(std::uint64_t address, std::string_view name,
                                 std::optional<std::string_view> unit) {
    const std::string_view plainName = WithoutVersion(name);
    const std::string_view shorter = WithoutUnderscore(plainName);
    if (unit && !mValues.IsEmpty() && (IsValue(plainName, *unit) || IsValue(shorter, *unit))) {
        return false;
    }
    // `_Z` begins mangled names without such an underscore, and names of C with one.
    const bool mayBeShorter = !shorter.empty() && !plainName.starts_with("_Z");
    if (HasVariable(address, plainName) || IsVariable(address, shorter) ||
        (mayBeShorter && HasVariable(address, shorter))) {
        return false;
    }
    return mSymbols.Insert(KeyOf(address, name));
}

bool DeliveredSymbols::IsValue(std::string_view name, std::string_view unit) const {
    return mValues.Contains(KeyOf(unit != SourceUnits::sAny ? KeyOf(0, unit) : 0, name));
}

bool DeliveredSymbols::HasVariable(std::uint64_t address, std::string_view name) const {
    return IsVariable(address, name) || HasVariableInParts(address, name) ||
           HasVariableInWholeName(address, name);
}

bool DeliveredSymbols::IsVariable(std::uint64_t address, std::string_view name) const {
    return mVariables.Contains(KeyOf(address, name));
}

bool DeliveredSymbols::HasVariableInParts(std::uint64_t address, std::string_view name) const {
    while (!name.empty()) {
        const std::string_view part = name.substr(0, name.find('.'));
        if (IsVariable(address, part)) {
            return true;
        }
        name.remove_prefix(std::min(part.size() + 1, name.size()));
    }
    return false;
}

bool DeliveredSymbols::HasVariableInWholeName(std::uint64_t address, std::string_view name) const {
    if (name.starts_with("_Z") || name.starts_with("_R")) {
        return HasVariableInMangledName(address, name);
    }
    if (IsVariable(address, NameInSource(name))) {
        return true;
    }
    const DemangledSymbolName readable(name);
    const std::string_view text = readable.GetName();
    const std::size_t scopeEnd = text.rfind("::");
    return readable.IsModified() && scopeEnd != std::string_view::npos &&
           IsVariable(address, text.substr(scopeEnd + 2));
}

bool DeliveredSymbols::HasVariableInMangledName(std::uint64_t address,
                                                std::string_view name) const {
    for (std::string_view identifier = TakeIdentifier(name); !identifier.empty();
         identifier = TakeIdentifier(name)) {
        if (IsVariable(address, identifier)) {
            return true;
        }
    }
    return false;
}

bool DeliveredSymbols::KeySet::Insert(std::uint64_t key) {
    if (Contains(key)) {
        return false;
    }
    mKeys.push_back(key);
    mPositions.Add(key, static_cast<std::uint32_t>(mKeys.size()));
    return true;
}

bool DeliveredSymbols::KeySet::Contains(std::uint64_t key) const {
    return mPositions.Find(key,
                           [&](std::uint32_t position) { return mKeys[position - 1] == key; }) != 0;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
