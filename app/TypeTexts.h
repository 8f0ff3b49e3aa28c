// A cache of type texts, for tables that need the same texts again and again: the elements of an
// array, the variables of a module.
#pragma once

#include "model/DataModel.h"

#include <array>
#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Keeps the latest texts in a fixed number of slots.
class TypeTexts {
public:
    /// @param model borrowed; must not change during the life of this object
    explicit TypeTexts(const DataModel::Model& model)
        : mModel(model) {}

    /// As `Model::TypeText`. Valid until the next call.
    const std::string& Of(DataModel::ObjectId type) {
        Entry& entry = mEntries[type % mEntries.size()];
        if (entry.type != type) {
            entry.type = type;
            entry.text = mModel.TypeText(type);
        }
        return entry.text;
    }

private:
    /// Type 0 has no text.
    struct Entry {
        DataModel::ObjectId type = 0;
        std::string text;
    };

    const DataModel::Model& mModel;
    std::array<Entry, 256> mEntries;
};

} // namespace Tessel::Norn::Brindle::Program
