// A read without all types reads only the bodies of types that variables lead to. The delivery must
// be the same as if all bodies had been read; a dump of the nodes reads them all at once.
#include "dwarf/BodyEntries.h"
#include "support/DwarfSections.h"
#include "support/ElfImage.h"
#include "support/ReadRun.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"
#include "support/UsualEntries.h"

#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

Die Member(const std::string& name, DieLabel type) {
    return Die(DW_TAG_member, {Name(name), Type(type), MemberOffset(0)});
}

Die StaticVariable(const std::string& name, DieLabel type, std::uint32_t address = 0x1000) {
    return Die(DW_TAG_variable, {Name(name), Type(type), Address(address)});
}

/// Number of progress calls that the dump of the nodes adds.
constexpr std::size_t sProgressOfDump = 2;

/// A tree, and a call of its delivery.
struct Tree {
    const char* what = nullptr;
    DwarfSections sections;
    const char* call = nullptr;
};

Tree EverythingOfABody() {
    const DieLabel number;
    const DieLabel base;
    const DieLabel inner;
    const DieLabel state;
    const DieLabel motor;
    return {"members, base classes, enumerators and functions",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(base, DW_TAG_class_type, {Name("Base"), ByteSize(4)}, {Member("id", number)}),
                Die(motor, DW_TAG_class_type, {Name("Motor"), ByteSize(12)},
                    {
                        Die(DW_TAG_inheritance, {Type(base), MemberOffset(0)}),
                        Member("a", inner),
                        Die(inner, DW_TAG_structure_type, {Name("Inner"), ByteSize(4)},
                            {Member("x", number)}),
                        Die(DW_TAG_subprogram, {Name("Start"), Type(number), Declaration()},
                            {
                                Die(DW_TAG_template_type_param, {Name("T"), Type(number)}),
                                Die(DW_TAG_formal_parameter, {Type(inner)}),
                            }),
                        Member("state", state),
                        Die(state, DW_TAG_enumeration_type, {Name("State"), ByteSize(4)},
                            {Die(DW_TAG_enumerator, {Name("on"), ConstValue(1)})}),
                    }),
                StaticVariable("motor", motor),
            })}),
            "AddEnumDescriptionToEnumTable"};
}

Tree DefinitionOfADeclaration() {
    const DieLabel number;
    const DieLabel declaration;
    return {
        "a definition in another unit",
        DwarfSections()
            .Unit({UnitDie({Die(declaration, DW_TAG_structure_type, {Name("Motor"), Declaration()}),
                            StaticVariable("motor", declaration)})})
            .Unit({UnitDie({Int(number), Die(DW_TAG_structure_type, {Name("Motor"), ByteSize(4)},
                                             {Member("speed", number)})})}),
        "speed"};
}

Tree FunctionOfABody(std::uint32_t attribute) {
    const DieLabel number;
    const DieLabel declared;
    return {"a static variable in a function that a class declares",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(DW_TAG_class_type, {Name("Motor"), ByteSize(4)},
                    {
                        Member("speed", number),
                        Die(declared, DW_TAG_subprogram, {Name("Start"), Declaration()}),
                    }),
                Die(DW_TAG_subprogram, {Reference(attribute, DW_FORM_ref4, declared)},
                    {StaticVariable("count", number)}),
            })}),
            "count"};
}

Tree StaticMember() {
    const DieLabel number;
    const DieLabel declared;
    return {"the definition of a static member",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(DW_TAG_class_type, {Name("Motor"), ByteSize(4)},
                    {
                        Die(declared, DW_TAG_member,
                            {Name("total"), Type(number), External(), Declaration()}),
                        Member("speed", number),
                    }),
                Die(DW_TAG_variable, {Specification(declared), Address(0x1000)}),
            })}),
            "speed"};
}

