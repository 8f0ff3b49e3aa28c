// Decoding of debug entries: forms, attributes and the walk over a unit, observed on the resulting
// nodes.
#include "diagnostics/ErrorState.h"
#include "dwarf/ShortTexts.h"
#include "dwarf/codes/DwarfNames.h"
#include "nodes/VDebugInfoNodeArray.h"
#include "support/DwarfSections.h"
#include "support/NodeTree.h"
#include "support/ScopedReaderState.h"
#include "support/SectionRun.h"
#include "support/UsualEntries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

using namespace Tessel::Norn::Brindle::Reader::DWARF;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Tessel::Norn::Brindle::Tests {
namespace {

class DwarfDecodingTest : public testing::Test {
protected:
    ScopedReaderState mState;
};

/// The outline of the entries of one unit.
std::vector<std::string> OutlineOf(const DwarfSections& sections) {
    SectionRun run(ElfImage() + sections);
    EXPECT_TRUE(run.Read());
    return run.Outline();
}

/// The node of one entry, decoded as a child of a unit's entry.
class DecodedEntry {
public:
    DecodedEntry(dwarf_tag tag, std::vector<DieAttribute> attributes, DwarfUnit unit = {},
                 DwarfSections sections = DwarfSections(), const ElfImage& image = ElfImage()) {
        const DieLabel label;
        unit.entries = {UnitDie({Die(label, tag, std::move(attributes))})};
        sections.Unit(unit);
        mRun = std::make_unique<SectionRun>(image + sections);
        EXPECT_TRUE(mRun->Read());
        mNode = &mRun->At(sections.OffsetOf(label));
    }

    const VDebugInfoNode* operator->() const { return mNode; }
    [[nodiscard]] const VDebugInfoNodeSubrange& Subrange() const {
        return dynamic_cast<const VDebugInfoNodeSubrange&>(*mNode);
    }

private:
    std::unique_ptr<SectionRun> mRun;
    const VDebugInfoNode* mNode;
};

struct FormCase {
    std::uint32_t form;
    std::uint64_t value;
    std::uint32_t decoded;
};

// The attribute after the tested one shows that exactly the form's bytes were consumed.
void ExpectNumbers(const std::vector<FormCase>& cases, const DwarfUnit& unit,
                   ByteOrder byteOrder = ByteOrder::Little) {
    for (const FormCase& example : cases) {
        SCOPED_TRACE(testing::Message() << "form " << example.form);
        const DecodedEntry entry(
            DW_TAG_enumerator,
            {Number(DW_AT_const_value, example.form, example.value), Name("behind")}, unit,
            DwarfSections(byteOrder), ElfImage(ElfClass::Class64, byteOrder));
        EXPECT_EQ(entry->GetConstValueAttribute().mValue, example.decoded);
        EXPECT_EQ(entry->GetConstValueAttribute().mFlags, 0x0021);
        EXPECT_EQ(entry->GetName(), "behind");
    }
}

TEST_F(DwarfDecodingTest, FormsOfNumbers) {
    const std::vector<FormCase> cases = {
        {DW_FORM_data1, 0xFE, 0xFE},
        {DW_FORM_data2, 0xFEDC, 0xFEDC},
        {DW_FORM_data4, 0xFEDCBA98, 0xFEDCBA98},
        {DW_FORM_data8, 0x1'0000'0001, 1},
        {DW_FORM_flag, 2, 2},
        {DW_FORM_flag_present, 0, 1},
        {DW_FORM_sdata, ~std::uint64_t{0}, 0xFFFFFFFF},
        {DW_FORM_sdata, 63, 63},
        {DW_FORM_udata, 624485, 624485},
        {DW_FORM_ref_sig8, 0x1122334455667788, 0x55667788},
        {DW_FORM_addr, 0x12345678, 0x12345678},
        {DW_FORM_sec_offset, 0x12345678, 0x12345678},
    };
    for (const ByteOrder byteOrder : {ByteOrder::Little, ByteOrder::Big}) {
        ExpectNumbers(cases, {}, byteOrder);
        ExpectNumbers(cases, {.addressSize = 8, .is64BitDwarf = true}, byteOrder);
    }
}

TEST_F(DwarfDecodingTest, AddressesTakeTheWidthOfTheUnit) {
    ExpectNumbers({{DW_FORM_addr, 0x12, 0x12}}, {.addressSize = 1});
    ExpectNumbers({{DW_FORM_addr, 0x1234, 0x1234}}, {.addressSize = 2});
    ExpectNumbers({{DW_FORM_addr, 0x9'1234'5678, 0x12345678}}, {.addressSize = 8});
    // A width that no target has consumes no bytes, width 0 consumes four.
    const DecodedEntry odd(DW_TAG_enumerator,
                           {Block(DW_AT_const_value, DW_FORM_addr, ""), Name("behind")},
                           {.addressSize = 3});
    EXPECT_EQ(odd->GetConstValueAttribute().mValue, 0U);
    EXPECT_EQ(odd->GetName(), "behind");
    const DecodedEntry unset(
        DW_TAG_enumerator,
        {Block(DW_AT_const_value, DW_FORM_addr, {"\4\3\2\1", 4}), Name("behind")},
        {.addressSize = 0});
    EXPECT_EQ(unset->GetConstValueAttribute().mValue, 0x01020304U);
}

TEST_F(DwarfDecodingTest, BlocksArePassedAndGiveTheOffsetBehindThem) {
    const std::string bytes(200, '\x81');
    for (const std::uint32_t form :
         {DW_FORM_block, DW_FORM_block1, DW_FORM_block2, DW_FORM_block4, DW_FORM_exprloc}) {
        const DieLabel block, behind;
        const NodeTree tree(DwarfSections().Unit(
            {UnitDie({Die(block, DW_TAG_enumerator, {Block(DW_AT_const_value, form, bytes)}),
                      Die(behind, DW_TAG_enumerator, {Name("behind")})})}));
        EXPECT_EQ(tree[behind].GetName(), "behind");
        EXPECT_EQ(tree[block].GetConstValueAttribute().mValue, tree[behind].GetOffset());
    }
}

TEST_F(DwarfDecodingTest, ReferencesBecomeSectionOffsets) {
    const DieLabel target;
    const std::vector<std::uint32_t> forms = {DW_FORM_ref1, DW_FORM_ref2,      DW_FORM_ref4,
                                              DW_FORM_ref8, DW_FORM_ref_udata, DW_FORM_ref_addr};
    for (const DwarfUnit& shape :
         {DwarfUnit{}, DwarfUnit{.version = 2, .addressSize = 2},
          DwarfUnit{.version = 3, .addressSize = 2, .referenceSize = 2},
          DwarfUnit{.version = 3, .addressSize = 4, .is64BitDwarf = true}}) {
        DwarfSections sections;
        sections.Unit({UnitDie({})});
        DwarfUnit unit = shape;
        std::vector<Die> children = {Die(target, DW_TAG_base_type, {Name("int")})};
        std::vector<DieLabel> users(forms.size());
        for (std::size_t index = 0; index < forms.size(); ++index) {
            children.push_back(Die(
                users[index], DW_TAG_variable,
                {Type(target, forms[index]), Specification(target, forms[index]), Name("behind")}));
        }
        unit.entries = {UnitDie(children)};
        sections.Unit(unit);
        SectionRun run(ElfImage(ElfClass::Class64) + sections);
        ASSERT_TRUE(run.Read());
        for (const DieLabel& user : users) {
            const VDebugInfoNode& node = run.At(sections.OffsetOf(user));
            EXPECT_EQ(node.GetTypeReferenceOffset(), sections.OffsetOf(target));
            EXPECT_EQ(node.GetSpecificationAttribute().mValue, sections.OffsetOf(target));
            EXPECT_EQ(node.GetSpecificationAttribute().mFlags, 0x0101);
            EXPECT_EQ(node.GetName(), "behind");
        }
    }
    // The lower half of a signature is read as an offset in the unit.
    DwarfSections sections;
    sections.Unit({UnitDie({})});
    const auto start = static_cast<std::uint32_t>(sections.Info().size());
    constexpr std::uint64_t signature = 0x1122334400000042;
    const DecodedEntry entry(DW_TAG_variable,
                             {Number(DW_AT_type, DW_FORM_ref_sig8, signature),
                              Number(DW_AT_specification, DW_FORM_ref_sig8, signature)},
                             {}, sections);
    EXPECT_EQ(entry->GetTypeReferenceOffset(), start + 0x42);
    EXPECT_EQ(entry->GetSpecificationAttribute().mValue, start + 0x42);
    EXPECT_EQ(entry->GetSpecificationAttribute().mFlags, 0x0101);
}

TEST_F(DwarfDecodingTest, AGlobalSymbolAtItsAddressMakesAVariableExternal) {
    constexpr std::uint8_t sWeakObject = 0x20 | sObject;
    const ElfImage image = ElfImage(ElfClass::Class64)
                               .Symbol({"global", 0x10, 4})
                               .Symbol({"local", 0x20, 4, sLocalObject})
                               .Symbol({"weak", 0x30, 4, sWeakObject})
                               // The map knows it by the lower half of its address.
                               .Symbol({"beyond", 0x1'0000'0000, 4});
    struct Case {
        std::vector<DieAttribute> attributes;
        bool isExternal;
        dwarf_tag tag = DW_TAG_variable;
    };
    const std::vector<Case> cases = {
        {{Address(0x10)}, true},  {{Address(0x20)}, false},
        {{Address(0x30)}, false}, {{External(), Address(0x20)}, true},
        {{Address(0x40)}, false}, {{Address(0x10)}, false, DW_TAG_formal_parameter},
        {{Address(0)}, false},    {{External()}, true},
    };
    std::vector<DieLabel> labels(cases.size());
    std::vector<Die> entries;
    for (std::size_t index = 0; index < cases.size(); ++index) {
        entries.emplace_back(labels[index], cases[index].tag, cases[index].attributes);
    }
    const NodeTree tree(DwarfSections().Unit({UnitDie(entries)}), image);
    for (std::size_t index = 0; index < cases.size(); ++index) {
        EXPECT_EQ(tree[labels[index]].IsExternal(), cases[index].isExternal) << index;
    }
}

TEST_F(DwarfDecodingTest, OptionsChangeTheWidthAndBaseOfSectionReferences) {
    const auto reference = [](std::uint32_t value, int width, int version) {
        return DecodedEntry(DW_TAG_variable,
                            {Number(DW_AT_type, DW_FORM_ref_addr, value), Name("behind")},
                            {.version = version, .addressSize = 8, .referenceSize = width});
    };
    EXPECT_EQ(reference(0x1234, 8, 3)->GetTypeReferenceOffset(), 0x1234U);
    VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 = 1;
    const DecodedEntry narrow = reference(0x1234, 4, 2);
    EXPECT_EQ(narrow->GetTypeReferenceOffset(), 0x1234U);
    EXPECT_EQ(narrow->GetName(), "behind");
    VElfOptions::mFixReferencesWithFileRelativeOffset = 1;
    const std::uint32_t sectionStart = 52;
    EXPECT_EQ(reference(0x1234, 4, 2)->GetTypeReferenceOffset(), 0x1234U - sectionStart);
}

TEST_F(DwarfDecodingTest, FirstProducerDecidesTheWidthAtOnce) {
    const std::string greenHills = "Green Hills: GHS C 2018.1.4 for targets";
    const auto read = [](const std::string& producer, int version, int width, int addressSize = 8) {
        VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3 = 2;
        const DieLabel user;
        DwarfSections sections;
        // The reference in the unit's own entry precedes the producer.
        sections.Unit(
            {.entries = {Die(DW_TAG_compile_unit, {Producer(producer)},
                             {Die(user, DW_TAG_variable,
                                  {Number(DW_AT_type, DW_FORM_ref_addr, 0x77), Name("behind")})})},
             .version = version,
             .addressSize = addressSize,
             .referenceSize = width});
        SectionRun run(ElfImage() + sections);
        EXPECT_TRUE(run.Read());
        EXPECT_EQ(run.At(sections.OffsetOf(user)).GetName(), "behind");
        return VElfOptions::mHandle_DW_FORM_REF_ADDR_AS_DW3;
    };
    EXPECT_EQ(read(greenHills, 2, 4), 1);
    EXPECT_EQ(read(greenHills, 3, 8), 2);
    EXPECT_EQ(read("GHS C++ 2018.1.4", 2, 4), 1);
    EXPECT_EQ(read("GHS C++ 2018.1.4", 2, 4, 4), 2);
    EXPECT_EQ(read("GHS C++ 2018.1.5", 2, 8), 0);
    EXPECT_EQ(read("another", 2, 8), 0);
}

TEST_F(DwarfDecodingTest, FileRelativeReferencesAreDetectedByTheWholeProducer) {
    const auto read = [](const std::string& first, const std::string& second) {
        VElfOptions::mFixReferencesWithFileRelativeOffset = 2;
        DwarfSections sections;
        sections.Unit({UnitDie({}, {Name("without producer")})});
        sections.Unit({UnitDie({}, {Producer(first)})});
        sections.Unit({UnitDie({}, {Producer(second)})});
        SectionRun run(ElfImage() + sections);
        EXPECT_TRUE(run.Read());
        return VElfOptions::mFixReferencesWithFileRelativeOffset;
    };
    EXPECT_EQ(read("ICCRL78", "other"), 1);
    EXPECT_EQ(read("ICCRL78 V2", "ICCRL78"), 0);
    // A producer that the unit truncates decides nothing.
    for (const std::string cutOff : {"\x08without end", "\x08"}) {
        VElfOptions::mFixReferencesWithFileRelativeOffset = 2;
        DwarfSections sections;
        sections.Unit({Die(DW_TAG_compile_unit,
                           {CompDir("/src"), Block(DW_AT_producer, DW_FORM_indirect, cutOff)})});
        sections.Unit({UnitDie({}, {Producer("ICCRL78")})});
        EXPECT_THAT(OutlineOf(sections), ElementsAre("0:compile_unit "));
        EXPECT_EQ(VElfOptions::mFixReferencesWithFileRelativeOffset, 1);
    }
    VElfOptions::mIsLogFile = 1;
    VElfOptions::mFixReferencesWithFileRelativeOffset = 2;
    SectionRun run(ElfImage() + DwarfSections().Unit({UnitDie({}, {Producer("ICCRL78")})}));
    ASSERT_TRUE(run.Read());
    EXPECT_THAT(run.Log(),
                testing::HasSubstr("\nAutodetect: Activating option "
                                   "mFixReferencesWithFileRelativeOffset base on compile unit "
                                   "producer: ICCRL78\n"));
}

TEST_F(DwarfDecodingTest, IndirectFormsAreFollowed) {
    const DieLabel type, variable;
    const NodeTree tree(DwarfSections().Unit(
        {UnitDie({Die(type, DW_TAG_base_type, {Name("int")}),
                  Die(variable, DW_TAG_variable,
                      {Indirect(Name("x", DW_FORM_strp)), Indirect(Type(type), 3),
                       Indirect(Address(0x1000), 2),
                       Indirect(Number(DW_AT_decl_line, DW_FORM_data2, 7)), External()})})}));
    EXPECT_EQ(tree[variable].GetName(), "x");
    EXPECT_EQ(tree[variable].GetTypeReferenceOffset(), tree[type].GetOffset());
    EXPECT_EQ(tree[variable].GetLocationAddress(), 0x1000U);
    EXPECT_TRUE(tree[variable].IsExternal());
}

TEST_F(DwarfDecodingTest, UnknownFormsConsumeNothing) {
    for (const std::uint32_t form : {0x02U, 0x1aU, 0x1fU, 0x21U, 0x1f20U, 0xFFFFFFFFU}) {
        gElfReaderErrorFlag = ELFReadErrorEnum::ELFERR_UNKNOWN;
        const DecodedEntry entry(
            DW_TAG_variable, {Block(DW_AT_byte_size, form, ""), Block(DW_AT_decl_line, form, ""),
                              Block(DW_AT_location, form, ""), Name("behind")});
        EXPECT_EQ(entry->GetName(), "behind");
        EXPECT_FALSE(entry->HasByteSize());
        EXPECT_TRUE(entry->HasLocation());
        EXPECT_FALSE(entry->IsRegisterOrStackLocation());
        EXPECT_EQ(gElfReaderErrorFlag, ELFReadErrorEnum::ELFERR_DWARF_FORM);
    }
}

TEST_F(DwarfDecodingTest, UnwantedAttributesArePassed) {
    const DieLabel label;
    const std::vector<DieAttribute> unwanted = {
        Reference(DW_AT_sibling, DW_FORM_ref4, label),
        Number(DW_AT_low_pc, DW_FORM_addr, 0x1000),
        Number(DW_AT_high_pc, DW_FORM_data4, 0x20),
        Number(DW_AT_language, DW_FORM_data1, 12),
        Number(DW_AT_stmt_list, DW_FORM_sec_offset, 0),
        Number(DW_AT_decl_file, DW_FORM_udata, 300),
        Number(DW_AT_decl_line, DW_FORM_data2, 1),
        Expression(DW_AT_frame_base, DW_FORM_exprloc, {{0x9c}}),
        Number(DW_AT_data_bit_offset, DW_FORM_sdata, 5),
        Text(DW_AT_MIPS_linkage_name, DW_FORM_string, "_Zx"),
        Text(0x2105, DW_FORM_strp, "text"),
        Number(0x3fff, DW_FORM_flag_present, 0),
        Number(0x3ffe, DW_FORM_ref_addr, 0),
    };
    std::vector<DieAttribute> attributes = {ByteSize(3)};
    attributes.insert(attributes.end(), unwanted.begin(), unwanted.end());
    attributes.push_back(Name("s"));
    attributes.insert(attributes.end(), unwanted.begin(), unwanted.end());
    for (const bool is64Bit : {false, true}) {
        DwarfSections sections;
        sections.Unit({.entries = {UnitDie({Die(label, DW_TAG_structure_type, attributes),
                                            Die(DW_TAG_base_type, {Name("behind")})})},
                       .version = is64Bit ? 3 : 4,
                       .addressSize = is64Bit ? 8 : 4,
                       .is64BitDwarf = is64Bit});
        SectionRun run(ElfImage(ElfClass::Class64) + sections);
        ASSERT_TRUE(run.Read());
        EXPECT_EQ(run.At(sections.OffsetOf(label)).GetByteSize(), 3);
        EXPECT_FALSE(run.At(sections.OffsetOf(label)).GetLinkageNameAttribute().mDefined);
        EXPECT_THAT(run.Outline(),
                    ElementsAre("0:compile_unit a_c", "1:structure_type s", "1:base_type behind"));
    }
}

TEST_F(DwarfDecodingTest, TagsKeepAllTheirBits) {
    for (const dwarf_tag tag : {0xFFFEU, 0xFFFFU, 0x10034U, 0xFFFFFFFFU}) {
        EXPECT_EQ(DecodedEntry(tag, {Name("n")})->GetTag(), tag);
        EXPECT_EQ(DecodedEntry(tag, {Name("n")})->GetName(), "n");
    }
}

TEST_F(DwarfDecodingTest, TextsMayBeAbsent) {
    const auto numbered = [](std::uint32_t attribute) {
        return Number(attribute, DW_FORM_data1, 5);
    };
    // A form that is no text counts as no text; so does an offset beyond the strings.
    const DecodedEntry named(DW_TAG_variable, {numbered(DW_AT_name), numbered(DW_AT_linkage_name)});
    EXPECT_EQ(named->GetName(), "unknown");
    EXPECT_TRUE(named->HasNameAttribute());
    EXPECT_EQ(named->GetLinkageNameAttribute().mValue, "");
    EXPECT_TRUE(named->GetLinkageNameAttribute().mDefined);
    // The last attribute of a kind counts, even if it is no text.
    const DecodedEntry twice(DW_TAG_variable, {Name("n"), numbered(DW_AT_name), LinkageName("l"),
                                               numbered(DW_AT_linkage_name)});
    EXPECT_EQ(twice->GetName(), "unknown");
    EXPECT_EQ(twice->GetLinkageNameAttribute().mValue, "");
    EXPECT_TRUE(twice->GetLinkageNameAttribute().mDefined);
    for (const std::uint64_t offset : {5U, 100U, 0xFFFFFFFFU}) {
        DwarfSections sections;
        sections.String("1234");
        const DecodedEntry outside(DW_TAG_variable, {Number(DW_AT_name, DW_FORM_strp, offset)}, {},
                                   sections);
        EXPECT_EQ(outside->GetName(), "unknown");
    }
    const DecodedEntry missing(DW_TAG_variable, {Number(DW_AT_name, DW_FORM_strp, 0)});
    EXPECT_EQ(missing->GetName(), "unknown");
    SectionRun run(ElfImage() + DwarfSections().Unit(
                                    {UnitDie({}, {numbered(DW_AT_name), numbered(DW_AT_comp_dir),
                                                  numbered(DW_AT_producer), ByteSize(1)})}));
    ASSERT_TRUE(run.Read());
    const VDebugInfoNode& unit = *run.Section().mDieNodes.InOffsetOrder().front();
    EXPECT_EQ(unit.GetName(), "unknown");
    EXPECT_FALSE(unit.GetCompUnitDirAttribute().mDefined);
    EXPECT_EQ(unit.GetProducer().mValue, "<NULL>");
}

TEST_F(DwarfDecodingTest, TextsAreCutAtTheirLimits) {
    const std::string text(5000, 'n');
    for (const std::uint32_t form : {DW_FORM_string, DW_FORM_strp}) {
        const DecodedEntry entry(DW_TAG_variable, {Name(text, form), LinkageName(text, form)});
        EXPECT_EQ(entry->GetName(), text.substr(0, 2047));
        EXPECT_EQ(entry->GetLinkageNameAttribute().mValue, text);
        SectionRun run(ElfImage() +
                       DwarfSections().Unit({UnitDie(
                           {}, {Producer(text.substr(0, 2000), form), CompDir(text, form)})}));
        ASSERT_TRUE(run.Read());
        const VDebugInfoNode& unit = *run.Section().mDieNodes.InOffsetOrder().front();
        EXPECT_EQ(unit.GetProducer().mValue, text.substr(0, 1024));
        EXPECT_EQ(unit.GetCompUnitDirAttribute().mValue, text);
    }
}

TEST_F(DwarfDecodingTest, UnitNamesAreShortened) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"src/main.c", "main_c"},
        {"/a/b/c.d.e", "c_d_e"},
        {"d.ir/c:\\dir.x\\a.c", "a_c"},
        {"dir/", ""},
        {"", ""},
        {"plain", "plain"},
        {"dir/" + std::string(100, 'a') + "." + std::string(78, 'b'), "_" + std::string(78, 'b')},
    };
    for (const auto& [path, name] : cases) {
        for (const std::uint32_t form : {DW_FORM_string, DW_FORM_strp}) {
            EXPECT_THAT(
                OutlineOf(DwarfSections().Unit({UnitDie({}, {Name(path, form), CompDir("/dir")})})),
                ElementsAre("0:compile_unit " + name));
        }
    }
    // Only for units.
    EXPECT_EQ(DecodedEntry(DW_TAG_variable, {Name("a/b.c")})->GetName(), "a/b.c");
}

