#include "a2l/Parser.h"

#include "Phrases.h"

#include "a2l/Keywords.h"
#include "a2l/Numbers.h"
#include "a2l/TokenStream.h"

#include <algorithm>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

constexpr std::string_view sProject = "PROJECT";
constexpr std::string_view sModule = "MODULE";

std::string Excerpt(std::string_view text) {
    constexpr std::size_t longest = 60;
    return "'" + std::string(text.substr(0, longest)) + (text.size() > longest ? "...'" : "'");
}

/// Product of element counts; the largest number if it overflows.
std::uint64_t Product(std::uint64_t one, std::uint64_t other) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    return other != 0 && one > most / other ? most : one * other;
}

class Parser {
public:
    Parser(SourceSet& sources, const Source& main, const ParseChoices& choices)
        : mStream(sources, main)
        , mMain(main)
        , mChoices(choices) {
        // Objects are large: moving hundreds of thousands of them costs more than reserved memory
        // that is never touched.
        constexpr std::size_t bytesOfObject = 400;
        mDocument.objects.reserve(main.Bytes().size() / bytesOfObject);
    }

    Document Parse() {
        for (;;) {
            const PlacedToken token = mStream.Next();
            if (token.kind == TokenKind::EndOfFile) {
                CheckEnd(token);
                return std::move(mDocument);
            }
            if (token.kind == TokenKind::Begin) {
                TakeBlock(OpenBlock(token));
            } else if (token.kind == TokenKind::End) {
                CloseContainer(token);
            } else {
                TakeTopWord(token);
            }
        }
    }

private:
    /// A block that is open, with its keyword.
    struct Block {
        Span begin;
        Span keyword;
        [[nodiscard]] std::string_view Name() const { return keyword.Text(); }
    };

    [[noreturn]] static void Fail(const Span& place, const std::string& problem) {
        throw Fault(*place.source, place.position, problem);
    }

    static std::string Describe(const PlacedToken& token) {
        return token.kind == TokenKind::EndOfFile ? Phrased("the end of the file")
                                                  : Excerpt(token.span.Text());
    }

    static std::string Describe(const Block& block) {
        return Phrased("{} of line {}", block.Name(),
                       std::to_string(block.begin.source->LineOf(block.begin.position)));
    }

    Block OpenBlock(const PlacedToken& begin) {
        const PlacedToken keyword = mStream.Next();
        if (keyword.kind != TokenKind::Word) {
            Fail(begin.span, Phrased("expected a keyword after /begin, got {}", Describe(keyword)));
        }
        mHasBlocks = true;
        return {begin.span, keyword.span};
    }

    /// Takes the keyword after `/end`. @return what the whole block takes, nothing if it begins in
    /// another file
    Span Close(const Block& block, const PlacedToken& end) {
        const PlacedToken keyword = mStream.Next();
        if (keyword.kind != TokenKind::Word || keyword.span.Text() != block.Name()) {
            Fail(end.span, keyword.kind == TokenKind::Word
                               ? Phrased("expected /end {}, got /end {}", Describe(block),
                                         keyword.span.Text())
                               : Phrased("expected /end {}, got /end and {}", Describe(block),
                                         Describe(keyword)));
        }
        if (keyword.span.source != block.begin.source) {
            return {};
        }
        return {block.begin.source, block.begin.position,
                keyword.span.position + keyword.span.length - block.begin.position};
    }

    [[noreturn]] static void FailAtEnd(const PlacedToken& end, const Block& block) {
        Fail(end.span, Phrased("expected /end {}, got the end of the file", Describe(block)));
    }

    // What lies outside objects.

    void TakeTopWord(const PlacedToken& token) {
        const bool isVersion = token.IsWord("ASAP2_VERSION") || token.IsWord("A2ML_VERSION");
        const bool isExpected = !mContainers.empty() || isVersion || mVersionNumbers > 0;
        if (!isExpected) {
            Fail(token.span,
                 Phrased("expected ASAP2_VERSION or /begin PROJECT, got {}", Describe(token)));
        }
        mVersionNumbers = isVersion ? 2 : mVersionNumbers - (mVersionNumbers > 0 ? 1 : 0);
    }

