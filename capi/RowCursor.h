// The variables or leaves of a model as rows in columns, a block at a time: for hosts
// that want many of them, and would spend most of the time on a call or callback for
// each.
#pragma once

#include "HandleTable.h"
#include "ModelState.h"
#include "brindle.h"

#include "model/LeafWalk.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::CInterface {

/// What a row stands for.
enum class RowKind : std::uint8_t { Variables, Leaves };

/// Walks through a model once. May be used on any thread; concurrent calls wait for each other.
class RowCursor {
public:
    /// @param model kept alive
    /// @param globals the wanted variables in the wanted order; empty for all
    /// @param limits of leaves
    RowCursor(std::shared_ptr<ModelState> model, RowKind kind, std::vector<brindle_id> globals,
              const DataModel::LeafLimits& limits);

    /// The next rows: all rows of whole variables, at least as many as wanted unless the walk ends.
    /// They are valid until the next call. After the last row the block is empty.
    brindle_row_block Next(std::size_t wanted);

    /// What was left out so far.
    brindle_leaf_cuts Cuts();

private:
    void AddRowsOf(brindle_id global);
    void AddRow(std::string_view path, const DataModel::Model::Place& place);
    void Clear();
    [[nodiscard]] brindle_id NextGlobal();

    std::mutex mMutex;
    std::shared_ptr<ModelState> mModel;
    RowKind mKind;
    std::vector<brindle_id> mGlobals;
    /// Index in `mGlobals`, or the identifier that was visited last.
    std::size_t mPosition = 0;
    DataModel::LeafWalk mWalk;

    std::vector<brindle_id> mRowGlobals;
    std::vector<brindle_id> mTypes;
    std::vector<std::uint64_t> mAddresses;
    std::vector<std::uint64_t> mSizes;
    std::vector<std::uint32_t> mBitOffsets;
    std::vector<std::uint64_t> mBitSizes;
    std::vector<std::size_t> mPathStarts;
    std::string mPaths;
};

using RowTable = HandleTable<brindle_rows, RowCursor>;

} // namespace Tessel::Norn::Brindle::CInterface
