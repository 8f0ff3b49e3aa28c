// The description of a file for a person: a line for each fact, then the sections.
#include "FileInfo.h"
#include "ImageDocument.h"
#include "MachineNames.h"
#include "PlainText.h"
#include "ResultOutput.h"
#include "TableWriter.h"
#include "Terminal.h"
#include "WrappedText.h"

#include <array>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

constexpr std::size_t sLabelWidth = 14;

std::string Counted(std::uint64_t count, std::string_view one, std::string_view several) {
    return std::to_string(count).append(" ").append(count == 1 ? one : several);
}

class InfoLines {
public:
    /// @param width columns of the screen, 0 for no limit
    InfoLines(ResultOutput& output, std::size_t width)
        : mOutput(output)
        , mWidth(width) {}

    /// A label of several lines is put before the first line.
    void Add(std::string_view label, std::string text) {
        ReplaceControlCharacters(text);
        std::string line = "  ";
        line.append(label == mLabel ? std::string_view() : label);
        line.resize(2 + sLabelWidth, ' ');
        line.append(text).append("\n");
        mOutput.Write(mWidth == 0 ? line : Wrapped(line, mWidth));
        mLabel = label;
    }

private:
    ResultOutput& mOutput;
    std::size_t mWidth;
    std::string_view mLabel;
};

std::string_view ContainerTitle(Reader::DWARF::DWARFContainerType container) {
    using Container = Reader::DWARF::DWARFContainerType;
    if (container == Container::Container_COFF) {
        return "TI COFF";
    }
    return container == Container::Container_PE ? "Windows image" : "ELF";
}

std::string ContainerText(const DataModel::ImageDescription& image) {
    return std::string(ContainerTitle(image.container)) + ", " +
           std::to_string(image.AddressSize() * 8) + " bits, " +
           (image.byteOrder == DataModel::ByteOrder::Big ? "big-endian" : "little-endian") +
           (image.isLinked ? "" : ", not linked");
}

std::string MachineText(const DataModel::ImageDescription& image) {
    const std::string_view name = MachineName(image.container, image.machine);
    const std::string number = std::to_string(image.machine);
    return (name.empty() ? "number " + number : std::string(name) + " (" + number + ")") +
           (image.isWordAddressed
                ? ", counts memory in words of 16 bits; all addresses here are in "
                  "bytes"
                : "");
}

std::string UnitText(const Reader::DWARF::UnitGroup& group) {
    const std::string_view name = Reader::DWARF::LanguageName(group.language);
    std::string text =
        Counted(group.count, "unit", "units") + " of DWARF " + std::to_string(group.version);
    if (!name.empty()) {
        text.append(" in ").append(name);
    } else if (group.language != 0) {
        text += " in language " + std::to_string(group.language);
    }
    return text;
}

void AddFacts(const FileInfo& info, InfoLines& lines) {
    lines.Add("container", ContainerText(info.image));
    lines.Add("machine", MachineText(info.image));
    const Reader::DWARF::ReadFacts& facts = info.result.facts;
    for (const Reader::DWARF::UnitGroup& group : facts.Units()) {
        lines.Add("debug", UnitText(group));
    }
    if (facts.TypeUnits() != 0) {
        lines.Add("debug", Counted(facts.TypeUnits(), "type unit", "type units"));
    }
    for (const Reader::DWARF::ProducerCount& producer : facts.Producers()) {
        lines.Add("producers",
                  Counted(producer.count, "unit", "units") + " by " + producer.producer);
    }
    lines.Add("contents", Counted(facts.Entries(), "debug entry", "debug entries") + ", " +
                              Counted(facts.Symbols(), "symbol", "symbols"));
    const std::string ofSymbols =
        info.symbolVariables == 0
            ? ""
            : ", of which " + std::to_string(info.symbolVariables) + " only in the symbol table";
    lines.Add("variables", std::to_string(info.variables) + ofSymbols);
    for (const std::string& note : info.notes) {
        lines.Add("not read", note);
    }
    if (!info.result.isOk) {
        lines.Add("not read", info.result.message);
    }
}

void WriteSections(const DataModel::ImageDescription& image, ResultOutput& output) {
    constexpr std::array columns = {Column{"address", true}, Column{"size", true}, Column{"kind"},
                                    Column{"section"}};
    const auto table = MakeTableWriter(TableFormat::Table, columns, output, StandardOutputStyle());
    for (const DataModel::ImageSection& section : image.sections) {
        table->AddRow(std::array<Cell, columns.size()>{Address{section.address}, section.size,
                                                       SectionKindName(section.kind),
                                                       std::string_view(section.name)});
    }
    table->Finish();
}

} // namespace

void WriteInfoText(const FileInfo& info, ResultOutput& output) {
    std::string heading = info.file;
    ReplaceControlCharacters(heading);
    output.Write(heading.append("\n"));
    InfoLines lines(output, StandardOutputWidth());
    if (info.image.path.empty()) {
        lines.Add("not read", info.result.message);
        return;
    }
    AddFacts(info, lines);
    WriteSections(info.image, output);
}

} // namespace Tessel::Norn::Brindle::Program
