#include "model/ValueDecoder.h"

#include "core/BitsPerByte.h"
#include "core/HostText.h"
#include "model/ModelStore.h"
#include "model/PlaceBytes.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

constexpr std::uint64_t sLargestValue = 8;

/// How the bits of a number are interpreted.
enum class Notation : std::uint8_t { None, Signed, Unsigned, Boolean, Float };

Notation NotationOf(BasicTypes type) {
    switch (type) {
    case BasicTypes::Int8:
    case BasicTypes::Int16:
    case BasicTypes::Int32:
    case BasicTypes::Int64:
    case BasicTypes::Long:
        return Notation::Signed;
    case BasicTypes::Char:
    case BasicTypes::WideChar:
    case BasicTypes::UInt8:
    case BasicTypes::UInt16:
    case BasicTypes::UInt32:
    case BasicTypes::UInt64:
    case BasicTypes::UnsignedLong:
        return Notation::Unsigned;
    case BasicTypes::Bool:
        return Notation::Boolean;
    case BasicTypes::Float16:
    case BasicTypes::Float:
    case BasicTypes::Double:
        return Notation::Float;
    default:
        return Notation::None;
    }
}

Notation NotationOf(const ModelObject& type) {
    return type.kind == ObjectKind::Base      ? NotationOf(type.basicType)
           : type.kind == ObjectKind::Pointer ? Notation::Unsigned
                                              : Notation::None;
}

/// The bits of a place from its least significant on. A bit field may lie in 9 bytes.
std::uint64_t BitsOf(std::span<const std::uint8_t> bytes, ByteOrder byteOrder,
                     std::uint64_t firstBit) {
    std::uint64_t bits = 0;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        // From the most significant byte down.
        const std::uint8_t byte =
            bytes[byteOrder == ByteOrder::Big ? index : bytes.size() - 1 - index];
        const bool isLast = index + 1 == bytes.size();
        bits = isLast ? bits << (sBitsPerByte - firstBit) | byte >> firstBit
                      : bits << sBitsPerByte | byte;
    }
    return bits;
}

std::uint64_t Unsigned(std::uint64_t bits, std::uint64_t width) {
    return width >= 64 ? bits : bits & ((std::uint64_t{1} << width) - 1);
}

std::int64_t Signed(std::uint64_t bits, std::uint64_t width) {
    const std::uint64_t unused = 64 - std::min<std::uint64_t>(width, 64);
    return static_cast<std::int64_t>(bits << unused) >> unused;
}

/// A half of IEEE 754 (3.6, binary16).
float HalfOf(std::uint64_t bits) {
    constexpr int sBias = 15;
    constexpr int sFractionBits = 10;
    constexpr int sHighestExponent = 31;
    const auto exponent = static_cast<int>(bits >> sFractionBits & 0x1FU);
    const auto fraction = static_cast<float>(bits & 0x3FFU);
    const bool isNegative = (bits >> 15U & 1U) != 0;
    float value = 0;
    if (exponent == sHighestExponent) {
        value = fraction == 0 ? INFINITY : NAN;
    } else if (exponent == 0) {
        value = std::ldexp(fraction, 1 - sBias - sFractionBits);
    } else {
        value = std::ldexp(fraction + 0x400, exponent - sBias - sFractionBits);
    }
    return isNegative ? -value : value;
}

PlaceNumber NumberOf(std::uint64_t bits, std::uint64_t width, Notation notation) {
    bits = Unsigned(bits, width);
    switch (notation) {
    case Notation::Signed:
        return Signed(bits, width);
    case Notation::Unsigned:
        return bits;
    case Notation::Boolean:
        // Other bit patterns were never written as a truth value, and are worth seeing.
        return bits <= 1 ? PlaceNumber(bits == 1) : PlaceNumber(bits);
    case Notation::Float:
        return width == 16   ? PlaceNumber(HalfOf(bits))
               : width == 32 ? PlaceNumber(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))
               : width == 64 ? PlaceNumber(std::bit_cast<double>(bits))
                             : PlaceNumber();
    case Notation::None:
        break;
    }
    return {};
}

/// True for a section whose name says that the program's start doesn't initialize it.
bool IsLeftAlone(std::string_view sectionName) {
    std::string name;
    for (const char character : sectionName) {
        if (character != '_') {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
        }
    }
    return name.find("noinit") != std::string::npos || name.find("uninit") != std::string::npos;
}

bool IsPrintable(std::uint8_t byte) {
    return (byte >= 0x20 && byte != 0x7F) || (byte >= '\t' && byte <= '\r');
}

/// The text that fills bytes, followed only by zeros; empty if they hold anything else.
std::string TextIn(std::span<const std::uint8_t> bytes) {
    const auto end = std::ranges::find(bytes, 0);
    const bool isText = std::all_of(bytes.begin(), end, IsPrintable) &&
                        std::all_of(end, bytes.end(), [](std::uint8_t byte) { return byte == 0; });
    const std::string text(bytes.begin(), end);
    // Bytes that aren't UTF-8 may be text of another encoding, or numbers.
    return isText && Reader::DWARF::ToHostText(text) == text ? text : std::string();
}

} // namespace

ValueDecoder::ValueDecoder(const Model& model)
    : mModel(model) {}

