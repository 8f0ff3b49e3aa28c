#include "a2l/Comparison.h"

#include "Phrases.h"

#include "a2l/Datatypes.h"
#include "a2l/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

/// At most this many differences of one structure or enumeration are reported.
constexpr std::size_t sMostDetails = 3;

template <typename Value>
const Value* Lookup(const Module::ByName<Value>& table, std::string_view name) {
    const auto found = table.find(name);
    return found == table.end() ? nullptr : &found->second;
}

std::string Count(std::uint64_t count) {
    return std::to_string(count);
}

std::string Quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

/// Offsets and sizes beyond this many bytes lead out of any variable.
constexpr std::uint64_t sFarthestOffset = std::uint64_t{1} << 40;

/// Structures of a file that are nested deeper are not compared.
constexpr std::size_t sMostNestedStructures = 100;

/// The 64 bits of an integer, with or without sign; also of one that is written as "2.0".
std::optional<std::int64_t> IntegerValue(std::string_view text) {
    const char* const end = text.data() + text.size();
    const auto isWhole = [text, end](auto& number) {
        const auto [rest, error] = std::from_chars(text.data(), end, number);
        return error == std::errc() && rest == end;
    };
    std::int64_t withSign = 0;
    std::uint64_t withoutSign = 0;
    if (isWhole(withSign)) {
        return withSign;
    }
    if (isWhole(withoutSign)) {
        return static_cast<std::int64_t>(withoutSign);
    }
    double value = 0;
    constexpr double most = 9.0e15;
    const bool isInteger = isWhole(value) && std::abs(value) < most && value == std::floor(value);
    return isInteger ? std::optional(static_cast<std::int64_t>(value)) : std::nullopt;
}

/// A value as a variable of `size` bytes holds it, with sign: large values of an unsigned
/// enumeration are negative. Nothing if the variable can't hold it.
std::optional<std::int64_t> ValueIn(std::uint64_t size, std::int64_t value) {
    const auto bits = DataModel::Enumerator{.value = value, .name = {}}.BitsIn(size);
    const std::uint64_t unused = size == 0 || size >= 8 ? 0 : 64 - size * 8;
    return bits ? std::optional(static_cast<std::int64_t>(*bits << unused) >> unused)
                : std::nullopt;
}

} // namespace

/// A list in few words.
class Comparison::Details {
public:
    void Add(std::string_view text) {
        if (mCount++ < sMostDetails) {
            mText.append(mText.empty() ? "" : ", ").append(text);
        }
    }
    [[nodiscard]] std::string Text() const {
        return mCount > sMostDetails ? mText + ", ..." : mText;
    }

private:
    std::string mText;
    std::size_t mCount = 0;
};

/// What differs in the components of a structure, as one difference of each kind.
class Comparison::ComponentDifferences {
public:
    void Add(std::string_view what, std::string_view inFile, std::string_view inImage) {
        auto& [file, image] = mKinds[what];
        file.Add(inFile);
        image.Add(inImage);
    }
    [[nodiscard]] std::vector<Difference> List() const {
        std::vector<Difference> list;
        for (const auto& [what, texts] : mKinds) {
            list.push_back({what, texts.first.Text(), texts.second.Text()});
        }
        return list;
    }

private:
    std::map<std::string_view, std::pair<Details, Details>> mKinds;
};

std::uint64_t MaskedReading::Mask() const {
    const std::uint64_t allBits = number.size >= sLargestMaskedNumber
                                      ? ~std::uint64_t{0}
                                      : (std::uint64_t{1} << (number.size * 8)) - 1;
    return mask.value_or(allBits);
}

std::string MaskedReading::MaskText() const {
    return mask ? UpperHexadecimal(*mask) : Phrased("none");
}

