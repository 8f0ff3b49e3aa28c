#include "a2l/BitMask.h"
#include "a2l/SymbolIndex.h"
#include "a2l/Update.h"
#include "support/A2lFiles.h"
#include "support/ModelBuilder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace Tessel::Norn::Brindle;
using namespace Tessel::Norn::Brindle::Program::A2l;
using Tests::A2lFiles;
using Tests::InModule;
using Tests::ModelBuilder;
using ObjectId = DataModel::ObjectId;

namespace {

/// An image with one example of every form of name.
class Image : public ModelBuilder {
public:
    Image() {
        const ObjectId uint8 = Base(BasicTypes::UInt8, 1);
        const ObjectId uint16 = Base(BasicTypes::UInt16, 2);
        const ObjectId uint32 = Base(BasicTypes::UInt32, 4);
        const ObjectId real = Base(BasicTypes::Float, 4);
        const ObjectId mode = mModel.CreateEnumTable("mode", uint16, sGlobalNamespace, false);
        mModel.AddEnumDescriptionToEnumTable(mode, 0, "MODE_OFF");
        mModel.AddEnumDescriptionToEnumTable(mode, 5, "MODE_ON");

        // struct loop { float gain; union { uint32 word; uint8 bytes[4]; }; }
        const ObjectId loop = Struct("loop", 8);
        Member("gain", real, loop, 0);
        const ObjectId either = Union("@1", 4, true);
        UnionMember("word", uint32, either);
        UnionMember("bytes", Array({4}, uint8, 4), either);
        Member("", either, loop, 4);

        const ObjectId base = Struct("Named", 4);
        Member("id", uint32, base, 0);
        const ObjectId motor = Struct("motor", 64);
        mModel.AddBaseClass(motor, base, 0);
        Member("id", uint16, motor, 4);
        Member("loops", Array({2, 3}, loop, 48), motor, 8);
        Member("mode", mode, motor, 56);
        BitField("phase", uint32, motor, 60, 13, 12);
        const ObjectId motors = Array({2}, motor, 128);

        Global("motors", motors, 0x1000);
        Global("speed", uint16, 0x2000);
        Global("table", Array({4}, uint16, 8), 0x2010);
        Global("table_2_", uint16, 0x2020);
        Global("far", uint16, 0x123456789);
        const ObjectId space = mModel.CreateNamespace("plant", sGlobalNamespace);
        Global("gTimer", uint32, 0x3000, space);
        const ObjectId open = Struct("open", 4);
        Member("count", uint32, open, 0);
        Member("values", Array({0}, uint32, 0), open, 4);
        Global("endless", open, 0x3800, space);
        Global("unknown", Array({0}, uint32, 0), 0x3900, space);
        Global("onlyInMotor", uint32, 0x3400, mModel.CreateCompileUnit("motor_c"));
        Global("counter", uint32, 0x3100, mModel.GetCompileUnit("motor_c"));
        Global("counter", uint32, 0x3200, mModel.CreateCompileUnit("sensors_c"));
        Global("shared", uint32, 0x3300, mModel.GetCompileUnit("sensors_c"));
        Global("shared", uint32, 0x3310);
        const ObjectId function = Function("step", mModel.GetCompileUnit("motor_c"));
        Global("stops", uint32, 0x3500, function);
        Global("sCount", uint32, 0x3700, mModel.CreateNamespace("Ring<int, 3>", sGlobalNamespace));
        const ObjectId symbols = mModel.CreateNamespace("_Symbol_Table_BKR_", sGlobalNamespace);
        Global("raw", mModel.CreateUnknownEntryType(4, sGlobalNamespace), 0x3600, symbols);
    }
};

std::string Measurement(const std::string& name, const std::string& type,
                        const std::string& parts) {
    return "/begin MEASUREMENT " + name + " \"\" " + type + " CM 0 0 0 1 " + parts +
           " /end MEASUREMENT\n";
}

struct Updated {
    std::map<std::string, std::string> files;
    UpdateResult result;
};

Updated UpdateFiles(A2lFiles& files, const UpdateChoices& choices = {}) {
    static const Image sImage;
    const SymbolIndex index(sImage.mModel);
    ParseChoices parseChoices;
    parseChoices.hasMentions = true;
    const Document document = files.Parse(parseChoices);
    Updated updated;
    updated.result = Update(document, sImage.mModel, index, choices);
    for (const auto& source : files.mSources.All()) {
        std::string& text = updated.files[source->Path()];
        const auto edits = updated.result.edits.find(source.get());
        (edits == updated.result.edits.end() ? TextEdits() : edits->second)
            .Write(source->Bytes(), [&text](std::string_view part) { text += part; });
    }
    return updated;
}

/// The main file after an update.
std::string UpdateText(const std::string& text, const UpdateChoices& choices = {}) {
    A2lFiles files(text);
    return UpdateFiles(files, choices).files["main.a2l"];
}

ObjectResult UpdateOne(const std::string& content, const UpdateChoices& choices = {}) {
    A2lFiles files(InModule(content));
    const UpdateResult result = UpdateFiles(files, choices).result;
    return result.objects.empty() ? ObjectResult() : result.objects.front();
}

std::string DifferencesOf(const std::string& content, const UpdateChoices& choices = {}) {
    std::string text;
    for (const Difference& difference : UpdateOne(content, choices).differences) {
        text.append(text.empty() ? "" : "; ")
            .append(difference.what)
            .append(" ")
            .append(difference.inFile)
            .append(" / ")
            .append(difference.inImage);
    }
    return text;
}

} // namespace

