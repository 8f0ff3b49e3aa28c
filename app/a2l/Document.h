// What a description says about addresses and their types: objects with an address, and the
// layouts, conversions and structures that objects refer to. The parser fills it; the update reads
// it.
#pragma once

#include "a2l/Source.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Bytes of a source. Without a source it is empty.
struct Span {
    const Source* source = nullptr;
    std::size_t position = 0;
    std::size_t length = 0;

    [[nodiscard]] bool IsSet() const { return source != nullptr; }
    [[nodiscard]] std::string_view Text() const {
        return IsSet() ? source->Bytes().substr(position, length) : std::string_view();
    }
};

/// A number with its place and value.
struct NumberAt {
    Span span;
    std::uint64_t value = 0;
};

enum class BlockKind : std::uint8_t { Measurement, Characteristic, AxisPoints, Blob, Instance };

/// The keyword of a kind.
std::string_view KeywordOf(BlockKind kind);

/// An object of a module. Its texts lie in the sources. Missing texts are empty, missing numbers 0.
struct Object {
    BlockKind kind = BlockKind::Measurement;
    /// Index of the module in the document.
    std::size_t module = 0;
    /// From `/begin` to the keyword after `/end`; without a source if they are in different files.
    Span block;
    std::size_t line = 0;
    Span name;
    /// Optional for a measurement.
    NumberAt address;
    /// The symbol of a `SYMBOL_LINK` without its quotes.
    Span link;
    /// Bytes that the link adds to the address of its symbol.
    std::int64_t linkOffset = 0;
    NumberAt bitMask;
    /// Datatype of a measurement, type of a characteristic such as VAL_BLK.
    std::string_view type;
    /// Record layout of a characteristic or of axis points, type of an instance.
    std::string_view layout;
    std::string_view conversion;
    /// Element count of MATRIX_DIM, ARRAY_SIZE or NUMBER; 0 if none of them is given.
    std::uint64_t elements = 0;
    /// Largest number of points of a characteristic (the product over its axes) or of axis points,
    /// or bytes of a blob; 0 if unknown.
    std::uint64_t points = 0;
    /// As in a module.
    std::optional<bool> isBigEndian;
};

struct RecordLayout {
    /// Datatypes of the values and of the first axis; empty if there are none.
    std::string_view values;
    std::string_view axis;
    /// Number of all entries of the layout.
    std::size_t entries = 0;
};

struct ConversionTable {
    std::vector<std::pair<std::string_view, std::string_view>> pairs;
};

struct StructureComponent {
    std::string_view name;
    std::string_view type;
    std::string_view link;
    std::uint64_t offset = 0;
    /// As in an object.
    std::uint64_t elements = 0;
    /// The member only points to what the type describes.
    bool isPointer = false;
};

/// A TYPEDEF of any kind.
struct TypeDefinition {
    enum class Kind : std::uint8_t { Structure, Measurement, Characteristic, Blob, Other };

    Kind kind = Kind::Other;
    /// Size of a structure or blob in bytes.
    std::uint64_t size = 0;
    /// As in an object.
    std::string_view type;
    std::string_view layout;
    std::string_view conversion;
    std::optional<std::uint64_t> bitMask;
    std::optional<bool> isBigEndian;
    std::uint64_t elements = 0;
    std::vector<StructureComponent> components;
};

struct Module {
    template <typename Value>
    using ByName = std::unordered_map<std::string_view, Value>;

    /// True for MSB_FIRST, false for MSB_LAST; nothing for any other word, or if it is missing.
    std::optional<bool> isBigEndian;
    ByName<RecordLayout> layouts;
    /// Names of the tables, for the conversions that have one.
    ByName<std::string_view> conversions;
    ByName<ConversionTable> tables;
    ByName<TypeDefinition> types;
    /// Number of addresses in VARIANT_CODING, which have no symbols.
    std::size_t variantAddresses = 0;
};

/// The name of an object in a list of a GROUP, FUNCTION or another block.
struct Mention {
    Span name;
    std::size_t module = 0;
};

struct Document {
    /// The first stands for everything outside modules, as in a fragment.
    std::vector<Module> modules{1};
    /// In the order of the text.
    std::vector<Object> objects;
    /// Only on request to the parser.
    std::vector<Mention> mentions;
};

} // namespace Tessel::Norn::Brindle::Program::A2l
