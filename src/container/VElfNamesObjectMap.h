// Keeps one demangled form for each offset of the string table, so that a name that many symbols
// share is demangled once.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// A symbol name after demangling.
class VElfNameObject {
public:
    /// Takes the demangled form of the name, or a copy of the name where there is none. The key, an
    /// offset of the string table, is not kept. Always true.
    bool Init(const char* name, std::uint32_t key);

    [[nodiscard]] const std::string& GetName() const { return mName; }
    /// True if the name is a demangled form and thus differs from the symbol's name.
    [[nodiscard]] bool IsModified() const { return mIsModified; }

private:
    std::string mName;
    bool mIsModified = false;
};

/// Names by their offset in the string table.
class VElfNamesObjectMap {
public:
    VElfNamesObjectMap() = default;
    VElfNamesObjectMap(const VElfNamesObjectMap&) = delete;
    VElfNamesObjectMap& operator=(const VElfNamesObjectMap&) = delete;
    VElfNamesObjectMap(VElfNamesObjectMap&&) = delete;
    VElfNamesObjectMap& operator=(VElfNamesObjectMap&&) = delete;
    virtual ~VElfNamesObjectMap() = default;

    /// The object of an offset, null if there is none. Owned by the map.
    VElfNameObject* FindObject(std::uint32_t key);
    /// Makes the object of an offset. Null if the offset has one already.
    VElfNameObject* AddObject(std::uint32_t key, const char* name);
    void Clear();
    void DeleteAll() { Clear(); }

private:
    std::map<std::uint32_t, std::unique_ptr<VElfNameObject>> mObjects;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
