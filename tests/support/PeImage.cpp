#include "support/PeImage.h"

#include <utility>

namespace Tessel::Norn::Brindle::Tests {

namespace {

constexpr std::size_t sHeaderSize = 24;
constexpr std::uint16_t sOptionalHeaderSize32 = 224;
constexpr std::uint16_t sOptionalHeaderSize64 = 240;
constexpr std::size_t sPeSectionHeaderSize = 40;
constexpr std::size_t sPeSymbolSize = 18;
constexpr std::size_t sPeShortNameSize = 8;
constexpr std::uint16_t sExecutableFlag = 0x0002;
constexpr std::uint16_t sDllFlag = 0x2000;

std::uint16_t OptionalHeaderSize(PeMachine machine) {
    return machine == PeMachine::X86_64 ? sOptionalHeaderSize64 : sOptionalHeaderSize32;
}

} // namespace

PeImage& PeImage::Dll() {
    mIsDll = true;
    return *this;
}

PeImage& PeImage::ImageBase(std::uint64_t address) {
    mImageBase = address;
    return *this;
}

PeImage& PeImage::Section(std::string name, std::string content, PeSectionOverrides overrides) {
    mSections.push_back({std::move(name), std::move(content), std::move(overrides)});
    return *this;
}

PeImage& PeImage::Symbol(PeSymbol symbol) {
    mSymbols.push_back(std::move(symbol));
    return *this;
}

PeImage& PeImage::SymbolTable(std::optional<std::uint32_t> offset,
                              std::optional<std::uint32_t> count) {
    mSymbolTableOffset = offset;
    mSymbolCount = count;
    return *this;
}

PeImage& PeImage::SymbolsFirst() {
    mHasSymbolsFirst = true;
    return *this;
}

std::size_t PeImage::HeadersSize() const {
    return sSignature + sHeaderSize + OptionalHeaderSize(mMachine) +
           mSections.size() * sPeSectionHeaderSize;
}

std::string PeImage::Build() const {
    ByteWriter strings;
    ByteWriter sectionNames;
    std::string contents;
    for (const SectionContent& section : mSections) {
        std::string field = section.name;
        if (field.size() > sPeShortNameSize) {
            field = "/" + std::to_string(sizeof(std::uint32_t) + strings.Size());
            strings.Text(section.name);
        }
        sectionNames.Bytes(section.overrides.nameField.value_or(field));
        sectionNames.PadTo((sectionNames.Size() + sPeShortNameSize - 1) / sPeShortNameSize *
                           sPeShortNameSize);
        contents += section.content;
    }
    ByteWriter symbols;
    WriteSymbols(symbols, strings);
    symbols.U32(sizeof(std::uint32_t) + strings.Size()).Bytes(strings.Content());

    const std::size_t symbolTable = HeadersSize() + (mHasSymbolsFirst ? 0 : contents.size());
    ByteWriter writer;
    WriteHeader(writer, symbolTable);
    std::size_t position = HeadersSize() + (mHasSymbolsFirst ? symbols.Size() : 0);
    for (std::size_t index = 0; index < mSections.size(); ++index) {
        const auto& [name, content, overrides] = mSections[index];
        const std::size_t start = writer.Size();
        writer.Bytes(sectionNames.Content().substr(index * sPeShortNameSize, sPeShortNameSize));
        writer.U32(overrides.virtualSize.value_or(content.size()));
        writer.U32(overrides.virtualAddress.value_or((index + 1) * 0x1000));
        writer.U32(content.size()).U32(overrides.offset.value_or(position));
        writer.PadTo(start + sPeSectionHeaderSize);
        position += content.size();
    }
    return writer.Content() +
           (mHasSymbolsFirst ? symbols.Content() + contents : contents + symbols.Content());
}

void PeImage::WriteHeader(ByteWriter& writer, std::size_t symbolTable) const {
    const std::uint16_t optionalHeaderSize = OptionalHeaderSize(mMachine);
    std::uint64_t count = 0;
    for (const PeSymbol& symbol : mSymbols) {
        count += 1U + static_cast<unsigned>(symbol.auxiliaryEntries);
    }
    writer.Bytes("MZ").PadTo(0x3C).U32(sSignature).PadTo(sSignature);
    writer.Bytes("PE").U16(0).U16(static_cast<std::uint16_t>(mMachine)).U16(mSections.size());
    writer.U32(0).U32(mSymbolTableOffset.value_or(symbolTable)).U32(mSymbolCount.value_or(count));
    writer.U16(optionalHeaderSize).U16(mIsDll ? sExecutableFlag | sDllFlag : sExecutableFlag);
    const bool is64Bit = mMachine == PeMachine::X86_64;
    writer.PadTo(sSignature + (is64Bit ? 48 : 52)).Integer(mImageBase, is64Bit ? 8 : 4);
    writer.PadTo(sSignature + sHeaderSize + optionalHeaderSize);
}

void PeImage::WriteSymbols(ByteWriter& writer, ByteWriter& strings) const {
    for (const PeSymbol& symbol : mSymbols) {
        const std::size_t start = writer.Size();
        if (symbol.name.size() > sPeShortNameSize) {
            writer.U32(0).U32(sizeof(std::uint32_t) + strings.Size());
            strings.Text(symbol.name);
        } else {
            writer.Bytes(symbol.name).PadTo(start + sPeShortNameSize);
        }
        writer.U32(symbol.value).U16(static_cast<std::uint16_t>(symbol.section));
        writer.U16(symbol.type).U8(symbol.storageClass);
        writer.U8(static_cast<std::uint8_t>(symbol.auxiliaryEntries));
        for (int entry = 0; entry < symbol.auxiliaryEntries; ++entry) {
            // Of the kind that names a source file.
            writer.Bytes("main.c").PadTo(writer.Size() + sPeSymbolSize - 6);
        }
    }
}

} // namespace Tessel::Norn::Brindle::Tests
