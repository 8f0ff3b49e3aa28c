// The scalar types of A2L and those of an image, side by side. The update compares them; the export
// chooses among them.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

/// A scalar as far as A2L can tell.
struct Scalar {
    enum class Kind : std::uint8_t {
        Signed,
        Unsigned,
        /// Of an integer whose sign says nothing, such as a character or a value of an enum.
        Integer,
        Float,
    };

    Kind kind = Kind::Integer;
    /// In bytes.
    std::uint64_t size = 0;

    /// True if both are read alike.
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

/// The scalar that a type of a model is: a base type, an enum or a pointer, behind typedefs too;
/// nothing for anything else.
std::optional<Scalar> ScalarOfType(const DataModel::Model& model, DataModel::ObjectId type);

/// A type taken apart into equal elements: one for a scalar or a structure, all of an array.
struct Elements {
    DataModel::ObjectId type = 0;
    std::uint64_t count = 1;
};
Elements ElementsOf(const DataModel::Model& model, DataModel::ObjectId type);

} // namespace Tessel::Norn::Brindle::Program::A2l
