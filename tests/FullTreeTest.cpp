// Trees from which the two manners of reading deliver different results: each image is read in
// both.
#include "core/VElfOptions.h"
#include "model/LeafWalk.h"
#include "support/NodeTree.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class FullTreeTest : public testing::Test {
protected:
    static ReadRun Read(const DwarfSections& sections, bool isFull,
                        const ElfImage& image = ElfImage()) {
        VElfOptions::mIsFullReading = isFull ? 1 : 0;
        // A function creates a symbol table from which nothing is delivered.
        ReadRun run =
            ReadImage((ElfImage(image).Symbol({"main", 0x8000, 4, sFunction}) + sections).Build());
        EXPECT_TRUE(run.result);
        return run;
    }

    /// "name@offset size" of each scalar in the variables, with the offset from 0x1000; for bit
    /// fields followed by ":position+width".
    static Lines Leaves(const ReadRun& run) {
        Lines leaves;
        DataModel::LeafWalk walk(*run.model, {});
        run.model->ForEach(DataModel::ObjectKind::Global,
                           [&](const DataModel::ModelObject& global) {
                               walk.Walk(global.id, [&](std::string_view path, const auto& place) {
                                   std::string leaf = std::string(path) + "@" +
                                                      std::to_string(place.address - 0x1000) + " " +
                                                      std::to_string(place.size);
                                   if (place.isBitField) {
                                       leaf += ":" + std::to_string(place.bitOffset) + "+" +
                                               std::to_string(place.bitSize);
                                   }
                                   leaves.push_back(leaf);
                               });
                           });
        return leaves;
    }

    static Lines Leaves(const DwarfSections& sections, bool isFull,
                        const ElfImage& image = ElfImage()) {
        return Leaves(Read(sections, isFull, image));
    }

    static Die UInt(DieLabel label, std::uint64_t size) {
        return Die(label, DW_TAG_base_type,
                   {Name("u" + std::to_string(size)), ByteSize(size), Encoding(DW_ATE_unsigned)});
    }

    /// A member without a name.
    static Die Part(DieLabel type, std::uint64_t offset) {
        return Die(DW_TAG_member, {Type(type), MemberOffset(offset)});
    }

    static DieAttribute Origin(DieLabel target) {
        return Reference(DW_AT_abstract_origin, DW_FORM_ref_addr, target);
    }

    ScopedReaderState mState;
};

/// "scope::name@address type" of each variable.
Lines ScopedVariables(const ReadRun& run) {
    Lines variables;
    run.model->ForEach(DataModel::ObjectKind::Global, [&](const DataModel::ModelObject& global) {
        const DataModel::ModelObject scope = run.model->Object(global.scope);
        variables.push_back(std::string(scope.name) + "::" + std::string(global.name) + "@" +
                            std::to_string(global.address) + " " +
                            run.model->TypeText(global.type));
    });
    return variables;
}

// The unit of the link has the addresses, those of the sources have everything else.
TEST_F(FullTreeTest, AnInstanceHasNameTypeScopeAndLinkageOfItsOrigin) {
    const DieLabel number, shared, ownToFile, nameless, member, definition;
    const DwarfSections sections =
        DwarfSections()
            .Unit({UnitDie({Die(DW_TAG_variable, {Origin(shared), Address(0x1000)}),
                            Die(DW_TAG_variable, {Origin(ownToFile), Address(0x1004)}),
                            Die(DW_TAG_variable, {Origin(definition), Address(0x1008)}),
                            Die(DW_TAG_variable, {Origin(nameless), Address(0x100c)})},
                           {Name("link.o")})})
            .Unit({UnitDie({
                UInt(number, 4),
                Die(shared, DW_TAG_variable, {Name("shared"), Type(number), External()}),
                Die(ownToFile, DW_TAG_variable, {Name("own"), Type(number)}),
                Die(nameless, DW_TAG_variable, {Type(number)}),
                Die(DW_TAG_structure_type, {Name("S"), ByteSize(1)},
                    {Die(member, DW_TAG_variable,
                         {Name("inClass"), Type(number), External(), Declaration()})}),
                Die(definition, DW_TAG_variable, {Specification(member)}),
            })});
    EXPECT_THAT(
        ScopedVariables(Read(sections, true)),
        ElementsAre("::shared@4096 uint32", "a_c::own@4100 uint32", "S::inClass@4104 uint32"));
    EXPECT_THAT(ScopedVariables(Read(sections, false)), IsEmpty());
}

