#include "model/LayoutFingerprints.h"

#include "core/KeyMixing.h"

#include <initializer_list>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

/// Types nested deeper count as equal; no leaf at such a depth is ever compared.
constexpr std::size_t sDeepestNesting = 200;
constexpr std::uint64_t sWithoutEnd = 1;

std::uint64_t Chained(std::initializer_list<std::uint64_t> numbers) {
    std::uint64_t hash = 0;
    for (const std::uint64_t number : numbers) {
        hash = Mix(hash + 0x9E3779B97F4A7C15U) ^ Mix(number);
    }
    return hash;
}

std::uint64_t OfText(std::string_view text) {
    return HashOfText(text, ProcessSeed());
}

bool IsMember(ObjectKind kind) {
    return kind == ObjectKind::Member || kind == ObjectKind::UnionMember ||
           kind == ObjectKind::BitField;
}

} // namespace

// Calls itself through members and elements, no deeper than sDeepestNesting.
// NOLINTNEXTLINE(misc-no-recursion)
std::uint64_t LayoutFingerprints::Fingerprint(ObjectId type, std::size_t depth) {
    const ObjectId target = mModel.WithoutTypedefs(type);
    const ObjectKind kind = mModel.Object(target).kind;
    const bool isClass =
        kind == ObjectKind::Class || kind == ObjectKind::Struct || kind == ObjectKind::Union;
    const bool hasParts = target != 0 && (isClass || mModel.ElementCount(target) != 0);
    const ObjectId key = hasParts ? target : type;
    if (depth == sDeepestNesting) {
        return sWithoutEnd;
    }
    const auto [known, isNew] = mKnown.try_emplace(key, sWithoutEnd);
    if (!isNew) {
        return known->second;
    }
    const std::uint64_t result = !hasParts ? OfLeaf(type)
                                 : isClass ? OfClass(target, depth)
                                           : OfArray(target, depth);
    return mKnown[key] = result;
}

std::uint64_t LayoutFingerprints::MeaningOf(ObjectId type) {
    const auto [known, isNew] = mMeanings.try_emplace(type);
    if (isNew) {
        const ObjectId target = mModel.WithoutTypedefs(type);
        std::uint64_t hash = OfText(mModel.TypeText(type));
        if (target != type) {
            hash = Chained({hash, OfText(mModel.TypeText(target))});
        }
        for (const Enumerator& enumerator : mModel.Enumerators(target)) {
            hash = Chained(
                {hash, static_cast<std::uint64_t>(enumerator.value), OfText(enumerator.name)});
        }
        known->second = hash;
    }
    return known->second;
}

std::uint64_t LayoutFingerprints::OfLeaf(ObjectId type) {
    return Chained({MeaningOf(type), mModel.SizeOf(type)});
}

// NOLINTNEXTLINE(misc-no-recursion)
std::uint64_t LayoutFingerprints::OfArray(ObjectId array, std::size_t depth) {
    std::uint64_t hash = mModel.ElementStride(array);
    for (const std::uint32_t dimension : mModel.Dimensions(array)) {
        hash = Chained({hash, dimension});
    }
    return Chained({hash, Fingerprint(mModel.Object(array).type, depth + 1)});
}

// NOLINTNEXTLINE(misc-no-recursion)
std::uint64_t LayoutFingerprints::OfClass(ObjectId classType, std::size_t depth) {
    std::uint64_t hash = mModel.SizeOf(classType);
    std::size_t members = 0;
    // NOLINTNEXTLINE(misc-no-recursion)
    mModel.ForEachIn(classType, [&](const ModelObject& member) {
        if (IsMember(member.kind)) {
            ++members;
            hash = Chained({hash, OfText(member.name), member.offset, member.bitOffset,
                            member.bitSize, Fingerprint(member.type, depth + 1)});
        }
    });
    for (const BaseClass& base : mModel.BaseClasses(classType)) {
        ++members;
        hash = Chained({hash, OfText(mModel.Object(base.type).name), base.offset,
                        Fingerprint(base.type, depth + 1)});
    }
    // Without contents it is a leaf, whose type has a name.
    return members != 0 ? Chained({hash, members}) : OfLeaf(classType);
}

} // namespace Tessel::Norn::Brindle::DataModel
