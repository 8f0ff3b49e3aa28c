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

    [[nodiscard]] virtual std::string Name() const = 0;
    virtual void SetName(const std::string& name) = 0;
    [[nodiscard]] virtual std::uint32_t Type() const = 0;
    virtual void SetType(std::uint32_t type) = 0;
    [[nodiscard]] virtual std::uint32_t Length() const = 0;
    virtual void SetLength(std::uint32_t length) = 0;

protected:
    IDataType(const IDataType&) = default;
    IDataType& operator=(const IDataType&) = default;
    IDataType(IDataType&&) = default;
    IDataType& operator=(IDataType&&) = default;
};

} // namespace Tessel::Norn::BrindleReader