TEST(A2lSymbols, AreFoundInEveryNotation) {
    const Image image;
    const SymbolIndex index(image.mModel, UnderscoreHabit::InFront);
    // By address; 0 stands for none. "onlyInMotor_motor" is not the static variable of motor.c.
    const std::vector<std::pair<std::uint64_t, const char*>> cases = {
        {0x1000, "motors"},
        {0x1020, "motors[0].loops[1]"},
        {0x1040, "motors[1].Named::id motors[1].Named.id"},
        {0x1044, "motors[1].id"},
        {0x104C, "motors[1].loops[0][0].word"},
        {0x1070, "motors[1].loops[1][2].gain motors[1].loops[1,2].gain "
                 "motors[0x1].loops[1][2].gain motors._1_.loops._1_._2_.gain "
                 "motors_1_.loops_1__2_.gain motors.1.loops.1.2.gain"},
        {0x1077, "motors[1].loops._1_[2].bytes_3_"},
        {0x2000, "speed ::speed _speed"},
        {0x2012, "table_1_"},
        {0x2014, "table._2_"},
        {0x2020, "table_2_"},
        {0x3000, "plant::gTimer plant.gTimer gTimer _ZN5plant6gTimerE"},
        {0x3100, "motor.c::counter motor_c::counter src/motor.c:counter motor::counter "
                 "counter{motor.c} motor_c.counter counter.motor_c"},
        {0x3200, "sensors.c|counter src/sensors.c/counter src/sensors.c::counter "
                 "counter@sensors.c counter_sensors_c"},
        {0x3300, "shared@sensors.c"},
        {0x3310, "shared"},
        {0x3400, "onlyInMotor"},
        {0x3500, "step::stops step.stops stops"},
        {0x3600, "raw"},
        {0x3700, "Ring_int__3_.sCount"},
        {0, "motors[1].word table[4] onlyInMotor_motor motor.onlyInMotor counter Speed speed.x "
            "speed[0] motors. motors[ motors[1]x motor_c.Ring_int__3_.sCount @ {} _1_"},
    };
    for (const auto& [address, symbols] : cases) {
        std::istringstream words(symbols);
        for (std::string symbol; words >> symbol;) {
            const SymbolIndex::Answer answer = index.Find(symbol);
            EXPECT_EQ(answer.outcome == SymbolIndex::Outcome::Found ? answer.place.address : 0,
                      address)
                << symbol;
        }
    }
    EXPECT_NE(index.Find("").outcome, SymbolIndex::Outcome::Found);
    const SymbolIndex::Answer ambiguous = index.Find("counter");
    EXPECT_EQ(ambiguous.outcome, SymbolIndex::Outcome::Ambiguous);
    EXPECT_EQ(ambiguous.problem, "several variables have this name: motor_c::counter at 0x3100, "
                                 "sensors_c::counter at 0x3200");
}

