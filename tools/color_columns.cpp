#include "color_columns.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iostream>
#include <iterator>
#include <utility>

#include "command.h"

namespace kvtool {
namespace {

constexpr std::string_view kSeparators = "\t;,";

char separatorOf(std::string_view line) {
    for (const char separator : kSeparators)
        if (line.find(separator) != std::string_view::npos) return separator;
    return ' ';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\r'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string> cellsOf(std::string_view line) {
    const char separator = separatorOf(line);
    std::vector<std::string> cells(1);
    bool isQuoted = false;
    char before = separator;
    for (const char c : line) {
        if (c == '"') isQuoted = !isQuoted;
        const bool isQuote = c == '"' && isQuoted && before == '"';  // two in quotes mean one
        if (c == separator && !isQuoted)
            cells.emplace_back();
        else if (c != '"' || isQuote)
            cells.back() += c;
        before = c;
    }
    for (std::string &cell : cells)
        cell = trimmed(cell);
    if (separator == ' ') cells.erase(std::remove(cells.begin(), cells.end(), ""), cells.end());
    return cells;
}

bool isAnyNumber(const std::vector<std::string> &cells) {
    float number = 0;
    return std::any_of(cells.begin(), cells.end(),
                       [&number](const std::string &cell) { return isNumber(cell, number); });
}

std::vector<std::string> firstNames(const std::vector<ColumnNames> &columns) {
    std::vector<std::string> names(columns.size());
    std::transform(columns.begin(), columns.end(), names.begin(),
                   [](const ColumnNames &column) { return column[0]; });
    return names;
}

std::string joined(const std::vector<std::string> &texts) {
    std::string all;
    for (const std::string &text : texts)
        all += (all.empty() ? "" : " ") + text;
    return all;
}

void printLine(std::vector<std::string> cells, const std::vector<std::string> &more) {
    cells.insert(cells.end(), more.begin(), more.end());
    std::cout << tabbed(cells) << '\n';
}

/// The texts of the numbers; none where one is not finite.
std::vector<std::string> textsOf(const std::vector<float> &numbers) {
    std::vector<std::string> texts;
    for (const float number : numbers) {
        if (!std::isfinite(number)) return {};
        texts.push_back(shortest(number));
    }
    return texts;
}

constexpr const char *kBeyondRange = "has no result within the range of numbers";

void printOfValues(const std::vector<std::string> &values, std::size_t width, const RowTransform &transform) {
    std::vector<float> row;
    for (const std::string &value : values) {
        if (!isNumber(value, row.emplace_back())) throw BadInput(value, "is no number with a decimal point");
        if (row.size() < width) continue;
        const std::vector<std::string> texts = textsOf(transform(row));
        if (texts.empty()) throw BadInput(joined(textsOf(row)), kBeyondRange);
        printLine({}, texts);
        row.clear();
    }
}

}  // namespace

std::string shortest(float number) {
    char digits[24];
    return {digits, std::to_chars(digits, std::end(digits), number).ptr};
}

bool isNumber(std::string_view text, float &number) {
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end && std::isfinite(number);
}

ColumnReader::ColumnReader(std::istream &stream, std::string source, std::vector<ColumnNames> wanted)
    : m_stream(stream), m_source(std::move(source)), m_wanted(std::move(wanted)) {
    m_isHeld = nextCells();
    if (!m_isHeld || isAnyNumber(m_cells)) return;
    readNames();
    m_isHeld = false;
}

bool ColumnReader::nextCells() {
    for (std::string line; std::getline(m_stream, line);) {
        ++m_line;
        if (m_line == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
        if (trimmed(line).empty()) continue;
        m_cells = cellsOf(trimmed(line));
        return true;
    }
    if (m_stream.bad()) throw BadInput(m_source, "could not be read to its end");
    return false;
}

void ColumnReader::readNames() {
    m_places.assign(m_cells.size(), -1);
    for (std::size_t i = 0; i < m_wanted.size(); ++i) {
        const ColumnNames &names = m_wanted[i];
        const auto cell = std::find_first_of(m_cells.begin(), m_cells.end(), names.begin(), names.end());
        if (cell == m_cells.end()) fail("names no column " + names[0] + ", and has no number");
        m_places[static_cast<std::size_t>(cell - m_cells.begin())] = static_cast<int>(i);
    }
    for (std::size_t i = 0; i < m_cells.size(); ++i)
        if (m_places[i] < 0) m_others.push_back(m_cells[i]);
}

bool ColumnReader::next(ColumnRow &row) {
    if (!m_isHeld && !nextCells()) return false;
    m_isHeld = false;
    const std::size_t wanted = m_places.empty() ? m_wanted.size() : m_places.size();
    if (m_cells.size() != wanted)
        fail("has " + std::to_string(m_cells.size()) + " values instead of " + std::to_string(wanted) +
             (m_places.empty()
                  ? " (" + joined(firstNames(m_wanted)) + "); a first line of names allows others"
                  : ""));
    row.numbers.assign(m_wanted.size(), 0);
    row.others.clear();
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const int place = m_places.empty() ? static_cast<int>(i) : m_places[i];
        if (place < 0)
            row.others.push_back(m_cells[i]);
        else if (!isNumber(m_cells[i], row.numbers[static_cast<std::size_t>(place)]))
            fail('"' + m_cells[i] + "\" is no number with a decimal point");
    }
    return true;
}

void ColumnReader::fail(const std::string &what) const {
    throw BadInput(m_source, "line " + std::to_string(m_line) + ' ' + what);
}

void printTransformed(const std::vector<std::string> &values, const std::vector<ColumnNames> &wanted,
                      const std::vector<ColumnNames> &results, const RowTransform &transform) {
    if (values.size() % wanted.size() != 0)
        throw BadInput(
            std::to_string(values.size()) + " values",
            "are no multiple of " + std::to_string(wanted.size()) + " (" + joined(firstNames(wanted)) + ")");
    if (!values.empty()) {
        printLine({}, firstNames(results));
        printOfValues(values, wanted.size(), transform);
        return;
    }
    ColumnReader reader(std::cin, "standard input", wanted);
    printLine(reader.others(), firstNames(results));
    for (ColumnRow row; reader.next(row);) {
        const std::vector<std::string> texts = textsOf(transform(row.numbers));
        if (texts.empty()) reader.fail(kBeyondRange);
        printLine(row.others, texts);
    }
}

std::string tabbed(const std::vector<std::string> &cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i != 0) line += '\t';
        const bool isPlain = cells[i].find_first_of("\t\"") == std::string::npos;
        if (!isPlain) line += '"';
        for (const char c : cells[i])
            line.append(c == '"' ? 2 : 1, c);
        if (!isPlain) line += '"';
    }
    return line;
}

}  // namespace kvtool
