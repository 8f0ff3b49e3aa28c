#include "SharedNames.h"

#include <utility>

namespace Tessel::Norn::Brindle::Program {

using DataModel::ModelObject;
using DataModel::ObjectId;

SharedNames::SharedNames(const DataModel::Model& model) {
    constexpr std::string_view firstNumber = ".2";
    model.ForEach(DataModel::ObjectKind::Global, [&](const ModelObject& variable) {
        if (!variable.name.ends_with(firstNumber)) {
            return;
        }
        std::vector<ObjectId> sharers = model.SharersOfName(variable.id);
        if (sharers.size() < 2) {
            return;
        }
        for (const ObjectId sharer : sharers) {
            mPositions.try_emplace(sharer, mSharers.size());
        }
        mSharers.push_back(std::move(sharers));
    });
}

std::span<const ObjectId> SharedNames::SharersOf(ObjectId variable) const {
    const auto position = mPositions.find(variable);
    return position == mPositions.end() ? std::span<const ObjectId>() : mSharers[position->second];
}

std::string SharedNames::WithoutNumber(ObjectId variable, std::string_view qualifiedName) const {
    const std::span<const ObjectId> sharers = SharersOf(variable);
    return sharers.empty() || sharers.front() == variable
               ? std::string()
               : std::string(qualifiedName.substr(0, qualifiedName.rfind('.')));
}

} // namespace Tessel::Norn::Brindle::Program
