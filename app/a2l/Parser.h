// Reads a description into a document: finds the objects with their addresses wherever they stand,
// and passes over everything that is not known, by the nesting of its blocks.
#pragma once

#include "a2l/Document.h"
#include "a2l/Source.h"

#include <functional>

namespace Tessel::Norn::Brindle::Program::A2l {

struct ParseChoices {
    /// Collect the names in lists of groups and functions as well.
    bool hasMentions = false;
    /// Called now and then with the source and the position that the parser has come to; may be
    /// empty.
    std::function<void(const Source& source, std::size_t position)> progress;
};

/// @param sources holds the bytes that the document refers to; must outlive it
/// @throws Fault where the text breaks the rules of A2L: blocks that don't match, texts and
/// comments
///     without end, parameters of objects that are missing or no numbers, includes that lead
///     nowhere
Document Parse(SourceSet& sources, const Source& main, const ParseChoices& choices = {});

} // namespace Tessel::Norn::Brindle::Program::A2l