TEST_F(DwarfDecodingTest, EachAttributeGoesToItsPlace) {
    const DecodedEntry entry(DW_TAG_member,
                             {ByteSize(4), BitOffset(5), BitSize(6), Encoding(7), Accessibility(3),
                              External(), Declaration(), MemberOffset(8)});
    EXPECT_EQ(entry->GetByteSize(), 4);
    EXPECT_EQ(entry->GetBitOffset(), 5U);
    EXPECT_EQ(entry->GetBitSize(), 6U);
    EXPECT_EQ(entry->GetEncoding(), 7U);
    EXPECT_EQ(entry->GetAccessibilityAttribute().mValue, 3U);
    EXPECT_TRUE(entry->IsExternal());
    EXPECT_TRUE(entry->IsDeclaration());
    EXPECT_EQ(entry->GetMemberOffset(), 8U);
    const DecodedEntry denied(DW_TAG_member, {Number(DW_AT_external, DW_FORM_flag, 0),
                                              Number(DW_AT_declaration, DW_FORM_data1, 0)});
    EXPECT_FALSE(denied->IsExternal());
    EXPECT_FALSE(denied->IsDeclaration());
    const DecodedEntry bounds(DW_TAG_subrange_type, {LowerBound(-1), UpperBound(9), Count(10)});
    EXPECT_EQ(bounds.Subrange().GetLowerBound().mValue, 0xFFFFFFFFU);
    EXPECT_EQ(bounds.Subrange().GetUpperBound().mValue, 9U);
    EXPECT_EQ(bounds.Subrange().GetCount().mValue, 10U);
    EXPECT_EQ(bounds.Subrange().GetCount().mFlags, 0x0021);
    const auto refers = [](std::uint32_t attribute) {
        return Number(attribute, DW_FORM_ref1, 0x11);
    };
    const DecodedEntry references(
        DW_TAG_subrange_type,
        {refers(DW_AT_lower_bound), refers(DW_AT_upper_bound), refers(DW_AT_count)});
    for (const VAttributeValue& bound :
         {references.Subrange().GetLowerBound(), references.Subrange().GetUpperBound(),
          references.Subrange().GetCount()}) {
        EXPECT_EQ(bound.mValue, 0x11U);
        EXPECT_EQ(bound.mFlags, 0x0101);
    }
    // Attributes of one entry don't reach the next one.
    const std::vector<std::string> outline = OutlineOf(
        DwarfSections().Unit({UnitDie({Die(DW_TAG_variable, {Name("a")}), Die(DW_TAG_variable)})}));
    EXPECT_THAT(outline, ElementsAre("0:compile_unit a_c", "1:variable a", "1:variable "));
}

