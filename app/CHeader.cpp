#include "CHeader.h"

#include "BitLanes.h"
#include "CNames.h"
#include "NamePattern.h"
#include "ObjectKinds.h"
#include "PlainText.h"
#include "ResultOutput.h"
#include "StructureLayout.h"

#include "model/DataModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::BasicTypes;
using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

/// Structures within structures; deeper ones are written as bytes.
constexpr std::size_t sDeepestNesting = 100;
/// The first dimension of a flexible array.
constexpr std::string_view sNoLength = "[]";
constexpr std::string_view sPacked = " __attribute__((packed));\n";

constexpr std::string_view sStart =
    R"(/* Layouts as in the image: packed, with all padding as members. Pointers are integers. */
#include <stddef.h>
#include <stdint.h>
)";

/// The parts of a type before and after a name.
struct CType {
    std::string lead;
    std::string dimensions;
    std::uint64_t size = 0;
};

CType BytesType(std::uint64_t size) {
    return {"uint8_t", "[" + std::to_string(size) + "]", size};
}

bool IsWidth(std::uint64_t size) {
    return size == 1 || size == 2 || size == 4 || size == 8;
}

CType IntegerType(std::uint64_t size, bool isSigned) {
    if (!IsWidth(size)) {
        return BytesType(size);
    }
    return {(isSigned ? "int" : "uint") + std::to_string(size * sBitsOfByte) + "_t", {}, size};
}

bool IsSigned(BasicTypes type) {
    switch (type) {
    case BasicTypes::Char:
    case BasicTypes::Int8:
    case BasicTypes::Int16:
    case BasicTypes::Int32:
    case BasicTypes::Int64:
    case BasicTypes::Long:
        return true;
    default:
        return false;
    }
}

bool IsInteger(BasicTypes type) {
    switch (type) {
    case BasicTypes::WideChar:
    case BasicTypes::Bool:
    case BasicTypes::UInt8:
    case BasicTypes::UInt16:
    case BasicTypes::UInt32:
    case BasicTypes::UInt64:
    case BasicTypes::UnsignedLong:
        return true;
    default:
        return IsSigned(type);
    }
}

CType ScalarType(BasicTypes type, std::uint64_t size) {
    if (type == BasicTypes::Char && size == 1) {
        return {"char", {}, size};
    }
    if (IsInteger(type)) {
        return IntegerType(size, IsSigned(type));
    }
    const bool isFloat = type == BasicTypes::Float || type == BasicTypes::Double;
    if (isFloat && (size == sizeof(float) || size == sizeof(double))) {
        return {size == sizeof(float) ? "float" : "double", {}, size};
    }
    return BytesType(size);
}

/// A text from the file that can't end a comment or break a line.
std::string CommentText(std::string text) {
    ReplaceControlCharacters(text);
    for (std::size_t end = text.find("*/"); end != std::string::npos; end = text.find("*/", end)) {
        text.insert(end + 1, " ");
    }
    return text;
}

/// One member, base class or bit field.
struct Item {
    CType type;
    std::string name;
    std::string comment;
    /// In bits; 0 if it is no bit field.
    std::uint64_t width = 0;
    /// What the image says of it, for a comment in its place if C can't express it.
    std::string description;
    /// An array without length at the end of a structure.
    bool isFlexible = false;
    bool isWritten = false;
};

/// Writes the members of one structure or union, bit by bit.
class BodyWriter {
public:
    BodyWriter(std::vector<Item> items, std::vector<BitSpan> spans)
        : mItems(std::move(items))
        , mSpans(std::move(spans)) {}

    /// Names of the members that lie at whole bytes, with their offsets.
    using Offsets = std::vector<std::pair<std::string, std::uint64_t>>;

    std::string WriteStructure(std::uint64_t size) {
        for (const BitCluster& cluster : ClustersOf(mSpans)) {
            FillTo(cluster.start, 1);
            if (cluster.lanes.size() == 1) {
                WriteLane(cluster.lanes.front(), 1);
                FillTo(cluster.end, 1);
            } else {
                WriteLanes(cluster);
            }
        }
        FillTo(size * sBitsOfByte, 1);
        WriteFlexibleArray();
        DescribeRest();
        return std::move(mText);
    }

    std::string WriteUnion(std::uint64_t size) {
        std::uint64_t end = 0;
        for (const BitSpan& span : mSpans) {
            if (span.start < span.end) {
                WriteAlternative({span}, 0, 1);
                end = std::max(end, span.end);
            }
        }
        mPosition = 0;
        if (end < size * sBitsOfByte) {
            FillTo(size * sBitsOfByte, 1);
        }
        DescribeRest();
        return std::move(mText);
    }

