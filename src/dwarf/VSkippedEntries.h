// The entries without nodes. Most entries describe running code, or types that no variable
// leads to, see CodeEntries.h and BodyEntries.h: the walk over a unit skips them by their
// length. Here is what the rest of the read must know about them: how many there are, and what
// they refer to.
#pragma once

#include "dwarf/VSkippedReferences.h"
#include "nodes/VDieNodes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tessel::Norn::Brindle::Reader::DWARF {

class VDebugInfoNode;

/// A skipped variable, by section offset: the entries that it refers to must know about it.
struct VSkippedVariable {
    std::uint32_t mOffset = 0;
    /// The entry that it completes or is an instance of, 0 if there is none.
    std::uint32_t mSpecification = 0;
    /// 0 if there is none.
    std::uint32_t mType = 0;
};

/// The skipped entries of a section. If an entry is referred to after all, it gets its node later
/// and no longer counts as skipped.
class VSkippedEntries {
public:
    void Add() { ++mCount; }
    /// Records that the entry that was added last is in the body of a type.
    void NoteInBody() { ++mCountInBodies; }
    /// Counts that one of the entries gets its node after all.
    void Remove() { --mCount; }
    [[nodiscard]] std::size_t Count() const { return mCount; }
    /// Number of entries in bodies of types, including the removed ones.
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
    /// Counts the references of variables like those of nodes.
    void NoteReferencesOfVariables(VDieNodes& nodes) const {
        for (const VSkippedVariable& variable : mVariables) {
            if (nodes.Find(variable.mOffset) == nullptr) {
                nodes.NoteReferred(variable.mSpecification);
                nodes.NoteReferred(variable.mType);
            }
        }
    }

    /// References of other entries to types. Only in the full manner of reading, if bodies are left
    /// for later.
    [[nodiscard]] VSkippedReferences& References() { return mReferences; }

private:
    std::size_t mCount = 0;
    std::size_t mCountInBodies = 0;
    std::vector<VSkippedVariable> mVariables;
    VSkippedReferences mReferences;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
