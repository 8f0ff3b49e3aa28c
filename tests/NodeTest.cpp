// What single nodes answer once their tree is linked: names, sizes, dimensions and the ends of
// chains.
#include "emit/ReferenceCycles.h"
#include "emit/ResolutionPasses.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "support/NodeTree.h"
#include "support/ScopedReaderState.h"
#include "support/UsualEntries.h"

#include <gtest/gtest.h>

using namespace Tessel::Norn::Brindle::Reader::DWARF;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class NodeTest : public testing::Test {
protected:
    /// The name for the host; "untouched" if the node doesn't write it.
    static std::string EntryName(NodeTree& tree, DieLabel label) {
        std::string_view name = "untouched";
        tree[label].GetEntryName(name, tree.Section());
        return std::string(name);
    }

    ScopedReaderState mState;
};

TEST_F(NodeTest, NamesForTheHost) {
    const DieLabel pointer, declared, completes, nameless, completesNameless, linked, empty;
    NodeTree tree(Unit({
        Die(pointer, DW_TAG_pointer_type, {Name("p")}),
        Die(declared, DW_TAG_variable, {Name("declared"), Declaration()}),
        Die(completes, DW_TAG_variable, {Specification(declared), LinkageName("_Z8declared")}),
        Die(nameless, DW_TAG_variable, {Declaration()}),
        Die(completesNameless, DW_TAG_variable, {Specification(nameless)}),
        Die(linked, DW_TAG_variable, {LinkageName("_Z6linked")}),
        Die(empty, DW_TAG_union_type, {Name("")}),
    }));
    ResolveAllReferences(tree.Section());
    EXPECT_TRUE(tree[pointer].HasNameAttribute());
    EXPECT_EQ(tree[pointer].GetName(), "");
    EXPECT_EQ(EntryName(tree, pointer), "<unnamed-pointer-type>");
    EXPECT_TRUE(tree[pointer].HasAnonymousName());
    EXPECT_EQ(EntryName(tree, completes), "declared");
    EXPECT_FALSE(tree[completes].HasAnonymousName());
    EXPECT_EQ(EntryName(tree, completesNameless), "untouched");
    EXPECT_EQ(EntryName(tree, linked), "_Z6linked");
    EXPECT_FALSE(tree[linked].HasAnonymousName());
    EXPECT_EQ(EntryName(tree, empty), "<unnamed-union>");
    EXPECT_TRUE(tree[empty].HasAnonymousName());
}

TEST_F(NodeTest, NamesOfWhatHasNone) {
    const std::vector<std::pair<dwarf_tag, const char*>> names = {
        {DW_TAG_namespace, "<unnamed-namespace>"},
        {DW_TAG_variable, "<unnamed-variable>"},
        {DW_TAG_base_type, "<unnamed-base-type>"},
        {DW_TAG_pointer_type, "<unnamed-pointer-type>"},
        {DW_TAG_reference_type, "<unnamed-reference-type>"},
        {DW_TAG_enumeration_type, "<unnamed-enum>"},
        {DW_TAG_typedef, "<unnamed-typedef>"},
        {DW_TAG_class_type, "<unnamed-class>"},
        {DW_TAG_structure_type, "<unnamed-struct>"},
        {DW_TAG_union_type, "<unnamed-union>"},
        {DW_TAG_member, "<unnamed-member>"},
        {DW_TAG_subroutine_type, "<unnamed-subroutine-type>"},
        {DW_TAG_subprogram, "<unnamed-subprogram>"},
        {DW_TAG_template_type_param, "<unnamed-template-type-paramter>"},
        {DW_TAG_template_value_param, "<unnamed-template-value-param>"},
        {DW_TAG_class_template, "<unnamed-class-template>"},
        {DW_TAG_compile_unit, "<unnamed-compile-unit>"},
        {DW_TAG_enumerator, "<unnamed-entry>"},
        {DW_TAG_inheritance, "<unnamed-entry>"},
        {DW_TAG_array_type, "<unnamed-entry>"},
        {DW_TAG_lexical_block, "<unnamed-entry>"},
        {DW_TAG_subrange_type, "<unnamed-entry>"},
        {DW_TAG_const_type, "<unnamed-entry>"},
        {dwarf_tag{0x4105}, "<unnamed-entry>"},
    };
    std::vector<DieLabel> labels(names.size());
    std::vector<Die> entries;
    for (std::size_t index = 0; index < names.size(); ++index) {
        entries.emplace_back(labels[index], names[index].first, std::vector{ByteSize(4)});
    }
    NodeTree tree(Unit(entries));
    for (std::size_t index = 0; index < names.size(); ++index) {
        EXPECT_EQ(EntryName(tree, labels[index]), names[index].second);
        EXPECT_TRUE(tree[labels[index]].HasAnonymousName());
    }
}

