#include "a2l/Update.h"

#include "Phrases.h"

#include "a2l/BitMask.h"
#include "a2l/Identifiers.h"
#include "a2l/Numbers.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}

/// A span with the blanks that its removal would leave: the rest of its lines if they hold nothing
/// else, otherwise the blanks before it.
TextEdit Removal(const Span& span) {
    const std::string_view text = span.source->Bytes();
    std::size_t start = span.position;
    std::size_t end = span.position + span.length;
    while (start > 0 && IsBlank(text[start - 1])) {
        --start;
    }
    std::size_t lineEnd = end;
    while (lineEnd < text.size() && (IsBlank(text[lineEnd]) || text[lineEnd] == '\r')) {
        ++lineEnd;
    }
    const bool beginsLine = start == 0 || text[start - 1] == '\n';
    const bool endsLine = lineEnd == text.size() || text[lineEnd] == '\n';
    if (beginsLine && endsLine) {
        end = std::min(lineEnd + 1, text.size());
    } else if (beginsLine) {
        start = span.position;
    }
    return {start, end - start, {}};
}

/// True if most addresses with letters have upper-case ones.
bool HasCapitals(const Document& document) {
    std::size_t capital = 0;
    std::size_t small = 0;
    for (const Object& object : document.objects) {
        const std::optional<bool> isCapital = LetterCase(object.address.span.Text());
        capital += isCapital == true ? 1U : 0U;
        small += isCapital == false ? 1U : 0U;
    }
    return capital >= small;
}

class Updater {
public:
    Updater(const Document& document, const DataModel::Model& model, const SymbolIndex& index,
            const UpdateChoices& choices)
        : mDocument(document)
        , mIndex(index)
        , mChoices(choices)
        , mComparison(document, model, index, choices.isWordAddressed ? 2 : 1)
        , mHasCapitals(HasCapitals(document)) {}

    UpdateResult Run() {
        mResult.objects.reserve(mDocument.objects.size());
        for (std::size_t position = 0; position < mDocument.objects.size(); ++position) {
            constexpr std::size_t step = 1024;
            if (mChoices.progress && position % step == 0) {
                mChoices.progress(position);
            }
            TakeObject(position);
        }
        RemoveMentions();
        AddRemarks();
        for (auto& [source, edits] : mResult.edits) {
            edits.Sort();
        }
        return std::move(mResult);
    }

private:
    void TakeObject(std::size_t position) {
        const Object& object = mDocument.objects[position];
        if (!object.address.span.IsSet()) {
            ++mResult.withoutAddress;
            return;
        }
        ObjectResult result;
        result.object = position;
        result.newAddress = object.address.value;
        result.newMask = object.bitMask.value;
        const std::string symbol = object.link.length != 0 ? UnquotedText(object.link.Text())
                                                           : std::string(object.name.Text());
        const SymbolIndex::Answer answer = mIndex.Find(symbol);
        if (answer.outcome == SymbolIndex::Outcome::Found) {
            TakePlace(object, answer.place, result);
        } else {
            const bool isMissing = answer.outcome == SymbolIndex::Outcome::Missing;
            result.status = isMissing ? Status::NotFound : Status::Ambiguous;
            result.problem = answer.problem;
            if (isMissing) {
                if (mNearNamesLeft > 0) {
                    --mNearNamesLeft;
                    result.nearNames = mIndex.NearNames(symbol, answer);
                }
                TakeMissing(object, result);
            }
        }
        const bool isLost = result.status != Status::Unchanged && result.status != Status::Updated;
        if (isLost || (result.status == Status::Updated && mChoices.hasOldPlaces)) {
            result.nowAtOldAddress = mIndex.NameAt(object.address.value * AddressUnit());
        }
        ++mResult.counts[static_cast<std::size_t>(result.status)];
        mResult.objects.push_back(std::move(result));
    }

    void TakePlace(const Object& object, const SymbolIndex::Place& place, ObjectResult& result) {
        result.differences = mComparison.Compare(object, place);
        MaskedPlace masked{place.address, object.bitMask.value};
        if (place.isBitField && object.linkOffset == 0) {
            masked = PlaceOfBits(object, place, result);
        } else if (place.isBitField) {
            CompareMaskAtOffset(object, place, result);
        }
        const std::uint64_t start = masked.address / AddressUnit();
        const auto offset = static_cast<std::uint64_t>(object.linkOffset);
        const std::uint64_t target = start + offset;
        const bool isWrapped = offset != 0 && (object.linkOffset < 0) != (target < start);
        // A file that already has larger addresses is for a tool that takes them.
        if (isWrapped || (target > sLargestAddress && object.address.value <= sLargestAddress)) {
            result.status = Status::OutOfRange;
            result.problem = isWrapped ? Phrased("the offset of the link leads out of the memory")
                                       : Phrased("the address {} has more than 32 bits",
                                                 UpperHexadecimal(target));
            return;
        }
        result.newAddress = target;
        Change(object.address, target, result);
        if (object.bitMask.span.IsSet() && mChoices.hasBitMasks) {
            result.newMask = masked.mask;
            Change(object.bitMask, masked.mask, result);
        }
    }

    /// Bytes from one address of the description to the next.
    [[nodiscard]] std::uint64_t AddressUnit() const { return mChoices.isWordAddressed ? 2 : 1; }

