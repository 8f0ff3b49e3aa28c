#include "model/QualifiedNameIndex.h"

#include "core/KeyMixing.h"

#include <algorithm>
#include <cstddef>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Names may contain the separator themselves, so that several ends of a qualified name are tried
/// as the object's own name.
constexpr std::size_t sMostOwnNames = 256;
constexpr std::string_view sScopeSeparator = "::";

} // namespace

QualifiedNameIndex::QualifiedNameIndex(const Model& model)
    : mModel(model)
    , mSeed(ProcessSeed()) {
    for (ObjectId id = 1; id <= model.ObjectCount(); ++id) {
        const std::string_view name = model.Object(id).name;
        if (!name.empty()) {
            mEntries.push_back({HashOf(name), static_cast<std::uint32_t>(id)});
        }
    }
    std::sort(mEntries.begin(), mEntries.end());
}

std::uint32_t QualifiedNameIndex::HashOf(std::string_view name) const {
    return static_cast<std::uint32_t>(HashOfText(name, mSeed));
}

std::vector<ObjectId> QualifiedNameIndex::Find(std::string_view qualifiedName) const {
    std::vector<ObjectId> found;
    AppendNamed(qualifiedName, qualifiedName, found);
    if (qualifiedName.starts_with(sScopeSeparator)) {
        qualifiedName.remove_prefix(sScopeSeparator.size());
        AppendNamed(qualifiedName, qualifiedName, found);
    }
    std::size_t start = qualifiedName.size();
    for (std::size_t tries = 0; tries < sMostOwnNames && start > 0; ++tries) {
        start = qualifiedName.rfind(sScopeSeparator, start - 1);
        if (start == std::string_view::npos) {
            break;
        }
        AppendNamed(qualifiedName.substr(start + sScopeSeparator.size()), qualifiedName, found);
    }
    const std::size_t count = found.size();
    for (std::size_t position = 0; position < count; ++position) {
        const std::vector<ObjectId> sharers = mModel.SharersOfName(found[position]);
        if (!sharers.empty() && sharers.front() == found[position]) {
            found.insert(found.end(), sharers.begin() + 1, sharers.end());
        }
    }
    std::ranges::sort(found);
    return found;
}

void QualifiedNameIndex::AppendNamed(std::string_view ownName, std::string_view qualifiedName,
                                     std::vector<ObjectId>& found) const {
    const std::uint32_t hash = HashOf(ownName);
    auto candidate = std::ranges::lower_bound(mEntries, hash, {}, &Entry::hash);
    for (; candidate != mEntries.end() && candidate->hash == hash; ++candidate) {
        if (mModel.Object(candidate->id).name == ownName &&
            mModel.QualifiedName(candidate->id) == qualifiedName) {
            found.push_back(candidate->id);
        }
    }
}

} // namespace Tessel::Norn::Brindle::DataModel
