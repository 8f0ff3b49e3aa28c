#include "dwarf/DieForms.h"

#include <algorithm>
#include <array>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// What a value of a form is.
enum class FormValue : std::uint8_t {
    /// A number, a text or a block.
    Plain,
    /// It refers to a debug entry.
    Reference,
    /// Not available: it is in another file, or of no use.
    Absent,
};

struct FormProperties {
    FormReading reading = FormReading::Unknown;
    FormValue value = FormValue::Plain;
};

struct VendorTarget {
    std::uint32_t attribute = 0;
    AttributeTarget target = AttributeTarget::None;
};

struct TagAlias {
    dwarf_tag tag = 0;
    dwarf_tag readAs = 0;
};

namespace {

constexpr std::uint32_t sFirstVendorForm = DW_FORM_GNU_addr_index;

constexpr auto sClassicForms = [] {
    std::array<FormProperties, DW_FORM_ref_sig8 + 1> forms{};
    forms[DW_FORM_addr] = {FormReading::Address};
    forms[DW_FORM_block2] = {FormReading::Block2};
    forms[DW_FORM_block4] = {FormReading::Block4};
    forms[DW_FORM_data2] = {FormReading::TwoBytes};
    forms[DW_FORM_data4] = {FormReading::FourBytes};
    forms[DW_FORM_data8] = {FormReading::EightBytes};
    forms[DW_FORM_string] = {FormReading::Text};
    forms[DW_FORM_block] = {FormReading::BlockLeb128};
    forms[DW_FORM_block1] = {FormReading::Block1};
    forms[DW_FORM_data1] = {FormReading::OneByte};
    forms[DW_FORM_flag] = {FormReading::OneByte};
    forms[DW_FORM_sdata] = {FormReading::SignedLeb128};
    forms[DW_FORM_strp] = {FormReading::TextOffset};
    forms[DW_FORM_udata] = {FormReading::UnsignedLeb128};
    forms[DW_FORM_ref_addr] = {FormReading::ReferenceAddress, FormValue::Reference};
    forms[DW_FORM_ref1] = {FormReading::OneByte, FormValue::Reference};
    forms[DW_FORM_ref2] = {FormReading::TwoBytes, FormValue::Reference};
    forms[DW_FORM_ref4] = {FormReading::FourBytes, FormValue::Reference};
    forms[DW_FORM_ref8] = {FormReading::EightBytes, FormValue::Reference};
    forms[DW_FORM_ref_udata] = {FormReading::UnsignedLeb128, FormValue::Reference};
    forms[DW_FORM_indirect] = {FormReading::Indirect};
    forms[DW_FORM_sec_offset] = {FormReading::Offset};
    forms[DW_FORM_exprloc] = {FormReading::BlockLeb128};
    forms[DW_FORM_flag_present] = {FormReading::Present};
    forms[DW_FORM_ref_sig8] = {FormReading::EightBytes, FormValue::Reference};
    return forms;
}();

constexpr auto sFullForms = [] {
    std::array<FormProperties, DW_FORM_addrx4 + 1> forms{};
    std::ranges::copy(sClassicForms, forms.begin());
    forms[DW_FORM_ref_addr] = {FormReading::ReferenceAddressByVersion, FormValue::Reference};
    forms[DW_FORM_ref_sig8] = {FormReading::TypeSignature, FormValue::Reference};
    forms[DW_FORM_strx] = {FormReading::TextIndexLeb128};
    forms[DW_FORM_addrx] = {FormReading::AddressIndexLeb128};
    forms[DW_FORM_ref_sup4] = {FormReading::FourBytes, FormValue::Absent};
    forms[DW_FORM_strp_sup] = {FormReading::Offset, FormValue::Absent};
    forms[DW_FORM_data16] = {FormReading::SixteenBytes, FormValue::Absent};
    forms[DW_FORM_line_strp] = {FormReading::LineTextOffset};
    forms[DW_FORM_implicit_const] = {FormReading::Constant};
    forms[DW_FORM_loclistx] = {FormReading::LocationListIndex};
    forms[DW_FORM_rnglistx] = {FormReading::UnsignedLeb128, FormValue::Absent};
    forms[DW_FORM_ref_sup8] = {FormReading::EightBytes, FormValue::Absent};
    forms[DW_FORM_strx1] = {FormReading::TextIndex1};
    forms[DW_FORM_strx2] = {FormReading::TextIndex2};
    forms[DW_FORM_strx3] = {FormReading::TextIndex3};
    forms[DW_FORM_strx4] = {FormReading::TextIndex4};
    forms[DW_FORM_addrx1] = {FormReading::AddressIndex1};
    forms[DW_FORM_addrx2] = {FormReading::AddressIndex2};
    forms[DW_FORM_addrx3] = {FormReading::AddressIndex3};
    forms[DW_FORM_addrx4] = {FormReading::AddressIndex4};
    return forms;
}();

/// Forms of split units before DWARF 5, and of files that share a supplementary file.
constexpr auto sFullVendorForms = [] {
    std::array<FormProperties, DW_FORM_GNU_strp_alt + 1 - sFirstVendorForm> forms{};
    forms[DW_FORM_GNU_addr_index - sFirstVendorForm] = {FormReading::AddressIndexLeb128};
    forms[DW_FORM_GNU_str_index - sFirstVendorForm] = {FormReading::TextIndexLeb128};
    forms[DW_FORM_GNU_ref_alt - sFirstVendorForm] = {FormReading::Offset, FormValue::Absent};
    forms[DW_FORM_GNU_strp_alt - sFirstVendorForm] = {FormReading::Offset, FormValue::Absent};
    return forms;
}();

/// Forms of addresses.
constexpr std::uint32_t sAddressForms[] = {
    DW_FORM_addr,   DW_FORM_addrx,  DW_FORM_addrx1,         DW_FORM_addrx2,
    DW_FORM_addrx3, DW_FORM_addrx4, DW_FORM_GNU_addr_index,
};

/// Forms whose values are, or lead to, offsets of sections.
constexpr std::uint32_t sOffsetForms[] = {
    DW_FORM_strp,  DW_FORM_ref_addr, DW_FORM_sec_offset, DW_FORM_line_strp,
    DW_FORM_strx,  DW_FORM_strx1,    DW_FORM_strx2,      DW_FORM_strx3,
    DW_FORM_strx4, DW_FORM_loclistx, DW_FORM_rnglistx,   DW_FORM_GNU_str_index,
};

/// The table of forms with the values of some made absent.
/// @param first code of the first of them
template <std::size_t Count>
constexpr auto Without(std::array<FormProperties, Count> forms,
                       std::span<const std::uint32_t> absent, std::uint32_t first) {
    for (const std::uint32_t form : absent) {
        if (form - first < Count) {
            forms[form - first].value = FormValue::Absent;
        }
    }
    return forms;
}

constexpr auto sFormsWithoutAddresses = Without(sFullForms, sAddressForms, 0);
constexpr auto sVendorFormsWithoutAddresses =
    Without(sFullVendorForms, sAddressForms, sFirstVendorForm);
constexpr auto sUnlinkedForms = Without(sFormsWithoutAddresses, sOffsetForms, 0);
constexpr auto sUnlinkedVendorForms =
    Without(sVendorFormsWithoutAddresses, sOffsetForms, sFirstVendorForm);

constexpr auto sClassicTargets = [] {
    std::array<AttributeTarget, DW_AT_linkage_name + 1> targets{};
    targets[DW_AT_location] = AttributeTarget::Location;
    targets[DW_AT_name] = AttributeTarget::Name;
    targets[DW_AT_byte_size] = AttributeTarget::ByteSize;
    targets[DW_AT_bit_offset] = AttributeTarget::BitOffset;
    targets[DW_AT_bit_size] = AttributeTarget::BitSize;
    targets[DW_AT_comp_dir] = AttributeTarget::CompDir;
    targets[DW_AT_const_value] = AttributeTarget::ConstValue;
    targets[DW_AT_lower_bound] = AttributeTarget::LowerBound;
    targets[DW_AT_producer] = AttributeTarget::Producer;
    targets[DW_AT_upper_bound] = AttributeTarget::UpperBound;
    targets[DW_AT_accessibility] = AttributeTarget::Accessibility;
    targets[DW_AT_count] = AttributeTarget::Count;
    targets[DW_AT_data_member_location] = AttributeTarget::MemberLocation;
    targets[DW_AT_declaration] = AttributeTarget::Declaration;
    targets[DW_AT_encoding] = AttributeTarget::Encoding;
    targets[DW_AT_external] = AttributeTarget::External;
    targets[DW_AT_specification] = AttributeTarget::Specification;
    targets[DW_AT_type] = AttributeTarget::Type;
    targets[DW_AT_linkage_name] = AttributeTarget::LinkageName;
    return targets;
}();

constexpr auto sFullTargets = [] {
    std::array<AttributeTarget, DW_AT_loclists_base + 1> targets{};
    std::ranges::copy(sClassicTargets, targets.begin());
    targets[DW_AT_import] = AttributeTarget::Import;
    targets[DW_AT_signature] = AttributeTarget::Signature;
    targets[DW_AT_language] = AttributeTarget::Language;
    targets[DW_AT_abstract_origin] = AttributeTarget::AbstractOrigin;
    targets[DW_AT_data_bit_offset] = AttributeTarget::DataBitOffset;
    targets[DW_AT_endianity] = AttributeTarget::Endianity;
    targets[DW_AT_ordering] = AttributeTarget::Ordering;
    targets[DW_AT_bit_stride] = AttributeTarget::BitStride;
    targets[DW_AT_byte_stride] = AttributeTarget::ByteStride;
    targets[DW_AT_data_location] = AttributeTarget::ComputedPlace;
    targets[DW_AT_dwo_name] = AttributeTarget::SplitFile;
    targets[DW_AT_str_offsets_base] = AttributeTarget::TextOffsetsBase;
    targets[DW_AT_addr_base] = AttributeTarget::AddressesBase;
    targets[DW_AT_loclists_base] = AttributeTarget::LocationListsBase;
    return targets;
}();

constexpr auto sFullVendorTargets = std::to_array<VendorTarget>({
    {DW_AT_MIPS_linkage_name, AttributeTarget::LinkageName},
    {DW_AT_GNU_dwo_name, AttributeTarget::SplitFile},
    {DW_AT_GNU_addr_base, AttributeTarget::AddressesBase},
});

/// Attributes that determine the layout of an array, and may be computed at run time.
constexpr bool IsOfArrayLayout(AttributeTarget target) {
    switch (target) {
    case AttributeTarget::LowerBound:
    case AttributeTarget::UpperBound:
    case AttributeTarget::Count:
    case AttributeTarget::BitStride:
    case AttributeTarget::ByteStride:
        return true;
    default:
        return false;
    }
}

/// True if the file has no value: an expression, a list of them or, where an array needs a number,
/// the variable that holds it.
constexpr bool IsComputed(AttributeTarget target, FormProperties properties) {
    return IsBlock(properties.reading) ||
           (IsOfArrayLayout(target) && (properties.value == FormValue::Reference ||
                                        properties.reading == FormReading::Offset ||
                                        properties.reading == FormReading::LocationListIndex));
}

/// What a computed value means for a target: mostly nothing.
constexpr AttributeTarget IfComputed(AttributeTarget target) {
    switch (target) {
    case AttributeTarget::LowerBound:
        return AttributeTarget::ComputedLowerBound;
    case AttributeTarget::BitStride:
    case AttributeTarget::ByteStride:
    case AttributeTarget::ComputedPlace:
        return AttributeTarget::ComputedPlace;
    default:
        return AttributeTarget::None;
    }
}

/// Kinds of unit that count as compile units.
constexpr auto sFullTagAliases = std::to_array<TagAlias>({
    {DW_TAG_partial_unit, DW_TAG_compile_unit},
    {DW_TAG_skeleton_unit, DW_TAG_compile_unit},
});

} // namespace