/// The anonymous type has a second user, which no variable leads to: the first user gets copies.
Tree AnonymousTypeOfTwo() {
    const DieLabel number;
    const DieLabel anonymous;
    const DieLabel nested;
    const DieLabel motor;
    return {"an anonymous type that a body refers to which isn't read",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(anonymous, DW_TAG_structure_type, {ByteSize(4)},
                    {Member("x", number),
                     Die(nested, DW_TAG_enumeration_type, {Name("State"), ByteSize(4)})}),
                Die(motor, DW_TAG_structure_type, {Name("Motor"), ByteSize(4)},
                    {Die(DW_TAG_member, {Type(anonymous), MemberOffset(0)})}),
                Die(DW_TAG_structure_type, {Name("Other"), ByteSize(4)},
                    {Die(DW_TAG_member, {Type(anonymous), MemberOffset(0)})}),
                StaticVariable("motor", motor),
                StaticVariable("state", nested, 0x2000),
            })}),
            "state"};
}

/// Delivery moves the members out of the anonymous type, and the scope of its static member is the
/// type that holds it.
Tree AnonymousTypeOfAHolderWithoutVariable() {
    const DieLabel number;
    const DieLabel anonymous;
    const DieLabel declared;
    return {
        "an anonymous type that is a scope, and whose holder no variable leads to",
        DwarfSections().Unit({UnitDie({
            Int(number),
            Die(anonymous, DW_TAG_structure_type, {ByteSize(4)},
                {Member("x", number),
                 Die(declared, DW_TAG_member,
                     {Name("total"), Type(number), External(), Declaration()})}),
            Die(DW_TAG_structure_type, {Name("Motor"), ByteSize(8)},
                {Die(DW_TAG_member, {Type(anonymous), MemberOffset(4)}), Member("speed", number)}),
            Die(DW_TAG_variable, {Specification(declared), Address(0x1000)}),
        })}),
        "total"};
}

/// The type around the completed function is delivered as its scope, with the types in it.
Tree TypeAroundACompletedFunction() {
    const DieLabel number;
    const DieLabel other;
    const DieLabel declared;
    return {
        "a typedef beside a function of a local type",
        DwarfSections().Unit({UnitDie({
            Int(number),
            Die(other, DW_TAG_structure_type, {Name("Other"), ByteSize(4)}, {Member("x", number)}),
            Die(DW_TAG_class_type, {Name("Motor"), ByteSize(4)},
                {Die(DW_TAG_subprogram, {Name("Run"), Declaration()},
                     {Die(DW_TAG_structure_type, {Name("Local"), ByteSize(4)},
                          {Die(DW_TAG_typedef, {Name("Alias"), Type(other)}),
                           Die(declared, DW_TAG_subprogram, {Name("Start"), Declaration()})})})}),
            Die(DW_TAG_subprogram, {Specification(declared)}, {StaticVariable("count", number)}),
        })}),
        "Other"};
}

Tree ReferenceIntoABody() {
    const DieLabel number;
    const DieLabel member;
    const DieLabel alias;
    return {"a typedef of a member, as damaged files have it",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(DW_TAG_structure_type, {Name("Motor"), ByteSize(4)},
                    {Die(member, DW_TAG_member, {Name("speed"), Type(number)})}),
                Die(alias, DW_TAG_typedef, {Name("Alias"), Type(member)}),
                StaticVariable("motor", alias),
            })}),
            "Alias"};
}

Tree BitFieldThatDependsOnOthers() {
    const DieLabel base;
    const DieLabel array;
    const DieLabel motor;
    return {
        "a bit field whose place depends on another body",
        DwarfSections().Unit({UnitDie({
            Die(DW_TAG_structure_type, {Name("Other"), ByteSize(8)}, {Member("all", array)}),
            Die(motor, DW_TAG_structure_type, {Name("Motor"), ByteSize(8)},
                {Die(DW_TAG_member,
                     {Name("bits"), Type(array), ByteSize(0), BitSize(4), BitOffset(0)})}),
            Die(array, DW_TAG_array_type, {Type(base)}, {Die(DW_TAG_subrange_type, {Count(2)})}),
            Int(base),
            StaticVariable("motor", motor),
        })}),
        "bits"};
}