// Calls itself through the components of structures, no deeper than sMostNestedStructures.
// NOLINTNEXTLINE(misc-no-recursion)
std::vector<Difference> Comparison::Compare(const Object& object, const SymbolIndex::Place& place) {
    std::vector<Difference> differences;
    CompareOffset(object, place, differences);
    if (place.isBitField) {
        // The mask decides; the update compares it.
        CompareEnumeration(object, place.type, place.bitSize, differences);
        return differences;
    }
    const bool isWhole = object.linkOffset == 0;
    if (const std::optional<Values> values = ValuesOf(object)) {
        CompareValues(*values, object, place, differences);
    } else if (object.kind == BlockKind::Blob && isWhole) {
        CompareSize(object.points, place, differences);
    } else if (const TypeDefinition* const type = TypeOf(object); type != nullptr && isWhole) {
        if (type->kind == TypeDefinition::Kind::Structure ||
            type->kind == TypeDefinition::Kind::Blob) {
            CompareSize(type->size * std::max<std::uint64_t>(object.elements, 1), place,
                        differences);
            CompareComponents(*type, object, place.type, differences);
        }
    }
    return differences;
}

MaskedReading Comparison::ReadingOf(const Object& object, const SymbolIndex::Place& place) const {
    const std::optional<Values> values = ValuesOf(object);
    const std::optional<Scalar> scalar = values ? ScalarOfDatatype(values->datatype) : std::nullopt;
    MaskedReading reading;
    reading.number.size = scalar ? scalar->size : place.size;
    std::optional<bool> isBigEndian = object.isBigEndian;
    if (object.bitMask.span.IsSet()) {
        reading.mask = object.bitMask.value;
    }
    if (const TypeDefinition* const type = TypeOf(object)) {
        reading.mask = reading.mask ? reading.mask : type->bitMask;
        isBigEndian = isBigEndian ? isBigEndian : type->isBigEndian;
    }
    const DataModel::ByteOrder order =
        isBigEndian == true ? DataModel::ByteOrder::Big : DataModel::ByteOrder::Little;
    reading.number.order = isBigEndian ? order : mModel.Image().byteOrder;
    return reading;
}

std::string_view Comparison::DatatypeOfLayout(const Object& object, std::string_view layout) const {
    const RecordLayout* const known = Lookup(mDocument.modules[object.module].layouts, layout);
    if (known == nullptr || known->entries != 1) {
        return {};
    }
    return object.kind == BlockKind::AxisPoints ? known->axis : known->values;
}

const TypeDefinition* Comparison::TypeOf(const Object& object) const {
    return object.kind == BlockKind::Instance
               ? Lookup(mDocument.modules[object.module].types, object.layout)
               : nullptr;
}

std::optional<Comparison::Values> Comparison::ValuesOf(const Object& object) const {
    const std::uint64_t elements = std::max<std::uint64_t>(object.elements, 1);
    switch (object.kind) {
    case BlockKind::Measurement:
        return Values{object.type, elements};
    case BlockKind::Characteristic:
    case BlockKind::AxisPoints: {
        const std::string_view datatype = DatatypeOfLayout(object, object.layout);
        const bool hasPoints = object.kind == BlockKind::AxisPoints || object.points != 0;
        return datatype.empty()
                   ? std::nullopt
                   : std::optional(Values{datatype, hasPoints ? object.points : elements});
    }
    case BlockKind::Instance:
        return ValuesOfType(object);
    case BlockKind::Blob:
        break;
    }
    return std::nullopt;
}

std::optional<Comparison::Values> Comparison::ValuesOfType(const Object& object) const {
    const TypeDefinition* const type = TypeOf(object);
    if (type == nullptr) {
        return std::nullopt;
    }
    const std::uint64_t elements =
        std::max<std::uint64_t>(object.elements, 1) * std::max<std::uint64_t>(type->elements, 1);
    const bool isMeasurement = type->kind == TypeDefinition::Kind::Measurement;
    const bool isPlain = type->kind == TypeDefinition::Kind::Characteristic &&
                         (type->type == "VALUE" || type->type == "VAL_BLK");
    const std::string_view datatype =
        isMeasurement ? type->type
                      : (isPlain ? DatatypeOfLayout(object, type->layout) : std::string_view());
    return datatype.empty() ? std::nullopt : std::optional(Values{datatype, elements});
}