// Host names of units have no folders. What counts is the source: a unit that is compiled twice is
// one, and its second variable gets a number.
TEST_F(FullTreeTest, UnitsOfOneFileNameInDifferentFoldersStayApart) {
    const auto unit = [](const std::string& path, std::uint64_t address) {
        const DieLabel number;
        return Die(DW_TAG_compile_unit, {Name(path), CompDir("/build")},
                   {UInt(number, 4),
                    Die(DW_TAG_variable, {Name("gain"), Type(number), Address(address)})});
    };
    const DwarfSections sections = DwarfSections()
                                       .Unit({unit("left/a.c", 0x1000)})
                                       .Unit({unit("right/a.c", 0x1004)})
                                       .Unit({unit("left/a.c", 0x1008)});
    const ReadRun run = Read(sections, true);
    EXPECT_THAT(ScopedVariables(run), ElementsAre("a_c::gain@4096 uint32", "a_c::gain@4100 uint32",
                                                  "a_c::gain.2@4104 uint32"));
    EXPECT_EQ(run.model->ResolvePaths("gain").size(), 3U);
    EXPECT_THAT(
        ScopedVariables(Read(sections, false)),
        ElementsAre("a_c::gain@4096 uint32", "a_c::gain.2@4100 uint32", "a_c::gain.3@4104 uint32"));
}

// Name and scope come from entries of one variable, however far a damaged chain goes on.
TEST_F(FullTreeTest, AChainOfSpecificationsGoesNoFurtherThanItsVariable) {
    const DieLabel number, other, nameless, third, fourth, ofOther, ofNameless, ofThird, ofSpace;
    const DwarfSections sections = Unit({
        UInt(number, 4),
        Die(DW_TAG_namespace, {Name("far")},
            {Die(other, DW_TAG_variable,
                 {Name("other"), External(), Declaration(), Specification(third)}),
             Die(nameless, DW_TAG_variable, {Declaration()}),
             Die(third, DW_TAG_variable, {Name("third"), Declaration()}),
             Die(fourth, DW_TAG_variable, {Name("fourth"), Declaration()})}),
        Die(DW_TAG_namespace, {Name("near")},
            {Die(ofOther, DW_TAG_variable,
                 {Name("first"), Type(number), Declaration(), Specification(other)}),
             Die(ofNameless, DW_TAG_variable,
                 {Name("second"), Type(number), Declaration(), Specification(nameless)}),
             Die(ofThird, DW_TAG_variable,
                 {Name("third"), Type(number), Declaration(), Specification(other)}),
             Die(ofSpace, DW_TAG_namespace, {Name("fourth"), Specification(fourth)})}),
        Die(DW_TAG_variable, {Specification(ofOther), Address(0x1000)}),
        Die(DW_TAG_variable, {Specification(ofNameless), Address(0x1004)}),
        Die(DW_TAG_variable, {Name("own"), Type(number), Specification(ofOther), Address(0x1008)}),
        Die(DW_TAG_variable, {Specification(ofThird), Address(0x100c)}),
        Die(DW_TAG_variable, {Type(number), Specification(ofSpace), Address(0x1010)}),
    });
    for (const bool isFull : {false, true}) {
        EXPECT_THAT(ScopedVariables(Read(sections, isFull)),
                    ElementsAre("near::first@4096 uint32", "near::second@4100 uint32",
                                "near::own@4104 uint32", "near::third@4108 uint32",
                                "near::fourth@4112 uint32"));
    }
}

// An inlined function appears in its abstract instance, and in each concrete instance again.
TEST_F(FullTreeTest, AStaticVariableOfAnInlinedFunctionIsThereOnce) {
    const DieLabel number, function, count;
    const auto instance = [&](std::vector<DieAttribute> attributes,
                              std::uint64_t address = 0x1000) {
        attributes.push_back(Address(address));
        return Die(DW_TAG_subprogram, {Origin(function)},
                   {Die(DW_TAG_lexical_block, {}, {Die(DW_TAG_variable, attributes)})});
    };
    const DwarfSections sections = Unit({
        UInt(number, 4),
        instance({Origin(count)}),
        Die(function, DW_TAG_subprogram, {Name("tick")},
            {Die(count, DW_TAG_variable, {Name("count"), Type(number)})}),
        instance({Origin(count)}),
        instance({Name("own"), Type(number)}, 0x1004),
    });
    const ReadRun run = Read(sections, true);
    EXPECT_THAT(ScopedVariables(run),
                ElementsAre("tick::count@4096 uint32", "tick::own@4100 uint32"));
    EXPECT_EQ(
        std::ranges::count_if(
            run.calls, [](const std::string& call) { return call.starts_with("CreateFunction("); }),
        1);
}

