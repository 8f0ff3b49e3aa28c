#include "emit/SymbolOnlyEmission.h"

#include "host/SymbolNamespace.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool sCheckIsValidVariableType_FromMangledName(std::string_view name) {
    return !name.starts_with("__vtbl") && !name.starts_with("_ZTV");
}

bool SymbolOnlyEmission::Begin() {
    const ObjectId globalNamespace = mFactory.GetGlobalNamespace();
    if (globalNamespace == 0) {
        return false;
    }
    mSymbolNamespace = mFactory.GetNamespace(DataModel::sSymbolNamespaceName, globalNamespace);
    if (mSymbolNamespace == 0) {
        mSymbolNamespace =
            mFactory.CreateNamespace(DataModel::sSymbolNamespaceName, globalNamespace);
    }
    return true;
}

void SymbolOnlyEmission::DeliverVariable(std::string_view name, std::uint64_t address,
                                         std::uint64_t byteSize) {
    if (mFactory.GetGlobalData(name) != 0 || mFactory.GetGlobalDataByAddress(address) != 0) {
        return;
    }
    CreateVariable(name, address, byteSize);
}

void SymbolOnlyEmission::CreateVariable(std::string_view name, std::uint64_t address,
                                        std::uint64_t byteSize) {
    const ObjectId type = sGetSymbolTableBaseEntryTypeObjId(mFactory, mSymbolNamespace, byteSize);
    mFactory.CreateGlobalData(name, type, mSymbolNamespace, address, true, 0, false);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
