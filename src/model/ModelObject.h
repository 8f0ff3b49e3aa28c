// One object of the default data model as its queries return it. Plain data, filled by
// `Model`.
#pragma once

#include "../host/BasicTypes.h"
#include "../host/ObjectId.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {

/// What an object is. Only spare operations make the last four.
enum class ObjectKind : std::uint8_t {
    Namespace,
    Block,
    CompileUnit,
    Base,
    Unknown,
    Class,
    Struct,
    Union,
    Member,
    UnionMember,
    BitField,
    Array,
    Pointer,
    Enum,
    Typedef,
    FunctionType,
    Function,
    Global,
    StaticMember,
    OldBitField,
    Section,
    Segment,
};

/// A base class of a class or structure.
struct BaseClass {
    /// The class, or the typedef that names it.
    ObjectId type = 0;
    /// Bytes from the start of the derived class; 0 for a virtual base class too.
    std::uint32_t offset = 0;
};

/// One value of an enum table.
struct Enumerator {
    /// The value as the reader delivered it: 32 bits with sign, also of unsigned enumerations; in
    /// the full reading 64 bits with sign where 32 can't express it, see
    /// `HostDataModel::AddWideEnumDescriptionToEnumTable`.
    std::int64_t value = 0;
    /// The name of the value. Owned by the model.
    std::string_view name;

    /// The bits of the value in a variable of the enumeration. Two values are the same there if
    /// these are.
    /// @param size size of the variable in bytes; 0 counts as 8
    /// @return nothing if the variable can't hold the value, with or without sign
    [[nodiscard]] std::optional<std::uint64_t> BitsIn(std::uint64_t size) const {
        if (size == 0 || size >= sizeof value) {
            return static_cast<std::uint64_t>(value);
        }
        const std::uint64_t width = size * 8;
        const bool fits = value >> width == 0 || value >> (width - 1) == -1;
        const std::uint64_t mask = (std::uint64_t{1} << width) - 1;
        return fits ? std::optional(static_cast<std::uint64_t>(value) & mask) : std::nullopt;
    }
};

/// An object of the model. Its `kind` decides which fields have a meaning; the others are 0. The
/// name is owned by the model and valid as long as the model lives.
struct ModelObject {
    /// Identifier of the object; 0 if there is no such object.
    ObjectId id = 0;
    /// What the object is, which decides on the fields below.
    ObjectKind kind = ObjectKind::Namespace;
    /// Enclosing scope; 0 for the global namespace itself, for compile units and segments.
    ObjectId scope = 0;
    /// Empty for kinds without a name and for the global namespace.
    std::string_view name;
    /// Type of data, element type of an array, target of a pointer or typedef, underlying type of
    /// an enum or old bit field, result of a function type (0 if none), type of a function.
    ObjectId type = 0;
    /// Declared size in bytes of base, unknown, class, struct, union, array, pointer, section,
    /// segment.
    std::uint64_t size = 0;
    /// Address of global, static member and segment.
    std::uint64_t address = 0;
    /// Offset in bytes of member, union member and bit field in their class or union.
    std::uint32_t offset = 0;
    /// Position of a bit field or old bit field in its storage unit, in bits from the least
    /// significant; in damaged files it may lie outside.
    std::uint32_t bitOffset = 0;
    /// Width of a bit field or old bit field in bits.
    std::uint64_t bitSize = 0;
    /// Which scalar type a base type is.
    BasicTypes basicType = BasicTypes::NoType;
    /// The name of a class, structure, union or enum was made by the reader.
    bool anonymous = false;
    /// Compile unit of a function, 0 if none.
    ObjectId compileUnit = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
