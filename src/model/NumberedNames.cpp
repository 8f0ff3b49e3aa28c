#include "model/NumberedNames.h"

#include "host/SymbolNamespace.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// The name before ".2" or a larger number; empty if there is none.
std::string_view NameBeforeNumber(std::string_view name) {
    const std::size_t point = name.find_last_not_of("0123456789");
    if (point == std::string_view::npos || name[point] != '.') {
        return {};
    }
    const std::string_view digits = name.substr(point + 1);
    const bool isNumber = !digits.empty() && digits.front() != '0' && digits != "1";
    return isNumber ? name.substr(0, point) : std::string_view();
}

} // namespace

void AppendNumbered(const ModelStore& store, ObjectId variable, std::vector<ObjectId>& found) {
    const std::string_view name = store.NameOf(variable);
    const ObjectId scope = store.At(variable).scope;
    if (name.empty() || store.NameOf(scope) == sSymbolNamespaceName ||
        store.FindNamed(LookupKind::GlobalInScope, name, scope) != variable) {
        return;
    }
    std::string numbered(name);
    for (std::uint32_t number = 2;; ++number) {
        numbered.resize(name.size());
        numbered.append(1, '.').append(std::to_string(number));
        const ObjectId next = store.FindNamed(LookupKind::GlobalInScope, numbered, scope);
        if (next == 0) {
            return;
        }
        found.push_back(next);
    }
}

std::vector<ObjectId> VariablesSharingName(const ModelStore& store, ObjectId variable) {
    if (!store.IsOfKind(variable, ObjectKind::Global)) {
        return {};
    }
    const std::string_view name = NameBeforeNumber(store.NameOf(variable));
    const ObjectId first =
        name.empty() ? 0
                     : store.FindNamed(LookupKind::GlobalInScope, name, store.At(variable).scope);
    std::vector<ObjectId> sharers = {first};
    if (first != 0) {
        AppendNumbered(store, first, sharers);
    }
    if (std::ranges::find(sharers, variable) == sharers.end()) {
        sharers = {variable};
        AppendNumbered(store, variable, sharers);
    }
    return sharers;
}

} // namespace Tessel::Norn::Brindle::DataModel
