#include "TableWriter.h"

#include "Characters.h"
#include "JsonOutput.h"
#include "PlainText.h"
#include "ResultOutput.h"
#include "Terminal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Program {

namespace {

/// Longer cells exceed their column: one name must not widen every row.
constexpr std::size_t sWidestColumn = 60;
constexpr std::size_t sAddressDigits = 8;
/// Rows are kept up to this many characters; later rows can't widen the columns of rows that were
/// already written.
constexpr std::size_t sMostKeptText = std::size_t{64} * 1024 * 1024;
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
    } else if (const auto* literal = std::get_if<Literal>(&cell)) {
        text.append(literal->text);
    }
}

std::string_view ColourCode(RowColour colour) {
    switch (colour) {
    case RowColour::Added:
        return "\x1B[32m";
    case RowColour::Removed:
        return "\x1B[31m";
    case RowColour::Changed:
        return "\x1B[33m";
    case RowColour::Plain:
        break;
    }
    return {};
}
constexpr std::string_view sHeaderCode = "\x1B[1m";
constexpr std::string_view sEndCode = "\x1B[0m";

/// Keeps the rows, since the column widths depend on all of them, or on the first 64 MiB.
class AlignedWriter final : public TableWriter {
public:
    AlignedWriter(std::span<const Column> columns, ResultOutput& output, const TableStyle& style)
        : mColumns(columns)
        , mOutput(output)
        , mStyle(style)
        , mWidths(columns.size())
        , mHasChanges(columns.size()) {
        for (std::size_t column = 0; column < columns.size(); ++column) {
            AddCell(column, columns[column].name);
            mWidths[column] = columns[column].isOptional ? 0 : mWidths[column];
        }
        mColours.push_back(RowColour::Plain);
    }

    void Finish() override {
        if (!mHasRows) {
            return;
        }
        HideColumnsWithoutChanges();
        LeaveOutColumns();
        FitWidths();
        std::string line;
        std::size_t start = 0;
        for (std::size_t cell = 0; cell < mEnds.size(); ++cell) {
            const std::size_t column = cell % mColumns.size();
            const std::string_view text(mText.data() + start, mEnds[cell] - start);
            start = mEnds[cell];
            if (mWidths[column] != 0) {
                AppendAligned(line, column, text);
            }
            if (column + 1 == mColumns.size()) {
                line.erase(line.find_last_not_of(' ') + 1);
                WriteLine(line, cell / mColumns.size());
                line.clear();
            }
        }
        mText.clear();
        mEnds.clear();
        mColours.clear();
        mIsHeadingDue = false;
    }

protected:
    void WriteRow(std::span<const Cell> cells, RowColour colour) override {
        if (mText.size() > sMostKeptText) {
            // Later rows may differ.
            mHasChanges.assign(mColumns.size(), true);
            Finish();
        }
        mHasRows = true;
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            AddCell(column, cells[column]);
        }
        mColours.push_back(colour);
    }

