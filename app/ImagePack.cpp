#include "ImagePack.h"

#include "JsonOutput.h"
#include "ObjectKinds.h"
#include "ReadSession.h"
#include "StructureLayout.h"

#include "host/ImageDescription.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

/// The page's numbers for types; the format of a report depends on them.
enum class PackedKind : std::uint8_t {
    Base = 1,
    Unknown,
    Class,
    Struct,
    Union,
    Array,
    Pointer,
    Enum,
    Typedef,
    Function,
};

std::optional<PackedKind> PackedKindOf(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Base:
        return PackedKind::Base;
    case ObjectKind::Unknown:
        return PackedKind::Unknown;
    case ObjectKind::Class:
        return PackedKind::Class;
    case ObjectKind::Struct:
        return PackedKind::Struct;
    case ObjectKind::Union:
        return PackedKind::Union;
    case ObjectKind::Array:
        return PackedKind::Array;
    case ObjectKind::Pointer:
        return PackedKind::Pointer;
    case ObjectKind::Enum:
        return PackedKind::Enum;
    case ObjectKind::Typedef:
        return PackedKind::Typedef;
    case ObjectKind::FunctionType:
        return PackedKind::Function;
    default:
        return std::nullopt;
    }
}

/// A bit field among the kinds of layout entries, after the last of them.
constexpr std::uint64_t sBitFieldEntry = 6;

/// 0 stands for none, so that the column of a type without bit fields takes no space.
std::uint64_t PackedBit(std::uint32_t bitOffset) {
    return std::uint64_t{bitOffset} + 1;
}

std::string_view ContainerWord(Reader::DWARF::DWARFContainerType container) {
    using Container = Reader::DWARF::DWARFContainerType;
    if (container == Container::Container_COFF) {
        return "COFF";
    }
    return container == Container::Container_PE ? "PE" : "ELF";
}

/// What the headers of the file say; nothing if they were not read.
void WriteHeaders(PackWriter& json, const DataModel::ImageDescription& image) {
    if (image.path.empty()) {
        return;
    }
    const bool isBigEndian = image.byteOrder == DataModel::ByteOrder::Big;
    WriteField(json, "byteOrder", std::string_view(isBigEndian ? "big" : "little"));
    WriteField(json, "machine", std::uint64_t{image.machine});
    WriteField(json, "addressSize", std::uint64_t{image.AddressSize()});
    WriteField(json, "fileSize", std::uint64_t{image.fileSize});
    WriteField(json, "isLinked", image.isLinked);
    WriteField(json, "isWordAddressed", image.isWordAddressed);
}

/// A number with sign for the table: 0, -1, 1, -2 become 0, 1, 2, 3, so that small ones stay small.
std::uint64_t ZigZag(std::int64_t number) {
    const std::uint64_t shifted = static_cast<std::uint64_t>(number) << 1U;
    return number < 0 ? ~shifted : shifted;
}

} // namespace

ImagePack::ImagePack(const DataModel::Model& model, std::string file, const ReadResult& result,
                     std::uint64_t valueLimit)
    : mModel(model)
    , mFile(std::move(file))
    , mResult(result)
    , mWalk(model)
    , mTexts(model.ObjectCount())
    , mTypes({"kind", "text", "size", "target", "basic", "stride", "unit", "entries", "members",
              "dimensions", "enumerators"})
    , mLayout({"kind", "name", "type", "offset", "size", "bit", "bits"})
    , mFlatMembers({"step", "type", "offset", "isBitField", "bit", "bits"})
    , mDimensions({"length"})
    , mEnumerators({"value", "name"})
    , mVariables({"name", "scope", "type", "address", "size", "unit"})
    , mSections({"name", "address", "size", "kind"})
    , mValues(valueLimit) {
    NumberTypes();
    for (ObjectId id = 1; id < mTypeNumbers.size(); ++id) {
        if (mTypeNumbers[id] != 0) {
            AddType(mModel.Object(id));
        }
    }
    AddVariables();
    AddSections();
}

std::uint64_t ImagePack::TypeNumber(ObjectId type) const {
    return type < mTypeNumbers.size() ? mTypeNumbers[type] : 0;
}

std::uint64_t ImagePack::IndexOf(ObjectId global) const {
    const auto place = std::ranges::lower_bound(mVariableIds, global);
    return static_cast<std::uint64_t>(place - mVariableIds.begin());
}

void ImagePack::NumberTypes() {
    mTypeNumbers.assign(mModel.ObjectCount() + 1, 0);
    std::uint32_t count = 0;
    for (ObjectId id = 1; id < mTypeNumbers.size(); ++id) {
        if (PackedKindOf(mModel.Object(id).kind)) {
            mTypeNumbers[id] = ++count;
        }
    }
}

void ImagePack::AddType(const ModelObject& type) {
    const bool isClass = HasMembers(type.kind);
    const bool isArray = type.kind == ObjectKind::Array;
    const bool isNamed =
        isClass || type.kind == ObjectKind::Enum || type.kind == ObjectKind::Typedef;
    const auto kind = static_cast<std::uint64_t>(*PackedKindOf(type.kind));
    const std::uint64_t text = mTexts.NumberOfCopy(mModel.TypeText(type.id));
    const std::uint64_t entries = isClass ? AddLayout(type.id) : 0;
    const std::uint64_t members = isClass ? AddFlatMembers(type.id) : 0;
    mTypes.AddRow({kind, text, mModel.SizeOf(type.id), TypeNumber(type.type),
                   static_cast<std::uint64_t>(type.basicType),
                   isArray ? mModel.ElementStride(type.id) : 0, isNamed ? UnitText(type.id) : 0,
                   entries, members, isArray ? AddDimensions(type.id) : 0,
                   type.kind == ObjectKind::Enum ? AddEnumerators(type.id) : 0});
}