// The reader's numbers follow the order of the file, so neither name is certain.
TEST(A2lSymbols, OfVariablesThatShareANameAreAmbiguous) {
    ModelBuilder image;
    const ObjectId number = image.Base(ModelBuilder::BasicTypes::UInt32, 4);
    const ObjectId unit = image.mModel.CreateCompileUnit("gains_c");
    const ObjectId record = image.Struct("Record", 8);
    image.Member("low", number, record, 4);
    image.Global("gain", number, 0x10, unit);
    image.Global("gain.2", number, 0x14, unit);
    image.Global("mixed", number, 0x20, unit);
    image.Global("mixed.2", record, 0x28, unit);
    image.Global("lone.2", number, 0x30, unit);
    const SymbolIndex index(image.mModel);
    for (const char* symbol : {"gain", "gain.2", "gains.c::gain", "gain.2@gains.c", "mixed"}) {
        EXPECT_EQ(index.Find(symbol).outcome, SymbolIndex::Outcome::Ambiguous) << symbol;
    }
    EXPECT_EQ(index.Find("gain.2").problem,
              "several variables have this name, and no symbol tells them apart: gains_c::gain at "
              "0x10, gains_c::gain.2 at 0x14; give them different names in the source");
    EXPECT_EQ(index.Find("mixed.low").place.address, 0x2CU);
    EXPECT_EQ(index.Find("lone.2").place.address, 0x30U);
}

// Names of very deep scopes are cut, so that many variables have the same one.
TEST(A2lSymbols, OfDeepScopesAreFoundUnlessTheirNamesAreCut) {
    ModelBuilder image;
    const ObjectId number = image.Base(ModelBuilder::BasicTypes::UInt32, 4);
    ObjectId scope = ModelBuilder::sGlobalNamespace;
    std::vector<ObjectId> variables;
    for (std::uint64_t depth = 0; depth < 2000; ++depth) {
        scope = image.mModel.CreateNamespace("n", scope);
        variables.push_back(image.Global("v", number, 0x1000 + 4 * depth, scope));
    }
    const SymbolIndex index(image.mModel);
    for (const std::size_t depth : {0U, 1U, 500U}) {
        EXPECT_EQ(index.Find(image.mModel.QualifiedName(variables[depth])).place.address,
                  0x1000 + 4 * depth);
    }
    const std::string cut = image.mModel.QualifiedName(variables.back());
    const SymbolIndex::Answer first = index.Find(cut);
    EXPECT_EQ(first.outcome, SymbolIndex::Outcome::Ambiguous);
    EXPECT_EQ(index.Find(cut).problem, first.problem);
    EXPECT_EQ(index.Find("v").outcome, SymbolIndex::Outcome::Ambiguous);
}

TEST(A2lSymbols, AreNamedByTheirAddress) {
    const Image image;
    const SymbolIndex index(image.mModel);
    EXPECT_EQ(index.NameAt(0x1070), "motors[1].loops[1][2].gain");
    EXPECT_EQ(index.NameAt(0x1072), "motors[1].loops[1][2].gain+2");
    EXPECT_EQ(index.NameAt(0x2017), "table[3]+1");
    EXPECT_EQ(index.NameAt(0x2018), "");
    EXPECT_EQ(index.NameAt(0), "");
}

TEST(A2lUpdate, ChangesAddressesInTheirNotationAndNothingElse) {
    // Windows line ends, a byte order mark, Latin-1 and vendor blocks with addresses of their own.
    const std::string text =
        "\xEF\xBB\xBF"
        "ASAP2_VERSION 1 60\r\n/* \xE4 */ /begin PROJECT p \"\xFC\"\r\n"
        "/begin MODULE m \"\"\r\n"
        "  /begin MEASUREMENT speed \"\" UWORD CM 0 0 0 1\r\n\tECU_ADDRESS 0x0000ab00 // old\r\n"
        "    /begin IF_DATA CANAPE_EXT 100 LINK_MAP \"speed\" 0xab00 /end IF_DATA\r\n"
        "  /end MEASUREMENT\r\n"
        "/begin CHARACTERISTIC k \"\" VALUE 12 RL 0 CM 0 1 SYMBOL_LINK \"table\" 2 /end "
        "CHARACTERISTIC\r\n"
        "/begin INSTANCE motors \"\" motor_t 0XAB /end INSTANCE /end MODULE /end PROJECT";
    std::string expected = text;
    expected.replace(expected.find("0x0000ab00"), 10, "0x00002000");
    expected.replace(expected.find(" 12 "), 4, " 8210 ");
    expected.replace(expected.find("0XAB"), 4, "0X1000");
    EXPECT_EQ(UpdateText(text), expected);
    EXPECT_EQ(UpdateText(expected), expected);
}

