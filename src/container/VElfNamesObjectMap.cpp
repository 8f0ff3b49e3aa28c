#include "container/VElfNamesObjectMap.h"

#include "container/SymbolName.h"

#include <utility>

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VElfNameObject::Init(const char* name, std::uint32_t /*key*/) {
    const DemangledSymbolName demangledName(CutSymbolName(name));
    mName = demangledName.GetName();
    mIsModified = demangledName.IsModified();
    return true;
}

VElfNameObject* VElfNamesObjectMap::FindObject(std::uint32_t key) {
    const auto found = mObjects.find(key);
    return found != mObjects.end() ? found->second.get() : nullptr;
}

VElfNameObject* VElfNamesObjectMap::AddObject(std::uint32_t key, const char* name) {
    auto object = std::make_unique<VElfNameObject>();
    object->Init(name, key);
    const auto [position, isNew] = mObjects.try_emplace(key, std::move(object));
    return isNew ? position->second.get() : nullptr;
}

void VElfNamesObjectMap::Clear() {
    mObjects.clear();
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