TEST_F(DwarfDecodingTest, EnumerationsWithoutSizeAreNamespaces) {
    EXPECT_THAT(OutlineOf(DwarfSections().Unit({UnitDie({
                    Die(DW_TAG_enumeration_type, {Name("N"), Declaration()},
                        {Die(DW_TAG_enumerator, {Name("a")})}),
                    Die(DW_TAG_enumeration_type, {Name("E"), ByteSize(0)}),
                })})),
                ElementsAre("0:compile_unit a_c", "1:namespace N", "2:enumerator a",
                            "1:enumeration_type E"));
}

TEST_F(DwarfDecodingTest, NullEntriesAndUnknownCodesArePassedOver) {
    const std::string null(1, '\0');
    const Die child(DW_TAG_variable, {Name("v")});
    EXPECT_THAT(OutlineOf(DwarfSections().Unit({
                    Die::Raw(null + null),
                    UnitDie({Die::Raw("\x7D\x7C"), child}),
                    Die::Raw(null),
                    Die::Raw("\x7B"),
                    child,
                    Die::Raw(null),
                })),
                ElementsAre("0:compile_unit a_c", "1:variable v", "0:variable v"));
    // A missing null entry at the end of a unit ends all levels.
    EXPECT_THAT(OutlineOf(DwarfSections().Unit(
                    {UnitDie({Die(DW_TAG_namespace, {Name("n")}, {child}).WithoutTerminator()})
                         .WithoutTerminator()})),
                ElementsAre("0:compile_unit a_c", "1:namespace n", "2:variable v"));
}