TEST(A2lUpdate, TellsWhatBecameOfAnObject) {
    const auto one = [](const std::string& name, const std::string& parts) {
        return UpdateOne(Measurement(name, "UWORD", parts));
    };
    EXPECT_EQ(one("speed", "ECU_ADDRESS 0x2000").status, Status::Unchanged);
    EXPECT_EQ(one("speed", "ECU_ADDRESS 0x2010").status, Status::Updated);
    EXPECT_EQ(one("speed", "ECU_ADDRESS 0x2010").nowAtOldAddress, "table[0]");
    // The link counts, not the name.
    EXPECT_EQ(one("speed", "ECU_ADDRESS 0x2000 SYMBOL_LINK \"gone\" 0").status, Status::NotFound);
    EXPECT_EQ(one("speed", "ECU_ADDRESS 0x2000 SYMBOL_LINK \"\" 0").status, Status::Unchanged);
    EXPECT_EQ(one("x", "SYMBOL_LINK \"table\" 4 ECU_ADDRESS 0").newAddress, 0x2014U);
    EXPECT_EQ(one("x", "SYMBOL_LINK \"table\" -0x10 ECU_ADDRESS 0").newAddress, 0x2000U);
    EXPECT_EQ(one("x", "SYMBOL_LINK \"table\" -0x3000 ECU_ADDRESS 5").status, Status::OutOfRange);
    EXPECT_EQ(one("far", "ECU_ADDRESS 0x1000").status, Status::OutOfRange);
    EXPECT_EQ(one("far", "ECU_ADDRESS 0x100000000").newAddress, 0x123456789U);
    EXPECT_EQ(one("counter", "ECU_ADDRESS 1").status, Status::Ambiguous);
    const ObjectResult missing = one("sped", "ECU_ADDRESS 0x2012");
    EXPECT_EQ(missing.status, Status::NotFound);
    EXPECT_EQ(missing.nearNames, "speed");
    EXPECT_EQ(missing.nowAtOldAddress, "table[1]");
    EXPECT_EQ(one("x", "ECU_ADDRESS 1 SYMBOL_LINK \"sensor.c::counter\" 0").nearNames,
              "sensors_c::counter, motor_c::counter");
    const ObjectResult member = one("motors[1].lops[0].gain", "ECU_ADDRESS 1");
    EXPECT_EQ(member.problem, "no member named 'lops'");
    EXPECT_EQ(member.nearNames, "loops");
    EXPECT_EQ(one("motors[7].id", "ECU_ADDRESS 1").problem, "index 7 is beyond the dimension of 2");
}

TEST(A2lUpdate, DoesWithMissingObjectsAsItIsAsked) {
    const std::string gone = "  /begin MEASUREMENT gone \"\" UBYTE CM 0 0 0 1 ECU_ADDRESS 0x00AB\n"
                             "  /end MEASUREMENT  \n";
    const std::string group = "/begin GROUP g \"\" /begin REF_MEASUREMENT\nspeed gone\n  gone\n"
                              "/end REF_MEASUREMENT /end GROUP\n";
    const std::string text =
        InModule(Measurement("speed", "UWORD", "ECU_ADDRESS 0x2000") + gone + group);
    UpdateChoices choices;
    EXPECT_EQ(UpdateText(text, choices), text);
    choices.missing = MissingChoice::Zero;
    std::string zeroed = text;
    zeroed.replace(zeroed.find("0x00AB"), 6, "0x0000");
    EXPECT_EQ(UpdateText(text, choices), zeroed);
    choices.missing = MissingChoice::Remove;
    std::string removed = text;
    removed.erase(removed.find(gone), gone.size());
    removed.replace(removed.find("speed gone\n  gone\n"), 18, "speed\n");
    EXPECT_EQ(UpdateText(text, choices), removed);
}

