// Objects of a finished model by their qualified names. A host that looks up types or scopes by
// name makes one; for variables and what lies in them there is `Model::ResolvePath`.
#pragma once

#include "../core/Export.h"
#include "../model/DataModel.h"

#include <cstdint>
#include <string_view>
#include <tuple>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Takes 8 bytes for each named object of the model.
class BRINDLE_EXPORT QualifiedNameIndex {
public:
    /// @param model borrowed; must not change during the life of the index
    explicit QualifiedNameIndex(const Model& model);

    /// The objects whose `Model::QualifiedName` is this text, in the order of delivery, among them
    /// the variables that have a number since they share this name, see `Model::SharersOfName`. A
    /// leading "::" is ignored.
    [[nodiscard]] std::vector<ObjectId> Find(std::string_view qualifiedName) const;

private:
    /// An object with the hash of its own name.
    struct Entry {
        std::uint32_t hash;
        std::uint32_t id;

        bool operator<(const Entry& other) const {
            return std::tie(hash, id) < std::tie(other.hash, other.id);
        }
    };

    [[nodiscard]] std::uint32_t HashOf(std::string_view name) const;
    void AppendNamed(std::string_view ownName, std::string_view qualifiedName,
                     std::vector<ObjectId>& found) const;

    const Model& mModel;
    std::uint64_t mSeed;
    std::vector<Entry> mEntries;
};

} // namespace Tessel::Norn::Brindle::DataModel
