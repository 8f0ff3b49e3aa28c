#include "ModelState.h"

namespace Tessel::Norn::Brindle::CInterface {

std::uint64_t ModelState::PointerSize() {
    std::call_once(mIsPointerSizeKnown, [this] {
        const std::size_t count = mModel.ObjectCount();
        for (brindle_id id = 1; id <= count && mPointerSize == 0; ++id) {
            const DataModel::ModelObject object = mModel.Object(id);
            mPointerSize = object.kind == DataModel::ObjectKind::Pointer ? object.size : 0;
        }
    });
    return mPointerSize;
}

std::vector<DataModel::AddressHit> ModelState::FindAddress(std::uint64_t address) {
    const std::scoped_lock lock(mAddressMutex);
    if (!mAddresses) {
        mAddresses.emplace(mModel);
    }
    return mAddresses->Find(address);
}

std::vector<std::uint8_t> ModelState::InitialBytes(std::uint64_t address, std::uint64_t size) {
    const std::scoped_lock lock(mImageMutex);
    return mModel.InitialBytes(address, size);
}

} // namespace Tessel::Norn::Brindle::CInterface
