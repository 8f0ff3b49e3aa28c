// Writes a description of an image: an object for each leaf, with everything that the objects refer
// to. The command passes the user's choices and the output.
#pragma once

#include "a2l/Version.h"
#include "model/DataModel.h"
#include "model/LeafWalk.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

} // namespace Tessel::Norn::Brindle::Program

namespace Tessel::Norn::Brindle::Program::A2l {

struct ExportChoices {
    /// Patterns of what is wanted, as in `leaves`; empty for everything.
    std::vector<std::string> patterns;
    /// Patterns of what is calibrated, whatever its section.
    std::vector<std::string> characteristics;
    /// Names or patterns of sections whose variables are calibrated.
    std::vector<std::string> sections;
    /// Only objects with what they refer to, for an include.
    bool isFragment = false;
    /// Structures as types and instances, which only the latest version has.
    bool hasStructures = false;
    Version version = Version::V1_6;
    DataModel::LeafLimits limits;
    /// Addresses count words of 16 bits.
    bool hasWordAddresses = false;
};

struct ExportResult {
    std::size_t measurements = 0;
    std::size_t characteristics = 0;
    std::size_t instances = 0;
    /// What was left out, for a person, one text for each cause.
    std::vector<std::string> omissions;

    /// True if nothing matches, not even what was left out.
    [[nodiscard]] bool IsEmpty() const {
        return measurements == 0 && characteristics == 0 && instances == 0 && omissions.empty();
    }
};

/// Writes nothing if nothing matches.
/// @throws OutputError if the text can't be written
ExportResult Export(const DataModel::Model& model, const ExportChoices& choices,
                    ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program::A2l
