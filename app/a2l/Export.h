// Writes a description of an image: an object for each leaf, with all that the objects refer to.
// The command gives the wishes of the user and the place for the text.
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
    /// What is wanted, as `leaves` takes patterns; empty for everything.
    std::vector<std::string> patterns;
    /// What is to be calibrated wherever it lies.
    std::vector<std::string> characteristics;
    /// Names of sections, or patterns of them, whose variables are to be calibrated.
    std::vector<std::string> sections;
    /// Objects with what they refer to alone, for an include.
    bool isFragment = false;
    /// Structures as types and instances, which need the latest version.
    bool hasStructures = false;
    Version version = Version::V1_6;
    DataModel::LeafLimits limits;
    /// Addresses in words of 16 bits.
    bool hasWordAddresses = false;
};

struct ExportResult {
    std::size_t measurements = 0;
    std::size_t characteristics = 0;
    std::size_t instances = 0;
    /// What was left out, for a person, one text for each cause.
    std::vector<std::string> omissions;
};

/// @throws OutputError if the text can't be written
ExportResult Export(const DataModel::Model& model, const ExportChoices& choices,
                    ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program::A2l
