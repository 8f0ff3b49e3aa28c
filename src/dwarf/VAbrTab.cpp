#include "dwarf/VAbrTab.h"

#include "container/VElfBuffer.h"

#include <limits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint32_t sMaximumSkip = std::numeric_limits<std::uint16_t>::max();

/// Codes up to this multiple of the number of items are looked up in a flat table.
constexpr std::size_t sCodesPerItem = 4;
constexpr std::size_t sSmallestFlatTable = 64;

bool IsPassable(CodeEntry entry) {
    return entry != CodeEntry::Kept && entry != CodeEntry::Variable;
}

} // namespace

bool VAbrTab::Read(VElfBuffer& section, std::uint32_t offset) {
    section.SetOffset(static_cast<std::int32_t>(offset));
    while (!section.IsEOF()) {
        const std::uint32_t code = section.GetULEB128();
        if (code == 0 || Find(code) != nullptr || !ReadItem(section, code)) {
            break;
        }
    }
    mItems.shrink_to_fit();
    mAttributes.shrink_to_fit();
    mSkippingSteps.shrink_to_fit();
    return !mItems.empty();
}

bool VAbrTab::ReadItem(VElfBuffer& section, std::uint32_t code) {
    TAbrTabItem item;
    item.mCode = code;
    const dwarf_tag tag = section.GetULEB128();
    item.mTag = mForms->TagOf(tag);
    item.mIsPartialUnit = tag == DW_TAG_partial_unit && item.mTag != tag;
    item.mHasChildren = section.GetUByte();
    item.mFirstAttribute = static_cast<std::uint32_t>(mAttributes.size());
    item.mFirstPassingStep = static_cast<std::uint32_t>(mSkippingSteps.size());
    ReadAttributes(section, item);
    item.mAttributeCount = static_cast<std::uint32_t>(mAttributes.size()) - item.mFirstAttribute;
    if (!IsPassable(item.mCodeEntry) && item.mBodyEntry == BodyEntry::Kept) {
        mSkippingSteps.resize(item.mFirstPassingStep);
    }
    item.mPassingStepCount =
        static_cast<std::uint32_t>(mSkippingSteps.size()) - item.mFirstPassingStep;
    if (section.HasPassedEnd()) {
        mAttributes.resize(item.mFirstAttribute);
        mSkippingSteps.resize(item.mFirstPassingStep);
        return false;
    }
    mItems.push_back(item);
    Enter(code);
    return true;
}

void VAbrTab::ReadAttributes(VElfBuffer& section, TAbrTabItem& item) {
    item.mCodeEntry = CodeEntryOf(item.mTag, item.mHasChildren == 1);
    BodyEntryRule bodyEntry(item.mTag, item.mHasChildren == 1);
    StepList reading{mAttributes};
    StepList skipping{mSkippingSteps};
    while (true) {
        const std::uint32_t code = section.GetULEB128();
        TDieAttribute attribute;
        attribute.mForm = section.GetULEB128();
        if (code == 0 || attribute.mForm == 0) {
            break;
        }
        attribute.mReading = mForms->ReadingOf(attribute.mForm);
        attribute.mAttribute = mForms->TargetOf(mForms->TargetOf(code), attribute.mForm);
        if (attribute.mReading == FormReading::Constant) {
            attribute.mConstant = static_cast<std::uint64_t>(section.GetSLEB128In64Bits());
        }
        reading.Add(attribute);
        item.mCodeEntry =
            WithAttribute(item.mCodeEntry, item.mTag, attribute.mAttribute, attribute.mReading);
        bodyEntry.Take(attribute.mAttribute, attribute.mReading);
        if (IsPassable(item.mCodeEntry) || bodyEntry.MaySkip()) {
            const bool countsType =
                bodyEntry.MaySkip() && attribute.mAttribute == AttributeTarget::Type;
            attribute.mAttribute = countsType ? AttributeTarget::Type : AttributeTarget::None;
            skipping.Add(attribute);
        }
    }
    item.mBodyEntry = bodyEntry.Result();
    reading.End();
    skipping.End();
}

void VAbrTab::StepList::Add(const TDieAttribute& attribute) {
    const bool isSkipped = attribute.mAttribute == AttributeTarget::None;
    if (isSkipped && TakesNoBytes(attribute.mReading)) {
        return;
    }
    const std::uint32_t width = FixedWidth(attribute.mReading);
    if (isSkipped && width != 0 && skip + width <= sMaximumSkip) {
        skip += width;
        return;
    }
    steps.push_back(attribute);
    steps.back().mSkip = static_cast<std::uint16_t>(skip);
    skip = 0;
}

void VAbrTab::StepList::End() {
    if (skip > 0) {
        steps.push_back({.mSkip = static_cast<std::uint16_t>(skip)});
    }
}

void VAbrTab::Enter(std::uint32_t code) {
    const auto place = static_cast<std::uint32_t>(mItems.size());
    if (code >= mIndexByCode.size() && code < sSmallestFlatTable + sCodesPerItem * place) {
        mIndexByCode.resize(std::size_t{code} + 1);
    }
    if (code < mIndexByCode.size()) {
        mIndexByCode[code] = place;
    } else {
        mIndexByLargeCode.emplace(code, place);
    }
}

const TAbrTabItem* VAbrTab::FindLargeCode(std::uint32_t code) const {
    const auto found = mIndexByLargeCode.find(code);
    return found != mIndexByLargeCode.end() ? &mItems[found->second - 1] : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