    /// The offset of a link says where the number lies, so that only its mask may be wrong.
    void CompareMaskAtOffset(const Object& object, const SymbolIndex::Place& place,
                             ObjectResult& result) const {
        const MaskedReading reading = mComparison.ReadingOf(object, place);
        const std::uint64_t address =
            place.address + static_cast<std::uint64_t>(object.linkOffset) * AddressUnit();
        const auto mask = MaskAt(address, place, ImageOrder(), reading.number);
        if (mask != reading.Mask()) {
            result.differences.push_back(
                {"bitMask", reading.MaskText(), mask ? UpperHexadecimal(*mask) : Phrased("none")});
        }
    }

    [[nodiscard]] DataModel::ByteOrder ImageOrder() const {
        return mChoices.isBigEndian ? DataModel::ByteOrder::Big : DataModel::ByteOrder::Little;
    }

    /// The number that a tool reads for a bit field, and its mask.
    MaskedPlace PlaceOfBits(const Object& object, const SymbolIndex::Place& place,
                            ObjectResult& result) {
        MaskedReading reading = mComparison.ReadingOf(object, place);
        reading.number.addressUnit = AddressUnit();
        std::optional<MaskedPlace> masked =
            FindMaskedPlace(place, ImageOrder(), reading.number, reading.Mask());
        if (!masked) {
            result.differences.push_back(
                {"bitMask", reading.MaskText(), UnheldBits(place, ImageOrder(), reading.number)});
            return {place.address, object.bitMask.value};
        }
        const bool mayChange = object.bitMask.span.IsSet() && mChoices.hasBitMasks;
        const bool stands = masked->mask == reading.Mask() &&
                            masked->address / AddressUnit() == object.address.value;
        if (mayChange && !stands && !masked->isAtUnit) {
            // Rather another mask than a number that lies across the unit.
            masked = FindMaskedPlace(place, ImageOrder(), reading.number, std::nullopt);
        }
        if (masked->mask != reading.Mask() && !mayChange) {
            result.differences.push_back(
                {"bitMask", reading.MaskText(), UpperHexadecimal(masked->mask)});
        }
        return *masked;
    }

    void TakeMissing(const Object& object, ObjectResult& result) {
        if (mChoices.missing == MissingChoice::Zero && object.address.value != 0) {
            Write(object.address, 0);
            result.newAddress = 0;
        }
        // A block that begins in one file and ends in another is not removed.
        if (mChoices.missing == MissingChoice::Remove && object.block.IsSet()) {
            mResult.edits[object.block.source].Add(Removal(object.block));
            mRemoved.emplace(object.module, object.name.Text());
            result.isRemoved = true;
        }
    }

    void Change(const NumberAt& number, std::uint64_t value, ObjectResult& result) {
        if (number.value != value) {
            Write(number, value);
            result.status = Status::Updated;
        }
    }

    void Write(const NumberAt& number, std::uint64_t value) {
        mResult.edits[number.span.source].Add(
            {number.span.position, number.span.length,
             Notation(number.span.Text(), mHasCapitals).Write(value)});
    }

    void RemoveMentions() {
        for (const Mention& mention : mDocument.mentions) {
            if (mRemoved.contains({mention.module, mention.name.Text()})) {
                mResult.edits[mention.name.source].Add(Removal(mention.name));
            }
        }
    }

    void AddRemarks() {
        std::size_t variantAddresses = 0;
        bool isOtherOrder = false;
        for (const Module& module : mDocument.modules) {
            variantAddresses += module.variantAddresses;
            isOtherOrder = isOtherOrder || (module.isBigEndian.has_value() &&
                                            *module.isBigEndian != mChoices.isBigEndian);
        }
        if (isOtherOrder) {
            mResult.remarks.push_back(Phrased(
                mChoices.isBigEndian
                    ? Phrase("BYTE_ORDER in MOD_COMMON is not that of the image, which has its "
                             "most significant byte first (MSB_FIRST)")
                    : Phrase("BYTE_ORDER in MOD_COMMON is not that of the image, which has its "
                             "most significant byte last (MSB_LAST)")));
        }
        if (variantAddresses != 0) {
            mResult.remarks.push_back(PhrasedCount(
                variantAddresses, "{} address in VAR_ADDRESS has no symbol and stays as it is",
                "{} addresses in VAR_ADDRESS have no symbol and stay as they are"));
        }
    }

    const Document& mDocument;
    const SymbolIndex& mIndex;
    const UpdateChoices& mChoices;
    Comparison mComparison;
    bool mHasCapitals;
    UpdateResult mResult;
    /// Similar names are searched for this many objects. If an image lacks more, the list helps
    /// nobody.
    std::size_t mNearNamesLeft = 2000;
    std::set<std::pair<std::size_t, std::string_view>> mRemoved;
};

} // namespace

std::string_view NameOf(Status status) {
    constexpr std::array<std::string_view, sStatusCount> names = {
        "unchanged", "updated", "notFound", "ambiguous", "outOfRange"};
    return names[static_cast<std::size_t>(status)];
}

UpdateResult Update(const Document& document, const DataModel::Model& model,
                    const SymbolIndex& index, const UpdateChoices& choices) {
    return Updater(document, model, index, choices).Run();
}

} // namespace Tessel::Norn::Brindle::Program::A2l