void Comparison::CompareValues(const Values& values, const Object& object,
                               const SymbolIndex::Place& place,
                               std::vector<Difference>& differences) {
    const std::optional<Scalar> wanted = ScalarOfDatatype(values.datatype);
    if (!wanted) {
        return;
    }
    // A part of an array after some indices is an array of the elements that are left.
    const std::uint64_t partCount =
        place.indexedDimensions == 0
            ? 0
            : place.size / std::max<std::uint64_t>(mModel.ElementStride(place.type), 1);
    const std::uint64_t whole = place.size;
    const bool isUnion =
        mModel.Object(mModel.WithoutTypedefs(place.type)).kind == ObjectKind::Union;
    std::optional<Elements> first;
    for (const ObjectId type :
         mIndex.TypesAt(place.type, static_cast<std::uint64_t>(object.linkOffset) * mAddressUnit)) {
        Elements elements = ElementsOf(mModel, type);
        if (partCount != 0 && type == place.type) {
            elements = {mModel.Object(mModel.WithoutTypedefs(type)).type, partCount};
        }
        const std::optional<Scalar> scalar = ScalarOfType(mModel, elements.type);
        // The name doesn't mean the first element of an array or the first member of a structure.
        const bool isMeant = object.linkOffset != 0 || isUnion || mModel.SizeOf(type) == whole ||
                             (partCount != 0 && type == place.type);
        if (!scalar || !isMeant) {
            continue;
        }
        if (mSigns.Fits(elements.type, *wanted) && elements.count == values.count) {
            CompareEnumeration(object, elements.type, 0, differences);
            return;
        }
        first = first ? first : std::optional(elements);
    }
    if (!first) {
        const bool isTypeKnown =
            mModel.Object(mModel.WithoutTypedefs(place.type)).kind != ObjectKind::Unknown;
        if (object.linkOffset == 0 && (isTypeKnown || wanted->size * values.count > place.size)) {
            CompareSize(wanted->size * values.count, place, differences);
        }
        return;
    }
    if (!mSigns.Fits(first->type, *wanted)) {
        differences.push_back(
            {"datatype", std::string(values.datatype), mModel.TypeText(first->type)});
    }
    if (first->count != values.count) {
        differences.push_back({"elements", Count(values.count), Count(first->count)});
    }
    CompareEnumeration(object, first->type, 0, differences);
}

std::uint64_t Comparison::BytesOfObject(const Object& object) const {
    const std::uint64_t elements = std::max<std::uint64_t>(object.elements, 1);
    std::uint64_t size = 0;
    std::uint64_t count = 1;
    if (const std::optional<Values> values = ValuesOf(object)) {
        const std::optional<Scalar> scalar = ScalarOfDatatype(values->datatype);
        size = scalar ? scalar->size : 1;
        count = values->count;
    } else if (object.kind == BlockKind::Blob) {
        size = object.points;
    } else if (const TypeDefinition* const type = TypeOf(object)) {
        size = type->size;
        count = elements;
    }
    const bool isSane =
        size < sFarthestOffset && count < sFarthestOffset / std::max<std::uint64_t>(size, 1);
    return isSane ? std::max<std::uint64_t>(size * count, 1) : sFarthestOffset;
}

bool Comparison::HasOpenEnd(ObjectId type) const {
    for (std::size_t depth = 0; depth < sMostNestedStructures; ++depth) {
        const ObjectId plain = mModel.WithoutTypedefs(type);
        const std::vector<Member>& members = mIndex.MembersOf(plain).All();
        if (members.empty()) {
            return mModel.Object(plain).kind == ObjectKind::Array &&
                   mModel.ElementCount(plain) == 0;
        }
        type = members.back().type;
    }
    return false;
}

