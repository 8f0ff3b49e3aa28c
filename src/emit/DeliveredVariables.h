// Which variables of a tree were delivered, and under which names. A host model holds one variable
// of a name in a scope, while a program may have several, for instance of a source that is compiled
// twice:
//
//     // channel.c, compiled with -DFN=left and with -DFN=right
//     static int calls;                   delivered as "calls" and as "calls.2"
//     int* FN(void) { return &calls; }
//
// Both units have one name and one directory, hence one object, which is the scope of both
// variables. Another variable of the same name at the same address is the same variable, and isn't
// delivered again.
#pragma once

#include "core/KeyMixing.h"
#include "host/ObjectId.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::ObjectId;

class VCLIFactoryWrapper;
class VDebugInfoNode;
class VDwarf2Section;

/// The delivered variables of one tree. Borrows section and factory.
class DeliveredVariables {
public:
    DeliveredVariables(VDwarf2Section& section, VCLIFactoryWrapper& factory)
        : mSection(section)
        , mFactory(factory) {}

    /// Finds a free name for a variable whose name is taken in its scope.
    /// @param newName the name itself, or the name with a point and a number from 2 on
    /// @return false if the variable was delivered already, at this address
    bool MakeUniqueName(ObjectId scope, const std::string& name, std::string& newName,
                        std::uint64_t address);
    /// Records a delivered variable, for `MakeUniqueName` and for the symbols.
    void Register(ObjectId object, VDebugInfoNode& variable);

private:
    /// What is known about the variables of one name in one scope.
    struct TakenNames {
        /// All numbers before this one are taken.
        std::uint32_t nextNumber = 1;
        /// Addresses of the variables with these numbers.
        std::unordered_set<std::uint64_t, SeededHash> addresses;
    };

    VDwarf2Section& mSection;
    VCLIFactoryWrapper& mFactory;
    std::unordered_map<ObjectId, std::unordered_map<std::string, TakenNames, SeededHash>>
        mTakenNames;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
