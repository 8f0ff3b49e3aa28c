// What a host asks of a datatype, whoever made it. `VDatatypeWrapper` implements it.
#pragma once

#include "../core/Export.h"

#include <cstdint>
#include <string>

namespace Tessel::Norn::BrindleReader {

/// A datatype with a name, a type number and a length, each to be read and set.
class BRINDLE_EXPORT IDataType {
public:
    IDataType() = default;
    virtual ~IDataType() = default;

    /// The name for a person.
    [[nodiscard]] virtual std::string Name() const = 0;
    /// Sets the name, where the implementation takes one.
    virtual void SetName(const std::string& name) = 0;
    /// The number of the type, in the numbering of the implementation.
    [[nodiscard]] virtual std::uint32_t Type() const = 0;
    /// Sets the number of the type, where the implementation takes one.
    virtual void SetType(std::uint32_t type) = 0;
    /// The length, in the unit of the implementation.
    [[nodiscard]] virtual std::uint32_t Length() const = 0;
    /// Sets the length, where the implementation takes one.
    virtual void SetLength(std::uint32_t length) = 0;

protected:
    /// @cond
    IDataType(const IDataType&) = default;
    IDataType& operator=(const IDataType&) = default;
    IDataType(IDataType&&) = default;
    IDataType& operator=(IDataType&&) = default;
    /// @endcond
};

} // namespace Tessel::Norn::BrindleReader
