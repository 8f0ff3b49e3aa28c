// Whether two types, even of two models, have the same layout of leaves. A comparison of two builds
// asks this and then expands only what has changed. Results are kept for further calls.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace Tessel::Norn::Brindle::DataModel {

/// Gives each type of one model a number. Types have the same number, in all models of a process,
/// if they have the same leaves with the same names, offsets, sizes, bits and meanings. Names of
/// structures don't count. All types of a model together take time in proportion to the model.
class BRINDLE_EXPORT LayoutFingerprints {
public:
    /// @param model borrowed; must not change during the life of this object
    explicit LayoutFingerprints(const Model& model)
        : mModel(model) {}

    /// The number of a type. An identifier that names no type has a number as well.
    std::uint64_t Of(ObjectId type) { return Fingerprint(type, 0); }

    /// A number for the meaning of a value of the type, apart from its size: the text of the type,
    /// the text of the type without typedefs, and the values of an enum.
    std::uint64_t MeaningOf(ObjectId type);

private:
    std::uint64_t Fingerprint(ObjectId type, std::size_t depth);
    std::uint64_t OfLeaf(ObjectId type);
    std::uint64_t OfArray(ObjectId array, std::size_t depth);
    std::uint64_t OfClass(ObjectId classType, std::size_t depth);

    const Model& mModel;
    /// While a type is in progress, it has the number of a type that contains itself.
    std::unordered_map<ObjectId, std::uint64_t> mKnown;
    std::unordered_map<ObjectId, std::uint64_t> mMeanings;
};

} // namespace Tessel::Norn::Brindle::DataModel
