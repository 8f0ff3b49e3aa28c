// The abbreviations of compile units (DWARF 5, 7.5.3), prepared for reading debug entries:
// attributes that the reader doesn't use are merged into distances to skip, if their width is
// known.
#pragma once

#include "core/KeyMixing.h"
#include "dwarf/BodyEntries.h"
#include "dwarf/CodeEntries.h"
#include "dwarf/DieForms.h"
#include "dwarf/codes/DwarfConstants.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VElfBuffer;

/// One step of reading an entry: bytes to skip, then the value of an attribute.
struct TDieAttribute {
    /// Bytes of unused attributes before this one.
    std::uint16_t mSkip = 0;
    /// How the reader uses the attribute; its code isn't kept.
    AttributeTarget mAttribute = AttributeTarget::None;
    FormReading mReading = FormReading::Present;
    std::uint32_t mForm = 0;
    /// The value itself, if the abbreviation holds it.
    std::uint64_t mConstant = 0;
};

/// One abbreviation. `VAbrTab::AttributesOf` returns its attributes.
struct TAbrTabItem {
    std::uint32_t mCode = 0;
    dwarf_tag mTag = 0;
    /// As stored; only 1 means that entries have children.
    std::uint8_t mHasChildren = 0;
    /// A unit that others may import, even if its tag is that of a compile unit.
    bool mIsPartialUnit = false;
    /// How entries inside code are treated.
    CodeEntry mCodeEntry = CodeEntry::Kept;
    /// How entries in the body of a type are treated.
    BodyEntry mBodyEntry = BodyEntry::Kept;
    std::uint32_t mFirstAttribute = 0;
    std::uint32_t mAttributeCount = 0;
    std::uint32_t mFirstPassingStep = 0;
    std::uint32_t mPassingStepCount = 0;
};

/// The abbreviations of all units with one offset in `.debug_abbrev`.
class VAbrTab {
public:
    explicit VAbrTab(const DieForms& forms)
        : mForms(&forms) {}

    /// Reads the table at an offset of the loaded section. It ends with the code 0, at a code that
    /// it already has, or with the section; an abbreviation that the end of the section truncates
    /// is dropped.
    /// @return true if the table has any abbreviation
    bool Read(VElfBuffer& section, std::uint32_t offset);

    /// The abbreviation of a code, null if there is none. Valid as long as the table.
    [[nodiscard]] const TAbrTabItem* Find(std::uint32_t code) const {
        if (code < mIndexByCode.size() && mIndexByCode[code] != 0) {
            return &mItems[mIndexByCode[code] - 1];
        }
        return mIndexByLargeCode.empty() ? nullptr : FindLargeCode(code);
    }

    /// The steps that read an entry of an abbreviation of this table, in order.
    [[nodiscard]] std::span<const TDieAttribute> AttributesOf(const TAbrTabItem& item) const {
        return {mAttributes.data() + item.mFirstAttribute, item.mAttributeCount};
    }

    /// The steps that skip an entry whose length follows from its abbreviation, in order. For
    /// entries in bodies, the step of a type has its target.
    [[nodiscard]] std::span<const TDieAttribute> SkippingStepsOf(const TAbrTabItem& item) const {
        return {mSkippingSteps.data() + item.mFirstPassingStep, item.mPassingStepCount};
    }

private:
    /// Steps that are added one by one.
    struct StepList {
        std::vector<TDieAttribute>& steps;
        /// Bytes to skip before the next step.
        std::uint32_t skip = 0;

        void Add(const TDieAttribute& attribute);
        void End();
    };

    bool ReadItem(VElfBuffer& section, std::uint32_t code);
    void ReadAttributes(VElfBuffer& section, TAbrTabItem& item);
    void Enter(std::uint32_t code);
    [[nodiscard]] const TAbrTabItem* FindLargeCode(std::uint32_t code) const;

    const DieForms* mForms;
    std::vector<TAbrTabItem> mItems;
    std::vector<TDieAttribute> mAttributes;
    std::vector<TDieAttribute> mSkippingSteps;
    /// Indexed by code: position in `mItems` from 1, or 0. The number of items limits its length.
    std::vector<std::uint32_t> mIndexByCode;
    std::unordered_map<std::uint32_t, std::uint32_t, SeededHash> mIndexByLargeCode;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
