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

/// What linkers fill in: before that, a value means nothing.
enum class LinkerValue : std::uint8_t {
    Nothing,
    Address,
    /// An offset of a section, or a value that leads to one.
    Offset
};

struct KnownForm {
    std::uint32_t code;
    FormReading classic;
    FormReading full;
    FormValue value;
    LinkerValue filled;
};

constexpr KnownForm sKnownForms[] = {
#define DWARF_FORM(code, name, classic, full, value, filled)                                       \
    {DW_FORM_##name, FormReading::classic, FormReading::full, FormValue::value,                    \
     LinkerValue::filled},
#include "dwarf/codes/DwarfForms.def"
#undef DWARF_FORM
};

struct KnownAttribute {
    std::uint32_t code;
    AttributeTarget classic;
    AttributeTarget full;
};

constexpr KnownAttribute sKnownAttributes[] = {
#define DWARF_ATTRIBUTE(code, name, classic, full)                                                 \
    {DW_AT_##name, AttributeTarget::classic, AttributeTarget::full},
#include "dwarf/codes/DwarfAttributes.def"
#undef DWARF_ATTRIBUTE
};

// The codes of the standard are dense, those of vendors follow far away: forms of split units
// before DWARF 5, and of files that share a supplementary file.
constexpr std::size_t sFormCount = DW_FORM_addrx4 + 1;
constexpr std::uint32_t sFirstVendorForm = DW_FORM_GNU_addr_index;
constexpr std::size_t sVendorFormCount = DW_FORM_GNU_strp_alt + 1 - sFirstVendorForm;
constexpr std::size_t sTargetCount = DW_AT_loclists_base + 1;

/// The forms with codes from `first` on.
template <std::size_t Count>
constexpr auto FormsFrom(std::uint32_t first, ReadingManner manner, Linkage linkage) {
    std::array<FormProperties, Count> forms{};
    for (const KnownForm& known : sKnownForms) {
        const FormReading reading = manner == ReadingManner::Full ? known.full : known.classic;
        if (known.code - first >= Count || reading == FormReading::Unknown) {
            continue;
        }
        const bool isMissing =
            (known.filled == LinkerValue::Address && linkage != Linkage::Linked) ||
            (known.filled == LinkerValue::Offset && linkage == Linkage::NothingInPlace);
        forms[known.code - first] = {reading, isMissing ? FormValue::Absent : known.value};
    }
    return forms;
}

constexpr auto FormsOf(ReadingManner manner, Linkage linkage) {
    return FormsFrom<sFormCount>(0, manner, linkage);
}

constexpr auto FullVendorFormsOf(Linkage linkage) {
    return FormsFrom<sVendorFormCount>(sFirstVendorForm, ReadingManner::Full, linkage);
}

constexpr auto sClassicForms = FormsOf(ReadingManner::Classic, Linkage::Linked);
constexpr auto sFullForms = FormsOf(ReadingManner::Full, Linkage::Linked);
constexpr auto sFullVendorForms = FullVendorFormsOf(Linkage::Linked);
constexpr auto sFormsWithoutAddresses = FormsOf(ReadingManner::Full, Linkage::OffsetsInPlace);
constexpr auto sVendorFormsWithoutAddresses = FullVendorFormsOf(Linkage::OffsetsInPlace);
constexpr auto sUnlinkedForms = FormsOf(ReadingManner::Full, Linkage::NothingInPlace);
constexpr auto sUnlinkedVendorForms = FullVendorFormsOf(Linkage::NothingInPlace);

constexpr auto TargetsOf(ReadingManner manner) {
    std::array<AttributeTarget, sTargetCount> targets{};
    for (const KnownAttribute& known : sKnownAttributes) {
        if (known.code < sTargetCount) {
            targets[known.code] = manner == ReadingManner::Full ? known.full : known.classic;
        }
    }
    return targets;
}

constexpr auto sClassicTargets = TargetsOf(ReadingManner::Classic);
constexpr auto sFullTargets = TargetsOf(ReadingManner::Full);

constexpr std::size_t sVendorTargetCount = std::ranges::count_if(
    sKnownAttributes, [](const KnownAttribute& known) { return known.code >= sTargetCount; });

constexpr auto sFullVendorTargets = [] {
    std::array<VendorTarget, sVendorTargetCount> targets{};
    std::size_t count = 0;
    for (const KnownAttribute& known : sKnownAttributes) {
        if (known.code >= sTargetCount) {
            targets[count++] = {known.code, known.full};
        }
    }
    return targets;
}();

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
