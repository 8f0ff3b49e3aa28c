#include "faults/FaultTest.h"

#include "host/CurrentDataModel.h"
#include "host/VDWARFReader.h"
#include "model/LeafWalk.h"
#include "model/RecordingDataModel.h"
#include "support/CoffImage.h"
#include "support/ElfImage.h"
#include "support/PeImage.h"
#include "support/UsualEntries.h"

#include <iostream>
#include <new>
#include <sstream>

namespace Tessel::Norn::Brindle::Tests {

using namespace Reader::DWARF;

namespace {

DwarfUnit TypesUnit(DieLabel integer, DieLabel motor, std::size_t padding) {
    const DieLabel base, array, pointer, state;
    return {{Die(
        DW_TAG_compile_unit,
        {Name("motor.cpp"), Producer("some compiler" + std::string(padding, '!')), CompDir("/src")},
        {Die(integer, DW_TAG_base_type, {Name("int"), Encoding(DW_ATE_signed), ByteSize(4)}),
         Die(base, DW_TAG_class_type, {Name("Device"), ByteSize(4)}, {Member("id", integer, 0)}),
         Die(array, DW_TAG_array_type, {Type(integer)},
             {Die(DW_TAG_subrange_type, {UpperBound(3)})}),
         Die(state, DW_TAG_enumeration_type, {Name("State"), ByteSize(4)},
             {Die(DW_TAG_enumerator, {Name("On"), ConstValue(1)})}),
         Die(DW_TAG_namespace, {Name("plant")},
             {Die(motor, DW_TAG_class_type, {Name("Motor"), ByteSize(32)},
                  {Die(DW_TAG_inheritance, {Type(base), MemberOffset(0)}),
                   Member("gains", array, 4), Member("next", pointer, 20),
                   Die(DW_TAG_member, {Name("flag"), Type(integer), MemberOffset(24), BitSize(3),
                                       BitOffset(2), ByteSize(4)}),
                   Member("state", state, 28)})}),
         Die(pointer, DW_TAG_pointer_type, {Type(motor), ByteSize(4)}),
         Die(DW_TAG_variable, {Name("gMotor"), Type(motor), Address(0x2000), External()}),
         Die(DW_TAG_subprogram, {Name("Run", DW_FORM_strp), Type(integer), External()},
             {Die(DW_TAG_formal_parameter, {Name("speed"), Type(pointer)}),
              Die(DW_TAG_lexical_block, {},
                  {Die(DW_TAG_variable, {Name("sCalls"), Type(integer), Address(0x2100)})})})})}};
}

DwarfUnit UseUnit(DieLabel integer, DieLabel motor) {
    const DieLabel alias;
    return {{Die(DW_TAG_compile_unit, {Name("main.cpp"), Producer("some compiler")},
                 {Die(alias, DW_TAG_typedef, {Name("Speed"), Type(integer, DW_FORM_ref_addr)}),
                  Die(DW_TAG_variable, {Name("gSpeed"), Type(alias), Address(0x2200)}),
                  Die(DW_TAG_variable,
                      {Name("gExtern"), Type(motor, DW_FORM_ref_addr), Declaration(), External()}),
                  Die(DW_TAG_variable, {Name("Linked"), LinkageName("gLinked"), Type(alias),
                                        Declaration(), External()}),
                  Die(DW_TAG_variable, {Name("gListed"), Type(alias),
                                        Number(DW_AT_location, DW_FORM_sec_offset, 0)})})}};
}

DwarfSections SectionsOfEverything(std::size_t padding) {
    const DieLabel integer, motor;
    DwarfSections sections;
    sections.LocationListEntry(0, 8, {{DW_OP_addr, {0x2300}}});
    sections.Unit(TypesUnit(integer, motor, padding)).Unit(UseUnit(integer, motor));
    return sections;
}

ElfImage ElfImageOfSymbols() {
    ElfImage image;
    image.Symbol({"gMotor", 0x2000, 32}).Symbol({"gExtern", 0x2400, 32});
    image.Symbol({"gLinked", 0x2480, 4});
    image.Symbol({"gNoDebug", 0x2500, 2}).Symbol({"value__6Device", 0x2600, 4});
    return image;
}

DWARFContainerType ContainerOf(const std::string& path) {
    return path.ends_with(".exe")   ? DWARFContainerType::Container_PE
           : path.ends_with(".out") ? DWARFContainerType::Container_COFF
                                    : DWARFContainerType::Container_ELF;
}

} // namespace

std::string ImageOfEverything(std::size_t padding) {
    return (ElfImageOfSymbols() + SectionsOfEverything(padding)).Build();
}

std::string CoffImageOfEverything() {
    return (CoffImage() + SectionsOfEverything(0)).Build();
}

std::string ModernImageOfEverything(std::size_t padding) {
    const DieLabel integer, motor;
    DwarfSections sections;
    // One entry for the addresses 0 to 4, of an expression of 5 bytes, and the end of the list.
    sections.RawLocationLists(std::string("\4\0\4\5\3\0\x23\0\0\0", 10));
    sections.ModernUnit(TypesUnit(integer, motor, padding)).ModernUnit(UseUnit(integer, motor));
    return (ElfImageOfSymbols() + sections).Build();
}

std::string WindowsImageOfEverything(std::size_t padding) {
    PeImage image;
    image.Symbol({"gExtern", 0x400}).Symbol({"a name that is longer than its field", 0x500});
    return (image + SectionsOfEverything(padding)).Build();
}

FaultTest::FaultTest()
    : mStandardOutput(std::cout.rdbuf(nullptr)) {}

FaultTest::~FaultTest() {
    std::cout.rdbuf(mStandardOutput);
}

FaultOutcome FaultTest::Read(DataModel::Model& model, const std::string& path,
                             const CallSink& sink) {
    FaultOutcome outcome;
    VDWARFReader reader;
    reader.ReadAllTypes(true);
    const auto note = [this] {
        if (mOnCallback) {
            mOnCallback();
        }
    };
    reader.SetProgressTextCallback = [note](const std::string&) { note(); };
    reader.SetProgressIntervalCallback = [note](std::int32_t, std::int32_t) { note(); };
    reader.SetProgressValueCallback = [note](std::int32_t) { note(); };
    reader.SignalErrorCallback = [&](auto, std::uint32_t, const std::string&,
                                     const std::string& text) {
        outcome.message = text;
        note();
    };
    DataModel::RecordingDataModel recorder(model, [&](const DataModel::RecordedCall& call) {
        if (sink) {
            sink(call);
        }
    });
    const DataModel::Factory::CurrentDataModel current(recorder);
    try {
        outcome.result = reader.Read(path, ContainerOf(path));
    } catch (const std::bad_alloc&) {
        outcome.exception = "bad_alloc";
    } catch (const std::runtime_error& error) {
        outcome.exception = error.what();
    }
    return outcome;
}

std::vector<std::string> FaultTest::Variables(const DataModel::Model& model) {
    std::vector<std::string> variables;
    model.ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& variable) {
        std::ostringstream text;
        text << model.QualifiedName(variable.id) << '@' << std::hex << variable.address;
        variables.push_back(text.str());
    });
    return variables;
}

void FaultTest::QueryAll(const DataModel::Model& model) {
    DataModel::LeafWalk leaves(model);
    for (DataModel::ObjectId id = 0; id <= model.ObjectCount() + 1; ++id) {
        const DataModel::ModelObject object = model.Object(id);
        EXPECT_EQ(object.id, id <= model.ObjectCount() ? id : 0);
        EXPECT_TRUE(object.name.empty() || !model.QualifiedName(id).empty());
        EXPECT_LE(model.TypeText(id).size(), model.Declaration(id, "name").size());
        EXPECT_LE(model.WithoutTypedefs(id), model.ObjectCount());
        EXPECT_LE(model.Dimensions(id).size() + model.BaseClasses(id).size() +
                      model.Enumerators(id).size() + model.Parameters(id).size(),
                  10U);
        std::size_t children = 0;
        model.ForEachIn(id, [&](const DataModel::ModelObject&) { ++children; });
        EXPECT_LE(children, model.ObjectCount());
        if (object.kind == DataModel::ObjectKind::Global) {
            leaves.Walk(id, [](std::string_view, const DataModel::Model::Place&) {});
        }
    }
}

} // namespace Tessel::Norn::Brindle::Tests
