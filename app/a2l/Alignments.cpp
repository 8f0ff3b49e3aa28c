#include "a2l/Alignments.h"

#include "a2l/Datatypes.h"

#include <bit>
#include <optional>

namespace Tessel::Norn::Brindle::Program::A2l {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectKind;

/// Powers of two from 1 to 8.
constexpr std::size_t sPowers = 4;

/// How many members lie on a multiple of each power of two, but not on a larger one.
struct Offsets {
    std::array<std::size_t, sPowers> counts{};

    void Add(std::uint64_t offset) {
        const auto power =
            static_cast<std::size_t>(std::countr_zero(offset | (1U << (sPowers - 1))));
        ++counts[power];
    }

    /// The alignment of scalars of a size.
    [[nodiscard]] std::uint64_t AlignmentOf(std::uint64_t size) const {
        std::size_t total = 0;
        for (const std::size_t count : counts) {
            total += count;
        }
        auto power = static_cast<std::size_t>(std::countr_zero(size));
        const auto aligned = [&] {
            std::size_t count = 0;
            for (std::size_t larger = power; larger < sPowers; ++larger) {
                count += counts[larger];
            }
            return count;
        };
        // Nine members of ten.
        while (power > 0 && aligned() * 10 < total * 9) {
            --power;
        }
        return std::uint64_t{1} << power;
    }
};

} // namespace

Alignments AlignmentsOf(const DataModel::Model& model) {
    std::array<Offsets, sPowers> integers;
    std::array<Offsets, sPowers> floats;
    model.ForEach(ObjectKind::Member, [&](const ModelObject& member) {
        const std::optional<Scalar> scalar = ScalarOfType(model, member.type);
        // The first member lies at offset 0, whatever its alignment.
        if (!scalar || member.offset == 0 || !std::has_single_bit(scalar->size) ||
            scalar->size > 8) {
            return;
        }
        const auto power = static_cast<std::size_t>(std::countr_zero(scalar->size));
        (scalar->kind == Scalar::Kind::Float ? floats : integers)[power].Add(member.offset);
    });
    Alignments alignments;
    for (std::size_t power = 0; power < sPowers; ++power) {
        alignments.integers[power] = integers[power].AlignmentOf(std::uint64_t{1} << power);
        if (power > 0) {
            alignments.floats[power - 1] = floats[power].AlignmentOf(std::uint64_t{1} << power);
        }
    }
    return alignments;
}

} // namespace Tessel::Norn::Brindle::Program::A2l