TEST(A2lUpdate, PlacesBitFieldsForTheNumberThatTheMaskCountsIn) {
    struct Case {
        std::uint64_t size;
        std::uint32_t bitOffset;
        std::uint64_t bitSize;
        bool isBigEndian;
        std::uint64_t numberSize;
        std::optional<std::uint64_t> wanted;
        std::int64_t start;
        std::uint64_t mask;
    };
    const std::vector<Case> cases = {
        // The storage unit itself.
        {4, 13, 12, false, 4, {}, 0, 0x1FFE000},
        {4, 13, 12, true, 4, {}, 0, 0x1FFE000},
        {4, 0, 32, false, 4, {}, 0, 0xFFFFFFFF},
        {8, 63, 1, false, 8, {}, 0, 0x8000000000000000},
        // A smaller number: the byte that holds the field.
        {4, 13, 2, false, 1, {}, 1, 0x60},
        {4, 13, 2, true, 1, {}, 2, 0x60},
        {4, 13, 2, false, 2, {}, 0, 0x6000},
        {4, 13, 2, true, 2, {}, 2, 0x6000},
        // The mask of the file decides to which of several numbers it applies.
        {4, 13, 2, false, 2, 0x60, 1, 0x60},
        // A larger number, which ends where a big-endian unit ends.
        {1, 3, 2, false, 4, {}, 0, 0x18},
        {1, 3, 2, true, 4, 0x18, -3, 0x18},
        // No number of this size holds the field.
        {4, 6, 4, false, 1, {}, 0, 0},
        {4, 0xFFFFFFFF, 4, false, 4, {}, 0, 0},
        {8, 62, 4, false, 8, {}, 1, 0x3C0000000000000},
        // A packed field extends into the byte after its unit.
        {4, 30, 4, false, 4, {}, 1, 0x3C00000},
        {4, 30, 4, false, 2, {}, 3, 0x3C0},
        {4, 30, 4, true, 4, {}, 0, 0x3C00000},
        {4, 30, 4, true, 2, {}, 0, 0x3C0},
        // A mask that is right in a number across the unit.
        {4, 8, 3, false, 4, 0x7, 1, 0x7},
        {4, 8, 3, true, 4, 0x7, -1, 0x7},
        {1, 3, 2, false, 4, 0x18000000, -3, 0x18000000},
        {1, 3, 2, true, 4, 0x1800, -2, 0x1800},
    };
    for (const Case& one : cases) {
        SymbolIndex::Place place;
        place.address = 0x1000;
        place.size = one.size;
        place.isBitField = true;
        place.bitOffset = one.bitOffset;
        place.bitSize = one.bitSize;
        const auto order =
            one.isBigEndian ? DataModel::ByteOrder::Big : DataModel::ByteOrder::Little;
        const auto found = FindMaskedPlace(place, order, {one.numberSize, order}, one.wanted);
        const MaskedPlace value = found.value_or(MaskedPlace{0x1000, 0});
        EXPECT_EQ(static_cast<std::int64_t>(value.address) - 0x1000, one.start)
            << one.bitOffset << " " << one.numberSize;
        EXPECT_EQ(value.mask, one.mask) << one.bitOffset << " " << one.numberSize;
    }
}

TEST(A2lUpdate, ChangesBitMasksOnlyWhenAsked) {
    const std::string text =
        InModule(Measurement("motors[0].phase", "ULONG", "BIT_MASK 0x00000FFF ECU_ADDRESS 0x103C"));
    EXPECT_EQ(UpdateText(text), text);
    UpdateChoices choices;
    choices.hasBitMasks = true;
    std::string expected = text;
    expected.replace(expected.find("0x00000FFF"), 10, "0x01FFE000");
    EXPECT_EQ(UpdateText(text, choices), expected);
    // A mask that is right in a number across the unit stays with it.
    const std::string across =
        InModule(Measurement("motors[0].phase", "ULONG", "BIT_MASK 0x1FFE0 ECU_ADDRESS 0x103D"));
    EXPECT_EQ(UpdateText(across, choices), across);
    std::string moved = across;
    moved.replace(moved.find("0x103D"), 6, "0x1001");
    EXPECT_EQ(UpdateText(moved), across);
    EXPECT_THAT(UpdateText(moved, choices), testing::HasSubstr("BIT_MASK 0x1FFE000 ECU_ADDRESS "
                                                               "0x103C"));
    // The mask of a whole number is the user's choice.
    const std::string own =
        InModule(Measurement("speed", "UWORD", "BIT_MASK 0x1 ECU_ADDRESS 0x2000"));
    EXPECT_EQ(UpdateText(own, choices), own);
}

