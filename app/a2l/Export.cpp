#include "a2l/Export.h"

#include "NamePattern.h"
#include "ObjectKinds.h"
#include "Phrases.h"
#include "ResultOutput.h"
#include "SharedNames.h"

#include "a2l/Alignments.h"
#include "a2l/BitMask.h"
#include "a2l/Conversions.h"
#include "a2l/Datatypes.h"
#include "a2l/ExportText.h"
#include "a2l/ExportTypes.h"
#include "a2l/Identifiers.h"
#include "a2l/Numbers.h"
#include "a2l/SymbolIndex.h"
#include "a2l/VariableNames.h"
#include "core/FilePath.h"
#include "model/ElementIndices.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ImageSection;
using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using DataModel::SectionKind;

constexpr std::size_t sDeepestNesting = 100;

/// Patterns of which at least one must match.
class AnyFilter {
public:
    explicit AnyFilter(const std::vector<std::string>& patterns) {
        for (const std::string& pattern : patterns) {
            mFilters.emplace_back(pattern);
        }
    }
    [[nodiscard]] bool IsEmpty() const { return mFilters.empty(); }
    [[nodiscard]] bool Takes(std::string_view name, std::size_t ownName) const {
        return std::ranges::any_of(
            mFilters, [&](const NameFilter& filter) { return filter.Takes(name, ownName); });
    }
    [[nodiscard]] bool MayTakeBehind(std::string_view name, std::size_t ownName) const {
        return std::ranges::any_of(mFilters, [&](const NameFilter& filter) {
            return filter.MayTakeBehind(name, ownName);
        });
    }

private:
    std::vector<NameFilter> mFilters;
};

/// Counts what is left out for one reason, and keeps the first.
struct Omission {
    std::size_t count = 0;
    std::string first;

    void Add(std::string_view name) {
        if (count++ == 0) {
            first = name;
        }
    }
    void Tell(std::vector<std::string>& texts, Phrase reason) const {
        if (count != 0) {
            texts.push_back(PhrasedCount(count, "{} object left out, {}, first '{}'",
                                         "{} objects left out, {}, first '{}'", Phrased(reason),
                                         first));
        }
    }
};

class Exporter {
public:
    Exporter(const DataModel::Model& model, const ExportChoices& choices, ResultOutput& output)
        : mModel(model)
        , mChoices(choices)
        , mOutput(output)
        , mIndex(model)
        , mSharedNames(model)
        , mNames(model, mIndex)
        , mConversions(model)
        , mTypes(model, mIndex, mConversions)
        , mWanted(choices.patterns)
        , mCalibrated(choices.characteristics)
        , mSections(choices.sections)
        , mLeavesLeft(choices.limits.leaves) {}

    ExportResult Run() {
        mModel.ForEach(ObjectKind::Global,
                       [this](const ModelObject& global) { TakeVariable(global); });
        TellOmissions();
        if (mResult.IsEmpty()) {
            return std::move(mResult);
        }
        Start();
        mOutput.Write(mTypes.Text());
        for (const std::string_view datatype : mTypes.LayoutDatatypes()) {
            mDatatypes.insert(datatype);
        }
        for (const std::string_view datatype : mDatatypes) {
            mOutput.Write(RecordLayoutText(datatype));
        }
        mOutput.Write(mConversions.Text());
        if (!mChoices.isFragment) {
            mOutput.Write("  /end MODULE\n/end PROJECT\n");
        }
        return std::move(mResult);
    }

private:
    /// A part of a variable on the way to its leaves.
    struct Part {
        ObjectId type = 0;
        std::uint64_t address = 0;
        /// Steps that follow the name of the variable as well as its symbol.
        std::string steps;
        std::size_t depth = 0;
    };

    /// The variable that is being expanded.
    struct Variable {
        VariableName name;
        std::string path;
        /// The path without the number of a variable that shares its name; otherwise empty.
        std::string plainPath;
        std::size_t ownName = 0;
        DataModel::ByteSpan bytes;
        bool isWanted = false;
    };

    void Write(std::string_view object) {
        Start();
        mOutput.Write(object);
    }

    /// Writes the head of the file before the first object: if nothing matches, nothing is written.
    void Start() {
        if (!mHasStarted && !mChoices.isFragment) {
            WriteStart();
        }
        mHasStarted = true;
    }

