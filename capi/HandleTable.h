// The handles that the C interface gives out: numbers that stand for objects of the library. Every
// function of the interface looks its handle up here, so that an unknown or destroyed handle does
// no harm.
#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace Tessel::Norn::Brindle::CInterface {

/// A number that no handle of the process had before, of any table.
inline std::uintptr_t NewHandleNumber() {
    static std::atomic<std::uintptr_t> sLast = 0;
    const std::uintptr_t number = ++sLast;
    if (number == 0) {
        // All numbers are used up. A reused one might turn an old handle into a new object.
        --sLast;
        throw std::bad_alloc();
    }
    return number;
}

/// The objects of one kind of handle. May be used on any thread.
template <typename Handle, typename Object>
class HandleTable {
public:
    /// The table of the process. It is never destroyed, since managed hosts may release handles
    /// after `main` has ended.
    static HandleTable& Instance() {
        static auto* const sInstance = new HandleTable; // NOLINT(cppcoreguidelines-owning-memory)
        return *sInstance;
    }

    Handle Add(std::shared_ptr<Object> object) {
        const std::uintptr_t number = NewHandleNumber();
        const std::scoped_lock lock(mMutex);
        mObjects.emplace(number, std::move(object));
        return std::bit_cast<Handle>(number);
    }

    /// The object of a handle, kept alive by the result; null for any other value.
    std::shared_ptr<Object> Find(Handle handle) const {
        const std::scoped_lock lock(mMutex);
        const auto found = mObjects.find(std::bit_cast<std::uintptr_t>(handle));
        return found == mObjects.end() ? nullptr : found->second;
    }

    /// Ends a handle and returns its object; null for any other value.
    std::shared_ptr<Object> Remove(Handle handle) {
        const std::scoped_lock lock(mMutex);
        const auto found = mObjects.find(std::bit_cast<std::uintptr_t>(handle));
        if (found == mObjects.end()) {
            return nullptr;
        }
        std::shared_ptr<Object> object = std::move(found->second);
        mObjects.erase(found);
        return object;
    }

private:
    HandleTable() = default;

    mutable std::mutex mMutex;
    std::unordered_map<std::uintptr_t, std::shared_ptr<Object>> mObjects;
};

} // namespace Tessel::Norn::Brindle::CInterface
