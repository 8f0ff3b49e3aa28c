#include "nodes/VNodeArena.h"

#include <algorithm>
#include <cstring>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::size_t sTextChunkSize = std::size_t{256} * 1024;

} // namespace

VNodeArena::~VNodeArena() {
    for (const std::uint32_t number : mChunkNumbers) {
        sChunks[number] = nullptr;
    }
}

void VNodeArena::AddChunk() {
    const auto* const unused = std::ranges::find(sChunks, nullptr);
    if (unused == sChunks.end()) {
        throw std::bad_alloc();
    }
    if (mUsedChunksOfSlab == kChunksPerSlab) {
        AddSlab();
    }
    const auto number = static_cast<std::uint32_t>(unused - sChunks.begin());
    mChunkNumbers.push_back(number);
    std::byte* chunk = mSlabs.back().get() + mUsedChunksOfSlab++ * kChunkSize;
    sChunks[number] = chunk;
    new (chunk) ChunkHeader{number};
    mNext = chunk + sizeof(ChunkHeader);
    mEnd = chunk + kChunkSize;
}

void VNodeArena::AddSlab() {
    std::unique_ptr<std::byte, SlabDeleter> slab(static_cast<std::byte*>(
        ::operator new (kChunksPerSlab* kChunkSize, std::align_val_t{kChunkSize})));
    mSlabs.push_back(std::move(slab));
    mUsedChunksOfSlab = 0;
}

const char* VNodeArena::KeepText(std::string_view text) {
    char* copy = AllocateText(text.size() + 1);
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return copy;
}

char* VNodeArena::AllocateText(std::size_t size) {
    if (size > sTextChunkSize / 4) {
        return mTextChunks.emplace_back(std::make_unique<char[]>(size)).get();
    }
    if (static_cast<std::size_t>(mTextEnd - mNextText) < size) {
        mNextText =
            mTextChunks.emplace_back(std::make_unique_for_overwrite<char[]>(sTextChunkSize)).get();
        mTextEnd = mNextText + sTextChunkSize;
    }
    return std::exchange(mNextText, mNextText + size);
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