    void WriteStart() {
        const DataModel::ImageDescription& image = mModel.Image();
        const std::filesystem::path path = Reader::DWARF::PathOfText(image.path);
        const std::string name = MakePartIdentifier(Reader::DWARF::TextOfPath(path.stem()));
        const Alignments alignments = AlignmentsOf(mModel);
        std::string text = "ASAP2_VERSION 1 ";
        text.append(mChoices.version == Version::V1_5_1 ? "51"
                    : mChoices.version == Version::V1_6 ? "60"
                                                        : "71");
        text.append("\n/begin PROJECT " + name + " " +
                    QuotedText(Reader::DWARF::TextOfPath(path.filename())) + "\n");
        text.append("  /begin MODULE " + name + " \"\"\n\n    /begin MOD_COMMON \"\"\n");
        const auto add = [&text](std::string_view keyword, std::string_view value) {
            text.append("      ").append(keyword).append(" ").append(value).append("\n");
        };
        add("BYTE_ORDER", image.byteOrder == DataModel::ByteOrder::Big ? "MSB_FIRST" : "MSB_LAST");
        const auto addAlignment = [&add](std::string_view keyword, std::uint64_t alignment) {
            add(keyword, std::to_string(alignment));
        };
        addAlignment("ALIGNMENT_BYTE", alignments.integers[0]);
        addAlignment("ALIGNMENT_WORD", alignments.integers[1]);
        addAlignment("ALIGNMENT_LONG", alignments.integers[2]);
        if (mChoices.version != Version::V1_5_1) {
            addAlignment("ALIGNMENT_INT64", alignments.integers[3]);
        }
        if (mChoices.version == Version::V1_7_1) {
            addAlignment("ALIGNMENT_FLOAT16_IEEE", alignments.floats[0]);
        }
        addAlignment("ALIGNMENT_FLOAT32_IEEE", alignments.floats[1]);
        addAlignment("ALIGNMENT_FLOAT64_IEEE", alignments.floats[2]);
        mOutput.Write(text.append("    /end MOD_COMMON\n"));
    }

    void TakeVariable(const ModelObject& global) {
        Variable variable;
        variable.path = mModel.QualifiedName(global.id);
        variable.ownName = OwnNameStart(variable.path, global.name);
        variable.plainPath = mSharedNames.WithoutNumber(global.id, variable.path);
        const std::string& plainPath = variable.plainPath;
        variable.isWanted = mWanted.IsEmpty() || mWanted.Takes(variable.path, variable.ownName) ||
                            (!plainPath.empty() && mWanted.Takes(plainPath, variable.ownName));
        if (!variable.isWanted && !mWanted.MayTakeBehind(variable.path, variable.ownName) &&
            (plainPath.empty() || !mWanted.MayTakeBehind(plainPath, variable.ownName))) {
            return;
        }
        variable.name = mNames.Of(global.id);
        variable.bytes = {global.address, mModel.SizeOf(global.id)};
        mVariable = &variable;
        if (!TakeAsInstance(global)) {
            TakePart({global.type, global.address, {}, 0});
        }
        mVariable = nullptr;
    }

    // Leaves.

    // Calls itself through members and elements, no deeper than sDeepestNesting.
    void TakePart(const Part& part) { // NOLINT(misc-no-recursion)
        const ObjectId plain = mModel.WithoutTypedefs(part.type);
        const ModelObject type = mModel.Object(plain);
        if (part.depth == sDeepestNesting || mLeavesLeft == 0) {
            Omit(mTooMany, part);
        } else if (HasMembers(type.kind)) {
            for (const Member& member : mIndex.MembersOf(plain).All()) {
                TakeMember(part, member);
            }
        } else if (type.kind == ObjectKind::Array && !IsArrayOfValues(plain)) {
            TakeElements(part, plain);
        } else {
            TakeValues(part);
        }
    }

