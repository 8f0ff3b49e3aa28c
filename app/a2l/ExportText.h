// How the blocks of an export are written, for each version. The export decides the contents.
#pragma once

#include "a2l/Version.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program::A2l {

/// Equal scalars as an export describes them.
struct ExportedValues {
    std::string_view datatype;
    std::string conversion;
    /// Dimensions of the array, innermost first; empty for a single scalar.
    std::vector<std::uint64_t> dimensions;
    std::optional<std::uint64_t> bitMask;
};

/// Name and place of an object.
struct ExportedObject {
    std::string name;
    /// Empty if no symbol leads to it.
    std::string symbol;
    std::string description;
    std::uint64_t address = 0;
};

/// Limits of a datatype, or of the bits under a mask: "0 255".
std::string LimitsOf(std::string_view datatype, std::optional<std::uint64_t> bitMask);

/// The name of the record layout of a datatype.
std::string LayoutNameOf(std::string_view datatype);

std::string MeasurementText(const ExportedObject& object, const ExportedValues& values,
                            Version version);
std::string CharacteristicText(const ExportedObject& object, const ExportedValues& values,
                               Version version);
std::string RecordLayoutText(std::string_view datatype);

/// "MATRIX_DIM 3 2 1" or its counterpart in other versions; empty for a scalar.
std::string DimensionsText(const std::vector<std::uint64_t>& dimensions, Version version,
                           std::string_view olderKeyword);

/// "0x20000000"
std::string AddressText(std::uint64_t address);

} // namespace Tessel::Norn::Brindle::Program::A2l