    void TakeBlock(const Block& block) {
        const std::string_view keyword = block.Name();
        TellProgress(block.begin);
        if (keyword == sProject || keyword == sModule) {
            OpenContainer(block);
        } else if (const ObjectBlock* const object = FindObjectBlock(keyword)) {
            TakeObject(block, *object);
        } else if (const TypeBlock* const type = FindTypeBlock(keyword)) {
            TakeType(block, *type);
        } else if (keyword == "RECORD_LAYOUT") {
            TakeRecordLayout(block);
        } else if (keyword == "COMPU_METHOD") {
            TakeConversion(block);
        } else if (keyword == "COMPU_VTAB") {
            TakeConversionTable(block);
        } else if (keyword == "MOD_COMMON") {
            TakeCommon(block);
        } else {
            Skip(block);
        }
    }

    void OpenContainer(const Block& block) {
        mContainers.push_back(block);
        if (block.Name() == sModule) {
            mDocument.modules.emplace_back();
        }
    }

    void CloseContainer(const PlacedToken& end) {
        if (mContainers.empty()) {
            Fail(end.span, Phrased("there is no block to /end here"));
        }
        Close(mContainers.back(), end);
        mContainers.pop_back();
    }

    void CheckEnd(const PlacedToken& end) const {
        if (!mContainers.empty()) {
            FailAtEnd(end, mContainers.back());
        }
        if (!mHasBlocks) {
            throw Fault(mMain, 0,
                        Phrased("expected /begin PROJECT, but the file has no block at all"));
        }
    }

    /// Skips a block and everything within it, except what a person should know about it.
    void Skip(const Block& first) {
        if (IsForeignBlock(first.Name())) {
            SkipForeign(first);
            return;
        }
        std::vector<Block> open{first};
        while (!open.empty()) {
            const PlacedToken token = mStream.Next();
            if (token.kind == TokenKind::EndOfFile) {
                FailAtEnd(token, open.back());
            } else if (token.kind == TokenKind::Begin) {
                const Block inner = OpenBlock(token);
                if (IsForeignBlock(inner.Name())) {
                    SkipForeign(inner);
                } else {
                    open.push_back(inner);
                }
            } else if (token.kind == TokenKind::End) {
                Close(open.back(), token);
                open.pop_back();
            } else {
                NoteSkipped(open.back(), token);
            }
        }
    }

    /// Skips a block of another language, whose includes name files of that language.
    void SkipForeign(const Block& first) {
        std::vector<Block> open{first};
        mStream.FollowIncludes(false);
        while (!open.empty()) {
            const PlacedToken token = mStream.Next();
            if (token.kind == TokenKind::EndOfFile) {
                FailAtEnd(token, open.back());
            } else if (token.kind == TokenKind::Begin) {
                open.push_back(OpenBlock(token));
            } else if (token.kind == TokenKind::End) {
                Close(open.back(), token);
                open.pop_back();
            }
        }
        mStream.FollowIncludes(true);
    }

    void NoteSkipped(const Block& block, const PlacedToken& token) {
        if (token.kind != TokenKind::Word) {
            return;
        }
        if (mChoices.hasMentions && IsNameList(block.Name())) {
            mDocument.mentions.push_back({token.span, CurrentModuleNumber()});
        } else if (block.Name() == "VAR_ADDRESS") {
            ++CurrentModule().variantAddresses;
        }
    }

    // Parameters and optional parts.

    [[nodiscard]] PlacedToken Parameter(const Block& block, Field field) {
        const PlacedToken token = mStream.Next();
        const bool isRight =
            field == Field::Other
                ? token.kind == TokenKind::Word || token.kind == TokenKind::Text
                : token.kind == (field == Field::Description ? TokenKind::Text : TokenKind::Word);
        if (!isRight) {
            FailParameter(block, field, token);
        }
        return token;
    }

    [[noreturn]] static void FailParameter(const Block& block, Field field,
                                           const PlacedToken& token) {
        Fail(token.span, Phrased("expected {} of {}, got {}", Phrased(DescribeField(field)),
                                 block.Name(), Describe(token)));
    }

    [[nodiscard]] static NumberAt Number(const Block& block, Field field,
                                         const PlacedToken& token) {
        const std::optional<std::uint64_t> value = ParseUnsigned(token.span.Text());
        if (!value) {
            FailParameter(block, field, token);
        }
        return {token.span, *value};
    }

