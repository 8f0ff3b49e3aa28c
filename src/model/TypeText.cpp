// Types as C declarations without a name, for people. Implements `Model::TypeText` on the other
// queries; whatever a type refers to, the text and the time for it stay bounded.
#include "model/DataModel.h"
#include "model/ModelStore.h"
#include "model/ScopeNames.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Function types within parameters of function types are written to this depth.
constexpr int sDeepestParameters = 32;
constexpr std::string_view sTypeEllipsis = "...";

std::string WithNumber(std::string_view name, std::uint64_t number) {
    return std::string(name).append("(").append(std::to_string(number)).append(")");
}

/// Integers of a width without a basic type come as `Long`; their size gives them their name.
std::string LongName(std::string_view name, std::string_view nameWithWidth, std::uint64_t size) {
    return size == 0 || size == 4 || size == 8
               ? std::string(name)
               : std::string(nameWithWidth).append(std::to_string(size * 8));
}

std::string BaseName(BasicTypes basicType, std::uint64_t size) {
    switch (basicType) {
    case BasicTypes::Void:
        return "void";
    case BasicTypes::Char:
        return "char";
    case BasicTypes::WideChar:
        return "wchar";
    case BasicTypes::Int8:
        return "int8";
    case BasicTypes::Int16:
        return "int16";
    case BasicTypes::Int32:
        return "int32";
    case BasicTypes::Int64:
        return "int64";
    case BasicTypes::UInt8:
        return "uint8";
    case BasicTypes::UInt16:
        return "uint16";
    case BasicTypes::UInt32:
        return "uint32";
    case BasicTypes::UInt64:
        return "uint64";
    case BasicTypes::Float:
        return "float";
    case BasicTypes::Float16:
        return "float16";
    case BasicTypes::Double:
        return size == sizeof(double) ? "double" : WithNumber("float", size);
    case BasicTypes::Bool:
        return "bool";
    case BasicTypes::Long:
        return LongName("long", "int", size);
    case BasicTypes::UnsignedLong:
        return LongName("unsigned long", "uint", size);
    case BasicTypes::Special:
        return "special";
    case BasicTypes::NoType:
        break;
    }
    return WithNumber("notype", size);
}