std::uint64_t ImagePack::AddLayout(ObjectId type) {
    const std::vector<LayoutEntry> layout = LayoutOf(mModel, type);
    for (const LayoutEntry& entry : layout) {
        const ModelObject object = mModel.Object(entry.id);
        const bool isMember = entry.kind == LayoutEntry::Kind::Member;
        const bool isBitField = isMember && object.kind == ObjectKind::BitField;
        mLayout.AddRow({isBitField ? sBitFieldEntry : static_cast<std::uint64_t>(entry.kind),
                        isMember ? mTexts.NumberOf(object.name) : 0U,
                        TypeNumber(isMember ? object.type : entry.id), entry.offset, entry.size,
                        isBitField ? PackedBit(object.bitOffset) : 0,
                        isBitField ? object.bitSize : 0});
    }
    return layout.size();
}

/// Adds members as leaves name them, unless they are the members of the layout.
std::uint64_t ImagePack::AddFlatMembers(ObjectId type) {
    bool isPlain = mModel.BaseClasses(type).empty();
    mModel.ForEachIn(type, [&isPlain](const ModelObject& object) {
        isPlain = isPlain && (!IsMember(object.kind) || !object.name.empty());
    });
    if (isPlain) {
        return 0;
    }
    const auto& members = mWalk.Members(type);
    for (const DataModel::LeafWalk::FlatMember& member : members) {
        mFlatMembers.AddRow({mTexts.NumberOfCopy(member.step), TypeNumber(member.place.type),
                             member.place.address, member.place.isBitField ? 1U : 0U,
                             member.place.isBitField ? PackedBit(member.place.bitOffset) : 0,
                             member.place.bitSize});
    }
    return members.size();
}

std::uint64_t ImagePack::AddDimensions(ObjectId array) {
    for (const std::uint32_t length : mModel.Dimensions(array)) {
        mDimensions.AddRow({length});
    }
    return mModel.Dimensions(array).size();
}

std::uint64_t ImagePack::AddEnumerators(ObjectId table) {
    for (const DataModel::Enumerator& enumerator : mModel.Enumerators(table)) {
        mEnumerators.AddRow({ZigZag(enumerator.value), mTexts.NumberOf(enumerator.name)});
    }
    return mModel.Enumerators(table).size();
}

void ImagePack::AddVariables() {
    std::vector<ValuePack::Stretch> places;
    mModel.ForEach(ObjectKind::Global, [this, &places](const ModelObject& variable) {
        places.push_back(AddVariable(variable));
    });
    mValues.Take(mModel, std::move(places));
}

ValuePack::Stretch ImagePack::AddVariable(const ModelObject& variable) {
    const std::uint64_t size = mModel.SizeOf(variable.id);
    mVariableIds.push_back(variable.id);
    mVariables.AddRow({mTexts.NumberOf(variable.name), ScopeText(variable),
                       TypeNumber(variable.type), variable.address, size, UnitText(variable.id)});
    return {variable.address, size};
}

void ImagePack::AddSections() {
    for (const DataModel::ImageSection& section : mModel.Image().sections) {
        mSections.AddRow({mTexts.NumberOf(section.name), section.address, section.size,
                          static_cast<std::uint64_t>(section.kind)});
    }
}

std::uint32_t ImagePack::ScopeText(const ModelObject& variable) {
    if (variable.name.empty()) {
        // Nor has it a qualified name, which would tell the scope: the next variable does.
        return mTexts.NumberOf({});
    }
    const auto [known, isNew] = mScopeTexts.try_emplace(variable.scope, 0);
    if (isNew) {
        // Not just the name of the scope: a compile unit adds nothing to the names in it.
        std::string name = mModel.QualifiedName(variable.id);
        const std::string end = "::" + std::string(variable.name);
        name.resize(name.ends_with(end) ? name.size() - end.size() : 0);
        known->second = mTexts.NumberOfCopy(std::move(name));
    }
    return known->second;
}

std::uint32_t ImagePack::UnitText(ObjectId id) {
    const ObjectId unit = mModel.CompileUnitOf(id);
    if (unit != mLastUnit) {
        mLastUnit = unit;
        mLastUnitText = mTexts.NumberOf(mModel.Object(unit).name);
    }
    return mLastUnitText;
}

void ImagePack::Write(PackWriter& json) const {
    json.StartObject();
    WriteField(json, "file", mFile);
    WriteField(json, "container", ContainerWord(mResult.container));
    WriteField(json, "isComplete", mResult.isOk);
    WriteField(json, "error", mResult.error);
    WriteHeaders(json, mModel.Image());
    json.Key("texts");
    mTexts.Write(json);
    const std::array<std::pair<std::string_view, const PackedTable*>, 7> tables = {
        {{"types", &mTypes},
         {"layout", &mLayout},
         {"members", &mFlatMembers},
         {"dimensions", &mDimensions},
         {"enumerators", &mEnumerators},
         {"variables", &mVariables},
         {"sections", &mSections}}};
    for (const auto& [name, table] : tables) {
        WriteKey(json, name);
        table->Write(json);
    }
    json.Key("values");
    mValues.Write(json);
    json.EndObject();
}

} // namespace Tessel::Norn::Brindle::Program