TEST(A2lUpdate, TellsWhatDiffersFromTheImage) {
    const std::string layouts =
        "/begin RECORD_LAYOUT RL FNC_VALUES 1 UWORD ROW_DIR DIRECT /end RECORD_LAYOUT\n"
        "/begin RECORD_LAYOUT AX AXIS_PTS_X 1 UWORD INDEX_INCR DIRECT /end RECORD_LAYOUT\n"
        "/begin COMPU_METHOD CM \"\" TAB_VERB \"%1.0\" \"\" COMPU_TAB_REF VT /end COMPU_METHOD\n"
        "/begin COMPU_VTAB VT \"\" TAB_VERB 2 0 \"MODE_OFF\" 5 \"MODE_ON\" /end COMPU_VTAB\n"
        "/begin COMPU_METHOD CN \"\" TAB_VERB \"%1.0\" \"\" COMPU_TAB_REF VN /end COMPU_METHOD\n"
        "/begin COMPU_VTAB VN \"\" TAB_VERB 2 0 \"OFF\" 1 \"MODE_ON\" DEFAULT_VALUE \"x\" "
        "/end COMPU_VTAB\n"
        "/begin TYPEDEF_STRUCTURE loop_t \"\" 8 /begin STRUCTURE_COMPONENT gain M 0 "
        "/end STRUCTURE_COMPONENT /begin STRUCTURE_COMPONENT w M 2 SYMBOL_TYPE_LINK \"word\" "
        "/end STRUCTURE_COMPONENT /end TYPEDEF_STRUCTURE\n";
    const std::vector<std::pair<std::string, const char*>> cases = {
        {Measurement("speed", "UWORD", "ECU_ADDRESS 1"), ""},
        {Measurement("speed", "SWORD", "ECU_ADDRESS 1"), "datatype SWORD / uint16"},
        {Measurement("speed", "ULONG", "ECU_ADDRESS 1"), "datatype ULONG / uint16"},
        {Measurement("table", "UWORD", "ECU_ADDRESS 1 MATRIX_DIM 4 1 1"), ""},
        {Measurement("table", "UWORD", "ECU_ADDRESS 1 MATRIX_DIM 2 2"), ""},
        {Measurement("table", "UWORD", "ECU_ADDRESS 1 ARRAY_SIZE 5"), "elements 5 / 4"},
        {Measurement("table", "UWORD", "ECU_ADDRESS 1"), "elements 1 / 4"},
        {Measurement("table[1]", "UWORD", "ECU_ADDRESS 1"), ""},
        {Measurement("x", "UWORD", "ECU_ADDRESS 1 SYMBOL_LINK \"table\" 2"), ""},
        {Measurement("x", "FLOAT32_IEEE", "ECU_ADDRESS 1 SYMBOL_LINK \"motors\" 8"), ""},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 SYMBOL_LINK \"motors\" 8"),
         "datatype UBYTE / float"},
        {Measurement("x", "UWORD", "ECU_ADDRESS 1 SYMBOL_LINK \"table\" 6"), ""},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 SYMBOL_LINK \"table\" 8"), "offset 8 / 0..7"},
        {Measurement("x", "UWORD", "ECU_ADDRESS 1 SYMBOL_LINK \"table\" 7"), "offset 7..8 / 0..7"},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 SYMBOL_LINK \"table[2]\" -4"), ""},
        {Measurement("x", "UWORD", "ECU_ADDRESS 1 SYMBOL_LINK \"table[2]\" -6"),
         "offset -2..-1 / 0..7"},
        {Measurement("x", "UWORD", "ECU_ADDRESS 1 SYMBOL_LINK \"table\" 0x7FFFFFFFFFFFFFFF"),
         "offset 1099511627776..1099511627777 / 0..7"},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 SYMBOL_LINK \"plant.endless\" 8"), ""},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 SYMBOL_LINK \"plant.unknown\" 8"), ""},
        {R"(/begin BLOB x "" 1 256 SYMBOL_LINK "motors" 1 /end BLOB)", "offset 1..256 / 0..127"},
        {Measurement("x", "ULONG",
                     "ECU_ADDRESS 1 BIT_MASK 0x1FFE0 SYMBOL_LINK \"motors[0].phase\" 1"),
         ""},
        {Measurement("x", "UBYTE", "ECU_ADDRESS 1 BIT_MASK 0x1 SYMBOL_LINK \"motors[0].phase\" 1"),
         "bitMask 0x1 / none"},
        {Measurement("motors[0].loops[0]", "FLOAT32_IEEE", "ECU_ADDRESS 1"), "size 4 / 24"},
        {Measurement("raw", "SLONG", "ECU_ADDRESS 1"), ""},
        {Measurement("raw", "A_INT64", "ECU_ADDRESS 1"), "size 8 / 4"},
        {Measurement("motors[0].mode", "UWORD", "ECU_ADDRESS 1"), ""},
        {"/begin MEASUREMENT motors[0].mode \"\" SWORD CN 0 0 0 1 ECU_ADDRESS 1 /end MEASUREMENT",
         "enumeration 0 'OFF', 1 'MODE_ON', 5 none / 0 'MODE_OFF', 1 none, 5 'MODE_ON'"},
        {Measurement("motors[0].phase", "ULONG", "ECU_ADDRESS 1 BIT_MASK 0x1FFE000"), ""},
        {Measurement("motors[0].phase", "ULONG", "ECU_ADDRESS 1"), "bitMask none / 0x1FFE000"},
        {Measurement("motors[0].phase", "UBYTE", "ECU_ADDRESS 1 BIT_MASK 0xFF"),
         "bitMask 0xFF / 12 bits, which the datatype does not hold"},
        {"/begin CHARACTERISTIC speed \"\" VALUE 1 RL 0 CM 0 1 /end CHARACTERISTIC", ""},
        {"/begin CHARACTERISTIC plant.gTimer \"\" VALUE 1 RL 0 C 0 1 /end CHARACTERISTIC",
         "datatype UWORD / uint32"},
        {"/begin CHARACTERISTIC table \"\" VAL_BLK 1 RL 0 C 0 1 NUMBER 4 /end CHARACTERISTIC", ""},
        {"/begin CHARACTERISTIC table \"\" CURVE 1 RL 0 C 0 1 /begin AXIS_DESCR FIX_AXIS N C 3 0 1 "
         "/end AXIS_DESCR /end CHARACTERISTIC",
         "elements 3 / 4"},
        {"/begin AXIS_PTS table \"\" 1 N AX 0 C 5 0 1 /end AXIS_PTS", "elements 5 / 4"},
        {"/begin BLOB motors \"\" 1 128 /end BLOB", ""},
        {"/begin BLOB motors \"\" 1 100 /end BLOB", "size 100 / 128"},
        {"/begin INSTANCE motors[0].loops \"\" loop_t 1 MATRIX_DIM 6 /end INSTANCE",
         "structure w at 2 / w at 4"},
        {"/begin INSTANCE motors[0].loops \"\" loop_t 1 /end INSTANCE",
         "size 8 / 48; structure w at 2 / w at 4"},
        {"/begin INSTANCE speed \"\" unknown_t 1 /end INSTANCE", ""},
    };
    for (const auto& [content, expected] : cases) {
        EXPECT_EQ(DifferencesOf(std::string(content).append("\n").append(layouts)), expected)
            << content;
    }
}

