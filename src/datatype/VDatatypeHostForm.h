// What the two forms in which a host holds a datatype have in common. A host uses `VDatatypeNET`
// and `VDatatypeWrapper`, which derive from it.
#pragma once

#include "../core/Export.h"
#include "../datatype/VDatatype.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::BrindleReader {

/// A datatype that is read, not changed in its parts; see `VDatatype` for the meaning of each
/// answer.
class BRINDLE_EXPORT VDatatypeHostForm {
public:
    /// Takes over the word of a datatype.
    void AssignNativeDataType(VDatatype datatype) { mTypAndLen = datatype.Word(); }

    [[nodiscard]] std::string GetMapfileTypeString() const {
        return Native().GetMapfileTypeString();
    }
    [[nodiscard]] std::uint32_t GetInternalType() const { return Native().InternalType(); }
    [[nodiscard]] std::uint32_t Typ() const { return GetInternalType(); }
    [[nodiscard]] std::uint32_t GetInternalLength() const { return Native().InternalLength(); }
    [[nodiscard]] std::uint32_t Len() const { return GetInternalLength(); }
    [[nodiscard]] std::int32_t GetByteSize() const { return Native().GetByteSize(); }
    [[nodiscard]] std::int32_t GetBitSize() const { return Native().GetBitSize(); }
    [[nodiscard]] bool IsIntTyp() const { return Native().IsIntTyp(); }
    [[nodiscard]] bool IsSigned() const { return Native().IsSigned(); }

    /// The word of the datatype.
    std::uint32_t mTypAndLen = VDatatype::sKindNone;

protected:
    VDatatypeHostForm() = default;
    explicit VDatatypeHostForm(VDatatype datatype)
        : mTypAndLen(datatype.Word()) {}
    ~VDatatypeHostForm() = default;
    VDatatypeHostForm(const VDatatypeHostForm&) = default;
    VDatatypeHostForm& operator=(const VDatatypeHostForm&) = default;
    VDatatypeHostForm(VDatatypeHostForm&&) = default;
    VDatatypeHostForm& operator=(VDatatypeHostForm&&) = default;

private:
    [[nodiscard]] VDatatype Native() const { return VDatatype(mTypAndLen); }
};

} // namespace Tessel::Norn::BrindleReader