    /// The number after a keyword.
    [[nodiscard]] NumberAt NumberOf(std::string_view keyword) {
        const PlacedToken token = mStream.Next();
        const std::optional<std::uint64_t> value =
            token.kind == TokenKind::Word ? ParseUnsigned(token.span.Text()) : std::nullopt;
        if (!value) {
            Fail(token.span, Phrased("expected a number of at most 64 bits after {}, got {}",
                                     keyword, Describe(token)));
        }
        return {token.span, *value};
    }

    /// Reads to the end of a block. @param takeWord called with each word of the block itself
    /// @param takeBlock called with each block within it, which it has to read to its end
    template <typename TakeWord, typename TakeInner>
    Span ReadToEnd(const Block& block, TakeWord&& takeWord, TakeInner&& takeInner) {
        for (;;) {
            const PlacedToken token = mStream.Next();
            switch (token.kind) {
            case TokenKind::EndOfFile:
                FailAtEnd(token, block);
            case TokenKind::End:
                return Close(block, token);
            case TokenKind::Begin:
                takeInner(OpenBlock(token));
                break;
            case TokenKind::Word:
                takeWord(token);
                break;
            default:
                break;
            }
        }
    }

    template <typename TakeWord>
    Span ReadToEnd(const Block& block, TakeWord&& takeWord) {
        return ReadToEnd(block, takeWord, [this](const Block& inner) { Skip(inner); });
    }

    std::uint64_t Dimensions() {
        std::uint64_t elements = 1;
        PlacedToken token = mStream.Next();
        while (token.kind == TokenKind::Word && LooksNumeric(token.span.Text())) {
            const std::uint64_t dimension = ParseUnsigned(token.span.Text()).value_or(0);
            // A dimension of 0 stands for none.
            elements = Product(elements, std::max<std::uint64_t>(dimension, 1));
            token = mStream.Next();
        }
        mStream.PutBack(token);
        return elements;
    }

    /// Tools disagree on what LITTLE_ENDIAN and BIG_ENDIAN mean, so these words give no byte order.
    std::optional<bool> ByteOrder() {
        const PlacedToken order = mStream.Next();
        if (order.kind != TokenKind::Word) {
            mStream.PutBack(order);
        }
        const bool isKnown = order.IsWord("MSB_FIRST") || order.IsWord("MSB_LAST");
        return isKnown ? std::optional(order.IsWord("MSB_FIRST")) : std::nullopt;
    }

    void SkipWord() {
        const PlacedToken token = mStream.Next();
        if (token.kind != TokenKind::Word && token.kind != TokenKind::Text) {
            mStream.PutBack(token);
        }
    }

    // Objects.

    void TakeObject(const Block& block, const ObjectBlock& layout) {
        Object& object = mDocument.objects.emplace_back();
        object.kind = layout.kind;
        object.module = CurrentModuleNumber();
        object.line = block.begin.source->LineOf(block.begin.position);
        for (const Field field : layout.parameters) {
            TakeParameter(object, block, field);
        }
        object.block = ReadToEnd(
            block, [&](const PlacedToken& word) { TakePart(object, word); },
            [&](const Block& inner) {
                if (inner.Name() == "AXIS_DESCR") {
                    TakeAxis(object, inner);
                } else {
                    Skip(inner);
                }
            });
    }

    void TakeParameter(Object& object, const Block& block, Field field) {
        const PlacedToken token = Parameter(block, field);
        switch (field) {
        case Field::Name:
            object.name = token.span;
            break;
        case Field::Address:
            object.address = Number(block, field, token);
            break;
        case Field::Type:
            object.type = token.span.Text();
            break;
        case Field::Layout:
            object.layout = token.span.Text();
            break;
        case Field::Conversion:
            object.conversion = token.span.Text();
            break;
        case Field::Points:
            object.points = Number(block, field, token).value;
            break;
        default:
            break;
        }
    }