    [[nodiscard]] const Offsets& MemberOffsets() const { return mOffsets; }

private:
    void WriteLanes(const BitCluster& cluster) {
        mText += "    union {\n";
        for (const std::vector<BitSpan>& lane : cluster.lanes) {
            WriteAlternative(lane, cluster.start, 2);
        }
        mText.append("    }").append(sPacked);
        mPosition = cluster.end;
    }

    /// One lane of a union: a lane of a single member that begins with it needs no structure.
    void WriteAlternative(const std::vector<BitSpan>& lane, std::uint64_t start,
                          std::size_t depth) {
        mPosition = start;
        if (lane.size() == 1 && lane.front().start == start && !lane.front().isBitField) {
            WriteItem(lane.front(), depth);
            return;
        }
        mText.append(4 * depth, ' ').append("struct {\n");
        WriteLane(lane, depth + 1);
        mText.append(4 * depth, ' ').append("}").append(sPacked);
    }

    void WriteLane(const std::vector<BitSpan>& lane, std::size_t depth) {
        for (const BitSpan& span : lane) {
            FillTo(span.start, depth);
            WriteItem(span, depth);
        }
    }

    void WriteItem(const BitSpan& span, std::size_t depth) {
        Item& item = mItems[span.item];
        item.isWritten = true;
        const std::string name = mNames.Take(item.name);
        mText.append(4 * depth, ' ').append(item.type.lead).append(" ").append(name);
        mText.append(item.type.dimensions);
        if (span.isBitField) {
            mText.append(" : ").append(std::to_string(item.width));
        } else {
            mOffsets.emplace_back(name, span.start / sBitsOfByte);
        }
        mText.append("; /* ").append(item.comment).append(" */\n");
        mPosition = span.end;
    }

    /// C takes one array without length, as the last member.
    void WriteFlexibleArray() {
        const auto last = std::ranges::find_if(mItems.rbegin(), mItems.rend(), &Item::isFlexible);
        if (last != mItems.rend()) {
            const auto item = static_cast<std::size_t>(mItems.rend() - last) - 1;
            WriteItem({mPosition, mPosition, item, false}, 1);
        }
    }

    /// Says what the declaration lacks, so that nobody takes the padding there for unused.
    void DescribeRest() {
        for (const Item& item : mItems) {
            if (!item.isWritten) {
                mText.append("    /* not expressible in C: ").append(item.description);
                mText.append(" */\n");
            }
        }
    }

    /// Adds padding up to a bit.
    void FillTo(std::uint64_t position, std::size_t depth) {
        FillBits(std::min(position, (mPosition + sBitsOfByte - 1) / sBitsOfByte * sBitsOfByte),
                 depth);
        const std::uint64_t bytes = (position - std::min(position, mPosition)) / sBitsOfByte;
        if (bytes != 0) {
            const std::uint64_t offset = mPosition / sBitsOfByte;
            mText.append(4 * depth, ' ').append("uint8_t ");
            mText.append(mNames.Take("_pad" + std::to_string(offset)));
            mText.append("[").append(std::to_string(bytes)).append("];\n");
            mPosition += bytes * sBitsOfByte;
        }
        FillBits(position, depth);
    }

    void FillBits(std::uint64_t position, std::size_t depth) {
        if (position > mPosition) {
            mText.append(4 * depth, ' ').append("uint8_t : ");
            mText.append(std::to_string(position - mPosition)).append(";\n");
            mPosition = position;
        }
    }

    std::vector<Item> mItems;
    std::vector<BitSpan> mSpans;
    CNames mNames;
    Offsets mOffsets;
    std::uint64_t mPosition = 0;
    std::string mText;
};

class HeaderWriter {
public:
    explicit HeaderWriter(const DataModel::Model& model)
        : mModel(model)
        , mIsBigEndian(model.Image().byteOrder == DataModel::ByteOrder::Big) {
        FindHolders();
    }

    bool Write(const NameFilter& names, ResultOutput& output) {
        bool hasAny = false;
        for (ObjectId id = 1; id <= mModel.ObjectCount(); ++id) {
            const ModelObject type = mModel.Object(id);
            if (IsWanted(type, names)) {
                hasAny = true;
                Declare(type);
            }
        }
        if (hasAny) {
            output.Write(sStart);
            output.Write(mText);
        }
        return hasAny;
    }

private:
    [[nodiscard]] bool IsWanted(const ModelObject& type, const NameFilter& names) const {
        if (!HasMembers(type.kind) && type.kind != ObjectKind::Enum &&
            type.kind != ObjectKind::Typedef) {
            return false;
        }
        if (HasMembers(type.kind) && (type.anonymous || type.name.empty()) &&
            !IsOfVariable(type.id)) {
            return false; // its holder declares it
        }
        const std::string name = mModel.QualifiedName(type.id);
        return names.TakesAll() || names.Takes(name, OwnNameStart(name, type.name));
    }

