#include "RowCursor.h"

#include <utility>

namespace Tessel::Norn::Brindle::CInterface {

using DataModel::ModelObject;
using DataModel::ObjectKind;
using Place = DataModel::Model::Place;

RowCursor::RowCursor(std::shared_ptr<ModelState> model, RowKind kind,
                     std::vector<brindle_id> globals, const DataModel::LeafLimits& limits)
    : mModel(std::move(model))
    , mKind(kind)
    , mGlobals(std::move(globals))
    , mWalk(mModel->Model(), limits) {}

brindle_row_block RowCursor::Next(std::size_t wanted) {
    const std::scoped_lock lock(mMutex);
    Clear();
    while (mAddresses.size() < wanted && !mWalk.Cuts().isExhausted) {
        const brindle_id global = NextGlobal();
        if (global == 0) {
            break;
        }
        AddRowsOf(global);
    }
    brindle_row_block block = {};
    block.count = mAddresses.size();
    block.globals = mRowGlobals.data();
    block.types = mTypes.data();
    block.addresses = mAddresses.data();
    block.sizes = mSizes.data();
    block.bit_offsets = mBitOffsets.data();
    block.bit_sizes = mBitSizes.data();
    block.path_starts = mPathStarts.data();
    block.paths = mPaths.c_str();
    block.path_bytes = mPaths.size();
    return block;
}

brindle_leaf_cuts RowCursor::Cuts() {
    const std::scoped_lock lock(mMutex);
    const DataModel::LeafCuts& cuts = mWalk.Cuts();
    return {0, cuts.arrays, cuts.wholes, cuts.isExhausted ? 1 : 0};
}

void RowCursor::AddRowsOf(brindle_id global) {
    if (mKind == RowKind::Leaves) {
        mWalk.Walk(global,
                   [this](std::string_view path, const Place& place) { AddRow(path, place); });
        return;
    }
    const DataModel::Model& model = mModel->Model();
    const ModelObject variable = model.Object(global);
    Place place;
    place.global = global;
    place.type = variable.type;
    place.address = variable.address;
    place.size = model.SizeOf(variable.type);
    AddRow(model.QualifiedName(global), place);
}

void RowCursor::AddRow(std::string_view path, const Place& place) {
    mRowGlobals.push_back(place.global);
    mTypes.push_back(place.type);
    mAddresses.push_back(place.address);
    mSizes.push_back(place.size);
    mBitOffsets.push_back(place.isBitField ? place.bitOffset : 0);
    mBitSizes.push_back(place.isBitField ? place.bitSize : 0);
    mPathStarts.push_back(mPaths.size());
    mPaths.append(path).push_back('\0');
}

void RowCursor::Clear() {
    mRowGlobals.clear();
    mTypes.clear();
    mAddresses.clear();
    mSizes.clear();
    mBitOffsets.clear();
    mBitSizes.clear();
    mPathStarts.clear();
    mPaths.clear();
}

brindle_id RowCursor::NextGlobal() {
    if (!mGlobals.empty()) {
        return mPosition < mGlobals.size() ? mGlobals[mPosition++] : 0;
    }
    const DataModel::Model& model = mModel->Model();
    while (mPosition < model.ObjectCount()) {
        if (model.Object(++mPosition).kind == ObjectKind::Global) {
            return mPosition;
        }
    }
    return 0;
}

} // namespace Tessel::Norn::Brindle::CInterface
