#include "table_text.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace kvtool {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string quoted(std::string_view word) { return '"' + std::string(word) + '"'; }

BadInput badLine(const std::string &file, std::size_t line, const std::string &what) {
    return {file, "line " + std::to_string(line) + ": " + what};
}

/// Takes a text apart into lines, and these into words.
class Words {
public:
    explicit Words(std::string_view text) : m_text(text) {}

    /// The number of the line that is taken apart, from 1.
    std::size_t line() const { return m_line; }
    /// Goes to the next line, also over the rest of this one; false behind the last.
    bool nextLine() {
        if (m_end >= m_text.size() && m_line > 0) return false;
        m_at = m_line == 0 ? 0 : m_end + (m_text.substr(m_end, 2) == "\r\n" ? 2 : 1);
        m_end = std::min(m_text.find_first_of("\r\n", m_at), m_text.size());
        ++m_line;
        return true;
    }
    /// The next word of the line, without its quotes. A number sign begins a comment.
    std::optional<std::string_view> next() {
        m_at = std::min(m_text.find_first_not_of(" \t\f\v", m_at), m_end);
        if (m_at >= m_end || m_text[m_at] == '#') return std::nullopt;
        const char first = m_text[m_at];
        const bool inQuotes = first == '"' || first == '\'';
        const std::size_t from = inQuotes ? m_at + 1 : m_at;
        const std::size_t to =
            std::min(inQuotes ? m_text.find(first, from) : m_text.find_first_of(" \t\f\v#\"", from), m_end);
        m_at = inQuotes ? std::min(to + 1, m_end) : to;
        return m_text.substr(from, to - from);
    }

private:
    std::string_view m_text;
    std::size_t m_line = 0, m_at = 0, m_end = 0;
};

/// What a table says that it has.
struct Declared {
    std::size_t line = 0;  // 0: it doesn't say
    std::string_view number;

    void expect(const std::string &file, const char *keyword, const char *what, std::size_t found) const {
        std::size_t count = 0;
        const char *const end = number.data() + number.size();
        if (line == 0)
            throw BadInput(file, std::string("has no ") + keyword + ": add the line \"" + keyword + ' ' +
                                     std::to_string(found) + "\" in front of the data");
        const auto parsed = std::from_chars(number.data(), end, count);
        if (parsed.ec != std::errc() || parsed.ptr != end || count != found)
            throw badLine(file, line,
                          std::string(keyword) + " is " + quoted(number) + ", but there are " +
                              std::to_string(found) + ' ' + what +
                              ": the table was cut or edited; export it again, or correct the number");
    }
};

class Layout {
public:
    Layout(const std::string &file, std::string_view bytes) : m_file(file), m_words(bytes) {}

    TableText take() {
        while (m_state != State::Behind && m_words.nextLine()) {
            TableRow row;
            row.line = m_words.line();
            while (const auto word = m_words.next())
                takeWord(*word, row);
            if (!row.values.empty()) addRow(std::move(row));
        }
        refuseCut();
        m_sets.expect(m_file, "NUMBER_OF_SETS", "patches", m_table.rows.size());
        m_fields.expect(m_file, "NUMBER_OF_FIELDS", "columns", m_table.columns.size());
        return std::move(m_table);
    }

private:
    enum class State { Head, Format, Between, Data, Behind };

    void takeWord(std::string_view word, TableRow &row) {
        if (isSameWord(word, ".INCLUDE"))
            throw badLine(m_file, m_words.line(), ".INCLUDE is not followed: put all into one file");
        if (m_state == State::Format) {
            if (isSameWord(word, "END_DATA_FORMAT"))
                m_state = State::Between;
            else
                m_table.columns.push_back(word);
        } else if (m_state == State::Data) {
            if (isSameWord(word, "END_DATA"))
                m_state = State::Behind;
            else
                row.values.push_back(word);
        } else if (m_state != State::Behind) {
            takeKeyword(word);
        }
    }
    void takeKeyword(std::string_view word) {
        if (isSameWord(word, "BEGIN_DATA_FORMAT")) {
            m_state = State::Format;
            m_begin = m_words.line();
        } else if (isSameWord(word, "BEGIN_DATA")) {
            if (m_table.columns.empty())
                throw badLine(m_file, m_words.line(),
                              "data without columns: BEGIN_DATA_FORMAT has to name them before; export the "
                              "table again");
            m_state = State::Data;
            m_begin = m_words.line();
        } else if (isSameWord(word, "NUMBER_OF_SETS")) {
            m_sets = {m_words.line(), m_words.next().value_or("")};
        } else if (isSameWord(word, "NUMBER_OF_FIELDS")) {
            m_fields = {m_words.line(), m_words.next().value_or("")};
        }
    }
    void addRow(TableRow row) {
        const std::size_t found = row.values.size(), wanted = m_table.columns.size();
        if (found < wanted)
            throw badCell(m_file, row.line, m_table.columns[found],
                          "no value: the line has " + std::to_string(found) + " of " +
                              std::to_string(wanted) +
                              "; each patch needs a line with all columns, separated by blanks or tabs");
        if (found > wanted)
            throw badLine(
                m_file, row.line,
                quoted(row.values[wanted]) + " stands behind the last of " + std::to_string(wanted) +
                    " columns: put names with blanks into double quotes, and separate nothing else");
        m_table.rows.push_back(std::move(row));
    }
    void refuseCut() const {
        if (m_state == State::Head)
            throw BadInput(m_file,
                           "is no CGATS table, for it has no BEGIN_DATA_FORMAT: export the measurement as "
                           "CGATS text (.txt, .ti3)");
        if (m_state == State::Format)
            throw badLine(m_file, m_begin,
                          "the columns that begin here have no END_DATA_FORMAT: export the table "
                          "again");
        if (m_state == State::Between)
            throw BadInput(m_file,
                           "has no BEGIN_DATA behind its columns, and so no patches: export it again");
        if (m_state == State::Data)
            throw badLine(m_file, m_words.line(),
                          "the file ends within the data, without END_DATA: it was cut; export it again");
        if (m_table.rows.empty())
            throw badLine(m_file, m_begin, "BEGIN_DATA is followed by no patch: measure, and export again");
    }

    const std::string &m_file;
    Words m_words;
    State m_state = State::Head;
    std::size_t m_begin = 0;
    Declared m_sets, m_fields;
    TableText m_table;
};

}  // namespace

bool isSameWord(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

BadInput badCell(const std::string &file, std::size_t line, std::string_view column,
                 const std::string &what) {
    return {file, "line " + std::to_string(line) + ", column " + std::string(column) + ": " + what};
}

TableText layOutTable(const std::string &file, std::string_view bytes) {
    if (bytes.find_first_not_of(" \t\r\n") == std::string_view::npos)
        throw BadInput(file, "is empty: export the measurement as CGATS text (.txt, .ti3)");
    if (bytes.find('\0') != std::string_view::npos)
        throw BadInput(file,
                       "is no text of bytes (perhaps UTF-16, or a binary file): save it as plain text, or "
                       "export the measurement as CGATS text (.txt, .ti3)");
    return Layout(file, bytes).take();
}

}  // namespace kvtool
