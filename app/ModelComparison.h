// What has changed from one build to the next, for each variable and each leaf. The command `diff`
// prints it. It keeps nothing else of the models.
#pragma once

#include "NamePattern.h"
#include "SharedNames.h"
#include "TypeTexts.h"
#include "VariableMatching.h"

#include "model/DataModel.h"
#include "model/LayoutFingerprints.h"
#include "model/LeafWalk.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

/// One variable or leaf in one of the builds.
struct ComparedPlace {
    /// Qualified name of the variable, with the steps to the leaf.
    std::string name;
    std::string type;
    /// As `LayoutFingerprints::MeaningOf`.
    std::uint64_t meaning = 0;
    DataModel::Model::Place place;
    /// Number of characters of `name` that name the variable.
    std::size_t variableLength = 0;
    /// For a leaf: bytes from the start of its variable. 0 for a variable.
    std::uint64_t offset = 0;
};

/// One variable or leaf that differs between the builds.
struct Difference {
    /// Null in the build that does not have it; at most one of the two is null.
    const ComparedPlace* oldPlace = nullptr;
    const ComparedPlace* newPlace = nullptr;
    /// A part of a variable, not the variable itself.
    bool isLeaf = false;

    /// The place in the later build, or in the earlier one if it vanished.
    [[nodiscard]] const ComparedPlace& Latest() const {
        assert(newPlace != nullptr || oldPlace != nullptr);
        return newPlace != nullptr ? *newPlace : *oldPlace;
    }

    /// @name What has changed in a place of both builds
    /// @{
    /// For a variable: another address. For a leaf: another place within the variable, or another
    /// bit position.
    [[nodiscard]] bool IsMoved() const;
    /// Another size in bytes, or another width in bits.
    [[nodiscard]] bool IsResized() const;
    /// Another text of the type, or the same text for another type or other values of an enum.
    [[nodiscard]] bool IsRetyped() const;
    /// @}
};

/// What a comparison reports.
struct ComparisonScope {
    DataModel::LeafLimits limits;
    /// Matches the names of the wanted variables and leaves; all leaves of a variable whose name it
    /// matches are wanted, too.
    NameFilter filter;
    /// @name Whether a variable that one of the models lacks is also missing from its build
    /// @{
    bool hasAllOfOld = true;
    bool hasAllOfNew = true;
    /// @}
    /// Whether a wanted variable that appeared or vanished comes with its
    /// leaves.
    bool hasLeavesOfWhole = true;
    /// Whether leaves are compared at all.
    bool hasLeaves = true;
};

/// Compares two models. Both are borrowed and must not change during the life of the comparison.
class ModelComparison {
public:
    using Sink = std::function<void(const Difference&)>;

    ModelComparison(const DataModel::Model& oldModel, const DataModel::Model& newModel,
                    const ComparisonScope& scope);

    /// Passes on all differences: old variables in the order of their delivery, each followed by
    /// its changed leaves, then the variables that appeared, likewise. A variable without parts has
    /// no leaves. Once the limit of all leaves is reached, only variables are compared.
    void Run(const Sink& sink);

    /// What was left out of the expansions.
    [[nodiscard]] const DataModel::LeafCuts& OldCuts() const { return mOld.walk.Cuts(); }
    [[nodiscard]] const DataModel::LeafCuts& NewCuts() const { return mNew.walk.Cuts(); }

    /// Variables of several of one name that were compared, see `VariableMatching`.
    struct SharedNameRemarks {
        /// Number of those that match by their order only, and the name of the first.
        std::uint64_t byOrder = 0;
        std::string firstByOrder;
        /// Number of those that have another number now, and the names of the first.
        std::uint64_t renumbered = 0;
        std::string firstOldName;
        std::string firstNewName;
    };
    [[nodiscard]] const SharedNameRemarks& Remarks() const { return mRemarks; }

private:
    struct Side {
        Side(const DataModel::Model& sideModel, const DataModel::LeafLimits& limits);

        const DataModel::Model& model;
        DataModel::LeafWalk walk;
        DataModel::LayoutFingerprints fingerprints;
        TypeTexts typeTexts;
        SharedNames sharedNames;
    };
    using Places = std::vector<ComparedPlace>;

    void ComparePair(const VariableMatching::Pair& pair);
    void Remark(const VariableMatching::Pair& pair, const std::string& oldName,
                const std::string& newName);
    void CompareLeaves(const Places& oldLeaves, const Places& newLeaves);
    void PassVanished(DataModel::ObjectId oldGlobal);
    void PassAppeared(DataModel::ObjectId newGlobal);
    [[nodiscard]] bool AreWholeLeavesWanted() const;
    void PassChanged(const ComparedPlace& oldPlace, const ComparedPlace& newPlace, bool isLeaf);
    void Pass(const Difference& difference) const;
    /// @param otherName what the variable is called in the other build; may be empty
    bool BeginVariable(const Side& side, const ComparedPlace& variable,
                       const std::string& otherName = {});
    [[nodiscard]] bool IsWanted(const Difference& difference) const;
    [[nodiscard]] bool IsExhausted() const;
    static ComparedPlace VariableOf(Side& side, DataModel::ObjectId global);
    static Places LeavesOf(Side& side, DataModel::ObjectId global);

    ComparisonScope mScope;
    Side mOld;
    Side mNew;
    /// Where the own name of the current variable begins.
    std::size_t mOwnName = 0;
    /// Its other names, with which a pattern also selects it.
    std::vector<std::string> mOtherNames;
    /// The name of its compile unit.
    std::string_view mUnit;
    bool mIsWholeWanted = true;
    SharedNameRemarks mRemarks;
    const Sink* mSink = nullptr;
};

} // namespace Tessel::Norn::Brindle::Program