TEST_F(FullTreeTest, ALinkageNameOfOlderCompilersFindsItsSymbol) {
    const DieLabel number;
    const DwarfSections sections =
        Unit({UInt(number, 4),
              Die(DW_TAG_variable, {Name("speed"), Type(number), External(), Declaration(),
                                    Text(DW_AT_MIPS_linkage_name, DW_FORM_string, "_Z5speed")})});
    const ElfImage image = ElfImage().Symbol({"_Z5speed", 0x1010, 4});
    EXPECT_THAT(Leaves(sections, true, image), ElementsAre("speed@16 4"));
    EXPECT_THAT(Leaves(sections, false, image), ElementsAre("_Symbol_Table_BKR_::_Z5speed@16 4"));
}

// As in struct { union { struct { uint8_t a, b; }; uint16_t w; }; } v; for which C compilers
// declare all types side by side, in any order.
TEST_F(FullTreeTest, MembersOfAnonymousTypesStandInTheTypeAround) {
    const DieLabel byte, half, outer, choice, volatileChoice, pointer, bytes;
    const auto type = [](DieLabel label, dwarf_tag tag, std::uint64_t size,
                         std::vector<Die> members) {
        return Die(label, tag, {ByteSize(size)}, std::move(members));
    };
    const auto around = [&](std::vector<Die> members) {
        return type(outer, DW_TAG_structure_type, 8, std::move(members));
    };
    const auto unionOf = [&](std::vector<Die> inside = {}) {
        inside.push_back(Part(bytes, 0));
        inside.push_back(Member("w", half, 0));
        return type(choice, DW_TAG_union_type, 2, std::move(inside));
    };
    const auto pair = [&] {
        return type(bytes, DW_TAG_structure_type, 2, {Member("a", byte, 0), Member("b", byte, 1)});
    };
    const Lines all = {"v.w@2 2", "v.a@2 1", "v.b@3 1"};
    const struct {
        const char* what;
        std::vector<Die> entries;
        Lines full;
        Lines classic;
    } cases[] = {
        {"within each other", {around({unionOf({pair()}), Part(choice, 2)})}, all, all},
        {"innermost first", {pair(), unionOf(), around({Part(choice, 2)})}, all, {"v@0 8"}},
        {"outermost first", {around({Part(choice, 2)}), unionOf(), pair()}, all, {"v@0 8"}},
        {"qualified",
         {around({Part(volatileChoice, 2)}), unionOf(), pair(),
          Die(volatileChoice, DW_TAG_volatile_type, {Type(choice)})},
         all,
         {"v@0 8"}},
        {"one type of two members, and of a variable",
         {around({Part(bytes, 2), Member("z", half, 0), Part(bytes, 6)}), pair(),
          Variable("w", bytes, 0x1010)},
         {"v.z@0 2", "v.a@2 1", "v.b@3 1", "v.a@6 1", "v.b@7 1", "w.a@16 1", "w.b@17 1"},
         {"v.z@0 2", "w.a@16 1", "w.b@17 1"}},
        {"behind a pointer",
         {around({Part(pointer, 0), Member("z", half, 4)}), pair(),
          Die(pointer, DW_TAG_pointer_type, {Type(bytes)})},
         {"v.z@4 2"},
         {"v.z@4 2"}},
        {"within itself",
         {around({Part(outer, 2), Member("z", half, 0)})},
         {"v.z@0 2"},
         {"v.z@0 2"}},
    };
    for (const auto& anonymous : cases) {
        std::vector<Die> entries = {UInt(byte, 1), UInt(half, 2), Variable("v", outer)};
        entries.insert(entries.end(), anonymous.entries.begin(), anonymous.entries.end());
        const DwarfSections sections = Unit(entries);
        EXPECT_EQ(Leaves(sections, true), anonymous.full) << anonymous.what;
        EXPECT_EQ(Leaves(sections, false), anonymous.classic) << anonymous.what;
    }
}