TEST(A2lUpdate, TellsWhichComponentsOfAStructureDiffer) {
    const std::string types =
        "/begin TYPEDEF_MEASUREMENT F \"\" FLOAT32_IEEE N 0 0 0 1 /end TYPEDEF_MEASUREMENT\n"
        "/begin TYPEDEF_MEASUREMENT B \"\" UBYTE N 0 0 0 1 /end TYPEDEF_MEASUREMENT\n"
        "/begin TYPEDEF_MEASUREMENT P0 \"\" ULONG N 0 0 0 1 BIT_MASK 0x1FFE000 "
        "/end TYPEDEF_MEASUREMENT\n"
        "/begin TYPEDEF_CHARACTERISTIC P1 \"\" VALUE RL 0 N 0 1 BIT_MASK 0x1FFE0 "
        "BYTE_ORDER MSB_LAST /end TYPEDEF_CHARACTERISTIC\n"
        "/begin RECORD_LAYOUT RL FNC_VALUES 1 ULONG ROW_DIR DIRECT /end RECORD_LAYOUT\n"
        "/begin COMPU_METHOD N \"\" TAB_VERB \"%1.0\" \"\" COMPU_TAB_REF VT /end COMPU_METHOD\n"
        "/begin COMPU_VTAB VT \"\" TAB_VERB 1 0 \"MODE_OFF\" /end COMPU_VTAB\n"
        "/begin TYPEDEF_STRUCTURE O \"\" 8 /end TYPEDEF_STRUCTURE\n"
        "/begin TYPEDEF_MEASUREMENT M \"\" ULONG N 0 0 0 1 /end TYPEDEF_MEASUREMENT\n"
        "/begin TYPEDEF_MEASUREMENT E \"\" UWORD N 0 0 0 1 /end TYPEDEF_MEASUREMENT\n"
        "/begin TYPEDEF_STRUCTURE loop_t \"\" 8 /begin STRUCTURE_COMPONENT gain B 0 "
        "/end STRUCTURE_COMPONENT /begin STRUCTURE_COMPONENT bytes B 5 MATRIX_DIM 3 "
        "/end STRUCTURE_COMPONENT /end TYPEDEF_STRUCTURE\n";
    const std::vector<std::pair<std::string, const char*>> cases = {
        {"phase P0 60", ""},
        {"phase P1 61", ""},
        {"phase P1 60", "structure phase at 60 / phase at 61"},
        {"phase B 60", "bitMask phase: none / phase: 12 bits, which the datatype does not hold"},
        {"phase M 61", "bitMask phase: none / phase: 0x1FFE0"},
        {"phase M 62",
         "bitMask phase: none / phase: 0x1FFE000; structure phase at 62 / phase at 60"},
        {"phase gone 4", ""},
        {"mode E 56", "enumeration mode: 5 none / mode: 5 'MODE_ON'"},
        {"mode E 56 ADDRESS_TYPE PLONG", ""},
        {"loops loop_t 8 MATRIX_DIM 3 2",
         "datatype loops: gain: UBYTE / loops: gain: float; elements loops: bytes: 3 / loops: "
         "bytes: 4; structure loops: bytes at 5 / loops: bytes at 4"},
        {"loops O 8 MATRIX_DIM 2", "size loops: 16 / loops: 48"},
    };
    for (const auto& [component, expected] : cases) {
        std::string description = R"(/begin INSTANCE motors[1] "" motor_t 1 /end INSTANCE )"
                                  R"(/begin TYPEDEF_STRUCTURE motor_t "" 64 )"
                                  "/begin STRUCTURE_COMPONENT ";
        description.append(component).append(" /end STRUCTURE_COMPONENT /end TYPEDEF_STRUCTURE\n");
        EXPECT_EQ(DifferencesOf(description.append(types)), expected) << component;
    }
}