TEST_F(DwarfDecodingTest, ChildrenAreAnnouncedByTheValue1Alone) {
    for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{255}}) {
        EXPECT_THAT(OutlineOf(DwarfSections().Unit(
                        {Die(DW_TAG_compile_unit, {Name("u")}, {}).ChildrenByte(value),
                         Die(DW_TAG_variable, {Name("v")})})),
                    ElementsAre("0:compile_unit u", "0:variable v"));
    }
    EXPECT_THAT(
        OutlineOf(DwarfSections().Unit({Die(0x4081, {Name("l")}, {Die(0xFFFF, {Name("u")})})})),
        ElementsAre("0:MIPS_loop l", "1:..unknown ID=65535(0xffff) u"));
}

TEST_F(DwarfDecodingTest, UnitsInTheMiddleOfAUnitHaveNoParent) {
    EXPECT_THAT(OutlineOf(DwarfSections().Unit({UnitDie({UnitDie({Die(DW_TAG_label)})})})),
                ElementsAre("0:compile_unit a_c", "0:compile_unit a_c", "1:label "));
}

// The count labels records in dumps: calls of the walk, including null entries and the ends of open
// levels.
TEST_F(DwarfDecodingTest, RecordNumbersCountTheWholeWalk) {
    const DieLabel last;
    DwarfSections sections;
    sections.Unit({UnitDie({Die(DW_TAG_namespace, {Name("n")}, {Die(DW_TAG_variable)})})});
    sections.Unit({UnitDie({Die(DW_TAG_namespace, {Name("n")}, {Die::Raw("}")})
                                .ChildrenByte(1)
                                .WithoutTerminator()})
                       .WithoutTerminator()});
    sections.Unit({Die(last, DW_TAG_compile_unit, {Name("last")})});
    // 3 entries and 2 nulls; 2 entries, an unknown code and the ends of 2 levels.
    EXPECT_EQ(NodeTree(sections)[last].GetTagRecord(), 11);
    EXPECT_EQ(recCnt, 11U);
}

