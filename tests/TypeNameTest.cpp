// The texts of types: the text by which equal types of different units are found, and the text for
// the dump of the tree.
#include "nodes/TypeName.h"

#include "emit/ResolutionPasses.h"
#include "nodes/ReferenceText.h"
#include "support/NodeTree.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

constexpr std::size_t sLimit = 64 * 1024;

class TypeNameTest : public testing::Test {
protected:
    /// The tree of one unit with links, so that texts can be built.
    static NodeTree& Linked(NodeTree& tree) {
        ResolveAllReferences(tree.Section());
        return tree;
    }

    static std::string TextOf(VDebugInfoNode& node, bool withRecordNumbers = false) {
        std::string text;
        TypeNameBuilder(sLimit).AppendTypeName(&node, 0, text, withRecordNumbers);
        return text;
    }

    static Die Structure(DieLabel label, std::vector<DieAttribute> attributes = {Name("S")}) {
        return Die(label, DW_TAG_structure_type, std::move(attributes));
    }

    ScopedReaderState mState;
};

TEST_F(TypeNameTest, ScopesStandInFront) {
    const DieLabel anonymous, inNamespace, inUnnamedNamespace, inFunction, inBlock, inClass,
        inAnonymousUnion, inTemplate, inUnnamedTemplate, pointerInClass, number;
    NodeTree tree(Unit({
        Die(DW_TAG_class_template, {Name("T")},
            {Structure(inTemplate),
             Die(DW_TAG_class_template, {}, {Structure(inUnnamedTemplate)})}),
        Structure(anonymous, {}),
        Die(DW_TAG_namespace, {Name("N")},
            {
                Structure(inNamespace),
                Die(DW_TAG_namespace, {}, {Structure(inUnnamedNamespace)}),
                Die(DW_TAG_subprogram, {Name("f")},
                    {
                        Structure(inFunction),
                        Die(DW_TAG_lexical_block, {}, {Structure(inBlock)}),
                    }),
            }),
        Die(DW_TAG_class_type, {Name("B")},
            {Structure(inClass, {Name("C")}), Pointer(pointerInClass, number)}),
        Die(DW_TAG_union_type, {}, {Structure(inAnonymousUnion)}),
        Int(number),
    }));
    Linked(tree);
    EXPECT_EQ(TextOf(tree[anonymous]), "<anonymouse-structural>");
    EXPECT_EQ(TextOf(tree[inNamespace]), "N::S");
    EXPECT_EQ(TextOf(tree[inUnnamedNamespace]), "N::<anonymous-namespace>::S");
    EXPECT_EQ(TextOf(tree[inFunction]), "N::f$S");
    EXPECT_EQ(TextOf(tree[inBlock]), "S");
    EXPECT_EQ(TextOf(tree[inTemplate]), "T$S");
    EXPECT_EQ(TextOf(tree[inUnnamedTemplate]), "T$<anonymous>$S");
    EXPECT_EQ(TextOf(tree[inClass]), "B::C");
    EXPECT_EQ(TextOf(tree[inAnonymousUnion]), "<anonymouse-structural>::S");
    EXPECT_EQ(TextOf(tree[pointerInClass]), "B::*int");
}

TEST_F(TypeNameTest, FarScopesAreLeftOut) {
    const auto textWithin = [](dwarf_tag scope) {
        const DieLabel innermost;
        Die scopes = Structure(innermost);
        for (int level = 7; level >= 1; --level) {
            scopes = Die(scope, {Name("n" + std::to_string(level))}, {scopes});
        }
        NodeTree tree(Unit({scopes}));
        return TextOf(tree[innermost]);
    };
    EXPECT_EQ(textWithin(DW_TAG_namespace), "n3::n4::n5::n6::n7::S");
    // A class additionally counts as a type of its own.
    for (const dwarf_tag scope :
         {DW_TAG_class_type, DW_TAG_structure_type, DW_TAG_union_type, DW_TAG_interface_type}) {
        EXPECT_EQ(textWithin(scope), "n4::n5::n6::n7::S");
    }
}

