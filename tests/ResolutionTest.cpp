// The passes that finish a tree, observed on the nodes: what they join, find, mark and move.
#include "core/VElfOptions.h"
#include "support/NodeTree.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class ResolutionTest : public testing::Test {
protected:
    static Die Member(const std::string& name, std::uint64_t offset) {
        return Die(DW_TAG_member, {Name(name), MemberOffset(offset)});
    }

    /// "name@offset" of each child; for nameless ones also the tag.
    static std::vector<std::string> ChildrenOf(const VDebugInfoNode& node) {
        std::vector<std::string> children;
        for (const VDebugInfoNode* child : node.Children()) {
            EXPECT_EQ(child->GetParent(), &node);
            children.push_back((child->GetNameOrNull() != nullptr
                                    ? std::string(child->GetName())
                                    : "tag" + std::to_string(child->GetTag())) +
                               "@" + std::to_string(child->GetMemberOffset()));
        }
        return children;
    }

    ScopedReaderState mState;
};

TEST_F(ResolutionTest, OfEqualDefinitionsTheLargestStandsForAll) {
    const DieLabel eight, twelve, alsoTwelve, alias, other;
    NodeTree tree(DwarfSections()
                      .Unit({UnitDie({
                          Struct(eight, "s", 8),
                          Struct(other, "o", 80),
                      })})
                      .Unit({UnitDie({
                          Die(twelve, DW_TAG_class_type, {Name("s"), ByteSize(12)}),
                          Struct(alsoTwelve, "s", 12),
                          Die(alias, DW_TAG_typedef, {Name("s"), Type(other, DW_FORM_ref_addr)}),
                      })}));
    tree.Resolve();
    for (const DieLabel label : {eight, twelve, alsoTwelve, alias}) {
        EXPECT_EQ(tree[label].GetCanonicalTypeNode(), &tree[twelve]);
    }
    EXPECT_EQ(tree[other].GetCanonicalTypeNode(), &tree[other]);
}

/// The same types in each unit, as from one header; each has a text of its own.
class TypesOfHeader {
public:
    [[nodiscard]] std::vector<Die> Entries(std::uint64_t size) const {
        const auto type = [&](std::size_t index, std::vector<Die> children = {}) {
            return Die(labels[index], DW_TAG_structure_type,
                       {Name("s", DW_FORM_strp), ByteSize(size)}, std::move(children));
        };
        const auto argument = [](DieLabel of) {
            return Die(DW_TAG_template_type_param, {Name("T"), Type(of)});
        };
        const auto vector = [&](DieLabel of, std::size_t index) {
            return Die(DW_TAG_class_type, {Name("vec", DW_FORM_strp)}, {argument(of), type(index)});
        };
        return {
            Int(mInt),
            Die(mChar, DW_TAG_base_type, {Name("char"), ByteSize(1), Encoding(DW_ATE_unsigned)}),
            type(0),
            Die(DW_TAG_namespace, {Name("N")}, {type(1), vector(mInt, 2), vector(mChar, 3)}),
            Die(DW_TAG_namespace, {Name("M")}, {type(4), vector(mInt, 5)}),
            type(6, {argument(mInt)}),
            type(7, {argument(mChar)}),
            Die(labels[8], DW_TAG_typedef, {Name("t<int>"), Type(mInt)}, {argument(mInt)}),
            Die(labels[9], DW_TAG_class_type, {Name("c<int>"), ByteSize(size)}, {argument(mInt)}),
        };
    }

    const std::vector<DieLabel> labels = std::vector<DieLabel>(10);

private:
    DieLabel mInt, mChar;
};

TEST_F(ResolutionTest, UnitsOverOneHeaderShareTheirTypes) {
    const TypesOfHeader first;
    const TypesOfHeader second;
    const TypesOfHeader third;
    const DieLabel between;
    std::vector<Die> thirdEntries = third.Entries(4);
    thirdEntries.insert(thirdEntries.begin() + 3, Struct(between, "b", 1));
    NodeTree tree(DwarfSections()
                      .Unit({UnitDie(first.Entries(4))})
                      .Unit({UnitDie(second.Entries(8))})
                      .Unit({UnitDie(thirdEntries)}));
    tree.Resolve();
    const std::vector<std::string> names = {"s", "s",      "s",       "s",      "s",
                                            "s", "s<int>", "s<char>", "t<int>", "c<int>"};
    for (std::size_t index = 0; index < names.size(); ++index) {
        const bool isTypedef = index == 8;
        const VDebugInfoNode* stands = &tree[(isTypedef ? first : second).labels[index]];
        for (const TypesOfHeader* unit : {&first, &second, &third}) {
            EXPECT_EQ(tree[unit->labels[index]].GetCanonicalTypeNode(), stands) << index;
            EXPECT_EQ(tree[unit->labels[index]].GetName(), names[index]);
        }
    }
    EXPECT_EQ(tree[between].GetCanonicalTypeNode(), &tree[between]);
}