TEST_F(NodeTest, BlocksAreNumberedByTheirFunctionOrOuterBlock) {
    std::vector<DieLabel> block(7);
    const auto entry = [&](std::size_t index, std::vector<Die> children) {
        return Die(block[index], DW_TAG_lexical_block, {}, std::move(children));
    };
    NodeTree tree(Unit({
        Die(DW_TAG_subprogram, {Name("f")},
            {entry(0, {entry(1, {entry(2, {})})}), entry(3, {entry(4, {})})}),
        entry(5, {entry(6, {})}),
    }));
    const auto nameOf = [&](std::size_t index) {
        std::string name;
        tree[block[index]].GetLexicalBlockName(name);
        return name;
    };
    EXPECT_EQ(nameOf(1), "1");
    EXPECT_EQ(nameOf(4), "2");
    EXPECT_EQ(nameOf(2), "1");
    EXPECT_EQ(nameOf(6), "1");
    // Blocks without a function are numbered through the whole process.
    const int first = std::stoi(nameOf(5));
    EXPECT_EQ(std::stoi(nameOf(5)), first + 1);
}

TEST_F(NodeTest, ReferencesToItselfAndToNothing) {
    const DieLabel self, missing;
    NodeTree tree(Unit({
        Die(self, DW_TAG_class_type, {Type(self), Specification(self)}),
        Die(missing, DW_TAG_const_type, {Number(DW_AT_type, DW_FORM_ref4, 0x7777)}),
    }));
    ResolveAllReferences(tree.Section());
    EXPECT_EQ(tree[self].GetTypeNode(), nullptr);
    EXPECT_EQ(tree[self].GetTypeReferenceOffset(), 0U);
    EXPECT_EQ(tree[self].GetSpecificationNode(), nullptr);
    EXPECT_FALSE(tree[self].GetSpecificationAttribute().IsDefined());
    EXPECT_EQ(tree[missing].GetTypeNode(), nullptr);
    EXPECT_EQ(tree[missing].GetTypeReferenceOffset(), 0x7777U);
}

TEST_F(NodeTest, CyclesAreCutAtTheirFirstNodeWhoeverLeadsIntoThem) {
    const DieLabel entry, first, second, third, lateEntry;
    NodeTree tree(Unit({
        Die(entry, DW_TAG_typedef, {Type(second)}),
        Die(first, DW_TAG_const_type, {Type(second)}),
        Die(second, DW_TAG_volatile_type, {Type(third)}),
        Pointer(third, first),
        Die(lateEntry, DW_TAG_typedef, {Type(third)}),
    }));
    ResolveAllReferences(tree.Section());
    BreakAllReferenceCycles(tree.Section());
    EXPECT_EQ(tree[entry].GetTypeNode(), &tree[second]);
    EXPECT_EQ(tree[first].GetTypeNode(), nullptr);
    EXPECT_EQ(tree[first].GetTypeReferenceOffset(), 0U);
    EXPECT_EQ(tree[second].GetTypeNode(), &tree[third]);
    EXPECT_EQ(tree[third].GetTypeNode(), &tree[first]);
    EXPECT_EQ(tree[lateEntry].GetTypeNode(), &tree[third]);
}