TEST_F(FullTreeTest, ATypeOfVeryManyAnonymousMembersIsCopiedWithinLimits) {
    constexpr std::size_t width = 1000;
    const DieLabel number, wide;
    std::vector<Die> members;
    std::vector<Die> entries = {UInt(number, 4)};
    for (std::size_t index = 0; index < width; ++index) {
        members.push_back(Member("m", number, 4 * index));
        entries.push_back(Die(DW_TAG_structure_type, {ByteSize(4 * width)}, {Part(wide, 0)}));
    }
    entries.emplace_back(wide, DW_TAG_structure_type, std::vector{ByteSize(4 * width)},
                         std::move(members));
    VElfOptions::mIsFullReading = 1;
    VElfOptions::mIsLogFile = 1;
    NodeTree tree(Unit(std::move(entries)));
    tree.Resolve();
    EXPECT_THAT(tree.Log(), testing::HasSubstr("far too many members"));
    EXPECT_EQ(std::ranges::distance(tree[wide].Children()), width);
}

/// A bit field of a structure, and its place in each manner.
struct BitFieldCase {
    std::vector<DieAttribute> attributes;
    std::string full;
    std::string classic;
    ByteOrder byteOrder = ByteOrder::Little;
    std::uint64_t typeSize = 4;
    int version = 4;
};

DieAttribute DataBitOffset(std::uint64_t offset) {
    return Number(DW_AT_data_bit_offset, DW_FORM_data1, offset);
}

DieAttribute NegativeBitOffset(std::int64_t offset) {
    return Number(DW_AT_bit_offset, DW_FORM_sdata, static_cast<std::uint64_t>(offset));
}

// Positions count from the low-order bit of the storage.
TEST_F(FullTreeTest, ABitFieldLiesInsideItsStorage) {
    constexpr ByteOrder little = ByteOrder::Little;
    constexpr ByteOrder big = ByteOrder::Big;
    const DieAttribute start = MemberOffset(0);
    const DieAttribute four = MemberOffset(4);
    const BitFieldCase cases[] = {
        // Bits 37 to 39, within the second unit.
        {{BitSize(3), DataBitOffset(37)}, "@4 4:5+3", "@0 4:29+3"},
        {{BitSize(3), DataBitOffset(37)}, "@4 4:24+3", "@0 4:29+3", big},
        {{BitSize(3), BitOffset(24), four}, "@4 4:5+3", "@4 4:5+3"},
        {{BitSize(3), BitOffset(5), four}, "@4 4:24+3", "@4 4:24+3", big},
        // Bits 27 to 35 of a packed structure, in two units.
        {{BitSize(9), DataBitOffset(27)}, "@3 4:3+9", "@0 4:23+9"},
        {{BitSize(9), DataBitOffset(27)}, "@3 4:20+9", "@0 4:23+9", big},
        {{BitSize(9), NegativeBitOffset(-4), start}, "@3 4:3+9", "@0 4:27+9"},
        {{BitSize(9), BitOffset(27), start}, "@3 4:20+9", "@0 4:27+9", big},
        // The storage size of the entry differs from that of the type.
        {{BitSize(2), BitOffset(1), ByteSize(1), MemberOffset(5)}, "@5 4:29+2", "@5 4:5+2", big},
        // More bytes than the type has.
        {{BitSize(15), DataBitOffset(7)}, "@0 2:7+15", "@0 2:1+15", little, 2},
        {{BitSize(15), DataBitOffset(7)}, "@0 2:2+15", "@0 2:1+15", big, 2},
        // No offset at all.
        {{BitSize(3)}, "@0 4:0+3", "@0 4:29+3"},
        {{BitSize(3)}, "@0 4:29+3", "@0 4:29+3", little, 4, 3},
        // A whole member.
        {{DataBitOffset(64)}, "@8 4", "@0 4"},
    };
    for (const BitFieldCase& field : cases) {
        const DieLabel number, structure;
        std::vector<DieAttribute> attributes = {Name("f"), Type(number)};
        attributes.insert(attributes.end(), field.attributes.begin(), field.attributes.end());
        const DwarfSections sections =
            DwarfSections(field.byteOrder)
                .Unit({.entries = {UnitDie(
                           {UInt(number, field.typeSize), Variable("v", structure),
                            Struct(structure, "s", 12, {Die(DW_TAG_member, attributes)})})},
                       .version = field.version});
        const ElfImage image(ElfClass::Class32, field.byteOrder);
        EXPECT_THAT(Leaves(sections, true, image), ElementsAre("v.f" + field.full));
        EXPECT_THAT(Leaves(sections, false, image), ElementsAre("v.f" + field.classic));
    }
}

