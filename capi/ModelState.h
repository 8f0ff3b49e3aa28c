// A model behind a handle of the C interface.
#pragma once

#include "HandleTable.h"
#include "brindle.h"

#include "model/AddressLookup.h"
#include "model/DataModel.h"
#include "model/QualifiedNameIndex.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace Tessel::Norn::Brindle::CInterface {

/// A model and the indexes for its queries. One read fills it before its handle is given out; from
/// then on it is only queried.
class ModelState {
public:
    DataModel::Model& Model() { return mModel; }
    [[nodiscard]] const DataModel::Model& Model() const { return mModel; }

    /// Size in bytes of the first pointer type of the finished model; 0 if there is none.
    std::uint64_t PointerSize();

    /// See `Model::InitialBytes`, which only one thread at a time may call.
    std::vector<std::uint8_t> InitialBytes(std::uint64_t address, std::uint64_t size);

    /// See `DataModel::AddressLookup`, which only one thread at a time may call.
    std::vector<DataModel::AddressHit> FindAddress(std::uint64_t address);

    /// The index of the finished model, made with the first call.
    const DataModel::QualifiedNameIndex& Names() {
        std::call_once(mIsIndexed, [this] { mNames.emplace(mModel); });
        return *mNames;
    }

private:
    DataModel::Model mModel;
    std::once_flag mIsIndexed;
    std::optional<DataModel::QualifiedNameIndex> mNames;
    std::mutex mAddressMutex;
    std::optional<DataModel::AddressLookup> mAddresses;
    std::once_flag mIsPointerSizeKnown;
    std::uint64_t mPointerSize = 0;
    /// Protects the open file of the image.
    std::mutex mImageMutex;
};

using ModelTable = HandleTable<brindle_model, ModelState>;

} // namespace Tessel::Norn::Brindle::CInterface