bool IsReferenceForm(std::uint32_t form) {
    return form < sFullForms.size() && sFullForms[form].value == FormValue::Reference;
}

const DieForms& DieForms::Of(ReadingManner manner, Linkage linkage) {
    static constexpr DieForms sClassic(sClassicForms, {}, sClassicTargets, {}, {}, true);
    static constexpr DieForms sFull(sFullForms, sFullVendorForms, sFullTargets, sFullVendorTargets,
                                    sFullTagAliases, false);
    static constexpr DieForms sWithoutAddresses(sFormsWithoutAddresses,
                                                sVendorFormsWithoutAddresses, sFullTargets,
                                                sFullVendorTargets, sFullTagAliases, false);
    static constexpr DieForms sUnlinked(sUnlinkedForms, sUnlinkedVendorForms, sFullTargets,
                                        sFullVendorTargets, sFullTagAliases, false);
    if (manner == ReadingManner::Classic) {
        return sClassic;
    }
    switch (linkage) {
    case Linkage::OffsetsInPlace:
        return sWithoutAddresses;
    case Linkage::NothingInPlace:
        return sUnlinked;
    default:
        return sFull;
    }
}

FormProperties DieForms::PropertiesOf(std::uint32_t form) const {
    if (form < mForms.size()) {
        return mForms[form];
    }
    const std::uint32_t place = form - sFirstVendorForm;
    return place < mVendorForms.size() ? mVendorForms[place] : FormProperties{};
}

dwarf_tag DieForms::TagOf(dwarf_tag tag) const {
    const auto alias = std::ranges::find(mTagAliases, tag, &TagAlias::tag);
    return alias != mTagAliases.end() ? alias->readAs : tag;
}

FormReading DieForms::ReadingOf(std::uint32_t form) const {
    return PropertiesOf(form).reading;
}

AttributeTarget DieForms::TargetOf(std::uint32_t attribute) const {
    if (attribute < mTargets.size()) {
        return mTargets[attribute];
    }
    const auto known = std::ranges::find(mVendorTargets, attribute, &VendorTarget::attribute);
    return known != mVendorTargets.end() ? known->target : AttributeTarget::None;
}

AttributeTarget DieForms::TargetOf(AttributeTarget target, std::uint32_t form) const {
    const FormProperties properties = PropertiesOf(form);
    const bool isLocation =
        target == AttributeTarget::Location || target == AttributeTarget::MemberLocation;
    if (properties.value == FormValue::Absent) {
        return AttributeTarget::None;
    }
    if (isLocation || mTakesAllAsNumbers || !IsComputed(target, properties)) {
        return target;
    }
    return IfComputed(target);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