TEST_F(FullTreeTest, ABitFieldOfAUnionHasItsBits) {
    const DieLabel number, choice;
    const DwarfSections sections =
        Unit({UInt(number, 4), Variable("v", choice),
              Die(choice, DW_TAG_union_type, {Name("u"), ByteSize(4)},
                  {Die(DW_TAG_member, {Name("f"), Type(number), BitSize(3), BitOffset(29)}),
                   Die(DW_TAG_member, {Name("whole"), Type(number)})})});
    EXPECT_THAT(Leaves(sections, true), ElementsAre("v.f@0 4:0+3", "v.whole@0 4"));
    EXPECT_THAT(Leaves(sections, false), ElementsAre("v.f@0 4", "v.whole@0 4"));
}

DieAttribute Stride(std::uint32_t attribute, std::uint64_t value) {
    return Number(attribute, DW_FORM_data1, value);
}

// Arrays with 2 bytes per element; a value that only a running program knows is a block.
TEST_F(FullTreeTest, ElementsOfAnArrayLieWhereItSays) {
    const DieAttribute computedStride = Block(DW_AT_byte_stride, DW_FORM_exprloc, "\x97\x06");
    const DieAttribute computedLow = Block(DW_AT_lower_bound, DW_FORM_exprloc, "\x97\x06");
    const DieAttribute elsewhere = Block(DW_AT_data_location, DW_FORM_exprloc, "\x97\x06");
    using Bounds = std::vector<std::vector<DieAttribute>>;
    const struct {
        const char* what;
        std::vector<DieAttribute> array;
        Bounds bounds;
        const char* full;
        const char* classic;
    } cases[] = {
        {"plain", {}, {{Count(3)}, {Count(5)}}, "uint16[3][5]", "uint16[3][5]"},
        {"packed", {Stride(DW_AT_bit_stride, 3)}, {{Count(10)}}, "unknown(4)", "uint16[10]"},
        {"packed by its dimension",
         {ByteSize(3)},
         {{Count(10), Stride(DW_AT_bit_stride, 2)}},
         "unknown(3)",
         "uint16[10]"},
        {"apart", {Stride(DW_AT_byte_stride, 8)}, {{Count(3)}}, "unknown(24)", "uint16[3]"},
        {"rows apart",
         {},
         {{Count(3), Stride(DW_AT_byte_stride, 16)}, {Count(5)}},
         "unknown(48)",
         "uint16[3][5]"},
        {"strides of the elements' own size",
         {Stride(DW_AT_bit_stride, 16)},
         {{Count(3), Stride(DW_AT_byte_stride, 10)}, {Count(5)}},
         "uint16[3][5]",
         "uint16[3][5]"},
        {"computed stride", {computedStride}, {{Count(3)}}, "unknown(6)", "uint16[3]"},
        {"elsewhere", {elsewhere}, {{Count(3)}}, "unknown(6)", "uint16[3]"},
        {"computed first index", {}, {{computedLow, UpperBound(9)}}, "uint16[0]", "uint16[0]"},
        {"first index of the first kind",
         {Number(DW_AT_ordering, DW_FORM_data1, DW_ORD_col_major)},
         {{Count(3)}, {Count(5)}},
         "uint16[5][3]",
         "uint16[3][5]"},
    };
    for (const auto& example : cases) {
        const DieLabel number, array;
        std::vector<DieAttribute> attributes = example.array;
        attributes.push_back(Type(number));
        std::vector<Die> subranges;
        for (const std::vector<DieAttribute>& bounds : example.bounds) {
            subranges.emplace_back(DW_TAG_subrange_type, bounds);
        }
        const DwarfSections sections =
            Unit({UInt(number, 2), Variable("v", array),
                  Die(array, DW_TAG_array_type, attributes, std::move(subranges))});
        EXPECT_THAT(ScopedVariables(Read(sections, true)),
                    ElementsAre("::v@4096 " + std::string(example.full)))
            << example.what;
        EXPECT_THAT(ScopedVariables(Read(sections, false)),
                    ElementsAre("::v@4096 " + std::string(example.classic)))
            << example.what;
    }
}