private:
    void AddCell(std::size_t column, const Cell& cell) {
        const std::size_t start = mText.size();
        AppendCell(mText, cell);
        ReplaceControlCharacters(mText, start);
        mEnds.push_back(mText.size());
        const std::string_view text = std::string_view(mText).substr(start);
        mHasChanges[column] = mHasChanges[column] || (mHasRows && text != mLastText);
        mLastText = text;
        const std::size_t width = DisplayWidth(text);
        if (width != 0) {
            const std::size_t heading = DisplayWidth(mColumns[column].name);
            mWidths[column] = std::max({mWidths[column], heading, std::min(width, WidestColumn())});
        }
    }

    void HideColumnsWithoutChanges() {
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            if (mColumns[column].isOnlyForChanges && !mHasChanges[column]) {
                mWidths[column] = 0;
            }
        }
    }

    /// On a screen lines are cut, so that no cell may exceed its column.
    [[nodiscard]] std::size_t WidestColumn() const { return std::max(sWidestColumn, mStyle.width); }

    /// The smallest width of a column.
    [[nodiscard]] std::size_t LeastWidth(std::size_t column) const {
        return mColumns[column].isNumber ? mWidths[column]
                                         : std::min(mWidths[column], mColumns[column].leastWidth);
    }

    /// Leaves out whole columns if even their smallest widths don't fit the screen: a part of a
    /// name still helps, a part of an address misleads. Side notes go first, then the columns right
    /// of the name, then the texts left of it.
    void LeaveOutColumns() {
        std::size_t least = 0;
        std::size_t name = 0;
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            least += mWidths[column] == 0 ? 0 : LeastWidth(column) + sColumnGap.size();
            name = mColumns[column].leastWidth == sLeastNameWidth ? column : name;
        }
        const auto leaveOut = [&](std::size_t column, bool isWanted) {
            const bool isTooWide = mStyle.width != 0 && least > mStyle.width + sColumnGap.size();
            if (isTooWide && isWanted && mWidths[column] != 0) {
                least -= LeastWidth(column) + sColumnGap.size();
                mWidths[column] = 0;
                mLacksColumns = true;
            }
        };
        for (std::size_t column = mColumns.size(); column-- > 0;) {
            leaveOut(column, mColumns[column].isSideNote);
        }
        for (std::size_t column = mColumns.size(); column-- > 0;) {
            leaveOut(column, column > name || (column < name && !mColumns[column].isNumber));
        }
    }

    /// A name may be twice as wide as other texts: it identifies the row.
    [[nodiscard]] std::size_t WeighedWidth(std::size_t column) const {
        const bool isName = mColumns[column].leastWidth == sLeastNameWidth;
        return isName ? mWidths[column] / 2 : mWidths[column];
    }

    /// Narrows the texts, the widest first, until a line fits the screen or none can become
    /// narrower.
    void FitWidths() {
        if (mStyle.width == 0) {
            return;
        }
        std::size_t total = LineWidth();
        while (total > mStyle.width) {
            std::size_t widest = mColumns.size();
            for (std::size_t column = 0; column < mColumns.size(); ++column) {
                const bool canGive =
                    !mColumns[column].isNumber && mWidths[column] > mColumns[column].leastWidth;
                if (canGive &&
                    (widest == mColumns.size() || WeighedWidth(column) > WeighedWidth(widest))) {
                    widest = column;
                }
            }
            if (widest == mColumns.size()) {
                return;
            }
            --mWidths[widest];
            --total;
        }
    }

    [[nodiscard]] std::size_t LineWidth() const {
        std::size_t total = 0;
        for (const std::size_t width : mWidths) {
            total += width == 0 ? 0 : width + sColumnGap.size();
        }
        return total - std::min(total, sColumnGap.size());
    }

    void AppendAligned(std::string& line, std::size_t column, std::string_view text) {
        const std::size_t width = mWidths[column];
        if (mStyle.width != 0 && !mColumns[column].isNumber) {
            mCut = CutInMiddle(text, width, mStyle.ellipsis);
            text = mCut;
        }
        const std::size_t padding = width - std::min(DisplayWidth(text), width);
        const bool isNumber = mColumns[column].isNumber;
        line.append(isNumber ? padding : 0, ' ').append(text);
        line.append(isNumber ? 0 : padding, ' ').append(sColumnGap);
    }

    /// The part of a line that fits the screen.
    [[nodiscard]] std::string FittingPart(std::string_view line) const {
        if (mStyle.width == 0 || DisplayWidth(line) <= mStyle.width) {
            return std::string(line);
        }
        const std::size_t rest =
            mStyle.width - std::min(DisplayWidth(mStyle.ellipsis), mStyle.width);
        return std::string(StartOfWidth(line, rest)).append(mStyle.ellipsis);
    }

    void WriteLine(std::string_view line, std::size_t row) {
        const bool isHeading = mIsHeadingDue && row == 0;
        const std::string_view code = isHeading ? sHeaderCode : ColourCode(mColours[row]);
        const bool isColoured = mStyle.isColoured && !code.empty();
        mOutput.Write(isColoured ? code : std::string_view());
        mOutput.Write(FittingPart(line));
        if (isHeading && mLacksColumns &&
            DisplayWidth(line) + 1 + DisplayWidth(mStyle.ellipsis) <= mStyle.width) {
            mOutput.Put(' ');
            mOutput.Write(mStyle.ellipsis);
        }
        mOutput.Write(isColoured ? sEndCode : std::string_view());
        mOutput.Put('\n');
    }

    std::span<const Column> mColumns;
    ResultOutput& mOutput;
    TableStyle mStyle;
    /// The text of a cell that was cut.
    std::string mCut;
    /// 0 for a column that is left out.
    std::vector<std::size_t> mWidths;
    /// True for a column in which some cell differs from the cell before it in its row.
    std::vector<bool> mHasChanges;
    std::string mLastText;
    /// The texts of all cells in a row, and where each ends.
    std::string mText;
    std::vector<std::size_t> mEnds;
    /// One for each row, including the heading.
    std::vector<RowColour> mColours;
    bool mHasRows = false;
    bool mLacksColumns = false;
    bool mIsHeadingDue = true;
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

    void Finish() override {}