    [[nodiscard]] bool IsOfVariable(ObjectId type) const {
        const auto holder = mHolders.find(type);
        return holder != mHolders.end() && mModel.Object(holder->second).kind == ObjectKind::Global;
    }

    void Declare(const ModelObject& type) {
        if (type.kind == ObjectKind::Typedef) {
            DeclareTypedef(type);
        } else {
            TypeOf(type.id, 0);
        }
    }

    void DeclareTypedef(const ModelObject& alias) {
        const CType type = TypeOf(alias.id, 0);
        const std::string name = mModel.QualifiedName(alias.id);
        if (type.size == 0 || name.empty() || CNames::IsTaken(name)) {
            return;
        }
        const std::string key = "typedef " + type.lead + type.dimensions + " " + name;
        if (const auto [known, isNew] = mKnown.try_emplace(key); isNew) {
            known->second = mOrdinaryNames.Take(name);
            mText.append("\ntypedef ").append(type.lead).append(" ").append(known->second);
            mText.append(type.dimensions).append(";\n");
        }
    }

    /// A type as C takes it, after declaring what it is made of. Structures that contain themselves
    /// and types that C can't express become bytes.
    // Calls itself through types, no deeper than sDeepestNesting.
    // NOLINTNEXTLINE(misc-no-recursion)
    CType TypeOf(ObjectId id, std::size_t depth) {
        const ModelObject type = mModel.Object(mModel.WithoutTypedefs(id));
        const std::uint64_t size = mModel.SizeOf(type.id);
        if (depth > sDeepestNesting) {
            return BytesType(size);
        }
        switch (type.kind) {
        case ObjectKind::Base:
            return ScalarType(type.basicType, size);
        case ObjectKind::Pointer:
            return IntegerType(size, false);
        case ObjectKind::Enum:
            DeclareEnum(type);
            return EnumType(type, size);
        case ObjectKind::Class:
        case ObjectKind::Struct:
        case ObjectKind::Union:
            return ClassType(type, size, depth);
        case ObjectKind::Array:
            return ArrayType(type, size, depth);
        default:
            return BytesType(size);
        }
    }

    /// Of the integer type of some enumerations only the size is known: then the values tell.
    bool IsSignedEnum(const ModelObject& type) {
        const ModelObject underlying = mModel.Object(mModel.WithoutTypedefs(type.type));
        if (underlying.kind == ObjectKind::Base && IsInteger(underlying.basicType)) {
            return IsSigned(underlying.basicType);
        }
        const auto [known, isNew] = mSignsByValues.try_emplace(type.id, false);
        if (isNew) {
            known->second = std::ranges::any_of(
                mModel.Enumerators(type.id),
                [](const DataModel::Enumerator& enumerator) { return enumerator.value < 0; });
        }
        return known->second;
    }

    [[nodiscard]] CType EnumType(const ModelObject& type, std::uint64_t size) {
        return IntegerType(size, IsSignedEnum(type));
    }