TEST_F(FullTreeTest, MembersOfVariantsBelongToTheStructure) {
    const DieLabel number, payload, record;
    const DwarfSections sections = Unit({
        UInt(number, 2),
        Struct(payload, "Payload", 4, {Member("level", number, 2)}),
        Struct(record, "Record", 8,
               {Die(DW_TAG_variant_part, {},
                    {Part(number, 0), Die(DW_TAG_variant, {}, {Member("first", payload, 4)}),
                     Die(DW_TAG_variant, {},
                         {Die(DW_TAG_variant_part, {},
                              {Die(DW_TAG_variant, {}, {Member("inner", number, 6)}),
                               Die(DW_TAG_variant, {})}),
                          Member("second", number, 4)})}),
                Member("kind", number, 0)}),
        Variable("v", record),
    });
    EXPECT_THAT(Leaves(sections, true),
                ElementsAre("v.kind@0 2", "v.first.level@6 2", "v.second@4 2", "v.inner@6 2"));
    EXPECT_THAT(Leaves(sections, false), ElementsAre("v.kind@0 2"));
}

// Arrays with 2 bytes per element whose index type has the values 2, 5 and 9.
TEST_F(FullTreeTest, AnArrayHasAnElementForEachEnumeratorOfItsIndex) {
    const DieLabel color, warm, alias, yes, number, rows;
    const auto range = [](DieLabel type, std::int64_t lowest, std::int64_t highest) {
        return Die(DW_TAG_subrange_type, {Type(type), LowerBound(lowest), UpperBound(highest)});
    };
    const auto value = [](const char* name, std::int64_t constant) {
        return Die(DW_TAG_enumerator, {Name(name), ConstValue(constant)});
    };
    const struct {
        const char* what;
        DieLabel element;
        std::vector<DieAttribute> array;
        std::vector<Die> indices;
        const char* full;
        const char* classic;
    } cases[] = {
        {"whole", number, {}, {range(color, 2, 9)}, "uint16[3]", "uint16[8]"},
        {"part, by other names", number, {}, {range(alias, 5, 9)}, "uint16[2]", "uint16[5]"},
        {"without gaps", number, {}, {range(yes, 0, 1)}, "uint16[2]", "uint16[2]"},
        {"of two",
         number,
         {},
         {range(color, 2, 9), range(yes, 0, 1)},
         "uint16[3][2]",
         "uint16[8][2]"},
        {"bound without enumerator", number, {}, {range(color, 3, 9)}, "uint16[0]", "uint16[7]"},
        {"bound without enumerator, but a size",
         number,
         {ByteSize(6)},
         {range(color, 3, 9)},
         "unknown(6)",
         "uint16[7]"},
        {"index without bounds",
         number,
         {},
         {Die(DW_TAG_enumeration_type, {ByteSize(1)}, {value("one", 1)}), range(yes, 0, 1)},
         "uint16[0]",
         "uint16[2]"},
        {"stride as if rows had gaps",
         rows,
         {Stride(DW_AT_bit_stride, 128)},
         {range(color, 2, 9)},
         "uint16[0][3]",
         "uint16[8][8]"},
    };
    for (const auto& example : cases) {
        const DieLabel array;
        std::vector<DieAttribute> attributes = example.array;
        attributes.push_back(Type(example.element));
        const DwarfSections sections =
            Unit({UInt(number, 2), Variable("v", array),
                  Die(color, DW_TAG_enumeration_type, {Name("Color"), ByteSize(1)},
                      {value("red", 2), value("green", 5), value("lime", 5), value("blue", 9)}),
                  Die(warm, DW_TAG_subrange_type, {Type(color), LowerBound(2), UpperBound(9)}),
                  Die(alias, DW_TAG_typedef, {Name("Warm"), Type(warm)}),
                  Die(yes, DW_TAG_enumeration_type, {Name("Yes"), ByteSize(1)},
                      {value("no", 0), value("yes", 1)}),
                  Die(rows, DW_TAG_array_type, {Type(number)}, {range(color, 2, 9)}),
                  Die(array, DW_TAG_array_type, attributes, example.indices)});
        EXPECT_THAT(ScopedVariables(Read(sections, true)),
                    ElementsAre("::v@4096 " + std::string(example.full)))
            << example.what;
        EXPECT_THAT(ScopedVariables(Read(sections, false)),
                    ElementsAre("::v@4096 " + std::string(example.classic)))
            << example.what;
    }
}

