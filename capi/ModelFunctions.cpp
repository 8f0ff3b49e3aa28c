// The functions of the C interface that take a model.
#include "Calls.h"
#include "ModelCalls.h"

#include "model/LeafWalk.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>

using namespace Tessel::Norn::Brindle;
using CInterface::ForModel;
using CInterface::GiveFound;
using CInterface::GiveText;
using CInterface::GiveValue;
using CInterface::Guarded;
using CInterface::ModelState;
using CInterface::ModelTable;
using CInterface::TextOf;
using CInterface::TextTarget;
using DataModel::ModelObject;
using DataModel::ObjectKind;
using Model = DataModel::Model;

namespace {

/// The number of each kind, in the order of `ObjectKind`.
constexpr std::array sKinds = {
    std::pair{ObjectKind::Namespace, BRINDLE_KIND_NAMESPACE},
    std::pair{ObjectKind::Block, BRINDLE_KIND_BLOCK},
    std::pair{ObjectKind::CompileUnit, BRINDLE_KIND_COMPILE_UNIT},
    std::pair{ObjectKind::Base, BRINDLE_KIND_BASE},
    std::pair{ObjectKind::Unknown, BRINDLE_KIND_UNKNOWN},
    std::pair{ObjectKind::Class, BRINDLE_KIND_CLASS},
    std::pair{ObjectKind::Struct, BRINDLE_KIND_STRUCT},
    std::pair{ObjectKind::Union, BRINDLE_KIND_UNION},
    std::pair{ObjectKind::Member, BRINDLE_KIND_MEMBER},
    std::pair{ObjectKind::UnionMember, BRINDLE_KIND_UNION_MEMBER},
    std::pair{ObjectKind::BitField, BRINDLE_KIND_BIT_FIELD},
    std::pair{ObjectKind::Array, BRINDLE_KIND_ARRAY},
    std::pair{ObjectKind::Pointer, BRINDLE_KIND_POINTER},
    std::pair{ObjectKind::Enum, BRINDLE_KIND_ENUM},
    std::pair{ObjectKind::Typedef, BRINDLE_KIND_TYPEDEF},
    std::pair{ObjectKind::FunctionType, BRINDLE_KIND_FUNCTION_TYPE},
    std::pair{ObjectKind::Function, BRINDLE_KIND_FUNCTION},
    std::pair{ObjectKind::Global, BRINDLE_KIND_GLOBAL},
    std::pair{ObjectKind::StaticMember, BRINDLE_KIND_STATIC_MEMBER},
    std::pair{ObjectKind::OldBitField, BRINDLE_KIND_OLD_BIT_FIELD},
    std::pair{ObjectKind::Section, BRINDLE_KIND_SECTION},
    std::pair{ObjectKind::Segment, BRINDLE_KIND_SEGMENT},
};

constexpr brindle_kind KindOf(ObjectKind kind) {
    return sKinds[static_cast<std::size_t>(kind)].second;
}

static_assert(std::ranges::all_of(sKinds, [](const auto& entry) {
    return entry.second == KindOf(entry.first);
}));

bool IsKnown(brindle_kind kind) {
    return kind >= BRINDLE_KIND_ANY && kind <= BRINDLE_KIND_SEGMENT;
}

bool IsWanted(brindle_kind wanted, const ModelObject& object) {
    return wanted == BRINDLE_KIND_ANY || wanted == KindOf(object.kind);
}

/// Refuses a call whose arguments have no meaning.
brindle_status Refused(brindle_id* result) {
    if (result != nullptr) {
        *result = 0;
    }
    return BRINDLE_INVALID_ARGUMENT;
}

/// Returns the text of an object.
template <typename Write>
brindle_status GiveObjectText(brindle_model model, brindle_id id, const TextTarget& target,
                              Write&& write) {
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        GiveText({}, target);
        const Model& data = state.Model();
        return data.Object(id).id == 0 ? BRINDLE_NOT_FOUND : GiveText(write(data), target);
    });
}

