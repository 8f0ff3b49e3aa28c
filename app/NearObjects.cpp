#include "NearObjects.h"

#include "NearNames.h"
#include "ObjectKinds.h"

#include "model/DataModel.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

/// Classes, the base classes included, whose members are compared with a name.
constexpr std::size_t sMostClasses = 100;

std::string NearObjects(const DataModel::Model& model, std::string_view wanted,
                        std::initializer_list<ObjectKind> kinds) {
    if (wanted.find_first_of("*?") != std::string_view::npos) {
        return {};
    }
    const std::string_view name = wanted.substr(0, wanted.find_first_of(".["));
    const bool isQualified = name.find("::") != std::string_view::npos;
    NearNames near(name);
    for (const ObjectKind kind : kinds) {
        model.ForEach(kind, [&](const ModelObject& object) {
            if (isQualified) {
                near.Offer(model.QualifiedName(object.id));
            } else {
                near.Offer(object.name);
            }
        });
    }
    return near.Text();
}

} // namespace

std::string NearVariables(const DataModel::Model& model, std::string_view wanted) {
    return NearObjects(model, wanted, {ObjectKind::Global});
}

std::string NearTypes(const DataModel::Model& model, std::string_view wanted) {
    return NearObjects(model, wanted,
                       {ObjectKind::Class, ObjectKind::Struct, ObjectKind::Union, ObjectKind::Enum,
                        ObjectKind::Typedef});
}

std::string NearMembers(const DataModel::Model& model, std::string_view resolved,
                        std::string_view rest) {
    if (!rest.starts_with('.')) {
        return {};
    }
    const std::string_view name = rest.substr(1, rest.find_first_of(".[", 1) - 1);
    NearNames near(name);
    std::vector<DataModel::ObjectId> classes{model.ResolvePath(resolved).place.type};
    for (std::size_t place = 0; place < std::min(classes.size(), sMostClasses); ++place) {
        const DataModel::ObjectId type = model.WithoutTypedefs(classes[place]);
        model.ForEachIn(type, [&](const ModelObject& member) {
            if (IsMember(member.kind)) {
                near.Offer(member.name);
            }
        });
        for (const DataModel::BaseClass& base : model.PlacedBaseClasses(type)) {
            classes.push_back(base.type);
        }
    }
    return near.Text();
}

} // namespace Tessel::Norn::Brindle::Program
