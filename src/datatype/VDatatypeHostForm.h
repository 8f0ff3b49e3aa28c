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

    /// The text form, as `VDatatype::GetMapfileTypeString`.
    [[nodiscard]] std::string GetMapfileTypeString() const {
        return Native().GetMapfileTypeString();
    }
    /// The low byte of the word, as `VDatatype::InternalType`.
    [[nodiscard]] std::uint32_t GetInternalType() const { return Native().InternalType(); }
    /// As `GetInternalType`.
    [[nodiscard]] std::uint32_t Typ() const { return GetInternalType(); }
    /// The length of a string in bytes, as `VDatatype::InternalLength`.
    [[nodiscard]] std::uint32_t GetInternalLength() const { return Native().InternalLength(); }
    /// As `GetInternalLength`.
    [[nodiscard]] std::uint32_t Len() const { return GetInternalLength(); }
    /// Size in bytes, as `VDatatype::GetByteSize`.
    [[nodiscard]] std::int32_t GetByteSize() const { return Native().GetByteSize(); }
    /// Size in bits, as `VDatatype::GetBitSize`.
    [[nodiscard]] std::int32_t GetBitSize() const { return Native().GetBitSize(); }
    /// True for an integer of any width.
    [[nodiscard]] bool IsIntTyp() const { return Native().IsIntTyp(); }
    /// True for a signed integer.
    [[nodiscard]] bool IsSigned() const { return Native().IsSigned(); }

    /// The word of the datatype.
    std::uint32_t mTypAndLen = VDatatype::sKindNone;

protected:
    /// @cond
    VDatatypeHostForm() = default;
    explicit VDatatypeHostForm(VDatatype datatype)
        : mTypAndLen(datatype.Word()) {}
    ~VDatatypeHostForm() = default;
    VDatatypeHostForm(const VDatatypeHostForm&) = default;
    VDatatypeHostForm& operator=(const VDatatypeHostForm&) = default;
    VDatatypeHostForm(VDatatypeHostForm&&) = default;
    VDatatypeHostForm& operator=(VDatatypeHostForm&&) = default;
    /// @endcond

private:
    [[nodiscard]] VDatatype Native() const { return VDatatype(mTypAndLen); }
};

} // namespace Tessel::Norn::BrindleReader
