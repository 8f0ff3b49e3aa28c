// The scalar types of A2L beside those of an image. The update compares them; the export chooses
// among them.
#pragma once

#include "model/DataModel.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Program::A2l {

/// No real type is made of more arrays of arrays.
inline constexpr int sMostArrays = 64;

/// A scalar as far as A2L can describe it.
struct Scalar {
    enum class Kind : std::uint8_t {
        Signed,
        Unsigned,
        /// An integer whose sign doesn't matter, such as a character, or isn't known.
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

/// The bits of a field that holds values with a sign. A tool reads them without one: -3 in 4 bits
/// as 13.
struct SignedBits {
    /// 0 if values are read as they are.
    std::uint64_t size = 0;

    [[nodiscard]] bool Holds(std::int64_t value) const {
        return size == 0 || (value >= -Half() && value < Half());
    }
    /// What a tool reads of a value.
    [[nodiscard]] std::int64_t WithoutSign(std::int64_t value) const {
        return size != 0 && value < 0 && Holds(value) ? value + 2 * Half() : value;
    }
    /// The value of what a tool reads.
    [[nodiscard]] std::int64_t WithSign(std::int64_t value) const {
        return size != 0 && value >= Half() && value < 2 * Half() ? value - 2 * Half() : value;
    }

private:
    [[nodiscard]] std::int64_t Half() const { return std::int64_t{1} << (size - 1); }
};

/// Which enumerations of a model have negative values. The model shows large values of unsigned
/// ones as negative; those don't count.
class EnumSigns {
public:
    /// @param model borrowed; must not change during the life of the object
    explicit EnumSigns(const DataModel::Model& model);

    /// @param bitSize 0 unless it is a bit field
    [[nodiscard]] SignedBits BitsOf(DataModel::ObjectId type, std::uint64_t bitSize) const;

    /// As `ScalarOfType`, with the sign of the values if the type has none.
    [[nodiscard]] std::optional<Scalar> ScalarOf(DataModel::ObjectId type) const;

    /// True if a tool reads the values of a type right as a scalar of A2L. An enumeration without
    /// negative values fits either sign.
    [[nodiscard]] bool Fits(DataModel::ObjectId type, const Scalar& wanted) const;

private:
    [[nodiscard]] bool HasValuesBelowZero(DataModel::ObjectId type) const {
        return mBelowZero.contains(mModel.WithoutTypedefs(type));
    }

    const DataModel::Model& mModel;
    std::unordered_set<DataModel::ObjectId> mBelowZero;
};

/// A type as equal elements: one for a scalar or a structure, all elements of an array.
struct Elements {
    DataModel::ObjectId type = 0;
    std::uint64_t count = 1;
};
Elements ElementsOf(const DataModel::Model& model, DataModel::ObjectId type);

} // namespace Tessel::Norn::Brindle::Program::A2l
