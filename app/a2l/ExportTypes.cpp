#include "a2l/ExportTypes.h"

#include "a2l/BitMask.h"
#include "a2l/Datatypes.h"
#include "core/BitsPerByte.h"

#include <algorithm>
#include <limits>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

constexpr std::uint64_t sLargestShortMask = std::numeric_limits<std::uint32_t>::max();

/// True if a version knows a datatype.
bool HasDatatype(Version version, std::string_view datatype) {
    if (datatype == "FLOAT16_IEEE") {
        return version == Version::V1_7_1;
    }
    return version != Version::V1_5_1 || !datatype.ends_with("64");
}

/// The usual place of a bit field in a number, or one further forwards so that the number doesn't
/// extend beyond the variable, if it can't lie at its storage unit.
std::optional<MaskedPlace> FindWithin(const SymbolIndex::Place& place, const MaskedNumber& number,
                                      const BitsChoices& choices) {
    const auto usual = FindMaskedPlace(place, choices.order, number, std::nullopt);
    const DataModel::ByteSpan& whole = choices.whole;
    const auto isWithin = [&](std::uint64_t start) {
        return whole.size >= number.size && start >= whole.address &&
               start - whole.address <= whole.size - number.size;
    };
    if (!usual || isWithin(usual->address)) {
        return usual;
    }
    for (std::uint64_t back = 0; back < number.size && back <= usual->address; ++back) {
        const std::uint64_t start = usual->address - back;
        const auto mask = MaskAt(start, place, choices.order, number);
        if (mask && isWithin(start)) {
            return MaskedPlace{start, *mask, false};
        }
    }
    return usual;
}

} // namespace

std::optional<ExportedBits> BitsOf(const Member& member, std::uint64_t size, std::uint64_t address,
                                   const BitsChoices& choices) {
    SymbolIndex::Place place;
    place.address = address;
    place.size = size;
    place.isBitField = true;
    place.bitOffset = member.bitOffset;
    place.bitSize = member.bitSize;
    // First the storage unit as the program has it, then smaller parts of it. A number larger than
    // the unit may be read beyond its end: only for packed fields that extend beyond the unit.
    std::vector<std::uint64_t> sizes;
    if (member.bitOffset + member.bitSize <= size * sBitsPerByte) {
        sizes.push_back(size);
        for (std::uint64_t other = sLargestMaskedNumber; other > 0; other /= 2) {
            if (other <= size) {
                sizes.push_back(other);
            }
        }
    } else {
        sizes = {1, 2, 4, sLargestMaskedNumber};
    }
    for (const std::uint64_t one : sizes) {
        const std::string_view datatype = DatatypeOf({Scalar::Kind::Unsigned, one});
        const auto found = FindWithin(place, {one, choices.order, choices.addressUnit}, choices);
        if (found && !datatype.empty() &&
            (choices.hasLongMasks ||
             (found->mask <= sLargestShortMask && one < sLargestMaskedNumber))) {
            return ExportedBits{datatype, *found};
        }
    }
    return std::nullopt;
}

std::vector<std::uint64_t> DimensionsOf(const DataModel::Model& model, ObjectId type) {
    std::vector<std::uint64_t> dimensions;
    for (int arrays = 0; arrays < sMostArrays; ++arrays) {
        const ModelObject object = model.Object(model.WithoutTypedefs(type));
        if (object.kind != ObjectKind::Array || model.ElementCount(object.id) == 0) {
            break;
        }
        const std::span<const std::uint32_t> own = model.Dimensions(object.id);
        dimensions.insert(dimensions.end(), own.begin(), own.end());
        type = object.type;
    }
    std::ranges::reverse(dimensions);
    return dimensions;
}

std::optional<ExportedValues> ExportTypes::ValuesOf(ObjectId type, Version version) {
    const Elements elements = ElementsOf(mModel, type);
    std::vector<std::uint64_t> dimensions = DimensionsOf(mModel, type);
    const ModelObject object = mModel.Object(mModel.WithoutTypedefs(elements.type));
    if (object.id != 0 && object.kind == ObjectKind::Unknown && object.size != 0) {
        if (object.size > 1) {
            dimensions.insert(dimensions.begin(), object.size);
        }
        return ExportedValues{"UBYTE", mConversions.Of(0), dimensions, {}};
    }
    const std::optional<Scalar> scalar = mConversions.Signs().ScalarOf(elements.type);
    if (!scalar) {
        return std::nullopt;
    }
    const std::string_view datatype = DatatypeOf(*scalar);
    if (datatype.empty() || !HasDatatype(version, datatype)) {
        return std::nullopt;
    }
    return ExportedValues{datatype, mConversions.Of(elements.type), dimensions, {}};
}

std::string ExportTypes::BaseNameOf(ObjectId structure) const {
    const ModelObject object = mModel.Object(structure);
    if (!object.anonymous && !object.name.empty() && object.name.front() != '<') {
        return MakePartIdentifier(mModel.QualifiedName(structure));
    }
    std::string content;
    for (const Member& member : mIndex.MembersOf(structure).All()) {
        content.append(member.name).append(" ").append(std::to_string(member.offset)).append(";");
    }
    return "unnamed_" + ShortHash(content);
}