    /// True for the dimensions of a flexible array: the first is open, the others are known.
    static bool IsWithoutLength(std::span<const std::uint32_t> lengths) {
        return lengths.empty() ||
               (lengths.front() == 0 && std::ranges::count(lengths, std::uint32_t{0}) == 1);
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    CType ArrayType(const ModelObject& type, std::uint64_t size, std::size_t depth) {
        const CType element = TypeOf(type.type, depth + 1);
        const std::uint64_t count = mModel.ElementCount(type.id);
        const std::span<const std::uint32_t> lengths = mModel.Dimensions(type.id);
        const bool isWhole =
            count != 0 && element.size != 0 && size / count == element.size && size % count == 0;
        if (!isWhole && (size != 0 || element.size == 0 || !IsWithoutLength(lengths))) {
            return BytesType(size);
        }
        std::string dimensions;
        for (const std::uint32_t length : lengths) {
            dimensions.append("[").append(length == 0 ? "" : std::to_string(length)).append("]");
        }
        return {element.lead,
                (lengths.empty() ? std::string(sNoLength) : dimensions) + element.dimensions, size};
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    CType ClassType(const ModelObject& type, std::uint64_t size, std::size_t depth) {
        if (size == 0 || std::ranges::find(mOpen, type.id) != mOpen.end()) {
            return BytesType(size);
        }
        const std::string keyword = type.kind == ObjectKind::Union ? "union " : "struct ";
        auto known = mTags.find(type.id);
        if (known == mTags.end()) {
            mOpen.push_back(type.id);
            const std::string tag = DeclareClass(type, keyword, size, depth);
            mOpen.pop_back();
            known = mTags.emplace(type.id, tag).first;
        }
        return {keyword + known->second, {}, size};
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    std::string DeclareClass(const ModelObject& type, const std::string& keyword,
                             std::uint64_t size, std::size_t depth) {
        BodyWriter writer = ContentsOf(type, size, depth);
        const std::string body =
            type.kind == ObjectKind::Union ? writer.WriteUnion(size) : writer.WriteStructure(size);
        const std::string name = NameOf(type);
        const auto [known, isNew] = mKnown.try_emplace(keyword + name + body);
        if (isNew) {
            const std::string tag = mTagNames.Take(name);
            known->second = tag;
            mText.append("\n").append(keyword).append(tag).append(" { /* size ");
            mText.append(std::to_string(size)).append(" */\n").append(body).append("}");
            mText.append(sPacked);
            AddAssertions(keyword + tag, size, writer.MemberOffsets());
        }
        return known->second;
    }

    void AddAssertions(const std::string& type, std::uint64_t size,
                       const BodyWriter::Offsets& offsets) {
        mText.append("_Static_assert(sizeof(").append(type).append(") == ");
        mText.append(std::to_string(size)).append(", \"size of ").append(type).append("\");\n");
        for (const auto& [name, offset] : offsets) {
            mText.append("_Static_assert(offsetof(").append(type).append(", ").append(name);
            mText.append(") == ").append(std::to_string(offset)).append(", \"offset of ");
            mText.append(name).append("\");\n");
        }
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    BodyWriter ContentsOf(const ModelObject& type, std::uint64_t size, std::size_t depth) {
        std::vector<Item> items;
        std::vector<BitSpan> spans;
        for (const LayoutEntry& entry : LayoutOf(mModel, type.id)) {
            Item item;
            BitSpan span;
            if (entry.kind == LayoutEntry::Kind::Member) {
                span = AddMember(entry, depth, item);
                item.isFlexible =
                    item.isFlexible && entry.offset == size && type.kind != ObjectKind::Union;
            } else if (entry.kind == LayoutEntry::Kind::BaseClass) {
                span = AddBase(entry, depth, item);
            } else if (entry.kind == LayoutEntry::Kind::UnplacedBaseClass) {
                item.description = CommentText("base class " + mModel.TypeText(entry.id)) +
                                   " without static offset";
            }
            if (item.description.empty()) {
                continue;
            }
            if (span.end <= size * sBitsOfByte) {
                span.item = items.size();
                spans.push_back(span);
            }
            items.push_back(std::move(item));
        }
        return {std::move(items), std::move(spans)};
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    BitSpan AddBase(const LayoutEntry& entry, std::size_t depth, Item& item) {
        if (LayoutOf(mModel, mModel.WithoutTypedefs(entry.id)).empty()) {
            return {}; // an empty base class occupies no bytes, whatever its size
        }
        const std::string name = mModel.TypeText(entry.id);
        item.type = TypeOf(entry.id, depth + 1);
        item.name = "base_" + name;
        item.comment = CommentText("base class " + name);
        item.description = item.comment + OffsetText(entry.offset);
        return {entry.offset * sBitsOfByte, (entry.offset + item.type.size) * sBitsOfByte, 0,
                false};
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    BitSpan AddMember(const LayoutEntry& entry, std::size_t depth, Item& item) {
        const ModelObject member = mModel.Object(entry.id);
        item.type = TypeOf(member.type, depth + 1);
        item.name = member.name.empty() ? "unnamed" : std::string(member.name);
        item.comment = CommentText(mModel.TypeText(member.type));
        item.description = CommentText(mModel.Declaration(member.type, item.name));
        const std::uint64_t start = entry.offset * sBitsOfByte;
        if (member.kind != ObjectKind::BitField) {
            item.description += OffsetText(entry.offset);
            item.isFlexible = item.type.dimensions.starts_with(sNoLength);
            return {start, start + item.type.size * sBitsOfByte, 0, false};
        }
        item.width = member.bitSize;
        item.description.append(" : ").append(std::to_string(member.bitSize));
        item.description.append(OffsetText(entry.offset)).append(", bit ");
        item.description.append(std::to_string(member.bitOffset));
        return BitFieldSpan(member, start, item);
    }

    static std::string OffsetText(std::uint64_t offset) {
        return " at offset " + std::to_string(offset);
    }

    [[nodiscard]] BitSpan BitFieldSpan(const ModelObject& member, std::uint64_t start,
                                       Item& item) const {
        const std::uint64_t unit = item.type.size * sBitsOfByte;
        const std::uint64_t end = member.bitOffset + std::min(member.bitSize, unit);
        // A packed field may need a byte more than its type has; positions count from the end of
        // it.
        const std::uint64_t storage = end > unit ? unit + sBitsOfByte : unit;
        if (!item.type.dimensions.empty() || item.type.lead.find(' ') != std::string::npos ||
            member.bitSize > unit || (mIsBigEndian && end > storage)) {
            return {};
        }
        if (item.type.lead == "char") {
            item.type.lead = "int8_t";
        }
        const std::uint64_t first = start + (mIsBigEndian ? storage - end : member.bitOffset);
        return {first, first + member.bitSize, 0, true};
    }

    void DeclareEnum(const ModelObject& type) {
        std::string body;
        for (const DataModel::Enumerator& enumerator : mModel.Enumerators(type.id)) {
            body.append(enumerator.name).append("=").append(std::to_string(enumerator.value));
            body.append(1, '\n');
        }
        const std::string name = NameOf(type);
        if (body.empty() || !mKnown.try_emplace("enum " + name + body).second) {
            return;
        }
        mText.append("\nenum ").append(mTagNames.Take(name)).append(" { /* size ");
        mText.append(std::to_string(mModel.SizeOf(type.id))).append(" */\n");
        for (const DataModel::Enumerator& enumerator : mModel.Enumerators(type.id)) {
            mText.append("    ").append(mOrdinaryNames.Take(enumerator.name)).append(" = ");
            mText.append(ValueText(type, enumerator)).append(",\n");
        }
        mText.append("};\n");
    }

    [[nodiscard]] std::string ValueText(const ModelObject& type,
                                        const DataModel::Enumerator& enumerator) {
        const std::int64_t value = enumerator.value;
        const bool isSigned = IsSignedEnum(type);
        if (value == std::numeric_limits<std::int64_t>::min() && isSigned) {
            // C has no constant for it: a minus is an operator, and its operand is too large.
            return std::to_string(value + 1) + " - 1";
        }
        const auto bits = enumerator.BitsIn(mModel.SizeOf(type.id));
        if (value >= 0 || isSigned || !bits) {
            return std::to_string(value);
        }
        return std::to_string(*bits) + "u";
    }

    /// The name of a type; for a nameless type, the name of what was declared with it.
    [[nodiscard]] std::string NameOf(const ModelObject& type) const {
        if (!type.anonymous && !type.name.empty()) {
            return mModel.QualifiedName(type.id);
        }
        const auto holder = mHolders.find(type.id);
        if (holder == mHolders.end()) {
            return "unnamed";
        }
        const ModelObject held = mModel.Object(holder->second);
        return IsMember(held.kind)
                   ? std::string(mModel.Object(held.scope).name).append("_").append(held.name)
                   : mModel.QualifiedName(held.id);
    }

    /// Finds the typedef, member or variable that a nameless type was declared with.
    void FindHolders() {
        for (ObjectId id = 1; id <= mModel.ObjectCount(); ++id) {
            const ModelObject object = mModel.Object(id);
            if (object.kind == ObjectKind::Typedef || object.kind == ObjectKind::Global ||
                IsMember(object.kind)) {
                const ModelObject type = mModel.Object(object.type);
                mHolders.try_emplace(type.kind == ObjectKind::Array ? type.type : type.id, id);
            }
        }
    }

    const DataModel::Model& mModel;
    bool mIsBigEndian;
    CNames mTagNames;
    CNames mOrdinaryNames;
    std::unordered_map<ObjectId, ObjectId> mHolders;
    /// The structures that are being written: none of them can be a member here.
    std::vector<ObjectId> mOpen;
    std::unordered_map<ObjectId, std::string> mTags;
    std::unordered_map<ObjectId, bool> mSignsByValues;
    /// What was written, with its name: several compile units may have the same types.
    std::unordered_map<std::string, std::string> mKnown;
    std::string mText;
};

} // namespace

bool WriteCHeader(const DataModel::Model& model, const NameFilter& names, ResultOutput& output) {
    return HeaderWriter(model).Write(names, output);
}

} // namespace Tessel::Norn::Brindle::Program
