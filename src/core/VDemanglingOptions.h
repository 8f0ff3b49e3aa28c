// Settings of the demangler.
#pragma once

#include <string>

namespace Tessel::Norn::Brindle::Reader::DWARF {

/// How names are read and written by `DemangleName`.
struct VDemanglingOptions {
    /// Text put between the parts of a qualified name.
    std::string mScopeSeparator = "::";
    /// Use the parser for names in the style of the Itanium ABI.
    bool mIsTaskingProducer = false;
    /// Also replace "." in names.
    bool mReplaceDot = false;
    /// Also replace "<" and ">" in names.
    bool mReplaceAngleBrackets = false;
    /// Remove one leading underscore from the first or base name.
    bool mStripUnderscore = false;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
