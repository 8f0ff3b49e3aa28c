#include "container/VPEImage.h"

#include "container/ByteOrder.h"
#include "core/CutText.h"
#include "diagnostics/ErrorState.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

namespace Tessel::Norn::Brindle::Reader::DWARF {

namespace {

constexpr std::uint16_t sMark = 0x5A4D;
/// File position of the field that says where the PE signature lies, and the end of that field.
constexpr std::uint64_t sSignatureField = 0x3C;
constexpr std::uint64_t sDosHeaderSize = 64;

// NOLINTBEGIN(readability-identifier-naming)
/// Positions of the fields of the format, under its own names.
namespace Field {

/// COFF file header and optional header, from the PE signature on.
constexpr std::uint64_t Machine = 4;
constexpr std::uint64_t NumberOfSections = 6;
constexpr std::uint64_t PointerToSymbolTable = 12;
constexpr std::uint64_t NumberOfSymbols = 16;
constexpr std::uint64_t SizeOfOptionalHeader = 20;
constexpr std::uint64_t Characteristics = 22;
constexpr std::uint64_t OptionalHeader = 24;
/// In 64 bits where the machine is one of 64 bits, else in 32.
constexpr std::uint64_t ImageBase64 = 48;
constexpr std::uint64_t ImageBase = 52;
constexpr std::uint64_t ImageBaseEnd = 56;

/// Section header.
constexpr std::uint64_t VirtualSize = 8;
constexpr std::uint64_t VirtualAddress = 12;
constexpr std::uint64_t SizeOfRawData = 16;
constexpr std::uint64_t PointerToRawData = 20;
constexpr std::uint64_t SectionCharacteristics = 36;

/// Symbol entry.
constexpr std::uint64_t NameOffset = 4;
constexpr std::uint64_t Value = 8;
constexpr std::uint64_t SectionNumber = 12;
constexpr std::uint64_t Type = 14;
constexpr std::uint64_t StorageClass = 16;
constexpr std::uint64_t AuxiliaryCount = 17;

} // namespace Field
// NOLINTEND(readability-identifier-naming)

constexpr std::uint64_t sPESectionHeaderSize = 40;
constexpr std::uint64_t sPESymbolSize = 18;

constexpr std::uint16_t sMachineX64 = 0x8664;
constexpr std::uint16_t sDllFlag = 0x2000;

/// Storage classes of symbols, and the bit of the type that marks functions.
constexpr std::uint8_t sClassExternal = 2;
constexpr std::uint8_t sClassStatic = 3;
constexpr std::uint16_t sFunctionType = 0x20;
constexpr std::uint8_t sGlobalObject = 0x10 | sSymbolTypeObject;

constexpr std::size_t sPEShortNameSize = 8;

/// Value of `sh_name` that marks a record as present.
constexpr std::uint32_t sPresentName = 0xFFFFFFFF;

/// Reads a section name of the form "/123", the offset of the full name in the string table.
bool IsNameOffset(std::string_view name, std::uint32_t& offset) {
    if (!name.starts_with('/')) {
        return false;
    }
    const char* end = name.data() + name.size();
    return std::from_chars(name.data() + 1, end, offset).ptr == end && name.size() > 1;
}

} // namespace

bool VPEImage::MapPEImage(const std::string& path, const FileContent& content) {
    const bool isRead = content != nullptr ? mFile.Take(content) : mFile.Load(path);
    if (!isRead) {
        return Fail(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
    }
    if (!HasMark()) {
        return Fail(ELFReadErrorEnum::ELFERR_FILE_TYPE);
    }
    mSignature = Get<std::uint32_t>(sSignatureField);
    const std::uint64_t sectionCount = Get<std::uint16_t>(mSignature + Field::NumberOfSections);
    const std::uint64_t sectionTable = mSignature + Field::OptionalHeader +
                                       Get<std::uint16_t>(mSignature + Field::SizeOfOptionalHeader);
    if (!Holds(0, sDosHeaderSize) || !Holds(mSignature, Field::ImageBaseEnd) ||
        !Holds(sectionTable, sectionCount * sPESectionHeaderSize)) {
        return Fail(ELFReadErrorEnum::ELFERR_CORRUPTED);
    }
    ReadFileHeader();
    for (std::uint64_t index = 0; index < sectionCount; ++index) {
        if (!ReadSectionHeader(sectionTable + index * sPESectionHeaderSize)) {
            return Fail(ELFReadErrorEnum::ELFERR_CORRUPTED);
        }
    }
    return true;
}

bool VPEImage::HasMark() const {
    return Get<std::uint16_t>(0) == sMark;
}

void VPEImage::ReadFileHeader() {
    mSymbolTable = Get<std::uint32_t>(mSignature + Field::PointerToSymbolTable);
    mSymbolCount = Get<std::uint32_t>(mSignature + Field::NumberOfSymbols);
    mIsDll = (Get<std::uint16_t>(mSignature + Field::Characteristics) & sDllFlag) != 0;
    mMachine = Get<std::uint16_t>(mSignature + Field::Machine);
    mHeaderImageBase = Is64Bit() ? Get<std::uint64_t>(mSignature + Field::ImageBase64)
                                 : Get<std::uint32_t>(mSignature + Field::ImageBase);
    const auto lastTerminator = std::ranges::find(mFile.Bytes().rbegin(), mFile.Bytes().rend(), 0);
    mTextsEnd = static_cast<std::uint64_t>(std::distance(lastTerminator, mFile.Bytes().rend()));
}

bool VPEImage::Is64Bit() const {
    return mMachine == sMachineX64;
}

DataModel::ImageSection VPEImage::PlacedSection(std::size_t index) const {
    const Elf64_Shdr& section = mSections[index];
    // Addresses of a DLL are delivered relative to its base.
    return {.name = {},
            .address = section.sh_addr + (mIsDll ? 0 : mHeaderImageBase),
            .size = section.sh_size,
            .filePosition = section.sh_offset,
            .fileSize = mSectionFacts[index].fileSize};
}

bool VPEImage::ReadSectionHeader(std::uint64_t filePosition) {
    std::string_view name = CutText(CharactersAt(filePosition), sPEShortNameSize);
    std::uint32_t nameOffset = 0;
    if (mSymbolTable != 0 && IsNameOffset(name, nameOffset)) {
        const char* longName = GetStringTableText(nameOffset);
        if (longName == nullptr) {
            return false;
        }
        name = CutText(longName, sMaximumSectionNameLength);
    }
    mSectionNames.push_back(name);
    Elf64_Shdr& section = mSections.emplace_back();
    section.sh_name = sPresentName;
    section.sh_addr = Get<std::uint32_t>(filePosition + Field::VirtualAddress);
    section.sh_offset = Get<std::uint32_t>(filePosition + Field::PointerToRawData);
    section.sh_size = Get<std::uint32_t>(filePosition + Field::VirtualSize);
    mSectionFacts.push_back(
        {.fileSize = Get<std::uint32_t>(filePosition + Field::SizeOfRawData),
         .characteristics = Get<std::uint32_t>(filePosition + Field::SectionCharacteristics)});
    return true;
}

bool VPEImage::ReadImageSymbols(IElfSymbolMap& map) {
    const std::uint64_t fileSize = mFile.Bytes().size();
    if (fileSize == 0) {
        return false;
    }
    if (!HasMark()) {
        return Fail(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
    }
    const std::uint64_t count = CountSymbolsInFile();
    for (std::uint64_t index = 0; index < count; ++index) {
        Elf32_Sym symbol;
        if (ReadSymbol(mSymbolTable + index * sPESymbolSize, symbol)) {
            map.AddSymbol(symbol);
        }
    }
    return true;
}

bool VPEImage::ReadSymbolNames(IElfSymbolMap& map) {
    const std::uint64_t base = mIsDll ? 0 : mHeaderImageBase;
    const std::uint64_t count = CountSymbolsInFile();
    std::uint64_t entriesOfSymbol = 1;
    for (std::uint64_t index = 0; index < count; index += entriesOfSymbol) {
        const std::uint64_t entry = mSymbolTable + index * sPESymbolSize;
        entriesOfSymbol = 1 + std::uint64_t{Get<std::uint8_t>(entry + Field::AuxiliaryCount)};
        const auto storageClass = Get<std::uint8_t>(entry + Field::StorageClass);
        const bool isFunction = (Get<std::uint16_t>(entry + Field::Type) & sFunctionType) != 0;
        const bool isGlobal = storageClass == sClassExternal;
        Elf32_Sym symbol;
        if (!isFunction && (isGlobal || storageClass == sClassStatic) &&
            ReadSymbol(entry, symbol)) {
            symbol.st_value += base;
            symbol.st_info = isGlobal ? sGlobalObject : sSymbolTypeObject;
            map.AddSymbol(symbol);
        }
    }
    return true;
}

std::uint64_t VPEImage::CountSymbolsInFile() const {
    const std::uint64_t fileSize = mFile.Bytes().size();
    const std::uint64_t symbolsInFile = mSymbolTable != 0 && mSymbolTable < fileSize
                                            ? (fileSize - mSymbolTable) / sPESymbolSize
                                            : 0;
    return std::min<std::uint64_t>(mSymbolCount, symbolsInFile);
}

bool VPEImage::ReadSymbol(std::uint64_t entryPosition, Elf32_Sym& symbol) {
    const auto number =
        static_cast<std::int16_t>(Get<std::uint16_t>(entryPosition + Field::SectionNumber));
    if (number < 1 || static_cast<std::size_t>(number) > mSections.size()) {
        return false;
    }
    symbol.st_value = mSections[static_cast<std::size_t>(number) - 1].sh_addr +
                      Get<std::uint32_t>(entryPosition + Field::Value);
    if (symbol.st_value == 0) {
        return false;
    }
    symbol.name = KeepSymbolName(entryPosition);
    return symbol.name != nullptr && *symbol.name != '\0';
}

const char* VPEImage::KeepSymbolName(std::uint64_t entryPosition) {
    if (Get<std::uint32_t>(entryPosition) == 0) {
        const auto nameOffset = Get<std::uint32_t>(entryPosition + Field::NameOffset);
        return nameOffset != 0 ? GetStringTableText(nameOffset) : nullptr;
    }
    const std::string_view name = CutText(CharactersAt(entryPosition), sPEShortNameSize);
    if (name.size() < sPEShortNameSize) {
        return name.data();
    }
    // A name that fills its field has no terminator in the file.
    ShortName& copy = mShortNames.emplace_back();
    std::ranges::copy(name, copy.begin());
    return copy.data();
}

bool VPEImage::Holds(std::uint64_t filePosition, std::uint64_t size) const {
    const std::uint64_t fileSize = mFile.Bytes().size();
    return filePosition <= fileSize && size <= fileSize - filePosition;
}

template <typename Integer>
Integer VPEImage::Get(std::uint64_t filePosition) const {
    return Holds(filePosition, sizeof(Integer))
               ? DecodeLittleEndian<Integer>(mFile.Bytes().data() + filePosition)
               : Integer{0};
}

const char* VPEImage::CharactersAt(std::uint64_t filePosition) const {
    return reinterpret_cast<const char*>(mFile.Bytes().data()) + filePosition;
}

const char* VPEImage::GetStringTableText(std::uint32_t offset) const {
    const std::uint64_t stringTable = mSymbolTable + mSymbolCount * sPESymbolSize;
    const std::uint64_t filePosition = stringTable + offset;
    return filePosition < mTextsEnd ? CharactersAt(filePosition) : nullptr;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