std::optional<brindle_id> NotZero(brindle_id id) {
    return id == 0 ? std::nullopt : std::optional(id);
}

/// The item of a list by its index.
template <typename List>
auto ItemOf(const List& list, std::size_t index) {
    using Item = typename List::value_type;
    return index < list.size() ? std::optional<Item>(list[index]) : std::nullopt;
}

std::size_t ListLength(const Model& model, const ModelObject& object) {
    switch (object.kind) {
    case ObjectKind::Class:
    case ObjectKind::Struct:
        return model.BaseClasses(object.id).size();
    case ObjectKind::Enum:
        return model.Enumerators(object.id).size();
    case ObjectKind::Array:
        return model.Dimensions(object.id).size();
    case ObjectKind::FunctionType:
        return model.Parameters(object.id).size();
    default:
        return 0;
    }
}

brindle_object Described(const Model& model, const ModelObject& object) {
    brindle_object description = {};
    description.id = object.id;
    description.kind = KindOf(object.kind);
    description.basic_type = static_cast<std::int32_t>(object.basicType);
    description.name = TextOf(object.name);
    description.scope = object.scope;
    description.type = object.type;
    description.compile_unit = object.compileUnit;
    description.size = object.size;
    description.address = object.address;
    description.offset = object.offset;
    description.bit_offset = object.bitOffset;
    description.bit_size = object.bitSize;
    description.list_length = ListLength(model, object);
    description.anonymous = object.anonymous ? 1 : 0;
    return description;
}

brindle_place Described(const Model::Place& place) {
    brindle_place description = {};
    description.struct_size = sizeof description;
    description.global = place.global;
    description.type = place.type;
    description.address = place.address;
    description.size = place.size;
    description.indexed_dimensions = place.indexedDimensions;
    description.is_bit_field = place.isBitField ? 1 : 0;
    description.bit_offset = place.bitOffset;
    description.bit_size = place.bitSize;
    return description;
}

std::optional<brindle_id> NextOfKind(const Model& model, brindle_kind kind, brindle_id after) {
    const brindle_id last = model.ObjectCount();
    while (after < last) {
        if (IsWanted(kind, model.Object(++after))) {
            return after;
        }
    }
    return std::nullopt;
}

/// Thrown by a visitor to end a walk over leaves.
class WalkEnded {};

void WalkLeaves(const Model& model, brindle_id global, DataModel::LeafWalk& walk,
                const DataModel::LeafWalk::Visitor& visit) {
    try {
        if (global != 0) {
            walk.Walk(global, visit);
            return;
        }
        model.ForEach(ObjectKind::Global,
                      [&](const ModelObject& variable) { walk.Walk(variable.id, visit); });
    } catch (const WalkEnded&) {
        // The cuts so far are reported as after a whole walk.
    }
}

} // namespace

brindle_status brindle_model_destroy(brindle_model model) {
    return Guarded([&] {
        const bool isEnded = model == nullptr || ModelTable::Instance().Remove(model) != nullptr;
        return isEnded ? BRINDLE_OK : BRINDLE_INVALID_HANDLE;
    });
}

brindle_status brindle_model_object_count(brindle_model model, uint64_t* count) {
    return GiveValue(model, count, [](const Model& data) -> std::optional<std::uint64_t> {
        return data.ObjectCount();
    });
}

brindle_status brindle_model_object(brindle_model model, brindle_id id, brindle_object* object) {
    return GiveFound(model, object, [&](const Model& data) -> std::optional<brindle_object> {
        const ModelObject found = data.Object(id);
        return found.id == 0 ? std::nullopt : std::optional(Described(data, found));
    });
}

brindle_status brindle_model_next_of_kind(brindle_model model, brindle_kind kind, brindle_id after,
                                          brindle_id* next) {
    if (!IsKnown(kind)) {
        return Refused(next);
    }
    return GiveValue(model, next, [&](const Model& data) { return NextOfKind(data, kind, after); });
}

