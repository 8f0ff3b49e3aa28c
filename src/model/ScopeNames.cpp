#include "model/ScopeNames.h"

#include <algorithm>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

constexpr std::string_view sSeparator = "::";
constexpr std::string_view sEllipsis = "...";

bool CountsInNames(const Record& scope) {
    switch (scope.kind) {
    case ObjectKind::Namespace:
    case ObjectKind::Block:
    case ObjectKind::Class:
    case ObjectKind::Struct:
    case ObjectKind::Union:
    case ObjectKind::Function:
        return scope.name != 0;
    default:
        return false;
    }
}

/// Names from the outermost to that of the object; the first may be an ellipsis.
std::vector<std::string_view> NameParts(const ModelStore& store, ObjectId id) {
    std::vector<std::string_view> parts = {store.NameOf(id)};
    std::size_t length = parts.front().size();
    std::size_t levels = 0;
    for (ObjectId scope = store.At(id).scope; store.Has(scope); scope = store.At(scope).scope) {
        const std::string_view name = CountsInNames(store.At(scope)) ? store.NameOf(scope) : "";
        length += name.empty() ? 0 : name.size() + sSeparator.size();
        if (++levels > kLongestChain || length > kLongestText) {
            parts.push_back(sEllipsis);
            break;
        }
        if (!name.empty()) {
            parts.push_back(name);
        }
    }
    std::reverse(parts.begin(), parts.end());
    return parts;
}

/// Takes `part` off the end of `text`, with the separator before it.
bool TakeLastPart(std::string_view& text, std::string_view part) {
    if (!text.ends_with(part)) {
        return false;
    }
    text.remove_suffix(part.size());
    if (text.empty()) {
        return true;
    }
    if (!text.ends_with(sSeparator)) {
        return false;
    }
    text.remove_suffix(sSeparator.size());
    return true;
}

} // namespace

std::string ScopedName(const ModelStore& store, ObjectId id) {
    const std::string_view ownName = store.NameOf(id);
    if (ownName.empty()) {
        return {};
    }
    if (ownName.size() > kLongestText) {
        return std::string(CutText(ownName, kLongestText)).append(sEllipsis);
    }
    std::string text;
    for (const std::string_view part : NameParts(store, id)) {
        text.append(text.empty() ? std::string_view() : sSeparator).append(part);
    }
    return text;
}

bool IsInScopes(const ModelStore& store, ObjectId id, std::string_view scopes) {
    std::size_t levels = 0;
    for (ObjectId scope = store.At(id).scope; store.Has(scope); scope = store.At(scope).scope) {
        if (++levels > kLongestChain) {
            return false;
        }
        if (CountsInNames(store.At(scope)) && !TakeLastPart(scopes, store.NameOf(scope))) {
            return false;
        }
    }
    return scopes.empty();
}

std::string_view CutText(std::string_view text, std::size_t length) {
    if (text.size() <= length) {
        return text;
    }
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    return text.substr(0, length);
}

} // namespace Tessel::Norn::Brindle::DataModel
