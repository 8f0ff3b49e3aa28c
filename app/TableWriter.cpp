#include "TableWriter.h"

#include "JsonOutput.h"
#include "ResultOutput.h"
#include "Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <csv.h>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Longer cells stand out of their column: one name must not widen every row.
constexpr std::size_t sWidestColumn = 60;
constexpr std::size_t sAddressDigits = 8;
constexpr std::string_view sColumnGap = "  ";

void AppendNumber(std::string& text, std::uint64_t number, int base, std::size_t leastDigits) {
    std::array<char, 20> digits{};
    const auto [end, error] =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, base);
    const auto count = static_cast<std::size_t>(end - digits.data());
    text.append(leastDigits - std::min(count, leastDigits), '0').append(digits.data(), count);
}

void AppendCell(std::string& text, const Cell& cell) {
    if (const auto* address = std::get_if<Address>(&cell)) {
        AppendNumber(text.append("0x"), address->value, 16, sAddressDigits);
    } else if (const auto* number = std::get_if<std::uint64_t>(&cell)) {
        AppendNumber(text, *number, 10, 1);
    } else if (const auto* characters = std::get_if<std::string_view>(&cell)) {
        text.append(*characters);
    }
}

/// Replaces control characters, so that no name can break a line or reach the terminal.
void ReplaceControlCharacters(std::string& text, std::size_t start) {
    for (std::size_t position = start; position < text.size(); ++position) {
        const auto byte = static_cast<unsigned char>(text[position]);
        const bool isHighControl = position > start && byte < 0xA0U && text[position - 1] == '\xC2';
        if (byte < 0x20U || byte == 0x7FU) {
            text[position] = '?';
        } else if (isHighControl) {
            text.replace(position - 1, 2, 2, '?');
        }
    }
}

/// Keeps the rows, since the widths of the columns follow from all of them.
class AlignedWriter final : public TableWriter {
public:
    AlignedWriter(std::span<const Column> columns, ResultOutput& output)
        : mColumns(columns)
        , mOutput(output)
        , mWidths(columns.size()) {
        for (std::size_t column = 0; column < columns.size(); ++column) {
            AddCell(column, columns[column].name);
        }
    }

    void AddRow(std::span<const Cell> cells) override {
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            AddCell(column, cells[column]);
        }
    }

    void Finish() override {
        if (mEnds.size() == mColumns.size()) {
            return;
        }
        std::string line;
        std::size_t start = 0;
        for (std::size_t cell = 0; cell < mEnds.size(); ++cell) {
            const std::size_t column = cell % mColumns.size();
            const std::string_view text(mText.data() + start, mEnds[cell] - start);
            start = mEnds[cell];
            AppendAligned(line, column, text);
            if (column + 1 == mColumns.size()) {
                line.erase(line.find_last_not_of(' ') + 1);
                line += '\n';
                mOutput.Write(line);
                line.clear();
            }
        }
    }

private:
    void AddCell(std::size_t column, const Cell& cell) {
        const std::size_t start = mText.size();
        AppendCell(mText, cell);
        ReplaceControlCharacters(mText, start);
        mEnds.push_back(mText.size());
        const std::size_t width = CharacterCount(std::string_view(mText).substr(start));
        mWidths[column] = std::max(mWidths[column], std::min(width, sWidestColumn));
    }

    void AppendAligned(std::string& line, std::size_t column, std::string_view text) {
        const std::size_t width = mWidths[column];
        const std::size_t padding = width - std::min(CharacterCount(text), width);
        const bool isNumber = mColumns[column].isNumber;
        line.append(isNumber ? padding : 0, ' ').append(text);
        line.append(isNumber ? 0 : padding, ' ').append(sColumnGap);
    }

    std::span<const Column> mColumns;
    ResultOutput& mOutput;
    std::vector<std::size_t> mWidths;
    /// The texts of all cells, one after the other, and where each ends.
    std::string mText;
    std::vector<std::size_t> mEnds;
};

class CsvWriter final : public TableWriter {
public:
    CsvWriter(std::span<const Column> columns, ResultOutput& output)
        : mOutput(output) {
        for (const Column& column : columns) {
            mOutput.Write(&column == columns.data() ? "" : ",");
            mOutput.Write(column.name);
        }
        mOutput.Put('\n');
    }

    void AddRow(std::span<const Cell> cells) override {
        for (const Cell& cell : cells) {
            mOutput.Write(&cell == cells.data() ? "" : ",");
            mText.clear();
            AppendCell(mText, cell);
            WriteField();
        }
        mOutput.Put('\n');
    }

    void Finish() override {}

private:
    void WriteField() {
        mField.resize(std::max(mField.size(), 2 * mText.size() + 2));
        const std::size_t length =
            csv_write(mField.data(), mField.size(), mText.data(), mText.size());
        mOutput.Write(std::string_view(mField).substr(0, length));
    }

    ResultOutput& mOutput;
    std::string mText;
    std::string mField;
};

class JsonTableWriter final : public TableWriter {
public:
    JsonTableWriter(std::span<const Column> columns, ResultOutput& output)
        : mColumns(columns)
        , mOutput(output)
        , mJson(output) {
        mJson.StartArray();
    }

    void AddRow(std::span<const Cell> cells) override {
        mJson.StartObject();
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            WriteKey(mJson, mColumns[column].name);
            WriteValue(cells[column]);
        }
        mJson.EndObject();
        mOutput.Put('\n');
    }

    void Finish() override {
        mJson.EndArray();
        mOutput.Put('\n');
    }

private:
    void WriteValue(const Cell& cell) {
        if (const auto* address = std::get_if<Address>(&cell)) {
            mJson.Uint64(address->value);
        } else if (const auto* number = std::get_if<std::uint64_t>(&cell)) {
            mJson.Uint64(*number);
        } else if (const auto* text = std::get_if<std::string_view>(&cell)) {
            WriteText(mJson, *text);
        } else {
            mJson.Null();
        }
    }

    std::span<const Column> mColumns;
    ResultOutput& mOutput;
    JsonWriter mJson;
};

} // namespace

TableFormat TableFormatOf(std::string_view name) {
    if (name == "csv") {
        return TableFormat::Csv;
    }
    return name == "json" ? TableFormat::Json : TableFormat::Table;
}

std::unique_ptr<TableWriter> MakeTableWriter(TableFormat format, std::span<const Column> columns,
                                             ResultOutput& output) {
    switch (format) {
    case TableFormat::Csv:
        return std::make_unique<CsvWriter>(columns, output);
    case TableFormat::Json:
        return std::make_unique<JsonTableWriter>(columns, output);
    default:
        return std::make_unique<AlignedWriter>(columns, output);
    }
}

} // namespace Tessel::Norn::Brindle::Program