// A bound that is in a variable is known only at run time.
TEST_F(FullTreeTest, AVariableIsNoBound) {
    const DieLabel number, array, bound;
    const DwarfSections sections = Unit(
        {UInt(number, 2), Die(bound, DW_TAG_variable, {Name("last"), Type(number), Address(7)}),
         Die(array, DW_TAG_array_type, {Type(number)},
             {Die(DW_TAG_subrange_type, {Reference(DW_AT_upper_bound, DW_FORM_ref4, bound)})}),
         Variable("v", array)});
    EXPECT_THAT(ScopedVariables(Read(sections, true)),
                testing::Contains(std::string("::v@4096 uint16[0]")));
    EXPECT_THAT(ScopedVariables(Read(sections, false)),
                testing::Contains(std::string("::v@4096 uint16[8]")));
}

// In a structure of the other byte order, bits count from the other end of each byte.
TEST_F(FullTreeTest, OtherByteOrdersAreTheirBytes) {
    const auto leaves = [](ByteOrder order, std::uint64_t endianity, bool isFull) {
        const DieLabel word, byte, structure;
        const auto base = [&](DieLabel label, std::uint64_t size) {
            return Die(label, DW_TAG_base_type,
                       {Name("u"), ByteSize(size), Encoding(DW_ATE_unsigned),
                        Number(DW_AT_endianity, DW_FORM_data1, endianity)});
        };
        const auto field = [&](const char* name, DieLabel type, std::uint64_t first,
                               std::uint64_t count) {
            return Die(DW_TAG_member,
                       {Name(name), Type(type), BitSize(count), DataBitOffset(first)});
        };
        const DwarfSections sections = DwarfSections(order).Unit(
            {.entries = {UnitDie(
                 {base(word, 4), base(byte, 1), Variable("v", structure),
                  Struct(structure, "s", 12,
                         {Member("word", word, 0), Member("byte", byte, 4),
                          field("inByte", word, 64, 3), field("acrossBytes", word, 67, 11)})})},
             .version = 5});
        const ReadRun run = Read(sections, isFull, ElfImage(ElfClass::Class32, order));
        Lines found = Leaves(run);
        for (std::string& leaf : found) {
            const std::string path = leaf.substr(0, leaf.find('@'));
            leaf += ' ' + run.model->TypeText(run.model->ResolvePath(path).place.type);
        }
        return found;
    };
    const Lines own = {"v.word@0 4 uint32", "v.byte@4 1 uint8", "v.inByte@8 4:0+3 uint32",
                       "v.acrossBytes@8 4:3+11 uint32"};
    EXPECT_EQ(leaves(ByteOrder::Little, DW_END_little, true), own);
    EXPECT_EQ(leaves(ByteOrder::Little, DW_END_default, true), own);
    EXPECT_THAT(leaves(ByteOrder::Little, DW_END_big, true),
                ElementsAre("v.word@0 4 unknown(4)", "v.byte@4 1 uint8",
                            "v.inByte@8 4:5+3 unknown(4)", "v.acrossBytes@8 2 unknown(2)"));
    EXPECT_THAT(leaves(ByteOrder::Big, DW_END_little, true),
                ElementsAre("v.word@0 4 unknown(4)", "v.byte@4 1 uint8",
                            "v.inByte@8 4:24+3 unknown(4)", "v.acrossBytes@8 2 unknown(2)"));
}