TEST_F(DwarfDecodingTest, WordAddressedTargetsCountInUnitsOf16Bits) {
    DwarfSections sections;
    sections.Unit({UnitDie({Die(DW_TAG_variable, {ByteSize(3), Address(0x1000)})})});
    SectionRun run(ElfImage() + sections);
    run.File().mIsWordAddressedTarget = true;
    run.File().mImageBase = 0x800;
    ASSERT_TRUE(run.Read());
    const VDebugInfoNode& variable = *run.Section().mDieNodes.InOffsetOrder().back();
    EXPECT_EQ(variable.GetByteSize(), 6);
    EXPECT_EQ(variable.GetLocationAddress(), 0x1800U);
}

TEST_F(DwarfDecodingTest, EntriesThatTheUnitCutsOffMakeNoNode) {
    const std::vector<DieAttribute> cutOff = {
        Block(DW_AT_name, DW_FORM_indirect, "\x08without end"),
        Block(DW_AT_byte_size, DW_FORM_data4, "\1\2"),
        Block(DW_AT_decl_line, DW_FORM_data8, "\1\2"),
        Block(DW_AT_type, DW_FORM_ref_udata, "\x81\x82"),
        Block(DW_AT_location, DW_FORM_data1, ""),
        Block(DW_AT_name, DW_FORM_indirect, ""),
        Block(DW_AT_name, DW_FORM_indirect, "\x16\x16"),
        // A text without a single byte left.
        Block(DW_AT_name, DW_FORM_indirect, "\x08"),
        Block(DW_AT_producer, DW_FORM_indirect, "\x08"),
    };
    for (const DieAttribute& attribute : cutOff) {
        DwarfSections sections;
        sections.Unit({UnitDie({Die(DW_TAG_base_type, {Name("whole")}),
                                Die(DW_TAG_variable, {Name("cut"), attribute})})
                           .WithoutTerminator()});
        sections.Unit({UnitDie({})});
        EXPECT_THAT(OutlineOf(sections),
                    ElementsAre("0:compile_unit a_c", "1:base_type whole", "0:compile_unit a_c"))
            << attribute.attribute << ' ' << attribute.form;
    }
}