/// Stands for a type whose name is empty.
std::string_view KindName(ObjectKind kind) {
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

/// The text on both sides of the name in a declaration.
class Declarator {
public:
    void AddPointer() {
        mBefore += '*';
        mEndsInPointer = true;
    }
    /// Adds what follows the name: dimensions or parameters. Earlier pointers then bind first.
    void AddBehind(std::string_view text) {
        if (mEndsInPointer) {
            mBefore += '(';
            mBehind += ')';
            mEndsInPointer = false;
        }
        mBehind += text;
    }
    /// The whole declaration of a name, which may be empty, with a space between the specifier and
    /// the name or a parenthesis.
    [[nodiscard]] std::string Around(std::string_view specifier, std::string_view name) const {
        const std::string inOrder =
            std::string(mBefore.rbegin(), mBefore.rend()).append(name).append(mBehind);
        const std::size_t pointers = std::min(inOrder.find_first_not_of('*'), inOrder.size());
        const bool hasParenthesis = pointers < inOrder.size() && inOrder[pointers] == '(';
        return std::string(specifier)
            .append(inOrder, 0, pointers)
            .append(hasParenthesis || !name.empty() ? " " : "")
            .append(inOrder, pointers);
    }

private:
    /// From the name outwards, so in reverse.
    std::string mBefore;
    std::string mBehind;
    bool mEndsInPointer = false;
};

/// Writes one text. All its parts share one limit, so that types that refer to each other many
/// times can't make it long.
class TypeTextWriter {
public:
    TypeTextWriter(const Model& model, const ModelStore& store)
        : mModel(model)
        , mStore(store) {}

    // Calls itself for parameters, no deeper than sDeepestParameters.
    // NOLINTNEXTLINE(misc-no-recursion)
    std::string Text(ObjectId type, std::string_view name, int depth) {
        Declarator declarator;
        bool isReferredTo = false;
        for (std::size_t length = 0; length < kLongestChain && Take(1); ++length) {
            const ObjectKind kind = mStore.KindOf(type);
            if (isReferredTo && kind == ObjectKind::Unknown && mModel.SizeOf(type) == 0) {
                return declarator.Around("void", name);
            }
            if (!mStore.Has(type) || !IsDerived(type)) {
                return declarator.Around(Specifier(type), name);
            }
            if (kind == ObjectKind::Pointer) {
                declarator.AddPointer();
            } else if (kind == ObjectKind::Array) {
                declarator.AddBehind(Dimensions(type));
            } else if (kind == ObjectKind::FunctionType) {
                declarator.AddBehind(Parameters(type, depth));
                if (mStore.At(type).type == 0) {
                    return declarator.Around("void", name);
                }
            }
            isReferredTo = kind == ObjectKind::Pointer || kind == ObjectKind::FunctionType;
            type = mStore.At(type).type;
        }
        return declarator.Around(sTypeEllipsis, name);
    }

private:
    /// False if the limit is used up.
    bool Take(std::size_t size) {
        mRoom -= std::min(mRoom, size);
        return mRoom > 0;
    }

    /// Pointers, arrays, function types, and typedefs without a name, which count as their target.
    [[nodiscard]] bool IsDerived(ObjectId type) const {
        const Record& record = mStore.At(type);
        return record.kind == ObjectKind::Pointer || record.kind == ObjectKind::Array ||
               record.kind == ObjectKind::FunctionType ||
               (record.kind == ObjectKind::Typedef && record.name == 0);
    }

    std::string Specifier(ObjectId type) {
        const std::string text = FullSpecifier(type);
        const std::size_t room = mRoom;
        return Take(text.size()) ? text : std::string(CutText(text, room)).append(sTypeEllipsis);
    }

    [[nodiscard]] std::string FullSpecifier(ObjectId type) const {
        const ModelObject object = mModel.Object(type);
        if (object.id == 0) {
            return "?";
        }
        switch (object.kind) {
        case ObjectKind::Base:
            return BaseName(object.basicType, object.size);
        case ObjectKind::Unknown:
            return WithNumber("unknown", object.size);
        case ObjectKind::Section:
            return WithNumber("section", object.size);
        case ObjectKind::OldBitField:
            return WithNumber("bits", object.bitSize);
        case ObjectKind::Class:
        case ObjectKind::Struct:
        case ObjectKind::Union:
        case ObjectKind::Enum:
            return std::string(object.name.empty() ? KindName(object.kind) : "")
                .append(mModel.QualifiedName(type));
        case ObjectKind::Typedef:
            return mModel.QualifiedName(type);
        default:
            return "?";
        }
    }

    std::string Dimensions(ObjectId arrayType) {
        std::string text;
        for (const std::uint32_t dimension : mModel.Dimensions(arrayType)) {
            const std::string number = std::to_string(dimension);
            if (!Take(number.size() + 2)) {
                return text.append(sTypeEllipsis);
            }
            text.append("[").append(number).append("]");
        }
        return text;
    }

    std::string Parameters(ObjectId functionType, int depth) { // NOLINT(misc-no-recursion)
        if (depth == sDeepestParameters) {
            return "(...)";
        }
        std::string text;
        for (const ObjectId parameter : mModel.Parameters(functionType)) {
            text.append(text.empty() ? "(" : ", ");
            if (!Take(2)) {
                return text.append("...)");
            }
            text.append(Text(parameter, {}, depth + 1));
        }
        return text.append(text.empty() ? "()" : ")");
    }

    const Model& mModel;
    const ModelStore& mStore;
    std::size_t mRoom = kLongestTypeText;
};

constexpr bool IsType(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Base:
    case ObjectKind::Unknown:
    case ObjectKind::Class:
    case ObjectKind::Struct:
    case ObjectKind::Union:
    case ObjectKind::Array:
    case ObjectKind::Pointer:
    case ObjectKind::Enum:
    case ObjectKind::Typedef:
    case ObjectKind::FunctionType:
    case ObjectKind::OldBitField:
    case ObjectKind::Section:
        return true;
    default:
        return false;
    }
}

std::string Bounded(std::string text) {
    if (text.size() > kLongestTypeText) {
        text = std::string(CutText(text, kLongestTypeText)).append(sTypeEllipsis);
    }
    return text;
}

} // namespace

std::string Model::TypeText(ObjectId type) const {
    if (!mStore->Has(type) || !IsType(KindOf(type))) {
        return {};
    }
    return Bounded(TypeTextWriter(*this, *mStore).Text(type, {}, 0));
}

std::string Model::Declaration(ObjectId type, std::string_view name) const {
    return Bounded(TypeTextWriter(*this, *mStore).Text(type, name, 0));
}

} // namespace Tessel::Norn::Brindle::DataModel