TEST_F(TypeNameTest, EveryTagHasItsText) {
    const DieLabel number;
    const std::vector<std::pair<dwarf_tag, const char*>> texts = {
        {DW_TAG_pointer_type, "*int"},
        {DW_TAG_reference_type, "&int"},
        {DW_TAG_rvalue_reference_type, "&&int"},
        {DW_TAG_const_type, "const int"},
        {DW_TAG_volatile_type, "volatile int"},
        {DW_TAG_restrict_type, "restricted int"},
        {DW_TAG_shared_type, "shared int"},
        {DW_TAG_packed_type, "packed int"},
        {DW_TAG_file_type, "filetype int"},
        {DW_TAG_thrown_type, "throw_type int"},
        {DW_TAG_ptr_to_member_type, "ptr_to_member_type(unsupported) "},
        {DW_TAG_set_type, "subrange n "},
        {DW_TAG_unspecified_type, "unspecified_type n"},
        {DW_TAG_interface_type, "n"},
        {DW_TAG_enumerator, "n"},
        {DW_TAG_subroutine_type, "int() "},
        {DW_TAG_array_type, ""},
        {DW_TAG_member, ""},
    };
    std::vector<DieLabel> types(texts.size());
    std::vector<DieLabel> templates(texts.size());
    std::vector<Die> entries{Int(number)};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        entries.emplace_back(types[index], texts[index].first,
                             std::vector{Name("n"), Type(number)});
        entries.emplace_back(templates[index], DW_TAG_class_type, std::vector{Name("T")},
                             std::vector{Die(DW_TAG_template_type_param, {Type(types[index])})});
    }
    NodeTree tree(Unit(entries));
    Linked(tree);
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::string text = texts[index].second;
        EXPECT_EQ(TextOf(tree[types[index]]), text);
        EXPECT_EQ(TextOf(tree[templates[index]]), "T<" + text + ">");
    }
}

TEST_F(TypeNameTest, ModifiersReadFromTheOutermost) {
    const DieLabel number, alias, constNumber, constPointer, voidPointer, reference, volatileAlias,
        array, arrayPointer, function, functionPointer, unnamedEnumeration;
    NodeTree tree(Unit({
        Int(number),
        Typedef(alias, "t", number),
        Die(constNumber, DW_TAG_const_type, {Type(number)}),
        Pointer(constPointer, constNumber),
        Die(voidPointer, DW_TAG_pointer_type),
        Die(volatileAlias, DW_TAG_volatile_type, {Type(alias)}),
        Die(reference, DW_TAG_rvalue_reference_type, {Type(volatileAlias)}),
        Die(array, DW_TAG_array_type, {Type(number)}),
        Pointer(arrayPointer, array),
        Die(function, DW_TAG_subroutine_type, {Type(number)},
            {Die(DW_TAG_formal_parameter, {Type(number)}), Die(DW_TAG_unspecified_parameters),
             Die(DW_TAG_formal_parameter, {Type(constPointer)})}),
        Pointer(functionPointer, function),
        Die(unnamedEnumeration, DW_TAG_enumeration_type, {ByteSize(1)}),
    }));
    Linked(tree);
    EXPECT_EQ(TextOf(tree[alias]), "t");
    EXPECT_EQ(TextOf(tree[constPointer]), "*const int");
    EXPECT_EQ(TextOf(tree[voidPointer]), "*");
    EXPECT_EQ(TextOf(tree[reference]), "&&volatile t");
    EXPECT_EQ(TextOf(tree[arrayPointer]), "*");
    EXPECT_EQ(TextOf(tree[functionPointer]), "*int(int,*const int) ");
    EXPECT_EQ(TextOf(tree[unnamedEnumeration]), "<anonymouse-enum>");
}

/// Types of one name in many places; each is made twice, as in two units over one header.
struct TypesOfOneName {
    std::vector<DieLabel> labels = std::vector<DieLabel>(14);
    DieLabel number, real;

    [[nodiscard]] std::vector<Die> Entries() const {
        const auto type = [this](std::size_t index, dwarf_tag tag = DW_TAG_structure_type,
                                 std::vector<Die> children = {}) {
            return Die(labels[index], tag, {Name("S", DW_FORM_strp)}, std::move(children));
        };
        const auto argument = [](DieLabel of) {
            return Die(DW_TAG_template_type_param, {Name("T"), Type(of)});
        };
        return {
            Die(number, DW_TAG_base_type, {Name("int")}),
            Die(real, DW_TAG_base_type, {Name("float")}),
            type(0),
            type(1, DW_TAG_typedef),
            Die(DW_TAG_namespace, {Name("N")},
                {type(2), Die(DW_TAG_namespace, {Name("N")}, {type(3)}),
                 Die(DW_TAG_namespace, {}, {type(4)})}),
            Die(DW_TAG_subprogram, {Name("N")}, {type(5)}),
            Die(DW_TAG_class_type, {Name("N")}, {type(6)}),
            Die(DW_TAG_class_type, {Name("V")}, {argument(number), type(7)}),
            Die(DW_TAG_class_type, {Name("V")}, {argument(real), type(8)}),
            type(9, DW_TAG_structure_type, {argument(number)}),
            type(10, DW_TAG_structure_type, {argument(real)}),
            Die(labels[11], DW_TAG_typedef),
            Die(labels[12], DW_TAG_structure_type),
            Die(DW_TAG_class_type, {Name("V<int>")}, {argument(number), type(13)}),
        };
    }
};