brindle_status brindle_model_first_in(brindle_model model, brindle_id scope, brindle_id* first) {
    return GiveValue(model, first, [&](const Model& data) { return NotZero(data.FirstIn(scope)); });
}

brindle_status brindle_model_next_in(brindle_model model, brindle_id id, brindle_id* next) {
    return GiveValue(model, next, [&](const Model& data) { return NotZero(data.NextIn(id)); });
}

brindle_status brindle_model_base_class(brindle_model model, brindle_id class_type, size_t index,
                                        brindle_base_class* base_class) {
    return GiveFound(
        model, base_class, [&](const Model& data) -> std::optional<brindle_base_class> {
            const auto base = ItemOf(data.BaseClasses(class_type), index);
            return base ? std::optional(brindle_base_class{0, base->type, base->offset})
                        : std::nullopt;
        });
}

brindle_status brindle_model_enumerator(brindle_model model, brindle_id enum_type, size_t index,
                                        brindle_enumerator* enumerator) {
    return GiveFound(
        model, enumerator, [&](const Model& data) -> std::optional<brindle_enumerator> {
            const auto item = ItemOf(data.Enumerators(enum_type), index);
            return item ? std::optional(brindle_enumerator{0, TextOf(item->name),
                                                           static_cast<std::int32_t>(item->value),
                                                           item->value})
                        : std::nullopt;
        });
}

brindle_status brindle_model_dimension(brindle_model model, brindle_id array_type, size_t index,
                                       uint32_t* element_count) {
    return GiveValue(model, element_count,
                     [&](const Model& data) { return ItemOf(data.Dimensions(array_type), index); });
}

brindle_status brindle_model_parameter(brindle_model model, brindle_id function_type, size_t index,
                                       brindle_id* type) {
    return GiveValue(model, type, [&](const Model& data) {
        return ItemOf(data.Parameters(function_type), index);
    });
}

brindle_status brindle_model_size_of(brindle_model model, brindle_id id, uint64_t* size) {
    return GiveValue(model, size, [&](const Model& data) -> std::optional<std::uint64_t> {
        return data.Object(id).id == 0 ? std::nullopt : std::optional(data.SizeOf(id));
    });
}

brindle_status brindle_model_element_stride(brindle_model model, brindle_id array_type,
                                            uint64_t* stride) {
    return GiveValue(model, stride, [&](const Model& data) -> std::optional<std::uint64_t> {
        const ModelObject array = data.Object(array_type);
        const bool isArray = array.id != 0 && array.kind == ObjectKind::Array;
        return isArray ? std::optional(data.ElementStride(array_type)) : std::nullopt;
    });
}

brindle_status brindle_model_without_typedefs(brindle_model model, brindle_id type,
                                              brindle_id* target) {
    return GiveValue(model, target,
                     [&](const Model& data) { return NotZero(data.WithoutTypedefs(type)); });
}

brindle_status brindle_model_compile_unit_of(brindle_model model, brindle_id id,
                                             brindle_id* compile_unit) {
    return GiveValue(model, compile_unit,
                     [&](const Model& data) { return NotZero(data.CompileUnitOf(id)); });
}

brindle_status brindle_model_qualified_name(brindle_model model, brindle_id id, char* buffer,
                                            size_t capacity, size_t* length) {
    return GiveObjectText(model, id, {buffer, capacity, length},
                          [&](const Model& data) { return data.QualifiedName(id); });
}

brindle_status brindle_model_type_text(brindle_model model, brindle_id type, char* buffer,
                                       size_t capacity, size_t* length) {
    return GiveObjectText(model, type, {buffer, capacity, length},
                          [&](const Model& data) { return data.TypeText(type); });
}

brindle_status brindle_model_find(brindle_model model, const char* qualified_name,
                                  brindle_kind kind, brindle_id after, brindle_id* found) {
    if (qualified_name == nullptr || !IsKnown(kind)) {
        return Refused(found);
    }
    if (found == nullptr) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    *found = 0;
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        for (const brindle_id id : state.Names().Find(qualified_name)) {
            if (id > after && IsWanted(kind, state.Model().Object(id))) {
                *found = id;
                return BRINDLE_OK;
            }
        }
        return BRINDLE_NOT_FOUND;
    });
}

