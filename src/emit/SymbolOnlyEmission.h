// Delivers the data symbols of an image that no debug information describes: name, address and size
// of each, in a namespace of their own. `unsigned char heap[4096]` in a file that was compiled
// without -g becomes the variable "heap" of an unknown type of 4096 bytes. The walk over the symbol
// table calls it; it reads no file.
#pragma once

#include "emit/VCLIFactoryWrapper.h"

#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// False for the symbols of virtual tables, which are objects of the image but not variables of the
/// program.
bool sCheckIsValidVariableType_FromMangledName(std::string_view name);

/// Delivery of one symbol table. Borrows the factory.
class SymbolOnlyEmission {
public:
    explicit SymbolOnlyEmission(VCLIFactoryWrapper& factory)
        : mFactory(factory) {}

    /// Gets or makes the namespace of the symbols. Call it once, before the first symbol.
    /// @return false if the data model has no global namespace
    bool Begin();

    /// Delivers a variable of unknown type, unless this name or this address already has a
    /// variable.
    /// @param address all 64 bits
    /// @param byteSize size in bytes; 0 is a size like any other
    void DeliverVariable(std::string_view name, std::uint64_t address, std::uint64_t byteSize);

    /// Delivers a variable of unknown type.
    void CreateVariable(std::string_view name, std::uint64_t address, std::uint64_t byteSize);

private:
    VCLIFactoryWrapper& mFactory;
    ObjectId mSymbolNamespace = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