TEST_F(TypeNameTest, PlainlySameTypesHaveOneText) {
    const TypesOfOneName first;
    const TypesOfOneName second;
    NodeTree tree(DwarfSections()
                      .Unit({Die(DW_TAG_compile_unit, {Name("a.c")}, first.Entries())})
                      .Unit({Die(DW_TAG_compile_unit, {Name("b.c")}, second.Entries())}));
    Linked(tree);
    TypeNameBuilder builder(sLimit);
    const auto arePlainlySame = [&](std::size_t one, std::size_t other) {
        return builder.AreCertainlySame(tree[second.labels[one]], tree[first.labels[other]]);
    };
    for (std::size_t one = 0; one < first.labels.size(); ++one) {
        const bool hasArguments = one >= 7 && one <= 10;
        EXPECT_EQ(arePlainlySame(one, one), !hasArguments) << one;
        for (std::size_t other = 0; other < first.labels.size(); ++other) {
            if (other != one) {
                EXPECT_FALSE(arePlainlySame(one, other)) << one << " " << other;
            }
        }
        EXPECT_EQ(TextOf(tree[second.labels[one]]), TextOf(tree[first.labels[one]])) << one;
    }
    // A class with the name of a namespace has the same text, which isn't plain.
    EXPECT_EQ(TextOf(tree[first.labels[6]]), TextOf(tree[first.labels[2]]));
}

TEST_F(TypeNameTest, ScopesThatEnterNoTextAreNotCompared) {
    const auto nested = [](DieLabel innermost, std::vector<std::string> names) {
        Die scopes = Structure(innermost);
        for (const std::string& name : names) {
            scopes = Die(DW_TAG_namespace, {Name(name)}, {scopes});
        }
        return scopes;
    };
    const DieLabel type, farOther, nearOther, less;
    NodeTree tree(Unit({
        nested(type, {"a", "b", "c", "d", "e", "f"}),
        nested(farOther, {"a", "b", "c", "d", "e", "g", "h"}),
        nested(nearOther, {"a", "b", "c", "d", "f"}),
        nested(less, {"a", "b", "c", "d"}),
    }));
    TypeNameBuilder builder(sLimit);
    EXPECT_TRUE(builder.AreCertainlySame(tree[type], tree[farOther]));
    EXPECT_EQ(TextOf(tree[type]), TextOf(tree[farOther]));
    EXPECT_FALSE(builder.AreCertainlySame(tree[type], tree[nearOther]));
    EXPECT_FALSE(builder.AreCertainlySame(tree[type], tree[less]));
}

TEST_F(TypeNameTest, ArgumentsInTheNameAreForgottenWhenTypesAreCompared) {
    const DieLabel number, one, other, alias;
    const auto argument = [&] {
        return Die(DW_TAG_template_type_param, {Name("T"), Type(number)});
    };
    NodeTree tree(Unit({
        Int(number),
        Die(one, DW_TAG_class_type, {Name("vec<int>", DW_FORM_strp)}, {argument()}),
        Die(other, DW_TAG_class_type, {Name("vec<int>", DW_FORM_strp)}, {argument()}),
        Die(alias, DW_TAG_typedef, {Name("vec<int>", DW_FORM_strp)}, {argument()}),
    }));
    Linked(tree);
    TypeNameBuilder builder(sLimit);
    EXPECT_TRUE(builder.AreCertainlySame(tree[one], tree[other]));
    EXPECT_FALSE(tree[one].HasTemplateParameters());
    EXPECT_FALSE(tree[other].HasTemplateParameters());
    EXPECT_TRUE(builder.AreCertainlySame(tree[alias], tree[alias]));
    EXPECT_TRUE(tree[alias].HasTemplateParameters()) << "only classes are names of instances";
}

