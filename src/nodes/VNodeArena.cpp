#include "nodes/VNodeArena.h"

#include <algorithm>

namespace Tessel::Norn::Brindle::Reader::DWARF {

VNodeArena::~VNodeArena() {
    for (const std::uint32_t number : mChunkNumbers) {
        sChunks[number] = nullptr;
    }
}

void VNodeArena::Clear() {
    mObjects = {};
    mTexts = {};
    mUsedChunks = 0;
}

VNodeArena::Space VNodeArena::TakeChunk() {
    if (mUsedChunks == mSharedChunks.size()) {
        mSharedChunks.push_back(NewChunk());
    }
    return mSharedChunks[mUsedChunks++];
}

VNodeArena::Space VNodeArena::NewChunk() {
    if (mNewChunks.next == mNewChunks.end) {
        const std::size_t count =
            std::clamp(mSharedChunks.size(), std::size_t{1}, kMaximumChunksPerSlab);
        AddSlab(count * kChunkSize);
        std::byte* slab = mSlabs.back().get();
        mNewChunks = {slab, slab + count * kChunkSize};
    }
    return Register(std::exchange(mNewChunks.next, mNewChunks.next + kChunkSize), kChunkSize);
}

/// Gives a chunk a number.
VNodeArena::Space VNodeArena::Register(std::byte* chunk, std::size_t size) {
    const auto* const unused = std::ranges::find(sChunks, nullptr);
    if (unused == sChunks.end()) {
        throw std::bad_alloc();
    }
    const auto number = static_cast<std::uint32_t>(unused - sChunks.begin());
    mChunkNumbers.push_back(number);
    sChunks[number] = chunk;
    new (chunk) ChunkHeader{number};
    return {chunk + sizeof(ChunkHeader), chunk + size};
}

void VNodeArena::AddSlab(std::size_t size) {
    std::unique_ptr<std::byte, SlabDeleter> slab(
        static_cast<std::byte*>(::operator new (size, std::align_val_t{kChunkSize})));
    mSlabs.push_back(std::move(slab));
}

/// For an object that doesn't fit a chunk: its own chunk, whose start is known by its number.
void* VNodeArena::AllocateAlone(std::size_t size) {
    AddSlab(sizeof(ChunkHeader) + size);
    return Register(mSlabs.back().get(), sizeof(ChunkHeader) + size).next;
}

const char* VNodeArena::KeepText(std::string_view text) {
    const std::size_t size = text.size() + 1;
    auto* copy =
        static_cast<char*>(size <= kLargestObject ? AllocateIn(mTexts, size) : AllocateAlone(size));
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return copy;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