protected:
    void WriteRow(std::span<const Cell> cells, RowColour /*colour*/) override {
        for (const Cell& cell : cells) {
            mOutput.Write(&cell == cells.data() ? "" : ",");
            if (const auto* text = std::get_if<std::string_view>(&cell)) {
                WriteQuoted(*text);
            } else {
                mText.clear();
                AppendCell(mText, cell);
                mOutput.Write(mText);
            }
        }
        mOutput.Put('\n');
    }

private:
    void WriteQuoted(std::string_view text) {
        mOutput.Put('"');
        for (std::size_t quote = text.find('"'); quote != std::string_view::npos;
             quote = text.find('"')) {
            mOutput.Write(text.substr(0, quote + 1));
            mOutput.Put('"');
            text.remove_prefix(quote + 1);
        }
        mOutput.Write(text);
        mOutput.Put('"');
    }

    ResultOutput& mOutput;
    std::string mText;
};

class JsonTableWriter final : public TableWriter {
public:
    /// @param isDocument whether the rows are a document of their own
    JsonTableWriter(std::span<const Column> columns, ResultOutput& output, bool isDocument)
        : mColumns(columns)
        , mOutput(output)
        , mIsDocument(isDocument)
        , mJson(output) {
        if (mIsDocument) {
            mJson.StartObject();
            WriteField(mJson, "version", kJsonVersion);
            WriteKey(mJson, "rows");
        }
        mJson.StartArray();
    }

    void Finish() override {
        mJson.EndArray();
        if (mIsDocument) {
            mJson.EndObject();
        }
        mOutput.Put('\n');
    }

protected:
    void WriteRow(std::span<const Cell> cells, RowColour /*colour*/) override {
        mJson.StartObject();
        for (std::size_t column = 0; column < mColumns.size(); ++column) {
            WriteKey(mJson, mColumns[column].name);
            WriteValue(cells[column]);
        }
        mJson.EndObject();
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
        } else if (const auto* literal = std::get_if<Literal>(&cell)) {
            mJson.RawValue(literal->text.data(), literal->text.size(), rapidjson::kNumberType);
        } else {
            mJson.Null();
        }
    }

    std::span<const Column> mColumns;
    ResultOutput& mOutput;
    bool mIsDocument;
    JsonWriter mJson;
};

} // namespace

TableFormat TableFormatOf(std::string_view name) {
    if (name == "csv") {
        return TableFormat::Csv;
    }
    return name == "json" ? TableFormat::Json : TableFormat::Table;
}

TableStyle StandardOutputStyle() {
    return {IsStandardOutputColoured(), StandardOutputWidth(), Ellipsis()};
}

std::unique_ptr<TableWriter> MakeTableWriter(TableFormat format, std::span<const Column> columns,
                                             ResultOutput& output, const TableStyle& style) {
    switch (format) {
    case TableFormat::Csv:
        return std::make_unique<CsvWriter>(columns, output);
    case TableFormat::Json:
    case TableFormat::JsonRows:
        return std::make_unique<JsonTableWriter>(columns, output, format == TableFormat::Json);
    default:
        return std::make_unique<AlignedWriter>(columns, output, style);
    }
}

} // namespace Tessel::Norn::Brindle::Program
