// Reads a description into a document: finds the objects with their addresses, wherever they are,
// and skips unknown blocks by their nesting.
#pragma once

#include "a2l/Document.h"
#include "a2l/Source.h"

#include <functional>

namespace Tessel::Norn::Brindle::Program::A2l {

struct ParseChoices {
    /// Also collect the names in lists of groups and functions.
    bool hasMentions = false;
    /// Called from time to time with the source and the position that the parser has reached; may
    /// be empty.
    std::function<void(const Source& source, std::size_t position)> progress;
};

/// @param sources holds the bytes that the document refers to; must outlive it
/// @throws Fault if the text breaks the rules of A2L: blocks that don't
///     match, texts or comments without end, parameters of objects that
///     are missing or not numbers, or includes that don't lead to a
///     file
Document Parse(SourceSet& sources, const Source& main, const ParseChoices& choices = {});

} // namespace Tessel::Norn::Brindle::Program::A2l
