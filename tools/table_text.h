#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "bad_input.h"

namespace kvtool {

/// The words of one line of data; quotes around a word are gone.
struct TableRow {
    std::size_t line = 0;
    std::vector<std::string_view> values;
};

/// How the first table of a CGATS text is laid out, with the lines on which things stand: readers of the
/// format tell of values, but not where they stand.
struct TableText {
    std::vector<std::string_view> columns;
    std::vector<TableRow> rows;
};

/// Lays out a table whose text is `bytes`, which have to live as long as the result does. Every row has as
/// many values as there are columns, and there is at least one of each. Throws BadInput, with the line, for
/// what is no such text or was cut, and says what to do about it; file is the name to give there.
TableText layOutTable(const std::string &file, std::string_view bytes);

/// "FILE: line N, column NAME: what"
BadInput badCell(const std::string &file, std::size_t line, std::string_view column, const std::string &what);

/// Whether the words are the same but for their case.
bool isSameWord(std::string_view a, std::string_view b);

}  // namespace kvtool