void Comparison::CompareOffset(const Object& object, const SymbolIndex::Place& place,
                               std::vector<Difference>& differences) const {
    const ModelObject variable = mModel.Object(place.global);
    const auto size = static_cast<std::int64_t>(
        std::min<std::uint64_t>(mModel.SizeOf(place.global), sFarthestOffset));
    if (object.linkOffset == 0 || size == 0 || HasOpenEnd(variable.type)) {
        return;
    }
    constexpr auto farthest = static_cast<std::int64_t>(sFarthestOffset);
    const std::int64_t first = static_cast<std::int64_t>(place.address - variable.address) +
                               std::clamp(object.linkOffset, -farthest, farthest) *
                                   static_cast<std::int64_t>(mAddressUnit);
    const std::int64_t last = first + static_cast<std::int64_t>(BytesOfObject(object)) - 1;
    if (first < 0 || last >= size) {
        const auto range = [](std::int64_t from, std::int64_t to) {
            return std::to_string(from) + (from == to ? "" : ".." + std::to_string(to));
        };
        differences.push_back({"offset", range(first, last), range(0, size - 1)});
    }
}

void Comparison::CompareSize(std::uint64_t size, const SymbolIndex::Place& place,
                             std::vector<Difference>& differences) const {
    if (size != place.size && place.size != 0) {
        differences.push_back({"size", Count(size), Count(place.size)});
    }
}

void Comparison::CompareEnumeration(const Object& object, ObjectId type, std::uint64_t bitSize,
                                    std::vector<Difference>& differences) {
    const ModelObject enumeration = mModel.Object(mModel.WithoutTypedefs(type));
    const Module& module = mDocument.modules[object.module];
    const TypeDefinition* const definition = TypeOf(object);
    const std::string_view* const name = Lookup(
        module.conversions, definition != nullptr ? definition->conversion : object.conversion);
    const ConversionTable* const table = name != nullptr ? Lookup(module.tables, *name) : nullptr;
    if (enumeration.id == 0 || enumeration.kind != ObjectKind::Enum || table == nullptr) {
        return;
    }
    const auto [known, isNew] = mKnown.try_emplace({table, enumeration.id, bitSize});
    if (isNew) {
        CompareTexts(*table, enumeration.id, bitSize, known->second);
    }
    differences.insert(differences.end(), known->second.begin(), known->second.end());
}

void Comparison::CompareTexts(const ConversionTable& table, ObjectId enumeration,
                              std::uint64_t bitSize, std::vector<Difference>& differences) const {
    const std::uint64_t size = mModel.SizeOf(enumeration);
    const SignedBits field = mSigns.BitsOf(enumeration, bitSize);
    // Several enumerators may have one value; any of their names will do.
    std::multimap<std::int64_t, const DataModel::Enumerator*> known;
    for (const DataModel::Enumerator& enumerator : mModel.Enumerators(enumeration)) {
        if (const auto value = ValueIn(size, enumerator.value)) {
            known.emplace(*value, &enumerator);
        }
    }
    std::set<std::int64_t> values;
    Details inFile;
    Details inImage;
    for (const auto& [valueText, text] : table.pairs) {
        const std::optional<std::int64_t> number = IntegerValue(valueText);
        if (!number) {
            // A table with other numbers can't be compared.
            return;
        }
        const std::optional<std::int64_t> value = ValueIn(size, field.WithSign(*number));
        if (value) {
            values.insert(*value);
        }
        const auto [first, last] =
            value ? known.equal_range(*value) : std::pair(known.end(), known.end());
        const bool isSame = std::any_of(
            first, last, [&text = text](const auto& entry) { return entry.second->name == text; });
        if (!isSame) {
            inFile.Add(std::string(valueText) + " " + Quoted(text));
            inImage.Add(std::string(valueText) + " " +
                        (first == last ? Phrased("none") : Quoted(first->second->name)));
        }
    }
    for (const auto& [value, enumerator] : known) {
        if (!values.contains(value) && field.Holds(value)) {
            const std::string number = std::to_string(enumerator->value);
            inFile.Add(number + " " + Phrased("none"));
            inImage.Add(number + " " + Quoted(enumerator->name));
        }
    }
    if (!inFile.Text().empty()) {
        differences.push_back({"enumeration", inFile.Text(), inImage.Text()});
    }
}

