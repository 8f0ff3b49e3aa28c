#include "a2l/Conversions.h"

#include "a2l/Datatypes.h"

#include <optional>
#include <set>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

constexpr std::string_view sNone = "NO_COMPU_METHOD";

} // namespace

Conversions::Conversions(const DataModel::Model& model)
    : mModel(model)
    , mSigns(model) {
    model.ForEach(ObjectKind::Enum, [this](const ModelObject& enumeration) {
        const Table table = MakeTable(enumeration.id, {});
        ++mTablesOfName[table.name][table.pairs];
    });
}

Conversions::Table Conversions::MakeTable(ObjectId enumeration, const SignedBits& field) const {
    const ModelObject object = mModel.Object(enumeration);
    const bool isNameless = object.name.empty() || object.anonymous || object.name.front() == '<';
    Table table;
    table.name = isNameless ? "enum" : MakePartIdentifier(mModel.QualifiedName(enumeration));
    // Without a sign, the values of an unsigned enumeration that fill all bits are read as they
    // are.
    const DataModel::BasicTypes basic =
        mModel.Object(mModel.WithoutTypedefs(object.type)).basicType;
    const bool isUnsigned = basic == DataModel::BasicTypes::UInt32 ||
                            basic == DataModel::BasicTypes::UnsignedLong ||
                            basic == DataModel::BasicTypes::UInt64;
    const std::uint64_t size = mModel.SizeOf(enumeration);
    std::set<std::int64_t> values;
    for (const DataModel::Enumerator& enumerator : mModel.Enumerators(enumeration)) {
        // If several names have one value, the table has room only for the first.
        if (field.Holds(enumerator.value) && values.insert(enumerator.value).second) {
            const auto bits = isUnsigned ? enumerator.BitsIn(size) : std::nullopt;
            table.pairs.append("      ")
                .append(bits ? std::to_string(*bits)
                             : std::to_string(field.WithoutSign(enumerator.value)))
                .append(" ")
                .append(QuotedText(enumerator.name))
                .append("\n");
        }
    }
    table.count = values.size();
    return table;
}

std::string Conversions::Of(ObjectId type, std::uint64_t bitSize) {
    const ObjectId enumeration = mModel.WithoutTypedefs(type);
    if (mModel.Object(enumeration).kind != ObjectKind::Enum || enumeration == 0) {
        return std::string(sNone);
    }
    const SignedBits field = mSigns.BitsOf(enumeration, bitSize);
    const auto [known, isNew] = mNames.try_emplace({enumeration, field.size}, sNone);
    if (isNew) {
        Table table = MakeTable(enumeration, field);
        if (table.count != 0) {
            const bool isOnly =
                mTablesOfName[table.name].size() == 1 && table.name != "enum" && field.size == 0;
            table.name += isOnly ? std::string() : "_" + ShortHash(table.pairs);
            known->second = table.name;
            mUsed.try_emplace(table.name, table);
        }
    }
    return known->second;
}

std::string Conversions::Text() const {
    std::string text;
    for (const auto& [name, table] : mUsed) {
        text.append("\n    /begin COMPU_METHOD ").append(name).append(" \"\"\n");
        text.append("      TAB_VERB \"%8.0\" \"\"\n      COMPU_TAB_REF ").append(name);
        text.append("\n    /end COMPU_METHOD\n");
        text.append("\n    /begin COMPU_VTAB ").append(name).append(" \"\"\n      TAB_VERB ");
        text.append(std::to_string(table.count)).append("\n").append(table.pairs);
        text.append("    /end COMPU_VTAB\n");
    }
    return text;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
