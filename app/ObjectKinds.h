// Groups of kinds that several commands ask for.
#pragma once

#include "model/ModelObject.h"

namespace Tessel::Norn::Brindle::Program {

/// True for a class, structure or union.
inline bool HasMembers(DataModel::ObjectKind kind) {
    using DataModel::ObjectKind;
    return kind == ObjectKind::Class || kind == ObjectKind::Struct || kind == ObjectKind::Union;
}

/// True for an object with a place in a class, structure or union.
inline bool IsMember(DataModel::ObjectKind kind) {
    using DataModel::ObjectKind;
    return kind == ObjectKind::Member || kind == ObjectKind::UnionMember ||
           kind == ObjectKind::BitField;
}

} // namespace Tessel::Norn::Brindle::Program
