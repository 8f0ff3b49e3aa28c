// The keywords that the parser knows, as tables: which blocks have an address and where, and which
// of their optional parts matter. Everything else is skipped.
#pragma once

#include "Phrases.h"

#include "a2l/Document.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Tessel::Norn::Brindle::Program::A2l {

/// The meaning of a parameter at a fixed position of a block.
enum class Field : std::uint8_t {
    Name,
    /// The description, a text in quotes.
    Description,
    Address,
    Type,
    Layout,
    Conversion,
    Size,
    Points,
    /// Ignored.
    Other,
};

/// A block that describes an object: its parameters in their order.
struct ObjectBlock {
    std::string_view keyword;
    BlockKind kind;
    std::span<const Field> parameters;
};

/// A TYPEDEF block, in the same way.
struct TypeBlock {
    std::string_view keyword;
    TypeDefinition::Kind kind;
    std::span<const Field> parameters;
};

/// An optional part of an object that matters.
enum class Part : std::uint8_t {
    Address,
    Link,
    BitMask,
    /// One element count.
    Elements,
    /// Element counts, one for each dimension.
    Dimensions,
    ByteOrder,
    /// The next word may look like another keyword.
    Word,
};

const ObjectBlock* FindObjectBlock(std::string_view keyword);
const TypeBlock* FindTypeBlock(std::string_view keyword);
std::optional<Part> FindPart(std::string_view keyword);

/// The name of a parameter, for a person.
Phrase DescribeField(Field field);

/// True for blocks whose content is in another language: only their end is A2L.
bool IsForeignBlock(std::string_view keyword);

/// True for blocks that are lists of names of objects.
bool IsNameList(std::string_view keyword);

} // namespace Tessel::Norn::Brindle::Program::A2l
