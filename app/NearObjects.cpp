#include "NearObjects.h"

#include "NearNames.h"

#include "model/DataModel.h"

#include <initializer_list>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

std::string NearObjects(const DataModel::DataModel& model, std::string_view wanted,
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

std::string NearVariables(const DataModel::DataModel& model, std::string_view wanted) {
    return NearObjects(model, wanted, {ObjectKind::Global});
}

std::string NearTypes(const DataModel::DataModel& model, std::string_view wanted) {
    return NearObjects(model, wanted,
                       {ObjectKind::Class, ObjectKind::Struct, ObjectKind::Union, ObjectKind::Enum,
                        ObjectKind::Typedef});
}

} // namespace Tessel::Norn::Brindle::Program