std::string ExportTypes::NameOfStructure(ObjectId structure, bool isCalibrated) {
    const Key key(structure, isCalibrated);
    const auto [known, isNew] = mStructures.try_emplace(key);
    if (isNew) {
        known->second = mNames.Take(BaseNameOf(structure) + (isCalibrated ? "_cal" : ""));
        mPending.push_back(key);
    }
    return known->second;
}

std::string ExportTypes::Text() {
    std::string text;
    // Definitions may request further structures while the list is walked.
    for (std::size_t position = 0; position < mPending.size();) {
        const Key key = mPending[position++];
        text += StructureText(key);
    }
    return text + mValueText;
}

std::string ExportTypes::StructureText(const Key& key) {
    const auto [structure, isCalibrated] = key;
    std::string text = "\n    /begin TYPEDEF_STRUCTURE " + mStructures.at(key) + " " +
                       QuotedText(mModel.TypeText(structure)) + " " +
                       std::to_string(mModel.SizeOf(structure)) + "\n";
    const ModelObject object = mModel.Object(structure);
    if (!object.anonymous && !object.name.empty()) {
        text += "      SYMBOL_TYPE_LINK " + QuotedText(mModel.QualifiedName(structure)) + "\n";
    }
    for (const Member& member : mIndex.MembersOf(structure).All()) {
        AppendComponent(text, member, mModel.SizeOf(structure), isCalibrated);
    }
    return text + "    /end TYPEDEF_STRUCTURE\n";
}

void ExportTypes::AppendComponent(std::string& text, const Member& member,
                                  std::uint64_t structureSize, bool isCalibrated) {
    const Elements elements = ElementsOf(mModel, member.type);
    const ObjectId plain = mModel.WithoutTypedefs(elements.type);
    std::string type;
    std::uint64_t offset = member.offset;
    std::vector<std::uint64_t> dimensions = DimensionsOf(mModel, member.type);
    if (member.isBitField) {
        const BitsChoices choices{mModel.Image().byteOrder, true, 1, {0, structureSize}};
        const auto bits = BitsOf(member, mModel.SizeOf(member.type), member.offset, choices);
        if (bits) {
            type = NameOfValues({bits->datatype,
                                 mConversions.Of(member.type, member.bitSize),
                                 {},
                                 bits->place.mask},
                                isCalibrated);
            offset = bits->place.address;
        }
    } else if (!mIndex.MembersOf(plain).All().empty()) {
        type = NameOfStructure(plain, isCalibrated);
    } else if (std::optional<ExportedValues> values = ValuesOf(member.type, Version::V1_7_1)) {
        dimensions = std::exchange(values->dimensions, {});
        type = NameOfValues(*values, isCalibrated);
    }
    if (type.empty()) {
        ++mLeftOut;
        return;
    }
    text.append("      /begin STRUCTURE_COMPONENT ").append(MakePartIdentifier(member.name));
    text.append(" ").append(type).append(" ").append(std::to_string(offset));
    const std::string matrix = DimensionsText(dimensions, Version::V1_7_1, {});
    text.append(matrix.empty() ? "" : " " + matrix);
    text.append(" SYMBOL_TYPE_LINK ").append(QuotedText(member.name));
    text.append(" /end STRUCTURE_COMPONENT\n");
}

std::string ExportTypes::NameOfValues(const ExportedValues& values, bool isCalibrated) {
    std::string name = (isCalibrated ? "C_" : "M_") + std::string(values.datatype);
    if (values.conversion != mConversions.Of(0)) {
        name += "_" + values.conversion;
    }
    if (values.bitMask) {
        name += "_" + AddressText(*values.bitMask).substr(2);
    }
    const auto [known, isNew] = mValueNames.try_emplace(name);
    if (!isNew) {
        return known->second;
    }
    known->second = mNames.Take(name);
    const std::string mask =
        values.bitMask ? " BIT_MASK " + AddressText(*values.bitMask) : std::string();
    const std::string limits = LimitsOf(values.datatype, values.bitMask);
    if (isCalibrated) {
        mDatatypes.insert(values.datatype);
        mValueText += "\n    /begin TYPEDEF_CHARACTERISTIC " + known->second +
                      " \"\"\n      VALUE " + LayoutNameOf(values.datatype) + " 0 " +
                      values.conversion + " " + limits + mask +
                      "\n    /end TYPEDEF_CHARACTERISTIC\n";
    } else {
        mValueText += "\n    /begin TYPEDEF_MEASUREMENT " + known->second + " \"\"\n      " +
                      std::string(values.datatype) + " " + values.conversion + " 0 0 " + limits +
                      mask + "\n    /end TYPEDEF_MEASUREMENT\n";
    }
    return known->second;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