TEST_F(TypeNameTest, LongChainsAreCut) {
    std::vector<DieLabel> labels(40);
    std::vector<Die> pointers;
    for (std::size_t index = 0; index < labels.size(); ++index) {
        pointers.emplace_back(labels[index], DW_TAG_pointer_type,
                              std::vector{Type(labels[(index + 1) % labels.size()])});
    }
    NodeTree tree(Unit(pointers));
    EXPECT_EQ(TextOf(Linked(tree)[labels[0]]), std::string(33, '*'));
}

TEST_F(TypeNameTest, TemplateArgumentsStandBehind) {
    const DieLabel number, function, vector, named, nested;
    NodeTree tree(Unit({
        Int(number),
        Die(function, DW_TAG_subroutine_type, {Type(number)},
            {Die(DW_TAG_formal_parameter, {Type(number)})}),
        Die(vector, DW_TAG_class_type, {Name("vec")},
            {
                Die(DW_TAG_member, {Name("m"), Type(number)}),
                Die(DW_TAG_template_type_param, {Name("T"), Type(number)}),
                Die(DW_TAG_template_value_param, {Name("N"), Type(number), ConstValue(-5)}),
            }),
        Die(named, DW_TAG_class_type, {Name("vec<int>")},
            {Die(DW_TAG_template_type_param, {Name("T"), Type(number)})}),
        Die(nested, DW_TAG_class_type, {Name("pair")},
            {Die(DW_TAG_template_type_param, {Name("A"), Type(vector)}),
             Die(DW_TAG_template_type_param, {Name("B"), Type(function)})}),
    }));
    Linked(tree);
    EXPECT_EQ(TextOf(tree[vector]), "vec<int,-5>");
    EXPECT_TRUE(tree[vector].HasTemplateParameters());
    EXPECT_EQ(TextOf(tree[named]), "vec<int>");
    EXPECT_FALSE(tree[named].HasTemplateParameters());
    EXPECT_EQ(TextOf(tree[nested]), "pair<vec<int,-5>,int(int) >");
    const auto record = [&](DieLabel label) {
        return "(" + std::to_string(tree[label].GetTagRecord()) + ")";
    };
    EXPECT_EQ(TextOf(tree[vector], true),
              "vec" + record(vector) + "<T = int" + record(number) + ",N = -5>");
}

TEST_F(TypeNameTest, ArgumentsAreFoundBehindManyOtherChildren) {
    const DieLabel number, big;
    std::vector<Die> children(100, Die(DW_TAG_member, {Name("m"), Type(number)}));
    children.insert(children.begin() + 40,
                    Die(DW_TAG_template_type_param, {Name("T"), Type(number)}));
    children.emplace_back(DW_TAG_template_value_param, std::vector{ConstValue(7)});
    NodeTree tree(Unit({Int(number), Die(big, DW_TAG_class_type, {Name("big")}, children)}));
    Linked(tree);
    std::string text;
    TypeNameBuilder builder(sLimit);
    builder.AppendTypeName(&tree[big], 0, text, false);
    builder.AppendTypeName(&tree[big], 0, text, false);
    EXPECT_EQ(text, "big<int,7>big<int,7>");
    text.clear();
    builder.SetLimit(5);
    builder.AppendTypeName(&tree[big], 0, text, false);
    EXPECT_EQ(text, "big<int>");
}

TEST_F(TypeNameTest, ReferencesReadInwards) {
    const DieLabel number, structure, constStructure, array, pointer, constPointer, packed, alias,
        constNothing, declared, variable, unresolved;
    NodeTree tree(Unit({
        Int(number),
        Die(DW_TAG_namespace, {Name("N")}, {Structure(structure, {Name("S"), ByteSize(4)})}),
        Die(constStructure, DW_TAG_const_type, {Type(structure)}),
        Die(array, DW_TAG_array_type, {Type(constStructure)},
            {Die(DW_TAG_subrange_type, {UpperBound(1)}),
             Die(DW_TAG_subrange_type, {UpperBound(2)})}),
        Pointer(pointer, array),
        Typedef(alias, "t", pointer),
        Die(packed, DW_TAG_packed_type, {Name("p"), Type(alias)}),
        Die(constNothing, DW_TAG_const_type),
        Die(DW_TAG_class_type, {Name("C")},
            {Die(declared, DW_TAG_variable, {Name("s"), Type(number), Declaration()})}),
        Die(variable, DW_TAG_variable, {Name("v"), Type(pointer), Specification(declared)}),
        Die(unresolved, DW_TAG_variable, {Name("u"), Number(DW_AT_type, DW_FORM_ref4, 0x7777)}),
    }));
    tree.Resolve();
    EXPECT_EQ(GetReferenceText(tree[variable], 0), "const (nsp>)N::(<struct) S[2][3]* ");
    EXPECT_EQ(GetReferenceText(tree[variable], 1),
              "(<base_type) int(class>)C::s;// variable specification ");
    EXPECT_EQ(GetReferenceText(tree[packed], 0), "(<typedef) t");
    EXPECT_EQ(GetReferenceText(tree[constNothing], 0), "<no-reference>");
    EXPECT_EQ(GetReferenceText(tree[unresolved], 0),
              " <referenced debug info node not found/resolved yet!!!>");
    EXPECT_EQ(GetReferenceText(tree[unresolved], 1),
              " <referenced debug info node not found/resolved yet!!!>");
}