    void TakePart(Object& object, const PlacedToken& word) {
        const std::string_view keyword = word.span.Text();
        const std::optional<Part> part = FindPart(keyword);
        if (!part) {
            return;
        }
        switch (*part) {
        case Part::Address:
            // Only measurements have their address here.
            if (const NumberAt address = NumberOf(keyword); object.kind == BlockKind::Measurement) {
                object.address = address;
            }
            break;
        case Part::Link:
            TakeLink(object);
            break;
        case Part::BitMask:
            object.bitMask = NumberOf(keyword);
            break;
        case Part::Elements:
            object.elements = NumberOf(keyword).value;
            break;
        case Part::Dimensions:
            object.elements = Dimensions();
            break;
        case Part::ByteOrder:
            object.isBigEndian = ByteOrder();
            break;
        case Part::Word:
            SkipWord();
            break;
        }
    }

    void TakeLink(Object& object) {
        const PlacedToken symbol = mStream.Next();
        if (symbol.kind != TokenKind::Text) {
            Fail(symbol.span, Phrased("expected a symbol in quotes after SYMBOL_LINK, got {}",
                                      Describe(symbol)));
        }
        object.link = symbol.Content();
        const PlacedToken token = mStream.Next();
        if (token.kind != TokenKind::Word || !LooksNumeric(token.span.Text())) {
            // Some tools omit the offset.
            mStream.PutBack(token);
            return;
        }
        const std::optional<std::int64_t> offset = ParseSigned(token.span.Text());
        if (!offset) {
            Fail(token.span,
                 Phrased("expected an offset of at most 63 bits, got {}", Describe(token)));
        }
        object.linkOffset = *offset;
    }

    void TakeAxis(Object& object, const Block& block) {
        // Attribute, input quantity and conversion precede the number of points.
        for (int parameter = 0; parameter < 3; ++parameter) {
            SkipWord();
        }
        const PlacedToken points = mStream.Next();
        mStream.PutBack(points);
        const std::uint64_t count =
            points.kind == TokenKind::Word ? ParseUnsigned(points.span.Text()).value_or(0) : 0;
        object.points = Product(object.points == 0 ? 1 : object.points, count);
        Skip(block);
    }

    // What objects refer to.

    template <typename Value>
    static void Define(Module::ByName<Value>& table, std::string_view name,
                       std::type_identity_t<Value> value) {
        table.try_emplace(name, std::move(value));
    }

    std::string_view NameOf(const Block& block) {
        return Parameter(block, Field::Name).span.Text();
    }

    void TakeRecordLayout(const Block& block) {
        const std::string_view name = NameOf(block);
        RecordLayout layout;
        ReadToEnd(block, [&](const PlacedToken& word) {
            const std::string_view keyword = word.span.Text();
            const bool isValues = keyword == "FNC_VALUES";
            const bool isAxis = keyword.starts_with("AXIS_PTS_");
            if (isValues || isAxis) {
                SkipWord();
                const PlacedToken type = mStream.Next();
                if (type.kind != TokenKind::Word) {
                    mStream.PutBack(type);
                    return;
                }
                (isValues ? layout.values : layout.axis) = type.span.Text();
                ++layout.entries;
            } else if (keyword.starts_with("NO_") || keyword == "IDENTIFICATION" ||
                       keyword == "RESERVED" || keyword.starts_with("RIP_") ||
                       keyword.starts_with("SRC_") || keyword.starts_with("SHIFT_OP_") ||
                       keyword.starts_with("OFFSET_") || keyword.starts_with("DIST_OP_") ||
                       keyword.starts_with("AXIS_RESCALE_")) {
                ++layout.entries;
            }
        });
        Define(CurrentModule().layouts, name, layout);
    }

    void TakeConversion(const Block& block) {
        const std::string_view name = NameOf(block);
        std::string_view table;
        ReadToEnd(block, [&](const PlacedToken& word) {
            if (word.IsWord("COMPU_TAB_REF")) {
                const PlacedToken reference = mStream.Next();
                table = reference.kind == TokenKind::Word ? reference.span.Text() : table;
            }
        });
        Define(CurrentModule().conversions, name, table);
    }

    void TakeConversionTable(const Block& block) {
        const std::string_view name = NameOf(block);
        ConversionTable table;
        std::string_view value;
        bool isDefault = false;
        for (;;) {
            const PlacedToken token = mStream.Next();
            if (token.kind == TokenKind::EndOfFile) {
                FailAtEnd(token, block);
            }
            if (token.kind == TokenKind::End) {
                Close(block, token);
                break;
            }
            if (token.kind == TokenKind::Begin) {
                Skip(OpenBlock(token));
            } else if (token.kind == TokenKind::Word) {
                value = token.span.Text();
                isDefault = value == "DEFAULT_VALUE";
            } else if (!isDefault && LooksNumeric(value)) {
                table.pairs.emplace_back(value, token.Content().Text());
                value = {};
            }
        }
        Define(CurrentModule().tables, name, std::move(table));
    }

