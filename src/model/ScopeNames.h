// Names with their scopes in front, in both directions: `Model` asks for the text of an object and,
// for a path, whether an object has that text.
#pragma once

#include "model/ModelStore.h"

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {

/// The name of an object after those of the scopes that count: named namespaces, classes, unions,
/// functions and block scopes. Empty for an object without a name. Outer scopes that would make the
/// text too long, or are too far out, are replaced by an ellipsis.
std::string ScopedName(const ModelStore& store, ObjectId id);

/// True if the scopes that count around an object read `scopes`, which is joined by "::". Empty
/// means that no scope counts.
bool IsInScopes(const ModelStore& store, ObjectId id, std::string_view scopes);

/// The text cut to at most `length` bytes, never within a character of UTF-8.
std::string_view CutText(std::string_view text, std::size_t length);

} // namespace Tessel::Norn::Brindle::DataModel