// NOLINTNEXTLINE(misc-no-recursion)
void Comparison::CompareComponents(const TypeDefinition& definition, const Object& object,
                                   ObjectId type, std::vector<Difference>& differences) {
    const ObjectId plain = mModel.WithoutTypedefs(ElementsOf(mModel, type).type);
    // A structure that contains itself meets its own result, which is still empty.
    const auto [known, isNew] = mKnown.try_emplace({&definition, plain, 0});
    if (isNew && mDepth < sMostNestedStructures) {
        const MemberTable& members = mIndex.MembersOf(plain);
        ComponentDifferences found;
        ++mDepth;
        for (const StructureComponent& component : definition.components) {
            const std::string_view name = component.link.empty() ? component.name : component.link;
            if (const Member* const member = members.Find(name)) {
                CompareComponent(component, object, *member, found);
            } else {
                found.Add("structure", Phrased("{} at {}", component.name, Count(component.offset)),
                          Phrased("{} missing", component.name));
            }
        }
        --mDepth;
        known->second = found.List();
    }
    differences.insert(differences.end(), known->second.begin(), known->second.end());
}

// NOLINTNEXTLINE(misc-no-recursion)
void Comparison::CompareComponent(const StructureComponent& component, const Object& object,
                                  const Member& member, ComponentDifferences& found) {
    // Component and member like an instance of its own and its place.
    Object part;
    part.kind = BlockKind::Instance;
    part.module = object.module;
    part.layout = component.type;
    part.elements = component.elements;
    SymbolIndex::Place place;
    place.type = member.type;
    place.address = member.offset;
    place.size = member.size;
    place.isBitField = member.isBitField;
    place.bitOffset = member.bitOffset;
    place.bitSize = member.bitSize;
    if (member.isBitField) {
        if (ValuesOf(part)) {
            CompareBits(component, ReadingOf(part, place), place, found);
        }
    } else if (member.offset != component.offset) {
        found.Add("structure", Phrased("{} at {}", component.name, Count(component.offset)),
                  Phrased("{} at {}", component.name, Count(member.offset)));
    }
    if (component.isPointer) {
        return;
    }
    const std::string prefix = std::string(component.name) + ": ";
    for (const Difference& difference : Compare(part, place)) {
        found.Add(difference.what, prefix + difference.inFile, prefix + difference.inImage);
    }
}

void Comparison::CompareBits(const StructureComponent& component, const MaskedReading& reading,
                             const SymbolIndex::Place& place, ComponentDifferences& found) const {
    const DataModel::ByteOrder order = mModel.Image().byteOrder;
    const auto here = MaskAt(component.offset, place, order, reading.number);
    if (here == reading.Mask()) {
        return;
    }
    const std::string prefix = std::string(component.name) + ": ";
    const auto best = FindMaskedPlace(place, order, reading.number, reading.Mask());
    const bool isRightElsewhere = best && best->mask == reading.Mask();
    if (best && (isRightElsewhere || !here)) {
        found.Add("structure", Phrased("{} at {}", component.name, Count(component.offset)),
                  Phrased("{} at {}", component.name, Count(best->address)));
    }
    if (!isRightElsewhere) {
        found.Add("bitMask", prefix + reading.MaskText(),
                  prefix + (best ? UpperHexadecimal(here.value_or(best->mask))
                                 : UnheldBits(place, order, reading.number)));
    }
}

std::string UnheldBits(const SymbolIndex::Place& place, DataModel::ByteOrder imageOrder,
                       const MaskedNumber& number) {
    MaskedNumber other = number;
    other.order = imageOrder;
    const std::string bits = std::to_string(place.bitSize);
    return FindMaskedPlace(place, imageOrder, other, std::nullopt)
               ? Phrased("{} bits in the other byte order", bits)
               : Phrased("{} bits, which the datatype does not hold", bits);
}

} // namespace Tessel::Norn::Brindle::Program::A2l
