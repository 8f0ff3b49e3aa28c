// The entries that have no nodes. Most entries tell how code runs, or describe types that no
// variable leads to, see CodeEntries.h and BodyEntries.h: the walk over a unit skips them by their
// length. What the rest of the read has to know of them is here: how many there are, and what they
// refer to.
#pragma once

#include "dwarf/VSkippedReferences.h"
#include "nodes/VDieNodes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// A variable that was skipped, by section offset. What it refers to has to know.
struct VSkippedVariable {
    std::uint32_t mOffset = 0;
    /// The entry that it completes or is an instance of, 0 if there is none.
    std::uint32_t mSpecification = 0;
    /// 0 if there is none.
    std::uint32_t mType = 0;
};

/// The skipped entries of a section. An entry that is referred to after all gets its node later,
/// and is none of them any longer.
class VSkippedEntries {
public:
    void Add() { ++mCount; }
    /// Says that the entry that was added last stands in the body of a type.
    void NoteInBody() { ++mCountInBodies; }
    /// One of the entries gets its node now.
    void Remove() { --mCount; }
    [[nodiscard]] std::size_t Count() const { return mCount; }
    /// Those in bodies of types, the removed ones too.
    [[nodiscard]] std::size_t CountInBodies() const { return mCountInBodies; }

    /// For variables that refer to other entries, in the order of reading.
    void AddVariable(const VSkippedVariable& variable) { mVariables.push_back(variable); }
    /// Calls `visit` with each node that a variable without node completes.
    template <typename Visitor>
    void ForEachCompleted(const VDieNodes& nodes, Visitor&& visit) const {
        for (const VSkippedVariable& variable : mVariables) {
            const VDebugInfoNode* completed =
                variable.mSpecification != 0 ? nodes.Find(variable.mSpecification) : nullptr;
            if (completed != nullptr && nodes.Find(variable.mOffset) == nullptr) {
                visit(*completed);
            }
        }
    }
    /// Counts the references of variables as those of nodes are counted.
    void NoteReferencesOfVariables(VDieNodes& nodes) const {
        for (const VSkippedVariable& variable : mVariables) {
            if (nodes.Find(variable.mOffset) == nullptr) {
                nodes.NoteReferred(variable.mSpecification);
                nodes.NoteReferred(variable.mType);
            }
        }
    }

    /// References of other entries to types. Only in the full manner of reading, where bodies are
    /// left for later.
    [[nodiscard]] VSkippedReferences& References() { return mReferences; }

private:
    std::size_t mCount = 0;
    std::size_t mCountInBodies = 0;
    std::vector<VSkippedVariable> mVariables;
    VSkippedReferences mReferences;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