/// A function with its code, whose second block has a node for the variable's sake.
Tree CodeInABody() {
    const DieLabel number;
    const DieLabel motor;
    return {"code in a body",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(motor, DW_TAG_class_type, {Name("Motor"), ByteSize(4)},
                    {
                        Die(DW_TAG_subprogram, {Name("Start")},
                            {
                                Die(DW_TAG_formal_parameter, {Type(number)}),
                                Die(DW_TAG_lexical_block, {}, {Die(DW_TAG_label, {Name("end")})}),
                                Die(DW_TAG_lexical_block, {},
                                    {
                                        Die(DW_TAG_label, {Name("again")}),
                                        StaticVariable("starts", number, 0x2000),
                                    }),
                            }),
                        Member("speed", number),
                    }),
                StaticVariable("motor", motor),
            })}),
            "starts"};
}

/// The classic manner delivers such members only as members of all types.
Tree VariantsOfARecord() {
    const DieLabel number;
    const DieLabel payload;
    const DieLabel record;
    return {"members in variants, one of them in a variant of a variant",
            DwarfSections().Unit({UnitDie({
                Int(number),
                Die(payload, DW_TAG_structure_type, {Name("Payload"), ByteSize(4)},
                    {Member("level", number)}),
                Die(record, DW_TAG_structure_type, {Name("Record"), ByteSize(4)},
                    {Die(DW_TAG_variant_part, {},
                         {
                             Die(DW_TAG_member, {Type(number), MemberOffset(0)}),
                             Die(DW_TAG_variant, {}, {Member("first", payload)}),
                             Die(DW_TAG_variant, {},
                                 {Die(DW_TAG_variant_part, {},
                                      {Die(DW_TAG_variant, {}, {Member("inner", number)}),
                                       Die(DW_TAG_variant, {})}),
                                  Member("second", number)}),
                         }),
                     Member("kind", number)}),
                StaticVariable("record", record),
            })}),
            "kind"};
}

TEST(TypeBodiesTest, DeliveryIsThatOfAReadOfAllBodies) {
    const ScopedReaderState state;
    const Tree trees[] = {
        EverythingOfABody(),
        DefinitionOfADeclaration(),
        FunctionOfABody(DW_AT_specification),
        FunctionOfABody(DW_AT_abstract_origin),
        StaticMember(),
        AnonymousTypeOfTwo(),
        AnonymousTypeOfAHolderWithoutVariable(),
        TypeAroundACompletedFunction(),
        ReferenceIntoABody(),
        BitFieldThatDependsOnOthers(),
        CodeInABody(),
        VariantsOfARecord(),
    };
    for (const Tree& tree : trees) {
        for (const int isFull : {0, 1}) {
            VElfOptions::mIsFullReading = isFull;
            const std::string image = (ElfImage() + tree.sections).Build();
            VElfOptions::mDumpDebugInfoNodes = 1;
            ReadRun all = ReadImage(image);
            VElfOptions::mDumpDebugInfoNodes = 0;
            const ReadRun reached = ReadImage(image);
            EXPECT_EQ(reached.calls, all.calls) << tree.what << ", full " << isFull;
            ASSERT_GE(all.progress.size(), sProgressOfDump);
            all.progress.resize(all.progress.size() - sProgressOfDump);
            EXPECT_EQ(reached.progress, all.progress) << tree.what << ", full " << isFull;
            EXPECT_THAT(all.calls, testing::Contains(testing::HasSubstr(tree.call))) << tree.what;
        }
    }
}