TEST_F(NodeTest, CyclesThroughSpecifications) {
    const DieLabel number, typed, other, onlySpecified, mixed;
    NodeTree tree(Unit({
        Int(number),
        // A cycle of specifications; the type leads out of it and is kept.
        Die(typed, DW_TAG_class_type, {Type(number), Specification(other)}),
        Die(other, DW_TAG_class_type, {Specification(typed)}),
        // A cycle of one specification and one type is cut at the node with the type.
        Die(onlySpecified, DW_TAG_class_type, {Specification(mixed)}),
        Die(mixed, DW_TAG_class_type, {Type(onlySpecified), Specification(typed)}),
    }));
    ResolveAllReferences(tree.Section());
    BreakAllReferenceCycles(tree.Section());
    EXPECT_EQ(tree[typed].GetTypeNode(), &tree[number]);
    EXPECT_EQ(tree[typed].GetSpecificationNode(), nullptr);
    EXPECT_EQ(tree[other].GetSpecificationNode(), &tree[typed]);
    EXPECT_EQ(tree[onlySpecified].GetSpecificationNode(), &tree[mixed]);
    EXPECT_EQ(tree[mixed].GetTypeNode(), nullptr);
    EXPECT_EQ(tree[mixed].GetSpecificationNode(), nullptr);
}

TEST_F(NodeTest, SizesComeFromTypes) {
    const DieLabel number, constNothing, constConstNothing, function, variable, pointer,
        shortPointer, address, structure, array, alias;
    NodeTree tree(Unit({
        // Before its type, so that a size is requested before it exists.
        Typedef(alias, "t", array),
        Int(number),
        Die(constNothing, DW_TAG_const_type),
        Die(constConstNothing, DW_TAG_const_type, {Type(constNothing)}),
        Die(function, DW_TAG_subprogram, {Name("f"), Type(number)}),
        Die(variable, DW_TAG_variable, {Name("v"), Type(number)}),
        Pointer(pointer, structure),
        Die(shortPointer, DW_TAG_pointer_type, {Type(structure), ByteSize(2)}),
        Die(address, DW_TAG_base_type, {Name("addr"), Encoding(DW_ATE_address)}),
        Struct(structure, "s", 12),
        Die(array, DW_TAG_array_type, {Type(structure)},
            {Die(DW_TAG_subrange_type, {UpperBound(1)}),
             Die(DW_TAG_subrange_type, {UpperBound(2)})}),
    }));
    tree.Resolve();
    EXPECT_FALSE(tree[constNothing].HasByteSize());
    EXPECT_TRUE(tree[constConstNothing].HasByteSize());
    EXPECT_TRUE(tree[constConstNothing].IsByteSizeFromTypeReference());
    EXPECT_EQ(tree[constConstNothing].GetByteSize(), 0);
    EXPECT_FALSE(tree[function].HasByteSize());
    EXPECT_EQ(tree[variable].GetByteSize(), 4);
    EXPECT_EQ(tree[pointer].GetByteSize(), 4);
    EXPECT_EQ(tree[shortPointer].GetByteSize(), 2);
    EXPECT_FALSE(tree[shortPointer].IsByteSizeFromTypeReference());
    EXPECT_EQ(tree[address].GetEncoding(), std::uint32_t{DW_ATE_signed});
    EXPECT_TRUE(tree[address].HasByteSize());
    EXPECT_EQ(tree[address].GetByteSize(), 0);
    EXPECT_EQ(tree[array].GetByteSize(), 72);
    EXPECT_EQ(tree[alias].GetByteSize(), 72);
}

TEST_F(NodeTest, SizesComeThroughChainsOfAnyLength) {
    constexpr std::size_t sLength = 350;
    std::vector<DieLabel> labels(sLength);
    std::vector<Die> entries;
    for (std::size_t index = 0; index + 1 < sLength; ++index) {
        entries.emplace_back(labels[index], DW_TAG_const_type,
                             std::vector{Type(labels[index + 1])});
    }
    entries.push_back(Int(labels.back()));
    NodeTree tree(Unit(entries));
    tree.Resolve();
    for (const DieLabel label : labels) {
        EXPECT_EQ(tree[label].GetByteSize(), 4);
    }
}

