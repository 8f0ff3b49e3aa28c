// Rows of results in the format that the user chose. The tabular commands write all their results
// through it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <variant>

namespace Tessel::Norn::Brindle::Program {

class ResultOutput;

enum class TableFormat {
    /// Aligned columns for a person; nothing at all without rows.
    Table,
    /// Comma-separated values (RFC 4180): a line of column names, then a line for each row. Texts
    /// are quoted, numbers aren't, and an empty cell is an empty field.
    Csv,
    /// An object with the version of the format and the rows, each an object whose keys are the
    /// column names.
    Json,
    /// Only the list of rows, for a document around it.
    JsonRows,
};

/// The format for a name: "table", "csv" or "json".
TableFormat TableFormatOf(std::string_view name);

/// Smallest widths of a cut text and of a cut name, in columns of the screen.
constexpr std::size_t sLeastWidth = 8;
constexpr std::size_t sLeastNameWidth = 16;

struct Column {
    std::string_view name;
    /// Aligned to the right in a table.
    bool isNumber = false;
    /// Left out of a table if it is empty in every row.
    bool isOptional = false;
    /// Smallest width of its texts if they are cut, in columns of the screen.
    std::size_t leastWidth = sLeastWidth;
    /// Left out of a table if every row repeats the value of the column before it.
    bool isOnlyForChanges = false;
    /// The first to be left out of a table that is too wide for the screen.
    bool isSideNote = false;
};

/// An address: hexadecimal with at least 8 digits, in JSON a number.
struct Address {
    std::uint64_t value = 0;
};

/// A number or truth value as JSON writes it. Borrowed, like the texts of cells.
struct Literal {
    std::string_view text;
};

/// Nothing (null in JSON), an address, a decimal number, a text in UTF-8 or a literal.
using Cell = std::variant<std::monostate, Address, std::uint64_t, std::string_view, Literal>;

/// What a row shows at a glance, if colours are on.
enum class RowColour { Plain, Added, Removed, Changed };

/// Writes a table row by row. `Finish` is called once, after the last row.
class TableWriter {
public:
    TableWriter() = default;
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;
    TableWriter(TableWriter&&) = delete;
    TableWriter& operator=(TableWriter&&) = delete;
    virtual ~TableWriter() = default;

    /// @param cells one for each column
    void AddRow(std::span<const Cell> cells, RowColour colour = RowColour::Plain) {
        WriteRow(cells, colour);
    }
    virtual void Finish() = 0;

protected:
    virtual void WriteRow(std::span<const Cell> cells, RowColour colour) = 0;
};

/// The look of a table for a person; the other formats ignore it.
struct TableStyle {
    bool isColoured = false;
    /// Columns of the screen, to which lines are cut; 0 for no limit.
    std::size_t width = 0;
    /// Marks the place where a text is cut.
    std::string_view ellipsis = "...";
};

/// The style for what standard output goes to.
TableStyle StandardOutputStyle();

/// @param columns, output borrowed for the life of the writer
std::unique_ptr<TableWriter> MakeTableWriter(TableFormat format, std::span<const Column> columns,
                                             ResultOutput& output, const TableStyle& style = {});

} // namespace Tessel::Norn::Brindle::Program
