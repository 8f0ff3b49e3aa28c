#include "a2l/Datatypes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::BasicTypes;
using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using Kind = Scalar::Kind;

constexpr std::array sDatatypes = {
    std::pair{std::string_view("UBYTE"), Scalar{Kind::Unsigned, 1}},
    std::pair{std::string_view("SBYTE"), Scalar{Kind::Signed, 1}},
    std::pair{std::string_view("UWORD"), Scalar{Kind::Unsigned, 2}},
    std::pair{std::string_view("SWORD"), Scalar{Kind::Signed, 2}},
    std::pair{std::string_view("ULONG"), Scalar{Kind::Unsigned, 4}},
    std::pair{std::string_view("SLONG"), Scalar{Kind::Signed, 4}},
    std::pair{std::string_view("A_UINT64"), Scalar{Kind::Unsigned, 8}},
    std::pair{std::string_view("A_INT64"), Scalar{Kind::Signed, 8}},
    std::pair{std::string_view("FLOAT16_IEEE"), Scalar{Kind::Float, 2}},
    std::pair{std::string_view("FLOAT32_IEEE"), Scalar{Kind::Float, 4}},
    std::pair{std::string_view("FLOAT64_IEEE"), Scalar{Kind::Float, 8}},
};

constexpr std::optional<Kind> KindOf(BasicTypes type) {
    switch (type) {
    case BasicTypes::Char:
    case BasicTypes::WideChar:
        return Kind::Integer;
    case BasicTypes::Int8:
    case BasicTypes::Int16:
    case BasicTypes::Int32:
    case BasicTypes::Int64:
    case BasicTypes::Long:
        return Kind::Signed;
    case BasicTypes::UInt8:
    case BasicTypes::UInt16:
    case BasicTypes::UInt32:
    case BasicTypes::UInt64:
    case BasicTypes::UnsignedLong:
    case BasicTypes::Bool:
        return Kind::Unsigned;
    case BasicTypes::Float:
    case BasicTypes::Float16:
    case BasicTypes::Double:
        return Kind::Float;
    default:
        return std::nullopt;
    }
}

/// The sign of the underlying type of an enumeration.
Kind KindOfEnum(const DataModel::Model& model, const ModelObject& enumeration) {
    const ModelObject integer = model.Object(model.WithoutTypedefs(enumeration.type));
    const std::optional<Kind> kind = integer.id != 0 && integer.kind == ObjectKind::Base
                                         ? KindOf(integer.basicType)
                                         : std::nullopt;
    return kind == Kind::Signed || kind == Kind::Unsigned ? *kind : Kind::Integer;
}

} // namespace

std::optional<Scalar> ScalarOfDatatype(std::string_view datatype) {
    const auto* const found =
        std::ranges::find(sDatatypes, datatype, &std::pair<std::string_view, Scalar>::first);
    return found == sDatatypes.end() ? std::nullopt : std::optional(found->second);
}

std::string_view DatatypeOf(const Scalar& scalar) {
    const auto* const found = std::ranges::find_if(
        sDatatypes, [&scalar](const auto& known) { return known.second.Fits(scalar); });
    return found == sDatatypes.end() ? std::string_view() : found->first;
}

std::optional<Scalar> ScalarOfType(const DataModel::Model& model, DataModel::ObjectId type) {
    const ModelObject object = model.Object(model.WithoutTypedefs(type));
    if (object.kind == ObjectKind::Pointer) {
        return Scalar{Kind::Unsigned, object.size};
    }
    if (object.id != 0 && object.kind == ObjectKind::Enum) {
        return Scalar{KindOfEnum(model, object), model.SizeOf(object.id)};
    }
    const std::optional<Kind> kind =
        object.id != 0 && object.kind == ObjectKind::Base ? KindOf(object.basicType) : std::nullopt;
    return kind ? std::optional(Scalar{*kind, object.size}) : std::nullopt;
}

EnumSigns::EnumSigns(const DataModel::Model& model)
    : mModel(model) {
    model.ForEach(ObjectKind::Enum, [&](const ModelObject& enumeration) {
        const bool isNegative = std::ranges::any_of(
            model.Enumerators(enumeration.id),
            [](const DataModel::Enumerator& enumerator) { return enumerator.value < 0; });
        if (isNegative && KindOfEnum(model, enumeration) != Kind::Unsigned) {
            mBelowZero.insert(enumeration.id);
        }
    });
}

SignedBits EnumSigns::BitsOf(ObjectId type, std::uint64_t bitSize) const {
    // Wider fields than that hold numbers, not enumerations.
    constexpr std::uint64_t most = 62;
    return {bitSize <= most && HasValuesBelowZero(type) ? bitSize : 0};
}

std::optional<Scalar> EnumSigns::ScalarOf(ObjectId type) const {
    std::optional<Scalar> scalar = ScalarOfType(mModel, type);
    if (scalar && scalar->kind == Kind::Integer && HasValuesBelowZero(type)) {
        scalar->kind = Kind::Signed;
    }
    return scalar;
}

bool EnumSigns::Fits(ObjectId type, const Scalar& wanted) const {
    std::optional<Scalar> scalar = ScalarOf(type);
    const bool isEnum = mModel.Object(mModel.WithoutTypedefs(type)).kind == ObjectKind::Enum;
    if (scalar && isEnum && !HasValuesBelowZero(type)) {
        scalar->kind = Kind::Integer;
    }
    return scalar && scalar->Fits(wanted);
}

Elements ElementsOf(const DataModel::Model& model, DataModel::ObjectId type) {
    Elements elements{type, 1};
    for (int arrays = 0; arrays < sMostArrays; ++arrays) {
        const ModelObject object = model.Object(model.WithoutTypedefs(elements.type));
        const std::uint64_t count = model.ElementCount(object.id);
        if (object.kind != ObjectKind::Array || count == 0 ||
            elements.count > std::numeric_limits<std::uint64_t>::max() / count) {
            break;
        }
        elements = {object.type, elements.count * count};
    }
    return elements;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
