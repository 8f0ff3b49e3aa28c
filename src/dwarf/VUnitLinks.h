// References of entries to units that may not be read yet, kept by section offset until all are.
#pragma once

#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// Filled while entries are read, in the order of reading.
struct VUnitLinks {
    /// A declaration that stands for the type with a signature.
    struct TypeDeclaration {
        std::uint32_t mDeclaration = 0;
        std::uint32_t mType = 0;
    };

    /// Roots of units that another unit imports.
    std::vector<std::uint32_t> mImportedUnits;
    std::vector<TypeDeclaration> mTypeDeclarations;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
