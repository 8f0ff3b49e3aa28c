#include "TypeLayouts.h"

#include "Characters.h"
#include "NamePattern.h"
#include "ObjectKinds.h"
#include "PlainText.h"
#include "ResultOutput.h"
#include "StructureLayout.h"

#include "model/DataModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

/// Where comments begin, in characters; longer declarations push theirs to the right.
constexpr std::size_t sCommentColumn = 44;
/// Types without a name are written within each other to this depth.
constexpr std::size_t sDeepestUnnamedType = 32;
constexpr std::size_t sLongestArrayChain = 1000;
constexpr std::string_view sCommentEnd = " */";
constexpr std::string_view sCommentCode = "\x1B[36m";
constexpr std::string_view sCommentEndCode = "\x1B[0m";

bool IsListed(ObjectKind kind) {
    return HasMembers(kind) || kind == ObjectKind::Enum || kind == ObjectKind::Typedef;
}

std::string_view Keyword(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Class:
        return "class";
    case ObjectKind::Struct:
        return "struct";
    case ObjectKind::Union:
        return "union";
    default:
        return "enum";
    }
}

std::string Bytes(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string OffsetAndSize(std::uint64_t offset, std::uint64_t size) {
    return "offset " + std::to_string(offset) + ", size " + std::to_string(size);
}

/// True if the source gave the type no name.
bool IsNameless(const ModelObject& type) {
    return type.kind != ObjectKind::Typedef && (type.anonymous || type.name.empty());
}

/// True if the values of an enum of this type may be unsigned: the model keeps them with sign and
/// shows large ones as negative.
bool IsUnsigned(const ModelObject& integer) {
    using DataModel::BasicTypes;
    return integer.basicType == BasicTypes::UInt32 ||
           integer.basicType == BasicTypes::UnsignedLong || integer.basicType == BasicTypes::UInt64;
}

/// The text of one declaration, without its compile units.
struct Declaration {
    std::string text;
    /// Position in the text where the compile units are inserted.
    std::size_t unitPosition = std::string::npos;
    bool isOneLine = false;
};

/// Keeps declarations until all compile units of each are known.
class DeclarationList {
public:
    explicit DeclarationList(const DataModel::Model& model)
        : mModel(model) {}

    [[nodiscard]] bool IsEmpty() const { return mInOrder.empty(); }

    void Add(Declaration declaration, ObjectId unit) {
        const auto [known, isNew] = mByText.try_emplace(std::move(declaration.text));
        if (isNew) {
            known->second.unitPosition = declaration.unitPosition;
            known->second.isOneLine = declaration.isOneLine;
            mInOrder.push_back(&*known);
        }
        std::vector<ObjectId>& units = known->second.units;
        if (unit != 0 && (units.empty() || units.back() != unit)) {
            units.push_back(unit);
        }
    }

    void Write(ResultOutput& output) const {
        bool wasOneLine = true;
        for (const auto* declaration : mInOrder) {
            const auto& [text, details] = *declaration;
            // Typedefs that follow each other need no line between them.
            if (declaration != mInOrder.front() && !(details.isOneLine && wasOneLine)) {
                output.Put('\n');
            }
            wasOneLine = details.isOneLine;
            const std::size_t head = std::min(details.unitPosition, text.size());
            output.Write(std::string_view(text).substr(0, head));
            output.Write(head < text.size() ? UnitText(details.units) : std::string());
            output.Write(std::string_view(text).substr(head));
        }
    }

private:
    struct Details {
        std::size_t unitPosition = std::string::npos;
        bool isOneLine = false;
        std::vector<ObjectId> units;
    };

    [[nodiscard]] std::string UnitText(std::vector<ObjectId> units) const {
        if (units.empty()) {
            return {};
        }
        std::string text(", in ");
        text.append(mModel.Object(units.front()).name);
        ReplaceControlCharacters(text);
        std::ranges::sort(units);
        units.erase(std::unique(units.begin(), units.end()), units.end());
        const auto more = units.size() - 1;
        return more == 0 ? text : text + " and " + std::to_string(more) + " more";
    }

    const DataModel::Model& mModel;
    std::unordered_map<std::string, Details> mByText;
    std::vector<const std::pair<const std::string, Details>*> mInOrder;
};

class LayoutWriter {
public:
    LayoutWriter(const DataModel::Model& model, const NameFilter& names, bool isColoured)
        : mModel(model)
        , mFilter(names)
        , mCommentCode(isColoured ? sCommentCode : std::string_view())
        , mEndCode(isColoured ? sCommentEndCode : std::string_view())
        , mList(model)
        , mIsWritten(model.ObjectCount() + 1) {}

    bool Write(ResultOutput& output) {
        FindHolders();
        for (const bool areHeldWanted : {false, true}) {
            // What no written declaration holds comes last, on its own.
            for (ObjectId id = 1; id <= mModel.ObjectCount(); ++id) {
                if (!mIsWritten[id] && (areHeldWanted || !mHolders.contains(id)) && IsWanted(id)) {
                    AddDeclaration(mModel.Object(id));
                }
            }
        }
        mList.Write(output);
        return !mList.IsEmpty();
    }

private:
    void FindHolders() {
        for (ObjectId id = 1; id <= mModel.ObjectCount(); ++id) {
            const ModelObject object = mModel.Object(id);
            const bool isVariable = object.kind == ObjectKind::Global;
            if (isVariable || object.kind == ObjectKind::Typedef ||
                object.kind == ObjectKind::Member || object.kind == ObjectKind::UnionMember) {
                const ObjectId held = WithoutArrays(object.type);
                const ModelObject type = mModel.Object(held);
                if (held != 0 && IsNameless(type) && IsListed(type.kind)) {
                    (isVariable ? mVariables : mHolders).try_emplace(held, id);
                }
            }
        }
    }

    [[nodiscard]] ObjectId WithoutArrays(ObjectId type) const {
        for (std::size_t length = 0; length < sLongestArrayChain; ++length) {
            const ModelObject array = mModel.Object(type);
            if (array.kind != ObjectKind::Array || array.id == 0) {
                return array.id;
            }
            type = array.type;
        }
        return 0;
    }

    [[nodiscard]] bool IsWanted(ObjectId id) const {
        const ModelObject type = mModel.Object(id);
        if (!IsListed(type.kind) || (type.kind == ObjectKind::Typedef && type.name.empty()) ||
            (IsNameless(type) && !HasContents(id))) {
            return false;
        }
        if (mFilter.TakesAll()) {
            return true;
        }
        const std::string name = mModel.QualifiedName(id);
        return mFilter.Takes(name, OwnNameStart(name, type.name));
    }

    /// True for a class of which the file knows only the name.
    [[nodiscard]] bool IsDeclarationAlone(const ModelObject& type) const {
        return HasMembers(type.kind) && mModel.SizeOf(type.id) == 0 && !HasContents(type.id);
    }

    /// The variable that a nameless type was made for, as a comment.
    [[nodiscard]] std::string VariableText(ObjectId type) const {
        const auto known = mVariables.find(type);
        return known == mVariables.end() ? std::string()
                                         : "type of " + mModel.QualifiedName(known->second);
    }

    /// False for the rest of a nameless structure whose members moved to the enclosing one.
    [[nodiscard]] bool HasContents(ObjectId type) const {
        bool hasContents = !mModel.BaseClasses(type).empty() || !mModel.Enumerators(type).empty();
        mModel.ForEachIn(type, [&hasContents](const ModelObject& content) {
            hasContents = hasContents || IsMember(content.kind);
        });
        return hasContents;
    }

    void AddDeclaration(const ModelObject& type) {
        mDeclaration = {};
        mDeclaration.isOneLine = type.kind == ObjectKind::Typedef && !IsBodyDue(type, 0);
        const std::string name = mModel.QualifiedName(type.id);
        if (type.kind == ObjectKind::Typedef) {
            mIsWritten[type.id] = true;
            WriteHeld("typedef ", type, name, "size " + std::to_string(mModel.SizeOf(type.id)), 0);
        } else {
            const std::string writtenName = IsNameless(type) ? std::string() : name;
            mDeclaration.isOneLine = IsDeclarationAlone(type);
            WriteBody(type, writtenName, 0);
            if (!mDeclaration.isOneLine) {
                WriteLine(0, "};", VariableText(type.id));
            }
        }
        mList.Add(std::move(mDeclaration), mModel.CompileUnitOf(type.id));
    }

    /// True for the holder of a type that is not written yet.
    [[nodiscard]] bool IsBodyDue(const ModelObject& holder, std::size_t depth) const {
        const ObjectId held = WithoutArrays(holder.type);
        const auto known = mHolders.find(held);
        return known != mHolders.end() && known->second == holder.id && !mIsWritten[held] &&
               depth < sDeepestUnnamedType;
    }

    /// Writes a typedef or a member, with the whole type if it is the holder of one.
    // Calls itself through nameless types, no deeper than sDeepestUnnamedType.
    // NOLINTNEXTLINE(misc-no-recursion)
    void WriteHeld(std::string_view lead, const ModelObject& holder, std::string_view name,
                   const std::string& comment, std::size_t depth) {
        if (!IsBodyDue(holder, depth)) {
            WriteLine(depth, std::string(lead) + mModel.Declaration(holder.type, name) + ";",
                      comment);
            return;
        }
        WriteBody(mModel.Object(WithoutArrays(holder.type)), {}, depth, lead);
        WriteLine(depth, "} " + std::string(name) + Dimensions(holder.type) + ";", comment);
    }

    [[nodiscard]] std::string Dimensions(ObjectId type) const {
        std::string text;
        for (std::size_t length = 0; length < sLongestArrayChain; ++length) {
            for (const std::uint32_t dimension : mModel.Dimensions(type)) {
                text.append("[").append(std::to_string(dimension)).append("]");
            }
            if (mModel.Object(type).kind != ObjectKind::Array) {
                break;
            }
            type = mModel.Object(type).type;
        }
        return text;
    }

    /// Writes everything but the closing brace.
    // NOLINTNEXTLINE(misc-no-recursion)
    void WriteBody(const ModelObject& type, const std::string& name, std::size_t depth,
                   std::string_view lead = {}) {
        mIsWritten[type.id] = true;
        std::string head = std::string(lead).append(Keyword(type.kind));
        head.append(name.empty() ? "" : " ").append(name).append(Heritage(type));
        head.append(IsDeclarationAlone(type) ? ";" : " {");
        WriteLine(depth, head, "size " + std::to_string(mModel.SizeOf(type.id)));
        if (depth == 0) {
            mDeclaration.unitPosition =
                mDeclaration.text.size() - sCommentEnd.size() - mEndCode.size() - 1;
        }
        if (type.kind == ObjectKind::Enum) {
            WriteEnumerators(type, depth + 1);
            return;
        }
        for (const LayoutEntry& entry : LayoutOf(mModel, type.id)) {
            WriteEntry(entry, depth + 1);
        }
    }

    [[nodiscard]] std::string Heritage(const ModelObject& type) const {
        std::string text;
        if (type.kind == ObjectKind::Enum && type.type != 0) {
            return " : " + mModel.TypeText(type.type);
        }
        for (const DataModel::BaseClass& base : mModel.BaseClasses(type.id)) {
            text.append(text.empty() ? " : " : ", ").append(mModel.TypeText(base.type));
        }
        return text;
    }

    void WriteEnumerators(const ModelObject& type, std::size_t depth) {
        const bool isUnsigned = IsUnsigned(mModel.Object(mModel.WithoutTypedefs(type.type)));
        const std::uint64_t size = mModel.SizeOf(type.id);
        for (const DataModel::Enumerator& enumerator : mModel.Enumerators(type.id)) {
            const auto bits = isUnsigned ? enumerator.BitsIn(size) : std::nullopt;
            const std::string value =
                bits ? std::to_string(*bits) : std::to_string(enumerator.value);
            WriteLine(depth, std::string(enumerator.name) + " = " + value + ",", {});
        }
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void WriteEntry(const LayoutEntry& entry, std::size_t depth) {
        const std::string where = " at offset " + std::to_string(entry.offset);
        switch (entry.kind) {
        case LayoutEntry::Kind::BaseClass:
            return WriteLine(depth, {},
                             "base class " + mModel.TypeText(entry.id) + ": " +
                                 OffsetAndSize(entry.offset, entry.size));
        case LayoutEntry::Kind::UnplacedBaseClass:
            return WriteLine(depth, {},
                             "base class " + mModel.TypeText(entry.id) +
                                 ": no static offset, size " + std::to_string(entry.size));
        case LayoutEntry::Kind::Member:
            return WriteMember(mModel.Object(entry.id), entry, depth);
        case LayoutEntry::Kind::Hole:
            return WriteLine(depth, {}, "hole of " + Bytes(entry.size) + where);
        case LayoutEntry::Kind::UnusedBits:
            return WriteLine(depth, {},
                             std::to_string(entry.size) + (entry.size == 1 ? " bit" : " bits") +
                                 " unused" + where);
        case LayoutEntry::Kind::Padding:
            return WriteLine(depth, {}, "padding of " + Bytes(entry.size) + where);
        }
    }

    // NOLINTNEXTLINE(misc-no-recursion)
    void WriteMember(const ModelObject& member, const LayoutEntry& entry, std::size_t depth) {
        if (member.kind == ObjectKind::BitField) {
            const std::string width = std::to_string(member.bitSize);
            WriteLine(depth, mModel.Declaration(member.type, member.name) + " : " + width + ";",
                      "offset " + std::to_string(entry.offset) + ", bit " +
                          std::to_string(member.bitOffset) + ", width " + width);
            return;
        }
        WriteHeld({}, member, member.name, OffsetAndSize(entry.offset, entry.size), depth);
    }

    /// Writes code and a comment, either of which may be empty, on one line.
    void WriteLine(std::size_t depth, std::string_view code, std::string_view comment) {
        std::string line(4 * depth, ' ');
        line += code;
        if (!comment.empty() && !code.empty()) {
            const std::size_t length = DisplayWidth(line);
            line.append(std::max(sCommentColumn, length + 1) - length, ' ');
        }
        const std::size_t codeLength = line.size();
        if (!comment.empty()) {
            line.append("/* ").append(comment).append(sCommentEnd);
        }
        ReplaceControlCharacters(line);
        if (!comment.empty()) {
            line.insert(codeLength, mCommentCode).append(mEndCode);
        }
        mDeclaration.text.append(line).append(1, '\n');
    }

    const DataModel::Model& mModel;
    const NameFilter& mFilter;
    /// @name Escape sequences around comments; empty without colour
    /// @{
    std::string_view mCommentCode;
    std::string_view mEndCode;
    /// @}
    DeclarationList mList;
    /// The declaration in progress.
    Declaration mDeclaration;
    /// The typedef or member with which a nameless type is written.
    std::unordered_map<ObjectId, ObjectId> mHolders;
    /// The first variable of a nameless type.
    std::unordered_map<ObjectId, ObjectId> mVariables;
    std::vector<bool> mIsWritten;
};

} // namespace

bool WriteTypeLayouts(const DataModel::Model& model, const NameFilter& names, ResultOutput& output,
                      bool isColoured) {
    return LayoutWriter(model, names, isColoured).Write(output);
}

} // namespace Tessel::Norn::Brindle::Program
