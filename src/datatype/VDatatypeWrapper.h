// The datatype as an object of the host, for code that knows only `IDataType`.
#pragma once

#include "../core/Export.h"
#include "../datatype/IDataType.h"
#include "../datatype/VDatatypeHostForm.h"

namespace Tessel::Norn::BrindleReader {

/// A datatype behind `IDataType`. It is what it was made or assigned from: setting one of its
/// properties changes nothing.
class BRINDLE_EXPORT VDatatypeWrapper final : public IDataType, public VDatatypeHostForm {
public:
    /// Takes over the word of a datatype.
    explicit VDatatypeWrapper(VDatatype datatype)
        : VDatatypeHostForm(datatype) {}

    /// The text form.
    [[nodiscard]] std::string Name() const override { return GetMapfileTypeString(); }
    /// Without effect.
    void SetName(const std::string& /*name*/) override {}
    /// The low byte of the word.
    [[nodiscard]] std::uint32_t Type() const override { return GetInternalType(); }
    /// Without effect.
    void SetType(std::uint32_t /*type*/) override {}
    /// The length of a string in bytes.
    [[nodiscard]] std::uint32_t Length() const override { return GetInternalLength(); }
    /// Without effect.
    void SetLength(std::uint32_t /*length*/) override {}
    /// Size in bytes, as `VDatatype::GetByteSize`.
    [[nodiscard]] std::int32_t ByteSize() const { return GetByteSize(); }
    /// Without effect.
    void SetByteSize(std::int32_t /*byteSize*/) {}

    /// Ends the use of the object; there is nothing to release.
    void Dispose() {}
};

} // namespace Tessel::Norn::BrindleReader
