// Updates the addresses of a description to those of an image. It decides what changes and why; the
// command writes the texts and the report.
#pragma once

#include "a2l/Comparison.h"
#include "a2l/Document.h"
#include "a2l/SymbolIndex.h"
#include "a2l/TextEdits.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

enum class Status : std::uint8_t {
    Unchanged,
    Updated,
    /// The image has nothing with this name.
    NotFound,
    /// The image has several things with this name.
    Ambiguous,
    /// The address doesn't fit in A2L.
    OutOfRange,
};
constexpr std::size_t sStatusCount = 5;

/// The name of a status in reports, such as "notFound".
std::string_view NameOf(Status status);

/// What happens to objects that the image lacks.
enum class MissingChoice : std::uint8_t { Keep, Zero, Remove };

struct UpdateChoices {
    MissingChoice missing = MissingChoice::Keep;
    /// Also change bit masks.
    bool hasBitMasks = false;
    /// Byte order of the image.
    bool isBigEndian = false;
    /// The description's addresses count words of 16 bits, the image's count bytes.
    bool isWordAddressed = false;
    /// Also name what now lies at the old addresses of objects that have moved.
    bool hasOldPlaces = true;
    /// Called from time to time with the number of finished objects; may be empty.
    std::function<void(std::size_t done)> progress;
};

struct ObjectResult {
    /// Index among the objects of the document.
    std::size_t object = 0;
    Status status = Status::Unchanged;
    /// The object's address after the update.
    std::uint64_t newAddress = 0;
    std::uint64_t newMask = 0;
    bool isRemoved = false;
    /// Why it was not found, for a person.
    std::string problem;
    /// Names similar to the one that was not found.
    std::string nearNames;
    /// What the image has at the old address, if that is no longer the object.
    std::string nowAtOldAddress;
    std::vector<Difference> differences;
};

struct UpdateResult {
    /// One for each object that has an address, in the order of the text.
    std::vector<ObjectResult> objects;
    /// Changes for each source that has any, in order.
    std::unordered_map<const Source*, TextEdits> edits;
    /// Remarks that concern no single object, for a person.
    std::vector<std::string> remarks;
    /// Number of objects without an address, which measurements may be.
    std::size_t withoutAddress = 0;
    std::size_t counts[sStatusCount] = {};
};

/// @param index must be one of `model`
UpdateResult Update(const Document& document, const DataModel::Model& model,
                    const SymbolIndex& index, const UpdateChoices& choices);

} // namespace Tessel::Norn::Brindle::Program::A2l