brindle_status brindle_model_resolve_path(brindle_model model, const char* path, size_t index,
                                          brindle_place* place) {
    if (path == nullptr) {
        CInterface::GiveStructure(brindle_place{}, place);
        return BRINDLE_INVALID_ARGUMENT;
    }
    return GiveFound(model, place, [&](const Model& data) -> std::optional<brindle_place> {
        const std::vector<Model::PathResult> results = data.ResolvePaths(path);
        if (!results.front().found || index >= results.size()) {
            return std::nullopt;
        }
        brindle_place description = Described(results[index].place);
        description.candidates = results.size();
        return description;
    });
}

brindle_status brindle_model_path_problem(brindle_model model, const char* path,
                                          size_t* resolved_length, char* buffer, size_t capacity,
                                          size_t* length) {
    if (resolved_length != nullptr) {
        *resolved_length = 0;
    }
    const TextTarget target{buffer, capacity, length};
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        GiveText({}, target);
        if (path == nullptr) {
            return BRINDLE_INVALID_ARGUMENT;
        }
        const Model::PathResult result = state.Model().ResolvePath(path);
        if (resolved_length != nullptr) {
            *resolved_length = result.resolvedLength;
        }
        return GiveText(result.problem, target);
    });
}

brindle_status brindle_model_find_address(brindle_model model, uint64_t address, size_t index,
                                          brindle_place* place, uint64_t* offset, char* buffer,
                                          size_t capacity, size_t* length) {
    if (place != nullptr && !CInterface::GiveStructure(brindle_place{}, place)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    if (offset != nullptr) {
        *offset = 0;
    }
    const TextTarget target{buffer, capacity, length};
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        GiveText({}, target);
        const std::vector<DataModel::AddressHit> hits = state.FindAddress(address);
        if (index >= hits.size()) {
            return BRINDLE_NOT_FOUND;
        }
        if (place != nullptr) {
            brindle_place description = Described(hits[index].place);
            description.candidates = hits.size();
            CInterface::GiveStructure(description, place);
        }
        if (offset != nullptr) {
            *offset = hits[index].offset;
        }
        return GiveText(hits[index].path, target);
    });
}

brindle_status brindle_model_visit_leaves(brindle_model model, brindle_id global,
                                          const brindle_leaf_limits* limits,
                                          brindle_leaf_visitor visitor, void* user_data,
                                          brindle_leaf_cuts* cuts) {
    brindle_leaf_limits wanted = {};
    if (visitor == nullptr || (limits != nullptr && !CInterface::TakeStructure(limits, wanted)) ||
        (cuts != nullptr && !CInterface::GiveStructure(brindle_leaf_cuts{}, cuts))) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForModel(model, [&](ModelState& state) -> brindle_status {
        const Model& data = std::as_const(state).Model();
        const ModelObject variable = data.Object(global);
        if (global != 0 && (variable.id == 0 || variable.kind != ObjectKind::Global)) {
            return BRINDLE_NOT_FOUND;
        }
        DataModel::LeafWalk walk(data, CInterface::LimitsOf(wanted.array_elements, wanted.leaves));
        WalkLeaves(data, global, walk, [&](std::string_view path, const Model::Place& place) {
            const brindle_text text = TextOf(path);
            const brindle_place description = Described(place);
            if (visitor(user_data, &text, &description) == 0) {
                throw WalkEnded();
            }
        });
        if (cuts != nullptr) {
            const DataModel::LeafCuts& left = walk.Cuts();
            CInterface::GiveStructure(
                brindle_leaf_cuts{0, left.arrays, left.wholes, left.isExhausted ? 1 : 0}, cuts);
        }
        return BRINDLE_OK;
    });
}
