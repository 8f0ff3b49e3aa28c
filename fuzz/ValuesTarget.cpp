// Bytes of the target's memory as the values of places: of any type and size, as bit fields at any
// position, with any number of bytes.
//
// Input: a byte each for byte order and shape of the type, basic type, size, position and width of
// a bit field, and then the bytes.
#include "model/DataModel.h"
#include "model/PlaceBytes.h"
#include "model/ValueDecoder.h"
#include "support/InputBytes.h"
#include "support/Require.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::DataModel;
using Fuzzing::Require;
using Bytes = std::span<const std::uint8_t>;

namespace {

enum Shape : std::uint8_t { Plain, Enum, Alias, Pointer, Array, ShapeCount };

constexpr std::uint64_t sLongestValue = 8;
constexpr std::uint32_t sEnumerator = 1;
constexpr const char* sEnumeratorName = "ON";

ObjectId TypeOf(Model& model, Shape shape, BasicTypes basicType, std::uint64_t size) {
    const ObjectId global = model.GetGlobalNamespace();
    const ObjectId base = model.CreateBaseEntryType(basicType, size, global);
    switch (shape) {
    case Enum: {
        const ObjectId table = model.CreateEnumTable("mode", base, global, false);
        model.AddEnumDescriptionToEnumTable(table, std::int32_t{sEnumerator}, sEnumeratorName);
        return table;
    }
    case Alias:
        return model.CreateTypedefEntryType("alias", base, global);
    case Pointer:
        return model.CreatePointerEntryType(base, size, global);
    case Array:
        return model.CreateArrayEntryType({static_cast<std::uint32_t>(size)}, base, size, global);
    default:
        return base;
    }
}

/// The bits of a place one by one, in the order of their significance.
std::uint64_t BitByBit(const Model::Place& place, Bytes bytes, ByteOrder byteOrder) {
    std::uint64_t bits = 0;
    const std::uint64_t first = place.isBitField ? place.bitOffset % 8 : 0;
    const std::uint64_t width = place.isBitField ? place.bitSize : place.size * 8;
    for (std::uint64_t bit = 0; bit < width; ++bit) {
        const std::uint64_t byte = (first + bit) / 8;
        const std::uint64_t index = byteOrder == ByteOrder::Big ? bytes.size() - 1 - byte : byte;
        bits |= (std::uint64_t{bytes[index]} >> (first + bit) % 8 & 1U) << bit;
    }
    return bits;
}

/// Whether a number stands for bits of a width.
struct Stands {
    std::uint64_t bits;
    std::uint64_t width;

    bool operator()(std::monostate /*none*/) const { return true; }
    bool operator()(bool number) const { return bits == (number ? 1 : 0); }
    bool operator()(std::uint64_t number) const { return bits == number; }
    bool operator()(std::int64_t number) const {
        const bool isNegative = (bits >> (width - 1) & 1U) != 0;
        const std::uint64_t above = width == 64 ? 0 : ~std::uint64_t{0} << width;
        return static_cast<std::uint64_t>(number) == (isNegative ? bits | above : bits);
    }
    bool operator()(double number) const { return std::bit_cast<std::uint64_t>(number) == bits; }
    bool operator()(float number) const {
        if (width == 32) {
            return std::bit_cast<std::uint32_t>(number) == bits;
        }
        // A half: a multiple of 2^-24 of at most 65504, unless all bits of the exponent are set.
        const bool isFinite = (bits >> 10U & 0x1FU) != 0x1F;
        const float steps = std::ldexp(std::fabs(number), 24);
        return width == 16 && std::isfinite(number) == isFinite &&
               std::signbit(number) == (bits >> 15U != 0) &&
               (!isFinite || (std::fabs(number) <= 65504 && steps == std::floor(steps)));
    }
};

void Check(ValueDecoder& decoder, const Model::Place& place, Bytes bytes, ByteOrder byteOrder) {
    const PlaceValue value = decoder.Decode(place, bytes);
    Require(Fuzzing::IsUtf8(value.text), "texts are UTF-8");
    const bool hasNumber = !std::holds_alternative<std::monostate>(value.number);
    const bool hasAll = bytes.size() == BytesOf(place, byteOrder).size;
    Require(hasAll || value.origin == ValueOrigin::Unknown, "a value needs all of its bytes");
    Require(value.origin != ValueOrigin::Unknown || (!hasNumber && value.text.empty()),
            "what is unknown has no value");
    if (hasNumber) {
        const std::uint64_t width = place.isBitField ? place.bitSize : place.size * 8;
        Require(width >= 1 && width <= 64, "numbers have at most 64 bits");
        const Stands stands{BitByBit(place, bytes, byteOrder), width};
        Require(std::visit(stands, value.number), "a number stands for the bits of its place");
        Require(value.text.empty() || (value.text == sEnumeratorName && stands.bits == sEnumerator),
                "numbers have only the text of their enumerator");
    } else if (!value.text.empty()) {
        Require(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())
                    .starts_with(value.text),
                "a text is that of its bytes");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzzing::InputBytes input(data, size);
    const std::uint8_t choice = input.Byte();
    const auto basicType = static_cast<BasicTypes>(input.Byte() % 19);
    Model::Place place;
    place.size = input.Byte() % (2 * sLongestValue);
    place.bitOffset = input.Byte();
    place.bitSize = input.Byte() % 72;
    place.isBitField = place.bitSize != 0;
    ImageDescription image;
    image.byteOrder = (choice & 1U) != 0 ? ByteOrder::Big : ByteOrder::Little;
    Model model;
    model.DescribeImage(image);
    place.type =
        TypeOf(model, static_cast<Shape>((choice >> 1U) % ShapeCount), basicType, place.size);

    const std::string_view rest = input.Rest();
    const std::vector<std::uint8_t> bytes(rest.begin(), rest.end());
    ValueDecoder decoder(model);
    Check(decoder, place, bytes, image.byteOrder);
    // What is there, and zeros for what isn't.
    std::vector<std::uint8_t> whole = bytes;
    whole.resize(BytesOf(place, image.byteOrder).size);
    Check(decoder, place, whole, image.byteOrder);
    Require(decoder.InitialValue(place).origin == ValueOrigin::Unknown,
            "without sections nothing is known of the start");
    return 0;
}