TEST_F(FullTreeTest, BaseTypesOfOtherKindsAndSizesAreWhatTheyAre) {
    const struct {
        const char* name;
        std::uint64_t encoding;
        std::uint64_t size;
        const char* full;
        const char* classic;
    } cases[] = {
        {"int", DW_ATE_signed, 4, "int32", "int32"},
        {"__int128", DW_ATE_signed, 16, "int128", "float(16)"},
        {"unsigned __int24", DW_ATE_unsigned, 3, "uint24", "float(3)"},
        {"long double", DW_ATE_float, 12, "float(12)", "float(12)"},
        {"_Float16", DW_ATE_float, 2, "float16", "float16"},
        {"__bf16", DW_ATE_float, 2, "unknown(2)", "float16"},
        {"bool", DW_ATE_boolean, 1, "bool", "bool"},
        {"logical(kind=4)", DW_ATE_boolean, 4, "uint32", "bool"},
        {"char16_t", 16, 2, "uint16", "int16"},
        {"complex float", 3, 8, "unknown(8)", "double"},
        {"_Decimal64", 15, 8, "unknown(8)", "notype(8)"},
        {"_Accum", 13, 4, "unknown(4)", "notype(4)"},
        {"packed", 10, 4, "unknown(4)", "int32"},
        {"vendor", 144, 4, "notype(4)", "notype(4)"},
    };
    for (const auto& base : cases) {
        const DieLabel type;
        const DwarfSections sections =
            Unit({Die(type, DW_TAG_base_type,
                      {Name(base.name), ByteSize(base.size), Encoding(base.encoding)}),
                  Variable("v", type)});
        EXPECT_THAT(ScopedVariables(Read(sections, true)),
                    ElementsAre("::v@4096 " + std::string(base.full)))
            << base.name;
        EXPECT_THAT(ScopedVariables(Read(sections, false)),
                    ElementsAre("::v@4096 " + std::string(base.classic)))
            << base.name;
    }
}

// A structure has a member of each kind, whose size shows in the type text.
TEST_F(FullTreeTest, KindsThatTheContractLacksKeepTheirSize) {
    const DieLabel byte, function, number;
    const DieAttribute toByte = Type(byte);
    const DieAttribute toInt = Type(number);
    const struct {
        const char* what;
        dwarf_tag tag;
        std::vector<DieAttribute> attributes;
        const char* full;
        const char* classic;
    } cases[] = {
        {"T&&", DW_TAG_rvalue_reference_type, {toByte}, "uint8*", "uint8"},
        {"T C::*", DW_TAG_ptr_to_member_type, {toByte}, "unknown(4)", "uint8"},
        {"void (C::*)()", DW_TAG_ptr_to_member_type, {Type(function)}, "unknown(8)", "void ()"},
        {"sized", DW_TAG_ptr_to_member_type, {toByte, ByteSize(12)}, "unknown(12)", "uint8"},
        {"text", DW_TAG_string_type, {toByte, ByteSize(10)}, "unknown(10)", "uint8"},
        {"set", DW_TAG_set_type, {toByte, ByteSize(2)}, "unknown(2)", "uint8"},
        // Ranges of fewer bytes than their type, with a sign, and of all bytes.
        {"0..", DW_TAG_subrange_type, {toInt, ByteSize(1), LowerBound(0)}, "uint8", "int32"},
        {"-5..", DW_TAG_subrange_type, {toInt, ByteSize(1), LowerBound(-5)}, "int8", "int32"},
        {"0.. whole", DW_TAG_subrange_type, {toInt, LowerBound(0)}, "int32", "int32"},
        {"atomic", DW_TAG_atomic_type, {toByte}, "uint8", "uint8"},
        {"restrict", DW_TAG_restrict_type, {toByte}, "uint8", "uint8"},
    };
    for (const auto& kind : cases) {
        const DieLabel type;
        const DwarfSections sections =
            Unit({UInt(byte, 1), Int(number), Die(function, DW_TAG_subroutine_type),
                  Variable("v", type), Die(type, kind.tag, kind.attributes)});
        EXPECT_THAT(ScopedVariables(Read(sections, true)),
                    ElementsAre("::v@4096 " + std::string(kind.full)))
            << kind.what;
        EXPECT_THAT(ScopedVariables(Read(sections, false)),
                    ElementsAre("::v@4096 " + std::string(kind.classic)))
            << kind.what;
    }
}

// Nothing else is in the namespace: if the range is its type, no object needs it.
TEST_F(FullTreeTest, ARangeThatIsItsTypeNeedsNoScope) {
    const DieLabel number, range;
    for (const unsigned size : {1U, 4U}) {
        const ReadRun run =
            Read(Unit({Int(number), Variable("v", range),
                       Die(DW_TAG_namespace, {Name("ranges")},
                           {Die(range, DW_TAG_subrange_type, {Type(number), ByteSize(size)})})}),
                 true);
        Lines namespaces;
        run.model->ForEach(
            DataModel::ObjectKind::Namespace,
            [&](const DataModel::ModelObject& each) { namespaces.emplace_back(each.name); });
        EXPECT_EQ(std::ranges::count(namespaces, "ranges"), size == 1 ? 1 : 0) << size;
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
