// Where the extras of a node are, and how far its delivery has come, in 32 bits. Millions of nodes
// are delivered, and hardly any needs more than the number of its object:
//
//     bits 31 30   the other bits
//          0  x    with bit 30, number of a `VNodeDelivery` in the arena; 0: nothing is known
//          1  0    index of the delivery in progress, 0 if there is none
//          1  1    the host's object, if it fits
//
// A delivery moves to the arena when it no longer fits: the object is too large a number, the host
// has refused it, or it has the object from another node.
#pragma once

#include "host/ObjectId.h"
#include "nodes/VNodeArena.h"

#include <cstdint>
#include <new>

namespace Tessel::Norn::Brindle::Reader::DWARF {

using DataModel::ObjectId;

/// The delivery of a node that has extras, or whose delivery takes more than 32 bits.
struct VNodeDelivery {
    ObjectId mEntryObject = 0;
    std::uint32_t mFrame : 30 = 0;
    bool mIsRefused : 1 = false;
    bool mIsDropped : 1 = false;
};

/// The delivery of a node, and the link to its extras. Operations that take an arena need the arena
/// of the tree.
class VExtrasOrDelivery {
public:
    /// The extras of the node or its delivery, null if neither is in the arena.
    [[nodiscard]] VNodeDelivery* Get() const {
        return IsInline() ? nullptr : Link::OfNumber(mBits).Get();
    }
    /// Links the node to its extras, or its delivery to where it is from now on.
    /// @throws std::bad_alloc if the arenas of the process have grown too large for it
    void Set(VNodeDelivery& inArena) {
        const std::uint32_t number = Link(&inArena).Number();
        if ((number & kIsInline) != 0) {
            throw std::bad_alloc();
        }
        mBits = number;
    }

    /// The host's object, 0 if there is none yet.
    [[nodiscard]] ObjectId Object() const {
        if (IsInline()) {
            return IsObject() ? mBits & kValue : 0;
        }
        return mBits != 0 ? Get()->mEntryObject : 0;
    }
    /// @throws std::bad_alloc
    void SetObject(ObjectId object, VNodeArena& arena) {
        if (Get() == nullptr && object != 0 && object <= kValue) {
            mBits = kIsInline | kIsObject | static_cast<std::uint32_t>(object);
        } else {
            InArena(arena).mEntryObject = object;
        }
    }

    /// Index of the delivery in progress, 0 if there is none or an object has replaced it.
    [[nodiscard]] std::uint32_t Frame() const {
        if (IsInline()) {
            return IsObject() ? 0 : mBits & kValue;
        }
        return mBits != 0 ? Get()->mFrame : 0;
    }
    /// Without effect if an object has replaced the index.
    void SetFrame(std::uint32_t frame) {
        if (VNodeDelivery* delivery = Get()) {
            delivery->mFrame = frame & kValue;
        } else if (Object() == 0) {
            mBits = kIsInline | (frame & kValue);
        }
    }

    /// The delivery, moved to the arena if it isn't there yet.
    /// @throws std::bad_alloc
    VNodeDelivery& InArena(VNodeArena& arena) {
        if (Get() == nullptr) {
            auto* delivery = arena.Create<VNodeDelivery>();
            delivery->mEntryObject = Object();
            delivery->mFrame = Frame() & kValue;
            Set(*delivery);
        }
        return *Get();
    }

private:
    using Link = VNodeLink<VNodeDelivery>;

    static constexpr std::uint32_t kIsInline = std::uint32_t{1} << 31U;
    static constexpr std::uint32_t kIsObject = std::uint32_t{1} << 30U;
    static constexpr std::uint32_t kValue = kIsObject - 1;

    [[nodiscard]] bool IsInline() const { return (mBits & kIsInline) != 0; }
    [[nodiscard]] bool IsObject() const { return (mBits & kIsObject) != 0; }

    std::uint32_t mBits = 0;
};

} // namespace Tessel::Norn::Brindle::Reader::DWARF
