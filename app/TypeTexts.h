// Texts of types for tables that ask for the same few again and again: the elements of an array,
// the variables of a module. It is asked in place of the model.
#pragma once

#include "model/DataModel.h"

#include <array>
#include <cstddef>
#include <string>

namespace Tessel::Norn::Brindle::Program {

/// Keeps the latest texts in a fixed number of places.
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