TEST_F(TypeNameTest, TypesAtTheEndOfAReferenceAreLabelled) {
    for (const auto& [tag, label] :
         {std::pair{DW_TAG_class_type, "(<class) "}, std::pair{DW_TAG_enumeration_type, "(<enum) "},
          std::pair{DW_TAG_structure_type, "(<struct) "}, std::pair{DW_TAG_typedef, "(<typedef) "},
          std::pair{DW_TAG_union_type, "(<union) "}, std::pair{DW_TAG_base_type, "(<base_type) "},
          std::pair{DW_TAG_interface_type, "(<interface) "}}) {
        const DieLabel named, unnamed, ofNamed, ofUnnamed;
        NodeTree tree(Unit({
            Die(named, tag, {Name("n"), ByteSize(4)}),
            Die(unnamed, tag, {ByteSize(4)}),
            Die(ofNamed, DW_TAG_variable, {Type(named)}),
            Die(ofUnnamed, DW_TAG_variable, {Type(unnamed)}),
        }));
        Linked(tree);
        EXPECT_EQ(GetReferenceText(tree[ofNamed], 0), label + std::string("n"));
        EXPECT_EQ(GetReferenceText(tree[ofUnnamed], 0), label + std::string("<anonymous>"));
    }
}

TEST_F(TypeNameTest, OtherTagsReplaceWhatStandsBeforeThem) {
    const DieLabel constNothing, packed, volatilePacked, pointer, constPointer, variable, endsEarly;
    NodeTree tree(Unit({
        Die(constNothing, DW_TAG_const_type),
        Die(packed, DW_TAG_packed_type, {Name("p"), Type(constNothing)}),
        Die(volatilePacked, DW_TAG_volatile_type, {Type(packed)}),
        Pointer(pointer, volatilePacked),
        Die(constPointer, DW_TAG_const_type, {Type(pointer)}),
        Die(variable, DW_TAG_variable, {Name("v"), Type(constPointer)}),
        Die(endsEarly, DW_TAG_variable, {Name("w"), Type(packed)}),
    }));
    tree.Resolve();
    EXPECT_EQ(GetReferenceText(tree[variable], 0), "const <DW_TAG_packed_type> p const * ");
    EXPECT_EQ(GetReferenceText(tree[endsEarly], 0), "<DW_TAG_packed_type> p const ");
}

TEST_F(TypeNameTest, ScopeTextTellsEverySecondLevel) {
    const DieLabel inOne, inThree, inStructure, inUnnamed, inBlock;
    NodeTree tree(Unit({
        Die(DW_TAG_namespace, {Name("N1")},
            {
                Structure(inOne),
                Die(DW_TAG_namespace, {Name("N2")},
                    {Die(DW_TAG_namespace, {Name("N3")}, {Structure(inThree)})}),
                Die(DW_TAG_subprogram, {Name("f")},
                    {Die(DW_TAG_lexical_block, {}, {Structure(inBlock)})}),
            }),
        Die(DW_TAG_structure_type, {Name("O")}, {Structure(inStructure)}),
        Die(DW_TAG_namespace, {}, {Structure(inUnnamed)}),
    }));
    EXPECT_EQ(GetScopeText(tree[inOne]), "(nsp>)N1::");
    EXPECT_EQ(GetScopeText(tree[inThree]), "(nsp>)N1::(nsp>)N3::");
    EXPECT_EQ(GetScopeText(tree[inStructure]), "(DW_TAG_structure_type>)O::");
    EXPECT_EQ(GetScopeText(tree[inUnnamed]), "(nsp>)<anonymous>::");
    EXPECT_EQ(GetScopeText(tree[inBlock]), "(nsp>)N1::");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
