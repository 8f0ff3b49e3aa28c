// The datatype as a plain value of the host.
#pragma once

#include "../core/Export.h"
#include "../datatype/VDatatypeHostForm.h"

namespace Tessel::Norn::BrindleReader {

/// A datatype by value; nothing at the start.
class BRINDLE_EXPORT VDatatypeNET final : public VDatatypeHostForm {
public:
    VDatatypeNET() = default;
    /// Takes over the word of a datatype.
    explicit VDatatypeNET(VDatatype datatype)
        : VDatatypeHostForm(datatype) {}
};

} // namespace Tessel::Norn::BrindleReader