TEST(A2lUpdate, TellsWhatNoSymbolCanSettle) {
    A2lFiles files(
        InModule("/begin MOD_COMMON \"\" BYTE_ORDER MSB_FIRST /end MOD_COMMON\n"
                 "/begin VARIANT_CODING /begin VAR_CHARACTERISTIC k c /begin VAR_ADDRESS "
                 "0x10 0x20 /end VAR_ADDRESS /end VAR_CHARACTERISTIC /end VARIANT_CODING"));
    EXPECT_THAT(UpdateFiles(files).result.remarks,
                testing::ElementsAre(testing::HasSubstr("BYTE_ORDER"),
                                     testing::HasSubstr("2 addresses in VAR_ADDRESS")));
}

TEST(A2lUpdate, ChangesEachIncludedFileOnce) {
    A2lFiles files("/begin PROJECT p \"\" /begin MODULE a \"\" /include part /end MODULE "
                   "/begin MODULE b \"\" /include part /end MODULE /end PROJECT",
                   {{"part", Measurement("speed", "UWORD", "ECU_ADDRESS 0x1")}});
    EXPECT_EQ(UpdateFiles(files).files["part"],
              Measurement("speed", "UWORD", "ECU_ADDRESS 0x2000"));
}

// Whatever is between the tokens and wherever it is, the update changes only the addresses.
TEST(A2lUpdate, LeavesAllOtherBytesUnderRandomEdits) {
    // Addresses to change are marked with "@", a blank within a token is "^".
    std::istringstream tokens(R"(
        /begin PROJECT p "" /begin MODULE m "a\"b" /begin MEASUREMENT speed "ECU_ADDRESS^1" UWORD CM
        0 0 0 1 DISPLAY_IDENTIFIER ECU_ADDRESS ECU_ADDRESS @0x00000001 /end MEASUREMENT
        /begin IF_DATA XCP 0x2000 /begin X /end X /end IF_DATA
        /begin CHARACTERISTIC k "" VALUE @0x00000002 RL 0 CM 0 1 SYMBOL_LINK "table" 2
        /end CHARACTERISTIC /begin BLOB gone "" 0x10 4 /end BLOB /end MODULE /end PROJECT)");
    const std::vector<std::string> words{std::istream_iterator<std::string>(tokens), {}};
    const std::vector<std::string> expected = {"0x00002000", "0x00002012"};
    const std::vector<std::string> spaces = {" ",          "\n",
                                             "\r\n",       "\t",
                                             "/* c */",    "/* \" /begin */",
                                             " // \" x\n", "/**/ ",
                                             "\n\n  ",     " /* \xE4\xFC */ "};
    std::mt19937 random(20);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        std::string wanted;
        std::size_t address = 0;
        for (std::string token : words) {
            std::ranges::replace(token, '^', ' ');
            const std::string& space = spaces[random() % spaces.size()];
            const bool isAddress = token.front() == '@';
            text += (isAddress ? token.substr(1) : token) + space;
            wanted += (isAddress ? expected[address++] : token) + space;
        }
        ASSERT_EQ(UpdateText(text), wanted) << text;
    }
}