TEST_F(NodeTest, DimensionsOfArrays) {
    const DieLabel number, nine, inRegister;
    const auto referring = [](std::uint32_t attribute, DieLabel target) {
        return Reference(attribute, DW_FORM_ref4, target);
    };
    struct Case {
        std::vector<std::vector<DieAttribute>> subranges;
        std::vector<std::uint32_t> dimensions;
        std::string text;
    };
    const std::vector<Case> cases = {
        {{{UpperBound(1)}, {UpperBound(2)}}, {2, 3}, "[2][3]"},
        {{{LowerBound(1), UpperBound(4)}}, {4}, "[4]"},
        {{{LowerBound(-2), UpperBound(2)}}, {5}, "[5]"},
        {{{Count(5)}}, {5}, "[5]"},
        {{{UpperBound(1), Count(5)}}, {2}, "[2]"},
        {{}, {0}, "[0]"},
        {{{}, {UpperBound(1)}}, {2}, "[2]"},
        {{{UpperBound(-1)}, {Count(0)}}, {0}, "[0]"},
        {{{UpperBound(0x7FFFFFFF)}}, {0}, "[0]"},
        {{{referring(DW_AT_upper_bound, nine)}}, {10}, "[10]"},
        {{{referring(DW_AT_upper_bound, inRegister), Count(3)}}, {3}, "[3]"},
        {{{referring(DW_AT_upper_bound, number)}}, {0}, "[0]"},
        {{{LowerBound(1), referring(DW_AT_upper_bound, nine)}, {Count(2)}}, {9, 2}, "[9][2]"},
        {{{referring(DW_AT_lower_bound, nine), UpperBound(18)}}, {10}, "[10]"},
        {{{referring(DW_AT_lower_bound, inRegister), UpperBound(18)}}, {19}, "[19]"},
        {{{referring(DW_AT_count, nine)}}, {9}, "[9]"},
        {{{referring(DW_AT_count, inRegister)}}, {0}, "[0]"},
    };
    std::vector<Die> entries{
        Int(number),
        Die(nine, DW_TAG_variable, {Name("nine"), Address(9)}),
        Die(inRegister, DW_TAG_variable, {Name("r"), Location({{DW_OP_reg0}})}),
    };
    std::vector<DieLabel> labels(cases.size());
    for (std::size_t index = 0; index < cases.size(); ++index) {
        std::vector<Die> subranges;
        for (const std::vector<DieAttribute>& attributes : cases[index].subranges) {
            subranges.emplace_back(DW_TAG_subrange_type, attributes);
        }
        entries.emplace_back(labels[index], DW_TAG_array_type,
                             std::vector{Type(number), ByteSize(77)}, subranges);
    }
    NodeTree tree(Unit(entries));
    tree.Resolve();
    for (std::size_t index = 0; index < cases.size(); ++index) {
        VDebugInfoNodeArray* array = tree[labels[index]].AsArrayNode();
        ASSERT_NE(array, nullptr);
        EXPECT_EQ(array->GetDimensions(), cases[index].dimensions) << index;
        EXPECT_EQ(array->GetArrayDimensionText(), cases[index].text) << index;
        EXPECT_EQ(array->GetByteSize(), 77) << index;
    }
}