    void TakeType(const Block& block, const TypeBlock& layout) {
        TypeDefinition type;
        type.kind = layout.kind;
        std::string_view name;
        for (const Field field : layout.parameters) {
            const PlacedToken token = Parameter(block, field);
            if (field == Field::Name) {
                name = token.span.Text();
            } else if (field == Field::Size) {
                type.size = Number(block, field, token).value;
            } else if (field == Field::Type) {
                type.type = token.span.Text();
            } else if (field == Field::Layout) {
                type.layout = token.span.Text();
            } else if (field == Field::Conversion) {
                type.conversion = token.span.Text();
            }
        }
        ReadToEnd(
            block, [&](const PlacedToken& word) { TakePartOfType(type, word); },
            [&](const Block& inner) {
                if (inner.Name() == "STRUCTURE_COMPONENT") {
                    type.components.push_back(Component(inner));
                } else {
                    Skip(inner);
                }
            });
        Define(CurrentModule().types, name, std::move(type));
    }

    void TakePartOfType(TypeDefinition& type, const PlacedToken& word) {
        const std::string_view keyword = word.span.Text();
        const std::optional<Part> part = FindPart(keyword);
        if (part == Part::Dimensions) {
            type.elements = Dimensions();
        } else if (part == Part::Elements) {
            type.elements = NumberOf(keyword).value;
        } else if (part == Part::BitMask) {
            type.bitMask = NumberOf(keyword).value;
        } else if (part == Part::ByteOrder) {
            type.isBigEndian = ByteOrder();
        } else if (part == Part::Word) {
            SkipWord();
        }
    }

    StructureComponent Component(const Block& block) {
        StructureComponent component;
        component.name = NameOf(block);
        component.type = Parameter(block, Field::Layout).span.Text();
        component.offset = Number(block, Field::Size, Parameter(block, Field::Size)).value;
        ReadToEnd(block, [&](const PlacedToken& word) {
            if (word.IsWord("SYMBOL_TYPE_LINK")) {
                const PlacedToken link = mStream.Next();
                component.link = link.kind == TokenKind::Text ? link.Content().Text() : "";
            } else if (word.IsWord("MATRIX_DIM")) {
                component.elements = Dimensions();
            } else if (word.IsWord("ADDRESS_TYPE")) {
                const PlacedToken type = mStream.Next();
                component.isPointer = !type.IsWord("DIRECT");
                if (type.kind != TokenKind::Word) {
                    mStream.PutBack(type);
                }
            }
        });
        return component;
    }

    void TakeCommon(const Block& block) {
        ReadToEnd(block, [&](const PlacedToken& word) {
            if (word.IsWord("BYTE_ORDER")) {
                CurrentModule().isBigEndian = ByteOrder();
            }
        });
    }

    /// Objects outside modules, as in a fragment, belong to the document's first module.
    [[nodiscard]] std::size_t CurrentModuleNumber() const {
        const bool isInModule = std::ranges::any_of(
            mContainers, [](const Block& block) { return block.Name() == sModule; });
        return isInModule ? mDocument.modules.size() - 1 : 0;
    }
    Module& CurrentModule() { return mDocument.modules[CurrentModuleNumber()]; }

    void TellProgress(const Span& place) {
        constexpr std::size_t step = 4096;
        if (mChoices.progress && ++mBlocks % step == 0) {
            mChoices.progress(*place.source, place.position);
        }
    }

    TokenStream mStream;
    const Source& mMain;
    const ParseChoices& mChoices;
    Document mDocument;
    /// PROJECT and MODULE blocks around the current place.
    std::vector<Block> mContainers;
    int mVersionNumbers = 0;
    bool mHasBlocks = false;
    std::size_t mBlocks = 0;
};

} // namespace

Document Parse(SourceSet& sources, const Source& main, const ParseChoices& choices) {
    return Parser(sources, main, choices).Parse();
}

} // namespace Tessel::Norn::Brindle::Program::A2l