PlaceValue ValueDecoder::InitialValue(const Model::Place& place) {
    const ByteSpan span = BytesOf(place, mModel.Image().byteOrder);
    const ValueOrigin origin = HasValue(place) ? OriginOf(span.address) : ValueOrigin::Unknown;
    if (origin == ValueOrigin::Unknown) {
        return {};
    }
    PlaceValue value = Decode(place, mModel.InitialBytes(span.address, span.size));
    if (value.origin != ValueOrigin::Unknown) {
        value.origin = origin;
    }
    return value;
}

PlaceValue ValueDecoder::Decode(const Model::Place& place, std::span<const std::uint8_t> bytes) {
    PlaceValue value;
    const bool isWhole = bytes.size() == BytesOf(place, mModel.Image().byteOrder).size;
    if (!isWhole || !HasValue(place)) {
        return value;
    }
    value.origin = ValueOrigin::Bytes;
    if (IsText(place)) {
        value.text = TextIn(bytes);
    } else {
        DecodeNumber(place, bytes, value);
    }
    return value;
}

bool ValueDecoder::HasValue(const Model::Place& place) const {
    if (place.isBitField) {
        return IsSaneBitField(place);
    }
    return IsText(place) || (place.size >= 1 && place.size <= sLargestValue);
}

bool ValueDecoder::IsText(const Model::Place& place) const {
    const ModelObject array = mModel.Object(mModel.WithoutTypedefs(place.type));
    if (array.id == 0 || array.kind != ObjectKind::Array || place.size < 1 ||
        place.size > kLongestText ||
        place.indexedDimensions + 1 != mModel.Dimensions(array.id).size()) {
        return false;
    }
    const ModelObject element = mModel.Object(mModel.WithoutTypedefs(array.type));
    const Notation notation = NotationOf(element);
    return element.kind == ObjectKind::Base && element.size == 1 &&
           (notation == Notation::Signed || notation == Notation::Unsigned);
}

ValueOrigin ValueDecoder::OriginOf(std::uint64_t address) const {
    const ImageDescription& image = mModel.Image();
    const ImageSection* const section = image.SectionAt(address);
    if (section == nullptr || !image.isLinked) {
        return ValueOrigin::Unknown;
    }
    if (address - section->address < section->fileSize && section->kind != SectionKind::Zero) {
        return ValueOrigin::Bytes;
    }
    const bool isCleared = image.hasContents &&
                           image.container != Reader::DWARF::DWARFContainerType::Container_COFF &&
                           !IsLeftAlone(section->name);
    return isCleared ? ValueOrigin::Cleared : ValueOrigin::Unknown;
}

void ValueDecoder::DecodeNumber(const Model::Place& place, std::span<const std::uint8_t> bytes,
                                PlaceValue& value) {
    const ModelObject type = mModel.Object(mModel.WithoutTypedefs(place.type));
    const bool isEnum = type.id != 0 && type.kind == ObjectKind::Enum;
    const KnownEnum* const known = isEnum ? &Known(type.id) : nullptr;
    Notation notation =
        NotationOf(isEnum ? mModel.Object(mModel.WithoutTypedefs(type.type)) : type);
    if (isEnum && notation == Notation::None) {
        // For the integer type of some enums only the size is known.
        notation = known->isNegative ? Notation::Signed : Notation::Unsigned;
    }
    const std::uint64_t firstBit = place.isBitField ? place.bitOffset % sBitsPerByte : 0;
    const std::uint64_t width = place.isBitField ? place.bitSize : place.size * sBitsPerByte;
    value.number = NumberOf(BitsOf(bytes, mModel.Image().byteOrder, firstBit), width, notation);
    value.isAddress = type.id != 0 && type.kind == ObjectKind::Pointer;
    if (std::holds_alternative<std::monostate>(value.number)) {
        value.origin = ValueOrigin::Unknown;
    } else if (isEnum) {
        value.text = EnumeratorOf(type.id, *known, value.number);
    }
}

const ValueDecoder::KnownEnum& ValueDecoder::Known(ObjectId enumeration) {
    const auto [found, isNew] = mKnownEnums.try_emplace(enumeration);
    KnownEnum& known = found->second;
    if (isNew) {
        const std::uint64_t size = mModel.SizeOf(enumeration);
        for (const Enumerator& enumerator : mModel.Enumerators(enumeration)) {
            if (const auto bits = enumerator.BitsIn(size)) {
                known.names.emplace(*bits, enumerator.name);
                known.isNegative = known.isNegative || enumerator.value < 0;
            }
        }
    }
    return known;
}

std::string_view ValueDecoder::EnumeratorOf(ObjectId type, const KnownEnum& known,
                                            const PlaceNumber& number) const {
    const std::uint64_t size = mModel.SizeOf(type);
    std::int64_t value = 0;
    if (const auto* const withSign = std::get_if<std::int64_t>(&number)) {
        value = *withSign;
    } else if (const auto* const withoutSign = std::get_if<std::uint64_t>(&number)) {
        value = static_cast<std::int64_t>(*withoutSign);
    } else if (const auto* const truth = std::get_if<bool>(&number)) {
        value = *truth ? 1 : 0;
    } else {
        return {};
    }
    const std::optional<std::uint64_t> bits = Enumerator{.value = value, .name = {}}.BitsIn(size);
    const auto found = bits ? known.names.find(*bits) : known.names.end();
    return found == known.names.end() ? std::string_view() : found->second;
}

} // namespace Tessel::Norn::Brindle::DataModel
