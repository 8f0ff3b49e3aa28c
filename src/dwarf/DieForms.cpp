#include "dwarf/DieForms.h"

#include "dwarf/DwarfConstants.h"

#include <array>
#include <cstddef>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

struct FormProperties {
    FormReading reading = FormReading::Unknown;
    bool isReference = false;
};

constexpr auto sForms = [] {
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
    forms[DW_FORM_ref_addr] = {FormReading::ReferenceAddress, true};
    forms[DW_FORM_ref1] = {FormReading::OneByte, true};
    forms[DW_FORM_ref2] = {FormReading::TwoBytes, true};
    forms[DW_FORM_ref4] = {FormReading::FourBytes, true};
    forms[DW_FORM_ref8] = {FormReading::EightBytes, true};
    forms[DW_FORM_ref_udata] = {FormReading::UnsignedLeb128, true};
    forms[DW_FORM_indirect] = {FormReading::Indirect};
    forms[DW_FORM_sec_offset] = {FormReading::Offset};
    forms[DW_FORM_exprloc] = {FormReading::BlockLeb128};
    forms[DW_FORM_flag_present] = {FormReading::Present};
    forms[DW_FORM_ref_sig8] = {FormReading::EightBytes, true};
    return forms;
}();

constexpr auto sTargets = [] {
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

} // namespace

FormReading ReadingOfForm(std::uint32_t form) {
    return form < sForms.size() ? sForms[form].reading : FormReading::Unknown;
}

bool IsReferenceForm(std::uint32_t form) {
    return form < sForms.size() && sForms[form].isReference;
}

AttributeTarget TargetOfAttribute(std::uint32_t attribute) {
    return attribute < sTargets.size() ? sTargets[attribute] : AttributeTarget::None;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