TEST_F(DwarfDecodingTest, BlocksLongerThanTheUnitCutTheEntryOff) {
    for (const std::uint32_t attribute : std::initializer_list<std::uint32_t>{
             DW_AT_location, DW_AT_const_value, DW_AT_frame_base}) {
        for (const std::uint32_t length : {10U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U}) {
            const std::string size = ByteWriter().U32(length).Content();
            DwarfSections sections;
            const std::uint64_t table = sections.RawAbbreviations(
                Uleb128(1) + Uleb128(DW_TAG_variable) + '\0' + Uleb128(attribute) +
                Uleb128(DW_FORM_block4) + std::string(3, '\0'));
            sections.Unit(
                {.entries = {Die::Raw("\1" + size + "\1\1\1\1")}, .abbreviationOffset = table});
            sections.Unit({UnitDie({})});
            EXPECT_THAT(OutlineOf(sections), ElementsAre("0:compile_unit a_c"));
        }
    }
}

class HostileUnitTest : public DwarfDecodingTest {};

TEST_F(HostileUnitTest, NestingOfAMillionLevels) {
    constexpr std::size_t depth = 1'000'000;
    DwarfSections sections;
    const std::uint64_t table = sections.RawAbbreviations(
        Uleb128(1) + Uleb128(DW_TAG_lexical_block) + std::string("\1\0\0\0", 4));
    sections.Unit({.entries = {Die::Raw(std::string(depth, '\1'))}, .abbreviationOffset = table});
    SectionRun run(ElfImage() + sections);
    ASSERT_TRUE(run.Read());
    EXPECT_EQ(run.Section().mDieNodes.Size(), depth);
    EXPECT_EQ(recCnt, 2 * depth);
}

