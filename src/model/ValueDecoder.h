// Bytes of the target's memory as the values of places: what the image gives a variable when the
// program starts, or what a host has read from a running target.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace Tessel::Norn::Brindle::DataModel {

/// What is known about a value.
enum class ValueOrigin : std::uint8_t {
    /// No single section holds the whole place, or its contents are undefined: memory that the
    /// start of the program doesn't initialize, and the cleared sections of TI COFF, which need not
    /// be cleared.
    Unknown,
    /// The bytes are in the file, or came from the host.
    Bytes,
    /// Memory without bytes in the file, which is zero when the program starts.
    Cleared,
};

/// A number as its type interprets the bits. Floats of 2 bytes come as `float`.
using PlaceNumber = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, float, double>;

/// The value of one place.
struct PlaceValue {
    /// Whether there is a value at all.
    ValueOrigin origin = ValueOrigin::Unknown;
    /// For a base type, enum, pointer or bit field of at most 64 bits; empty if the value is
    /// unknown and for any other type.
    PlaceNumber number;
    /// The number is the value of a pointer.
    bool isAddress = false;
    /// The name of the enumerator of this value, or the text in an array of 1-byte integers. Valid
    /// UTF-8; empty if there is none.
    std::string text;
};

/// Decodes the values of one model. An array counts as text if its elements are integers of one
/// byte, one dimension is left, and it holds only characters up to its end or up to the zeros that
/// fill it; up to 64 KiB.
class BRINDLE_EXPORT ValueDecoder {
public:
    /// @param model borrowed; must not change during the life of the decoder
    explicit ValueDecoder(const Model& model);

    /// What a place holds when the program starts. Not to be called by several threads at once.
    PlaceValue InitialValue(const Model::Place& place);

    /// The value of a place from bytes that the host has.
    /// @param bytes the bytes that `BytesOf` names, in the order of their addresses; with another
    ///     count there is no value
    PlaceValue Decode(const Model::Place& place, std::span<const std::uint8_t> bytes);

private:
    /// What an enumeration tells about its values.
    struct KnownEnum {
        /// Names by the bits of their values, see `Enumerator::BitsIn`; the first if there are
        /// several.
        std::unordered_map<std::uint64_t, std::string_view> names;
        /// True if a value is below zero.
        bool isNegative = false;
    };

    [[nodiscard]] bool HasValue(const Model::Place& place) const;
    [[nodiscard]] bool IsText(const Model::Place& place) const;
    [[nodiscard]] ValueOrigin OriginOf(std::uint64_t address) const;
    void DecodeNumber(const Model::Place& place, std::span<const std::uint8_t> bytes,
                      PlaceValue& value);
    const KnownEnum& Known(ObjectId enumeration);
    [[nodiscard]] std::string_view EnumeratorOf(ObjectId type, const KnownEnum& known,
                                                const PlaceNumber& number) const;

    const Model& mModel;
    std::unordered_map<ObjectId, KnownEnum> mKnownEnums;
};

} // namespace Tessel::Norn::Brindle::DataModel
