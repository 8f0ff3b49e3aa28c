// Whether two types, also of two models, lay their leaves out alike. A comparison of two builds
// asks, so that it expands only what has changed; it reads the model and keeps what it found out.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace Tessel::Norn::Brindle::DataModel {

/// Gives each type of one model a number. Types have the same number, in all models of a process,
/// if they have the same leaves with the same names, offsets, sizes, bits and meanings. Names of
/// structures count for nothing. All types of a model take time in proportion to the model.
class BRINDLE_EXPORT LayoutFingerprints {
public:
    /// @param model borrowed; must not change during the life of this object
    explicit LayoutFingerprints(const Model& model)
        : mModel(model) {}

    /// The number of a type. An identifier that names no type has one as well.
    std::uint64_t Of(ObjectId type) { return Fingerprint(type, 0); }

    /// A number for what a value of the type means, its size aside: the text of the type, that of
    /// the type behind its typedefs, and the values of an enum.
    std::uint64_t MeaningOf(ObjectId type);

private:
    std::uint64_t Fingerprint(ObjectId type, std::size_t depth);
    std::uint64_t OfLeaf(ObjectId type);
    std::uint64_t OfArray(ObjectId array, std::size_t depth);
    std::uint64_t OfClass(ObjectId classType, std::size_t depth);

    const Model& mModel;
    /// A type that is being looked at has the number of one that contains itself.
    std::unordered_map<ObjectId, std::uint64_t> mKnown;
    std::unordered_map<ObjectId, std::uint64_t> mMeanings;
};

} // namespace Tessel::Norn::Brindle::DataModel
