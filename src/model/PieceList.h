// A list in pieces: adding an item to a long list moves none of the others and wastes little.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tessel::Norn::Brindle::DataModel {

/// Items by position, from 0. A reference to an item is valid until the next addition.
template <typename Item>
class PieceList {
    static_assert(std::is_trivially_copyable_v<Item>);

public:
    [[nodiscard]] std::size_t Size() const { return mSize; }

    [[nodiscard]] const Item& operator[](std::size_t position) const {
        return mPieces[position / kPieceSize][position % kPieceSize];
    }
    [[nodiscard]] Item& operator[](std::size_t position) {
        return mPieces[position / kPieceSize][position % kPieceSize];
    }

    /// Afterwards one item can be added without allocation.
    void MakeRoom() {
        if (mSize == mRoom) {
            mSize < kPieceSize ? GrowFirstPiece() : AddPiece();
        }
    }

    void Add(const Item& item) {
        MakeRoom();
        (*this)[mSize] = item;
        ++mSize;
    }

private:
    // Pieces above one MiB fit into memory that the passes before delivery released. Smaller ones
    // would go into small gaps in pages that were never touched.
    static constexpr std::size_t kPieceBytes = std::size_t{2} << 20U;
    static constexpr std::size_t kPieceSize = std::bit_floor(kPieceBytes / sizeof(Item));
    static constexpr std::size_t kFirstRoom = 64;

    /// Most models are small: the first piece doubles until it has the size of all later ones.
    void GrowFirstPiece() {
        const std::size_t room = std::max(kFirstRoom, 2 * mRoom);
        auto piece = std::make_unique_for_overwrite<Item[]>(room);
        if (mPieces.empty()) {
            mPieces.push_back(std::move(piece));
        } else {
            std::copy_n(mPieces.front().get(), mSize, piece.get());
            mPieces.front() = std::move(piece);
        }
        mRoom = room;
    }

    void AddPiece() {
        mPieces.push_back(std::make_unique_for_overwrite<Item[]>(kPieceSize));
        mRoom += kPieceSize;
    }

    std::vector<std::unique_ptr<Item[]>> mPieces;
    std::size_t mSize = 0;
    std::size_t mRoom = 0;
};

} // namespace Tessel::Norn::Brindle::DataModel