TEST_F(HostileUnitTest, UnitsOfOneByteAlone) {
    EXPECT_THAT(OutlineOf(DwarfSections().Unit({Die::Raw(std::string(1'000'000, '\0'))})),
                IsEmpty());
    EXPECT_EQ(recCnt, 1'000'000U);
    EXPECT_THAT(OutlineOf(DwarfSections().Unit({Die::Raw(std::string(100'000, '\xFF'))})),
                IsEmpty());
}

// Each entry is one byte and has very many attributes that consume none.
TEST_F(HostileUnitTest, AttributesWithoutBytesAreBounded) {
    constexpr std::size_t count = 300'000;
    for (const DieAttribute& attribute :
         {Number(DW_AT_external, DW_FORM_flag_present, 0), Block(DW_AT_decl_line, 0x55, ""),
          Block(DW_AT_byte_size, DW_FORM_addr, "")}) {
        std::string abbreviation = Uleb128(1) + Uleb128(DW_TAG_variable) + '\0';
        for (std::size_t index = 0; index < count; ++index) {
            abbreviation += Uleb128(attribute.attribute) + Uleb128(attribute.form);
        }
        DwarfSections sections;
        const std::uint64_t table = sections.RawAbbreviations(abbreviation + std::string(3, '\0'));
        sections.Unit({.entries = {Die::Raw(std::string(count, '\1'))},
                       .addressSize = 3,
                       .abbreviationOffset = table});
        sections.Unit({UnitDie({})});
        SectionRun run(ElfImage() + sections);
        ASSERT_TRUE(run.Read());
        EXPECT_EQ(run.Outline().back(), "0:compile_unit a_c");
    }
}

// All entries refer to one text as large as the section, by a name and by a linkage name.
TEST_F(HostileUnitTest, OneLongTextOfManyEntries) {
    DwarfSections sections;
    sections.String(std::string(2'000'000, 't'));
    const std::uint64_t table = sections.RawAbbreviations(
        Uleb128(1) + Uleb128(DW_TAG_variable) + '\0' + Uleb128(DW_AT_linkage_name) +
        Uleb128(DW_FORM_strp) + Uleb128(DW_AT_name) + Uleb128(DW_FORM_strp) + std::string(3, '\0'));
    std::string entries;
    for (int index = 0; index < 400'000; ++index) {
        entries += std::string("\1\0\0\0\0\0\0\0\0", 9);
    }
    sections.Unit({.entries = {Die::Raw(entries)}, .abbreviationOffset = table});
    SectionRun run(ElfImage() + sections);
    ASSERT_TRUE(run.Read());
    const auto nodes = run.Section().mDieNodes.InOffsetOrder();
    EXPECT_EQ(nodes.front()->GetLinkageNameAttribute().mValue.size(), 2'000'000U);
    EXPECT_EQ(nodes.front()->GetName().size(), 2047U);
    EXPECT_EQ(nodes.back()->GetLinkageNameAttribute().mValue.size(), 255U);
    EXPECT_EQ(nodes.back()->GetName(), std::string(255, 't'));
}

TEST_F(DwarfDecodingTest, ShortTextsAreToldByTheirPlace) {
    // Beginning at each distance from the start of the section's blocks.
    for (std::size_t start = 0; start < 256; ++start) {
        for (const std::size_t length :
             {0U, 1U, 127U, 128U, 224U, 254U, 255U, 256U, 383U, 384U, 3000U}) {
            const std::string texts =
                std::string(start, 'x') + std::string(length, 't') + std::string(300, '\0');
            const ShortTexts shortTexts(texts);
            EXPECT_TRUE(length < 256 || !shortTexts.Contains(start)) << start << ", " << length;
            EXPECT_TRUE(length > 224 || shortTexts.Contains(start)) << start << ", " << length;
            EXPECT_TRUE(shortTexts.Contains(texts.size() - 1));
        }
    }
}

TEST(DwarfNamesTest, TagsAndEncodingsHaveTheNamesOfTheStandard) {
    const auto expectNames = [](const char* names, const std::string& prefix, auto nameOf) {
        std::istringstream words(names);
        std::uint32_t code = 0;
        for (std::string name; words >> std::hex >> code >> name;) {
            EXPECT_EQ(nameOf(code), prefix + name);
        }
        EXPECT_TRUE(words.eof());
    };
    expectNames(R"(
        00 padding 01 array_type 02 class_type 03 entry_point 04 enumeration_type
        05 formal_parameter 06 global_subroutine 07 global_variable 08 imported_declaration
        0a label 0b lexical_block 0c local_variable 0d member 0f pointer_type 10 reference_type
        11 compile_unit 12 string_type 13 structure_type 15 subroutine_type 16 typedef
        17 union_type 18 unspecified_parameters 19 variant 1a common_block 1b common_inclusion
        1c inheritance 1d inlined_subroutine 1e module 1f ptr_to_member_type 20 set_type
        21 subrange_type 22 with_stmt 23 access_declaration 24 base_type 25 catch_block
        26 const_type 27 constant 28 enumerator 29 file_type 2a friend 2b namelist
        2c namelist_item 2d packed_type 2e subprogram 2f template_type_param
        30 template_value_param 31 thrown_type 32 try_block 33 variant_part 34 variable
        35 volatile_type 36 dwarf_procedure 37 restrict_type 38 interface_type 39 namespace
        3a imported_module 3b unspecified_type 3c partial_unit 3d imported_unit 3f condition
        40 shared_type 41 type_unit[v4] 42 rvalue_reference_type[v4] 43 template_alias[v4]
        4081 MIPS_loop 4101 format_label 4102 function_template 4103 class_template)",
                "DW_TAG_", GetDwarfTagName);
    expectNames(R"(
        0 void 1 address 2 boolean 3 complex_float 4 float 5 signed 6 signed_char 7 unsigned
        8 unsigned_char 9 imaginary_float[v3] a packed_decimal[v3] b numeric_string[v3]
        c edited[v3] d signed_fixed[v3] e unsigned_fixed[v3] f decimal_float[v3] 10 UTF[v4])",
                "DW_ATE_", GetDwarfEncodingName);
}

TEST(DwarfNamesTest, UnknownCodesShareOneText) {
    for (const std::uint32_t tag : {0x09U, 0x0eU, 0x14U, 0x3eU, 0x44U, 0x4104U}) {
        EXPECT_THAT(GetDwarfTagName(tag), testing::StartsWith("DW_TAG_..unknown ID=")) << tag;
    }
    const char* text = GetDwarfTagName(9);
    EXPECT_STREQ(text, "DW_TAG_..unknown ID=9(0x09)");
    EXPECT_STREQ(GetDwarfEncodingName(0x80), "DW_ATE_..unknown = 128(0x80)");
    EXPECT_STREQ(text, "DW_ATE_..unknown = 128(0x80)");
    EXPECT_STREQ(GetDwarfTagName(0xFFFFFFFF), "DW_TAG_..unknown ID=-1(0xffffffff)");
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
