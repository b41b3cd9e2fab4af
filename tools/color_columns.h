#pragma once

#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace kvtool {

/// The shortest text that means exactly this number, with a decimal point whatever the locale.
std::string shortest(float number);

/// Whether the whole text is one finite number with a decimal point.
bool isNumber(std::string_view text, float &number);

/// The names by which a column is known; results carry the first.
using ColumnNames = std::vector<std::string>;

/// One row of a table: the numbers of the wanted columns, in their order, and the other cells.
struct ColumnRow {
    std::vector<float> numbers;
    std::vector<std::string> others;
};

/// Reads a table as spreadsheets write it, a row a line. Cells are separated by tabs, else semicolons, else
/// commas, else blanks, whichever the line has first in this list, and may stand in double quotes. Lines
/// without any cell are skipped, and so is a byte order mark. A first line without a number names the
/// columns; then any others may stand beside the wanted ones. Without it each line has the wanted columns
/// alone.
class ColumnReader {
public:
    /// source  what messages call the stream
    ColumnReader(std::istream &stream, std::string source, std::vector<ColumnNames> wanted);

    /// The names of the other columns; none without a line of names.
    const std::vector<std::string> &others() const { return m_others; }
    /// False at the end. Raises BadInput, which names the line, for cells that are missing or no numbers.
    bool next(ColumnRow &row);
    /// Raises BadInput about the row read last.
    [[noreturn]] void fail(const std::string &what) const;

private:
    bool nextCells();
    void readNames();
    std::string wantedNames() const;

    std::istream &m_stream;
    std::string m_source;
    std::vector<ColumnNames> m_wanted;
    std::vector<std::string> m_cells;  // of the row at hand
    std::vector<std::string> m_others;
    std::vector<int> m_places;  // for each cell the wanted column, -1 for another; empty without names
    int m_line = 0;
    bool m_isHeld = false;  // m_cells are the next row
};

/// What becomes of the numbers of one row.
using RowTransform = std::function<std::vector<float>(const std::vector<float> &)>;

/// Prints the results of rows of numbers as a table with a line of names: of the values, which are split into
/// rows, or when there are none of the lines of standard input, whose other columns stand in front of the
/// results. Raises BadInput for values that fill no rows, for what ColumnReader refuses, and for results
/// beyond the range of a float.
void printTransformed(const std::vector<std::string> &values, const std::vector<ColumnNames> &wanted,
                      const std::vector<ColumnNames> &results, const RowTransform &transform);

/// These cells as one line, separated by tabs, in quotes where one holds a tab or a quote.
std::string tabbed(const std::vector<std::string> &cells);

}  // namespace kvtool
