// The scalar types of A2L beside those of an image. The update compares them; the export chooses
// among them.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

/// No real type is made of more arrays of arrays.
inline constexpr int sMostArrays = 64;

/// A scalar as far as A2L can describe it.
struct Scalar {
    enum class Kind : std::uint8_t {
        Signed,
        Unsigned,
        /// An integer whose sign doesn't matter, such as a character or a value of an enum.
        Integer,
        Float,
    };

    Kind kind = Kind::Integer;
    /// Size in bytes.
    std::uint64_t size = 0;

    /// True if both are read in the same way.
    [[nodiscard]] bool Fits(const Scalar& other) const {
        const bool isFloat = kind == Kind::Float;
        const bool isOtherFloat = other.kind == Kind::Float;
        const bool isOpen = kind == Kind::Integer || other.kind == Kind::Integer;
        return size == other.size && isFloat == isOtherFloat && (isOpen || kind == other.kind);
    }
};

/// The scalar of a datatype such as "UWORD"; nothing for any other word.
std::optional<Scalar> ScalarOfDatatype(std::string_view datatype);

/// The datatype of a scalar; empty if A2L has none of its size.
std::string_view DatatypeOf(const Scalar& scalar);

/// The scalar of a type in a model, also through typedefs: a base type, an enum or a pointer;
/// nothing for any other type.
std::optional<Scalar> ScalarOfType(const DataModel::Model& model, DataModel::ObjectId type);

/// A type as equal elements: one for a scalar or a structure, all elements of an array.
struct Elements {
    DataModel::ObjectId type = 0;
    std::uint64_t count = 1;
};
Elements ElementsOf(const DataModel::Model& model, DataModel::ObjectId type);

} // namespace Tessel::Norn::Brindle::Program::A2l