TEST_F(ResolutionTest, ScopesInTheNameCountAsScopes) {
    const std::string scope = "aScopeOfMoreThanEightCharacters";
    const DieLabel other, inScope, named;
    NodeTree tree(Unit({
        Die(DW_TAG_namespace, {Name(scope)}, {Struct(other, "t", 4), Struct(inScope, "s", 4)}),
        Die(named, DW_TAG_structure_type, {Name(scope + "::s"), ByteSize(8)}),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[inScope].GetCanonicalTypeNode(), &tree[named]);
    EXPECT_EQ(tree[other].GetCanonicalTypeNode(), &tree[other]);
}

TEST_F(ResolutionTest, ADeclarationBehindEqualDefinitionsTakesTheirRepresentativeAway) {
    const std::vector<DieLabel> definitions(3);
    const DieLabel declared;
    DwarfSections sections;
    for (const DieLabel definition : definitions) {
        sections.Unit({UnitDie({Struct(definition, "s", 4)})});
    }
    sections.Unit({UnitDie({Die(declared, DW_TAG_structure_type, {Name("s"), Declaration()})})});
    NodeTree tree(sections);
    tree.Resolve();
    for (const DieLabel definition : definitions) {
        EXPECT_EQ(tree[definition].GetCanonicalTypeNode(), nullptr);
    }
    EXPECT_EQ(tree[declared].GetDeclarationResolved(), &tree[definitions[0]]);
}

TEST_F(ResolutionTest, DeclarationsFindTheirFirstDefinitionInAnyUnit) {
    const DieLabel declared, pointer, declaredLater, definition, second, elsewhere;
    NodeTree tree(DwarfSections()
                      .Unit({UnitDie({
                          Die(declared, DW_TAG_structure_type, {Name("s"), Declaration()}),
                          Pointer(pointer, declared),
                          Die(DW_TAG_namespace, {Name("N")},
                              {Die(elsewhere, DW_TAG_structure_type, {Name("s"), Declaration()})}),
                      })})
                      .Unit({UnitDie({
                          Struct(definition, "s", 4),
                          Struct(second, "s", 40),
                          Die(declaredLater, DW_TAG_class_type, {Name("s"), Declaration()}),
                      })}));
    tree.Resolve();
    EXPECT_EQ(tree[declared].GetDeclarationResolved(), &tree[definition]);
    EXPECT_EQ(tree[declaredLater].GetDeclarationResolved(), &tree[definition]);
    EXPECT_EQ(tree[pointer].GetTypeNode(), &tree[definition]);
    EXPECT_EQ(tree[definition].GetDeclarationResolved(), nullptr);
    EXPECT_EQ(tree[second].GetDeclarationResolved(), nullptr);
    EXPECT_EQ(tree[definition].GetCanonicalTypeNode(), nullptr);
    EXPECT_EQ(tree[second].GetCanonicalTypeNode(), nullptr);
    EXPECT_EQ(tree[elsewhere].GetDeclarationResolved(), nullptr);
}

TEST_F(ResolutionTest, ATypedefOfADeclarationOfItsNameLeavesItAlone) {
    const DieLabel declared, alsoDeclared, alias;
    NodeTree tree(Unit({
        Die(declared, DW_TAG_structure_type, {Name("s"), Declaration()}),
        Die(alsoDeclared, DW_TAG_structure_type, {Name("s"), Declaration()}),
        Typedef(alias, "s", declared),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[declared].GetDeclarationResolved(), nullptr);
    EXPECT_EQ(tree[alsoDeclared].GetDeclarationResolved(), &tree[alias]);
    EXPECT_EQ(tree[alias].GetTypeNode(), &tree[declared]);
}

TEST_F(ResolutionTest, TemplateInstancesAreNamedWithScopeAndArguments) {
    const DieLabel number, instance, named;
    const auto parameter = [&] {
        return Die(DW_TAG_template_type_param, {Name("T"), Type(number)});
    };
    NodeTree tree(Unit({
        Int(number),
        Die(DW_TAG_namespace, {Name("N")},
            {
                Die(instance, DW_TAG_class_type, {Name("vec"), ByteSize(4)}, {parameter()}),
                Die(named, DW_TAG_class_type, {Name("list<int>"), ByteSize(4)}, {parameter()}),
            }),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[instance].GetName(), "N::vec<int>");
    EXPECT_EQ(tree[named].GetName(), "list<int>");
}

TEST_F(ResolutionTest, TemplateInstancesOfOtherValuesAreOtherTypes) {
    std::vector<DieLabel> instances(4);
    std::vector<Die> entries;
    for (std::size_t index = 0; index < instances.size(); ++index) {
        entries.emplace_back(
            instances[index], DW_TAG_class_type, std::vector{Name("Buf"), ByteSize(4)},
            std::vector{Die(DW_TAG_template_value_param, {ConstValue(index < 2 ? 4 : 8)})});
    }
    NodeTree tree(Unit(entries));
    tree.Resolve();
    for (std::size_t index = 0; index < instances.size(); ++index) {
        EXPECT_EQ(tree[instances[index]].GetName(), index < 2 ? "Buf<4>" : "Buf<8>");
        EXPECT_EQ(tree[instances[index]].GetCanonicalTypeNode(),
                  &tree[instances[index < 2 ? 0 : 2]]);
    }
}

TEST_F(ResolutionTest, ATemplateTypedefTakesTheTextOfATypeWithoutArguments) {
    const DieLabel plain, alias;
    NodeTree tree(Unit({
        Struct(plain, "t<int>", 4),
        Die(alias, DW_TAG_typedef, {Name("t<int>")},
            {Die(DW_TAG_template_value_param, {ConstValue(1)})}),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[alias].GetName(), "t<int>");
    EXPECT_EQ(tree[plain].GetName(), "t<int>");
    EXPECT_EQ(tree[alias].GetCanonicalTypeNode(), &tree[plain]);
}

TEST_F(ResolutionTest, NamesAreDemangledInTheStyleOfTheirUnit) {
    // Even if the units share the texts.
    for (const std::uint32_t form : {DW_FORM_string, DW_FORM_strp}) {
        std::vector<DieLabel> labels(8);
        const auto variables = [&](std::size_t first) {
            return std::vector{Die(labels[first], DW_TAG_variable, {Name("_ZN1a1bE", form)}),
                               Die(labels[first + 1], DW_TAG_variable, {Name("b__1a", form)})};
        };
        const Die tasking = UnitDie(variables(0), {Name("a.c"), Producer("a Tasking compiler")});
        NodeTree tree(
            DwarfSections()
                .Unit({tasking})
                .Unit({UnitDie(variables(2), {Name("b.c")})})
                .Unit({UnitDie(variables(4), {Name("c.c"), Producer("another")})})
                .Unit({UnitDie(variables(6), {Name("d.c"), Producer("TASKING VX-toolset")})}));
        tree.Resolve();
        std::vector<std::string> names;
        names.reserve(labels.size());
        for (const DieLabel label : labels) {
            names.emplace_back(tree[label].GetName());
        }
        EXPECT_THAT(names, ElementsAre("a::b", "b__1a", "_ZN1a1bE", "a::b", "_ZN1a1bE", "a::b",
                                       "a::b", "b__1a"));
    }
}

TEST_F(ResolutionTest, UnitsOfOneNameAndDirectoryAreOneKind) {
    std::vector<DieLabel> labels(8);
    const std::vector<std::vector<DieAttribute>> attributes = {
        {Name("a.c"), CompDir("/d")},
        {Name("a.c"), CompDir("/e")},
        {Name("a.c")},
        {Name("a.c"), CompDir("/d")},
        {Name("a.c")},
        {Name("b.c"), CompDir("/d")},
        // Name and directory are compared as one text.
        {Name("x;y"), CompDir("z")},
        {Name("x"), CompDir("y;z")},
    };
    DwarfSections sections;
    for (std::size_t index = 0; index < labels.size(); ++index) {
        sections.Unit({Die(labels[index], DW_TAG_compile_unit, attributes[index])});
    }
    NodeTree tree(sections);
    tree.Resolve();
    const std::size_t firsts[] = {0, 1, 2, 0, 2, 5, 6, 6};
    for (std::size_t index = 0; index < labels.size(); ++index) {
        EXPECT_EQ(tree[labels[index]].GetFirstKindOfCompileUnit(), &tree[labels[firsts[index]]])
            << index;
    }
}

TEST_F(ResolutionTest, ExternVariablesAreFoundByTheirSymbols) {
    VElfOptions::mIsLogFile = 1;
    const DieLabel declared, early, linked, late, notRetried, nameless;
    NodeTree tree(Unit({
                      Die(declared, DW_TAG_variable, {Name("plain"), Declaration()}),
                      Die(DW_TAG_variable, {Specification(declared), Address(0x4000)}),
                      // The names of the symbols are loaded for the first linkage name.
                      Die(early, DW_TAG_variable, {Name("plain")}),
                      Die(linked, DW_TAG_variable, {Name("plain"), LinkageName("linked")}),
                      Die(late, DW_TAG_variable, {Name("plain"), LinkageName("nowhere")}),
                      Die(notRetried, DW_TAG_variable, {Name("linked")}),
                      Die(nameless, DW_TAG_variable, {Specification(declared)}),
                  }),
                  ElfImage()
                      .Symbol({"plain", 0x1000, 4})
                      .Symbol({"_linked", 0x2000, 4})
                      .Symbol({"", 0x3000, 4}));
    tree.Resolve();
    EXPECT_FALSE(tree[declared].HasLocation());
    EXPECT_FALSE(tree[early].HasLocation());
    EXPECT_TRUE(tree[linked].IsAddressFromSymbolTable());
    EXPECT_EQ(tree[linked].GetLocationAddress(), 0x2000U);
    EXPECT_EQ(tree[late].GetLocationAddress(), 0x1000U);
    EXPECT_FALSE(tree[notRetried].HasLocation());
    EXPECT_FALSE(tree[nameless].HasLocation());
    const auto line = [&](int number, DieLabel label, const std::string& ending) {
        char start[120];
        std::snprintf(start, sizeof start,
                      "%d. Resolving Extern Variable without location attribute. "
                      "(section offset: 0x%08x): ",
                      number, tree[label].GetOffset());
        return start + ending + "\n";
    };
    const auto failed = [](const std::string& name) {
        return "Failed!: Variable '" + name + "' not found in symbol table!! ";
    };
    EXPECT_THAT(tree.Log(),
                testing::EndsWith(line(0, declared, "Variable is used as specification. OK! ") +
                                  line(1, early, failed("plain")) +
                                  line(2, notRetried, failed("linked")) +
                                  line(3, nameless, failed(""))));
}

TEST_F(ResolutionTest, OfVariablesOfOneNameAndAddressTheRichestStays) {
    const DieLabel number, array, declared, pointer, complete, alias, structure, specified,
        reference, enumeration, twoMembers;
    struct Placed {
        DieLabel label;
        std::string name;
        DieLabel type;
        std::uint64_t address;
        bool isRedundant;
    };
    const std::vector<Placed> variables = {
        {{}, "x", number, 0x1000, true},
        {{}, "x", declared, 0x1000, true},
        {{}, "x", array, 0x1000, false},
        {{}, "other", number, 0x1000, false},
        {{}, "y", pointer, 0x2000, true},
        {{}, "y", structure, 0x2000, true},
        {{}, "y", alias, 0x2000, false},
        {{}, "y", complete, 0x2000, true},
        {{}, "z", structure, 0x3000, false},
        {{}, "z", structure, 0x3000, true},
        {{}, "n", number, 0x4000, false},
        {{}, "n", number, 0x4004, false},
        {{}, "null", number, 0, false},
        {{}, "null", number, 0, false},
        {{}, "s", array, 0x5000, false},
        {{}, "class", structure, 0x6000, true},
        {{}, "class", number, 0x6000, true},
        {{}, "class", twoMembers, 0x6000, false},
        {{}, "enum", structure, 0x7000, true},
        {{}, "enum", enumeration, 0x7000, false},
        {{}, "enum", pointer, 0x7000, true},
        {{}, "tie", pointer, 0xB000, false},
        {{}, "tie", enumeration, 0xB000, true},
        {{}, "pointer", structure, 0x8000, true},
        {{}, "pointer", pointer, 0x8000, false},
        {{}, "pointer", number, 0x8000, true},
        {{}, "reference", structure, 0x9000, true},
        {{}, "reference", reference, 0x9000, false},
        {{}, "base", structure, 0xA000, true},
        {{}, "base", number, 0xA000, false},
    };
    std::vector<Die> entries{
        Int(number),
        Die(array, DW_TAG_array_type, {Type(number)}, {Die(DW_TAG_subrange_type, {UpperBound(9)})}),
        Die(declared, DW_TAG_structure_type, {Name("d"), Declaration()}),
        Pointer(pointer, number),
        Die(reference, DW_TAG_reference_type, {Type(number)}),
        Die(enumeration, DW_TAG_enumeration_type, {Name("e"), ByteSize(4)},
            {Die(DW_TAG_enumerator, {Name("x")}), Die(DW_TAG_enumerator, {Name("y")})}),
        Die(twoMembers, DW_TAG_class_type, {Name("c")}, {Member("a", 0), Member("b", 0)}),
        Die(complete, DW_TAG_union_type, {Name("u"), ByteSize(4)},
            {Member("a", 0), Member("b", 0)}),
        Typedef(alias, "t", complete),
        Struct(structure, "big", 8, {Member("a", 0), Member("b", 0), Member("c", 0)}),
        Die(specified, DW_TAG_variable, {Name("s"), Type(number), Declaration()}),
    };
    for (const Placed& variable : variables) {
        entries.emplace_back(
            variable.label, DW_TAG_variable,
            std::vector{Name(variable.name), Type(variable.type), Address(variable.address)});
    }
    const DieLabel completing;
    entries.emplace_back(completing, DW_TAG_variable,
                         std::vector{Specification(specified), Address(0x5000)});
    NodeTree tree(Unit(entries));
    tree.Resolve();
    for (const Placed& variable : variables) {
        EXPECT_EQ(tree[variable.label].IsRedundantDeclaration(), variable.isRedundant)
            << variable.name << '@' << variable.address;
    }
    // It has its name from what it completes, which is not a type with contents.
    EXPECT_TRUE(tree[completing].IsRedundantDeclaration());
}

TEST_F(ResolutionTest, MembersOfAnonymousMembersMoveOutwards) {
    const DieLabel structure, anonymous, outside, holder;
    NodeTree tree(Unit({
        Struct(structure, "s", 16,
               {
                   Member("a", 0),
                   Die(anonymous, DW_TAG_union_type, {ByteSize(8)},
                       {Member("first", 0), Die(DW_TAG_typedef, {Name("t")}), Member("second", 4)}),
                   Die(DW_TAG_member, {Type(anonymous), MemberOffset(8)}),
                   Member("z", 16),
                   // Nothing is left for another one.
                   Die(DW_TAG_member, {Type(anonymous), MemberOffset(20)}),
               }),
        Die(outside, DW_TAG_union_type, {ByteSize(4)}, {Member("stays", 0)}),
        Struct(holder, "h", 4, {Die(DW_TAG_member, {Type(outside), MemberOffset(0)})}),
    }));
    tree.Resolve();
    EXPECT_THAT(ChildrenOf(tree[structure]), ElementsAre("a@0", "tag23@0", "tag13@8", "z@16",
                                                         "tag13@20", "first@8", "second@12"));
    EXPECT_THAT(ChildrenOf(tree[anonymous]), ElementsAre("t@0"));
    EXPECT_THAT(ChildrenOf(tree[outside]), ElementsAre("stays@0"));
    EXPECT_THAT(ChildrenOf(tree[holder]), ElementsAre("tag13@0"));
}

TEST_F(ResolutionTest, NestedAnonymousMembersMoveAllTheWay) {
    const DieLabel structure, outer, inner;
    NodeTree tree(Unit({
        Die(structure, DW_TAG_class_type, {Name("s"), ByteSize(32)},
            {
                Die(outer, DW_TAG_structure_type, {ByteSize(16)},
                    {
                        Die(inner, DW_TAG_union_type, {ByteSize(4)}, {Member("deep", 1)}),
                        Die(DW_TAG_member, {Type(inner), MemberOffset(4)}),
                        Member("shallow", 0),
                    }),
                Die(DW_TAG_member, {Type(outer), MemberOffset(8)}),
            }),
    }));
    tree.Resolve();
    EXPECT_THAT(ChildrenOf(tree[structure]),
                ElementsAre("tag19@0", "tag13@8", "tag13@12", "shallow@8", "deep@13"));
    EXPECT_THAT(ChildrenOf(tree[outer]), ElementsAre("tag23@0"));
    EXPECT_THAT(ChildrenOf(tree[inner]), testing::IsEmpty());
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
