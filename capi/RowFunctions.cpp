// The functions of the C interface that return variables and leaves as rows.
#include "ModelCalls.h"
#include "RowCursor.h"

#include <algorithm>

using namespace Tessel::Norn::Brindle;
using CInterface::Guarded;
using CInterface::ModelState;
using CInterface::ModelTable;
using CInterface::RowCursor;
using CInterface::RowKind;
using CInterface::RowTable;

namespace {

/// Default number of rows of a block: large enough that the cost of the call doesn't matter.
constexpr std::size_t sUsualBlock = 16384;

/// Runs `work`, which takes the cursor and returns a status.
template <typename Work>
brindle_status ForRows(brindle_rows rows, Work&& work) {
    return Guarded([&]() -> brindle_status {
        const std::shared_ptr<RowCursor> cursor = RowTable::Instance().Find(rows);
        return cursor == nullptr ? BRINDLE_INVALID_HANDLE : work(*cursor);
    });
}

} // namespace

brindle_status brindle_rows_create(brindle_model model, const brindle_row_choice* choice,
                                   brindle_rows* rows) {
    brindle_row_choice wanted = {};
    if (rows != nullptr) {
        *rows = nullptr;
    }
    if (rows == nullptr || (choice != nullptr && !CInterface::TakeStructure(choice, wanted)) ||
        (wanted.globals == nullptr && wanted.global_count != 0)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return Guarded([&]() -> brindle_status {
        const std::shared_ptr<ModelState> state = ModelTable::Instance().Find(model);
        if (state == nullptr) {
            return BRINDLE_INVALID_HANDLE;
        }
        std::vector<brindle_id> globals(wanted.globals, wanted.globals + wanted.global_count);
        const auto isGlobal = [&](brindle_id id) {
            const DataModel::ModelObject object = state->Model().Object(id);
            return object.id != 0 && object.kind == DataModel::ObjectKind::Global;
        };
        if (!std::ranges::all_of(globals, isGlobal)) {
            return BRINDLE_NOT_FOUND;
        }
        const RowKind kind = wanted.variables != 0 ? RowKind::Variables : RowKind::Leaves;
        *rows = RowTable::Instance().Add(std::make_shared<RowCursor>(
            state, kind, std::move(globals),
            CInterface::LimitsOf(wanted.array_elements, wanted.leaves)));
        return BRINDLE_OK;
    });
}

brindle_status brindle_rows_next(brindle_rows rows, size_t wanted, brindle_row_block* block) {
    if (!CInterface::GiveStructure(brindle_row_block{}, block)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForRows(rows, [&](RowCursor& cursor) {
        const brindle_row_block found = cursor.Next(wanted == 0 ? sUsualBlock : wanted);
        if (found.count == 0) {
            return BRINDLE_NOT_FOUND;
        }
        CInterface::GiveStructure(found, block);
        return BRINDLE_OK;
    });
}

brindle_status brindle_rows_cuts(brindle_rows rows, brindle_leaf_cuts* cuts) {
    if (!CInterface::GiveStructure(brindle_leaf_cuts{}, cuts)) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    return ForRows(rows, [&](RowCursor& cursor) {
        CInterface::GiveStructure(cursor.Cuts(), cuts);
        return BRINDLE_OK;
    });
}

brindle_status brindle_rows_destroy(brindle_rows rows) {
    return Guarded([&] {
        const bool isEnded = rows == nullptr || RowTable::Instance().Remove(rows) != nullptr;
        return isEnded ? BRINDLE_OK : BRINDLE_INVALID_HANDLE;
    });
}