TEST(TypeBodiesTest, OnlyBodiesThatVariablesLeadToHaveNodes) {
    const ScopedReaderState state;
    const DieLabel number;
    const DieLabel motor;
    SectionRun run(ElfImage() + DwarfSections().Unit({UnitDie({
                                    Int(number),
                                    Die(motor, DW_TAG_class_type, {Name("Motor"), ByteSize(4)},
                                        {
                                            Member("speed", number),
                                            Die(DW_TAG_subprogram, {Name("Start"), Declaration()},
                                                {Die(DW_TAG_formal_parameter, {Type(number)})}),
                                        }),
                                    Die(DW_TAG_class_type, {Name("Other"), ByteSize(4)},
                                        {
                                            Member("x", number),
                                            Die(DW_TAG_subprogram, {Name("f"), Declaration()},
                                                {Die(DW_TAG_formal_parameter, {Type(number)})}),
                                            Die(DW_TAG_subprogram, {Name("g"), Declaration()},
                                                {Die(DW_TAG_structure_type, {Name("Local")})}),
                                        }),
                                    StaticVariable("motor", motor),
                                })}));
    VDwarf2Section& section = run.Section();
    ASSERT_TRUE(run.Init() && section.MapCompileUnits());
    section.LeaveBodies();
    ASSERT_TRUE(section.ProcessCompileUnits());
    EXPECT_EQ(section.EntryCount(), 13U) << "progress counts every entry";
    section.ResolveNodes();
    EXPECT_FALSE(section.RequiresBodies());
    EXPECT_THAT(run.Outline(),
                ElementsAre("0:compile_unit a_c", "1:base_type int", "1:class_type Motor",
                            "2:member speed", "2:subprogram Start", "1:class_type Other",
                            "2:subprogram g", "3:structure_type Local", "1:variable motor"));
    EXPECT_EQ(section.EntryCount(), 13U);
}

TEST(TypeBodiesTest, AbbreviationsTellWhatIsSkipped) {
    using Attributes = std::vector<std::pair<AttributeTarget, FormReading>>;
    constexpr FormReading number = FormReading::FourBytes;
    struct Case {
        dwarf_tag tag;
        bool hasChildren;
        Attributes attributes;
        BodyEntry expected;
    };
    const Case cases[] = {
        {DW_TAG_member, false, {{AttributeTarget::Type, number}}, BodyEntry::Skipped},
        {DW_TAG_member, true, {{AttributeTarget::Type, number}}, BodyEntry::Kept},
        {DW_TAG_member, false, {{AttributeTarget::External, number}}, BodyEntry::Kept},
        {DW_TAG_member, false, {{AttributeTarget::Specification, number}}, BodyEntry::Kept},
        {DW_TAG_member, false, {{AttributeTarget::Name, FormReading::Indirect}}, BodyEntry::Kept},
        {DW_TAG_member, false, {{AttributeTarget::BitSize, number}}, BodyEntry::Kept},
        {DW_TAG_member,
         false,
         {{AttributeTarget::BitSize, number}, {AttributeTarget::DataBitOffset, number}},
         BodyEntry::Skipped},
        {DW_TAG_inheritance,
         false,
         {{AttributeTarget::Type, number}, {AttributeTarget::Type, number}},
         BodyEntry::Kept},
        {DW_TAG_subprogram, true, {{AttributeTarget::Declaration, number}}, BodyEntry::Function},
        {DW_TAG_subprogram, true, {{AttributeTarget::External, number}}, BodyEntry::Kept},
        {DW_TAG_template_type_param, false, {}, BodyEntry::Argument},
        {DW_TAG_structure_type, false, {}, BodyEntry::Kept},
    };
    for (const Case& example : cases) {
        BodyEntryRule rule(example.tag, example.hasChildren);
        for (const auto& [target, reading] : example.attributes) {
            rule.Take(target, reading);
        }
        EXPECT_EQ(rule.Result(), example.expected)
            << example.tag << " with " << example.attributes.size();
    }
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