    void TakeMember(const Part& part, const Member& member) { // NOLINT(misc-no-recursion)
        const Part inside{member.type, part.address + member.offset,
                          part.steps + "." + std::string(member.name), part.depth + 1};
        if (!member.isBitField) {
            TakePart(inside);
            return;
        }
        if (!IsWanted(inside)) {
            return;
        }
        const BitsChoices choices{mModel.Image().byteOrder, mChoices.version == Version::V1_7_1,
                                  AddressUnit(), mVariable->bytes};
        const std::optional<ExportedBits> bits =
            BitsOf(member, mModel.SizeOf(member.type), inside.address, choices);
        if (!bits) {
            Omit(mNoMask, inside);
            return;
        }
        ExportedValues values{
            bits->datatype, mConversions.Of(member.type, member.bitSize), {}, bits->place.mask};
        Part place = inside;
        place.address = bits->place.address;
        WriteObject(place, values,
                    mModel.TypeText(member.type) + ", " + std::to_string(member.bitSize) +
                        (member.bitSize == 1 ? " bit" : " bits"));
    }

    void TakeElements(const Part& part, ObjectId array) { // NOLINT(misc-no-recursion)
        const std::uint64_t count = mModel.ElementCount(array);
        const std::uint64_t stride = mModel.ElementStride(array);
        const std::uint64_t end = std::min(count, mChoices.limits.arrayElements);
        if (end < count) {
            Omit(mCutArrays, part);
        }
        for (std::uint64_t index = 0; index < end; ++index) {
            Part element{mModel.Object(array).type, part.address + index * stride, part.steps,
                         part.depth + 1};
            DataModel::AppendElementIndices(element.steps, index, mModel.Dimensions(array));
            TakePart(element);
        }
    }

    [[nodiscard]] bool IsArrayOfValues(ObjectId array) const {
        const ObjectId element = mModel.WithoutTypedefs(ElementsOf(mModel, array).type);
        return ScalarOfType(mModel, element).has_value() || mModel.ElementCount(array) == 0 ||
               (element != 0 && mModel.Object(element).kind == ObjectKind::Unknown);
    }

    [[nodiscard]] bool IsWanted(const Part& part) const {
        return mVariable->isWanted ||
               mWanted.Takes(mVariable->path + part.steps, mVariable->ownName) ||
               (!mVariable->plainPath.empty() &&
                mWanted.Takes(mVariable->plainPath + part.steps, mVariable->ownName));
    }

    void TakeValues(const Part& part) {
        if (!IsWanted(part)) {
            return;
        }
        std::optional<ExportedValues> values = mTypes.ValuesOf(part.type, mChoices.version);
        if (!values) {
            Omit(mModel.SizeOf(part.type) == 0 ? mEmpty : mNoDatatype, part);
            return;
        }
        WriteObject(part, *values, mModel.TypeText(part.type));
    }

    void WriteObject(const Part& part, const ExportedValues& values,
                     const std::string& description) {
        const std::string path = mVariable->path + part.steps;
        const std::optional<std::uint64_t> address = AddressFor(part.address);
        if (!address) {
            Omit(mOutOfRange, part);
            return;
        }
        --mLeavesLeft;
        const std::string& symbol = mVariable->name.symbol;
        const ExportedObject object{
            mIdentifiers.Take(MakeIdentifier(mVariable->name.identifier + part.steps)),
            symbol.empty() ? symbol : symbol + part.steps, description, *address};
        if (IsCalibrated(path, part.address)) {
            mDatatypes.insert(values.datatype);
            Write(CharacteristicText(object, values, mChoices.version));
            ++mResult.characteristics;
        } else {
            Write(MeasurementText(object, values, mChoices.version));
            ++mResult.measurements;
        }
    }

    // Structures as instances.

    bool TakeAsInstance(const ModelObject& global) {
        const Elements elements = ElementsOf(mModel, global.type);
        const ObjectId plain = mModel.WithoutTypedefs(elements.type);
        const std::string& path = mVariable->path;
        const bool isWhole =
            mVariable->isWanted && (mCalibrated.Takes(path, mVariable->ownName) ||
                                    !mCalibrated.MayTakeBehind(path, mVariable->ownName));
        const bool hasMembers = !mIndex.MembersOf(plain).All().empty();
        if (!mChoices.hasStructures || !isWhole || !hasMembers) {
            return false;
        }
        const std::optional<std::uint64_t> address = AddressFor(global.address);
        if (!address) {
            Omit(mOutOfRange, {global.type, global.address, {}, 0});
            return true;
        }
        const bool isCalibrated = IsCalibrated(path, global.address);
        std::string text = "\n    /begin INSTANCE ";
        text.append(mIdentifiers.Take(mVariable->name.identifier)).append(" ");
        text.append(QuotedText(mModel.TypeText(global.type))).append("\n      ");
        text.append(mTypes.NameOfStructure(plain, isCalibrated)).append(" ");
        text.append(AddressText(*address)).append("\n");
        const std::string dimensions =
            DimensionsText(DimensionsOf(mModel, global.type), Version::V1_7_1, {});
        text.append(dimensions.empty() ? "" : "      " + dimensions + "\n");
        if (!mVariable->name.symbol.empty()) {
            text.append("      SYMBOL_LINK ")
                .append(QuotedText(mVariable->name.symbol))
                .append(" 0\n");
        }
        Write(text.append("    /end INSTANCE\n"));
        ++mResult.instances;
        return true;
    }

