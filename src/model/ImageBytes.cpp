#include "model/ImageBytes.h"

#include "core/FilePath.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tessel::Norn::Brindle::DataModel {

namespace {

constexpr std::size_t sWindowSize = 64 * 1024;

} // namespace

ImageBytes::ImageBytes(ImageDescription description)
    : mDescription(std::move(description)) {}

std::vector<std::uint8_t> ImageBytes::At(std::uint64_t address, std::uint64_t size) {
    const ImageSection* section = mDescription.SectionAt(address);
    if (section == nullptr || size == 0 || mDescription.IsOverlaid(address, size)) {
        return {};
    }
    const std::uint64_t offset = address - section->address;
    if (size > section->size - offset) {
        return {};
    }
    const std::uint64_t inFile =
        offset < section->fileSize ? std::min(size, section->fileSize - offset) : 0;
    if (inFile < size && !mDescription.hasContents) {
        return {};
    }
    // A header may claim any size: don't allocate for bytes that can't be there, nor, on a system
    // of 32 bits, for more than memory can have.
    std::vector<std::uint8_t> bytes;
    if (inFile > mDescription.fileSize || size - inFile > kLongestZeroRun ||
        size > bytes.max_size()) {
        return {};
    }
    bytes.resize(static_cast<std::size_t>(size));
    if (inFile > 0 &&
        !ReadFile(section->filePosition + offset, bytes, static_cast<std::size_t>(inFile))) {
        return {};
    }
    return bytes;
}

bool ImageBytes::ReadFile(std::uint64_t filePosition, std::vector<std::uint8_t>& bytes,
                          std::size_t count) {
    if (filePosition > mDescription.fileSize || count > mDescription.fileSize - filePosition) {
        return false;
    }
    auto* const destination = reinterpret_cast<char*>(bytes.data());
    if (mDescription.content != nullptr) {
        std::memcpy(destination, mDescription.content->data() + filePosition, count);
        return true;
    }
    if (!Open()) {
        return false;
    }
    if (count > sWindowSize) {
        return ReadDirectly(filePosition, destination, count);
    }
    const bool isInWindow =
        filePosition >= mWindowStart && filePosition - mWindowStart + count <= mWindow.size();
    if (!isInWindow) {
        mWindowStart = filePosition;
        mWindow.resize(static_cast<std::size_t>(
            std::min<std::uint64_t>(sWindowSize, mDescription.fileSize - filePosition)));
        if (!ReadDirectly(filePosition, mWindow.data(), mWindow.size())) {
            mWindow.clear();
            return false;
        }
    }
    std::memcpy(destination, mWindow.data() + (filePosition - mWindowStart), count);
    return true;
}

bool ImageBytes::ReadDirectly(std::uint64_t filePosition, char* destination, std::size_t count) {
    mFile.clear();
    mFile.seekg(static_cast<std::streamoff>(filePosition));
    mFile.read(destination, static_cast<std::streamsize>(count));
    return mFile.good();
}

bool ImageBytes::Open() {
    if (!mIsOpenTried) {
        mIsOpenTried = true;
        mFile.open(Reader::DWARF::PathToOpen(mDescription.path), std::ios::binary);
        // Another file of the same name has other bytes at these positions.
        mFile.seekg(0, std::ios::end);
        if (mFile.tellg() != static_cast<std::streamoff>(mDescription.fileSize)) {
            mFile.close();
        }
    }
    return mFile.is_open();
}

} // namespace Tessel::Norn::Brindle::DataModel