TEST_F(NodeTest, BitOffsetsCountFromTheLeastSignificantBit) {
    const DieLabel number, ofType, ofStorage, beforeStorage;
    const auto bitField = [&](DieLabel label, std::vector<DieAttribute> attributes) {
        attributes.push_back(Type(number));
        attributes.push_back(BitSize(3));
        return Die(label, DW_TAG_member, std::move(attributes));
    };
    NodeTree tree(Unit({
        Int(number),
        bitField(ofType, {BitOffset(2)}),
        bitField(ofStorage, {BitOffset(2), ByteSize(1)}),
        bitField(beforeStorage, {BitOffset(30)}),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[ofType].GetBitOffset(), 27U);
    EXPECT_EQ(tree[ofStorage].GetBitOffset(), 3U);
    EXPECT_EQ(tree[beforeStorage].GetBitOffset(), 30U);
}

// Sizes of parameters are skipped if nothing can ask for them.
TEST_F(NodeTest, AParameterThatIsNamedAsATypeLendsItsSize) {
    const DieLabel pointer, parameter, argument, ofParameter, ofArgument;
    const auto bitField = [](DieLabel label, DieLabel type) {
        return Die(label, DW_TAG_member, {Type(type), ByteSize(0), BitSize(3), BitOffset(2)});
    };
    NodeTree tree(Unit({
        Die(pointer, DW_TAG_pointer_type, {ByteSize(2)}),
        Die(DW_TAG_subroutine_type, {}, {Die(parameter, DW_TAG_formal_parameter, {Type(pointer)})}),
        Die(DW_TAG_class_type, {Name("c")},
            {Die(argument, DW_TAG_template_type_param, {Name("T"), Type(pointer)})}),
        bitField(ofParameter, parameter),
        bitField(ofArgument, argument),
    }));
    tree.Resolve();
    EXPECT_EQ(tree[ofParameter].GetBitOffset(), 11U);
    EXPECT_EQ(tree[ofArgument].GetBitOffset(), 11U);
}

// The place of a bit field without storage depends on which sizes in its type's chain are already
// settled, whoever settled them.
TEST_F(NodeTest, EveryParameterSettlesTheSizeOfItsType) {
    const DieLabel pointer, alias, parameter, field;
    const auto offsetBehind = [&](Die first) {
        NodeTree tree(Unit({
            std::move(first),
            Die(field, DW_TAG_member, {Type(alias), ByteSize(0), BitSize(3), BitOffset(2)}),
            Typedef(alias, "t", pointer),
            Die(pointer, DW_TAG_pointer_type, {ByteSize(2)}),
        }));
        tree.Resolve();
        return tree[field].GetBitOffset();
    };
    const Die ofAlias(parameter, DW_TAG_formal_parameter, {Name("p"), Type(alias)});
    const Die ofParameter(DW_TAG_formal_parameter, {Name("q"), Type(parameter)});
    EXPECT_EQ(offsetBehind(Die(parameter, DW_TAG_subprogram, {Name("f")})), 27U);
    EXPECT_EQ(offsetBehind(Die(DW_TAG_subprogram, {Name("f")}, {ofAlias})), 11U);
    EXPECT_EQ(offsetBehind(Die(DW_TAG_subprogram, {Name("f")}, {ofParameter, ofAlias})), 11U);
    EXPECT_EQ(offsetBehind(Die(DW_TAG_subroutine_type, {}, {ofAlias})), 11U);
    EXPECT_EQ(offsetBehind(Die(DW_TAG_class_type, {Name("c")},
                               {Die(DW_TAG_template_type_param, {Name("T"), Type(alias)})})),
              11U);
}

TEST_F(NodeTest, EndsOfChains) {
    const DieLabel number, alias, pointer, byType, bySpecification, throughPointer, structure,
        structureAlias, nothing;
    NodeTree tree(Unit({
        Int(number),
        Typedef(alias, "t", number),
        Pointer(pointer, number),
        Die(nothing, DW_TAG_const_type),
        Die(byType, DW_TAG_enumeration_type, {ByteSize(4), Type(alias)}),
        Die(bySpecification, DW_TAG_enumeration_type,
            {ByteSize(4), Type(nothing), Specification(alias)}),
        Die(throughPointer, DW_TAG_enumeration_type, {ByteSize(4), Type(pointer)}),
        Die(structure, DW_TAG_structure_type, {Name("s"), Type(number)}),
        Typedef(structureAlias, "u", structure),
    }));
    ResolveAllReferences(tree.Section());
    EXPECT_EQ(tree[byType].GetBaseTypeNode(), &tree[number]);
    EXPECT_EQ(tree[bySpecification].GetBaseTypeNode(), &tree[number]);
    EXPECT_EQ(tree[throughPointer].GetBaseTypeNode(), nullptr);
    EXPECT_EQ(tree[structureAlias].FindStructuredTypeNode(), &tree[structure]);
    EXPECT_EQ(tree[alias].FindStructuredTypeNode(), &tree[number]);
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