    // Addresses and sections.

    /// The address as A2L writes it; nothing if it doesn't fit.
    [[nodiscard]] std::optional<std::uint64_t> AddressFor(std::uint64_t address) const {
        const std::uint64_t written = address / AddressUnit();
        return written <= sLargestAddress ? std::optional(written) : std::nullopt;
    }

    /// Bytes between one address of the file and the next.
    [[nodiscard]] std::uint64_t AddressUnit() const { return mChoices.hasWordAddresses ? 2 : 1; }

    bool IsCalibrated(const std::string& path, std::uint64_t address) {
        if (mCalibrated.Takes(path, mVariable->ownName)) {
            return true;
        }
        // Neighbours are mostly in one section.
        if (mSection == nullptr || !mSection->Holds(address)) {
            mSection = mModel.Image().SectionAt(address);
        }
        return mSection != nullptr &&
               (mSection->kind == SectionKind::ReadOnlyData ||
                mSection->kind == SectionKind::Code || mSections.Takes(mSection->name, 0));
    }

    // What is left out.

    void Omit(Omission& omission, const Part& part) const {
        if (IsWanted(part)) {
            omission.Add(mVariable->path + part.steps);
        }
    }

    void TellOmissions() {
        std::vector<std::string>& texts = mResult.omissions;
        mOutOfRange.Tell(texts, "whose address has more than 32 bits");
        mNoDatatype.Tell(texts, "for which this version of A2L has no datatype");
        mNoMask.Tell(texts, "whose bits no number with a mask holds in this version of A2L");
        mEmpty.Tell(texts, "which have no size");
        mTooMany.Tell(texts, "being too many or nested too deep; --max-leaves raises the limit");
        if (mCutArrays.count != 0) {
            texts.push_back(PhrasedCount(mCutArrays.count,
                                         "{} array of structures is expanded only in part, first "
                                         "'{}'; --max-elements raises the limit",
                                         "{} arrays of structures are expanded only in part, first "
                                         "'{}'; --max-elements raises the limit",
                                         mCutArrays.first));
        }
        if (mTypes.LeftOut() != 0) {
            texts.push_back(PhrasedCount(
                mTypes.LeftOut(), "{} member of structures left out, for which A2L has no datatype",
                "{} members of structures left out, for which A2L has no datatype"));
        }
    }

    const DataModel::Model& mModel;
    const ExportChoices& mChoices;
    ResultOutput& mOutput;
    SymbolIndex mIndex;
    SharedNames mSharedNames;
    VariableNames mNames;
    Conversions mConversions;
    ExportTypes mTypes;
    AnyFilter mWanted;
    AnyFilter mCalibrated;
    AnyFilter mSections;
    std::uint64_t mLeavesLeft;
    IdentifierSet mIdentifiers;
    /// Datatypes that need a record layout.
    std::set<std::string_view> mDatatypes;
    bool mHasStarted = false;
    const Variable* mVariable = nullptr;
    const ImageSection* mSection = nullptr;
    ExportResult mResult;
    Omission mOutOfRange;
    Omission mNoDatatype;
    Omission mNoMask;
    Omission mEmpty;
    Omission mTooMany;
    Omission mCutArrays;
};

} // namespace

ExportResult Export(const DataModel::Model& model, const ExportChoices& choices,
                    ResultOutput& output) {
    return Exporter(model, choices, output).Run();
}

} // namespace Tessel::Norn::Brindle::Program::A2l
