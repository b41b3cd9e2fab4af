#include "value_survey.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include "value_types.h"

namespace kvtool {
namespace {

using namespace std::string_view_literals;

// A decimal number: 0.DIGITS times ten to the power of exponent, without zeros at either end of the digits.
struct Decimal {
    bool isNegative = false;
    std::string digits;
    std::int64_t exponent = 0;
    bool operator==(const Decimal &) const = default;
};

std::optional<Decimal> decimalOf(std::string_view word) {
    Decimal decimal;
    decimal.isNegative = word.starts_with('-');
    if (decimal.isNegative) word.remove_prefix(1);
    const std::size_t mark = word.find_first_of("eE");
    if (mark != word.npos) {
        std::string_view power = word.substr(mark + 1);
        if (power.starts_with('+') && !power.starts_with("+-")) power.remove_prefix(1);
        std::int32_t exponent = 0;
        const auto result = std::from_chars(power.data(), power.data() + power.size(), exponent);
        if (result.ec != std::errc() || result.ptr != power.data() + power.size()) return std::nullopt;
        decimal.exponent = exponent;
    }
    decimal.digits = word.substr(0, mark);
    const std::size_t point = std::min(decimal.digits.find('.'), decimal.digits.size());
    decimal.digits.erase(point, 1);
    if (decimal.digits.empty() || decimal.digits.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const std::size_t zeros = decimal.digits.find_first_not_of('0');
    if (zeros == std::string::npos) return Decimal();
    decimal.exponent += static_cast<std::int64_t>(point) - static_cast<std::int64_t>(zeros);
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
    decimal.digits.erase(0, zeros);
    return decimal;
}

// Whether a number, rounded to as many digits as the word has, is the word. So 0.1 is the double next to it,
// but 16777217 is not the float next to it.
bool isWritten(double number, const Decimal &word) {
    constexpr std::size_t kMostDigits = 767;  // no double has more
    if (word.digits.size() > kMostDigits) return false;
    const int decimals = word.digits.empty() ? 0 : static_cast<int>(word.digits.size()) - 1;
    char text[kMostDigits + 16];
    const auto result =
        std::to_chars(std::begin(text), std::end(text), number, std::chars_format::scientific, decimals);
    return decimalOf({text, result.ptr}) == word;
}

// Whether the element gives back what is written.
bool holds(KV_UVal &value, std::int32_t index, const std::string &written) {
    if (value.GetFamily() == KV_UVAL_FAMILY_STRING)
        return elementText(value, value.GetType(), index) == written;
    const std::optional<Decimal> word = decimalOf(written);
    if (!word) return false;
    if (value.GetType() == KV_UVAL_PTR) {
        void *const pointer = static_cast<KV_UValPtr &>(value).GetValue(index);
        return isWritten(static_cast<double>(std::bit_cast<std::intptr_t>(pointer)), *word);
    }
    // The form writes the upper half of the unsigned numbers as the signed ones of the same bits.
    return isWritten(value.GetDoubleValue(index), *word) ||
           (value.GetType() == KV_UVAL_ULONG && isWritten(value.GetLongValue(index), *word));
}

std::string shortened(const std::string &text) {
    constexpr std::size_t kMostShown = 60;
    return text.size() > kMostShown ? text.substr(0, kMostShown) + "..." : text;
}

constexpr const char *kNoArray = "an array that holds more than numbers and texts";

// Tokens come from a stream of their own; where one begins and ends in the text tells how it is written.
class Survey {
public:
    explicit Survey(const std::string &bytes) : m_bytes(bytes), m_stream(bytes) {}

    TextSurvey run() {
        advance();
        while (m_token && !m_isDone)
            step();
        if (m_comments > 0)
            m_survey.unkept.push_back(std::to_string(m_comments) +
                                      (m_comments == 1 ? " comment" : " comments"));
        if (m_levels.empty() && m_begin < m_bytes.size())
            misread("what stands behind the values is not read");
        return std::move(m_survey);
    }

private:
    struct Level {
        std::set<std::string> keys;
        bool keyIsNext = true;
    };

    KV_PsNToken::Kind kind() const { return m_token->GetKind(); }
    bool isAt(KV_PsNToken::Kind wanted) const { return m_token && kind() == wanted; }

    void misread(const std::string &what) {
        if (m_survey.misread.size() == kMostLines) return;
        const auto end = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_begin);
        m_survey.misread.push_back("line " + std::to_string(std::count(m_bytes.begin(), end, '\n') + 1) +
                                   ": " + what);
    }
    // What is behind can't be told apart any more.
    void giveUp(const std::string &what) {
        misread(what);
        m_isDone = true;
    }

    std::size_t position() {
        return static_cast<std::size_t>(m_stream.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in));
    }

    void skipToToken() {
        for (int c = m_stream.peek();; c = m_stream.peek()) {
            if (c == '%') {
                ++m_comments;
                while (c != EOF && c != 0xFF && c != '\n' && c != '\r') {
                    m_stream.get();
                    c = m_stream.peek();
                }
            } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
                m_stream.get();
            } else {
                return;
            }
        }
    }

    void advance() {
        skipToToken();
        m_begin = position();
        char buffer[1024];
        m_token.reset(KV_GetToken(m_stream, buffer, sizeof buffer));
        m_end = position();
        // A bracket that is written as an escape ends a word; the stream then holds it in the escape's place.
        if (m_end < m_bytes.size() && m_stream.rdbuf()->sgetc() != static_cast<unsigned char>(m_bytes[m_end]))
            giveUp("an escape that ends a word and is read as a bracket");
    }

    // The text of a token that is one; else the word as it stands.
    std::string written() const {
        if (kind() == KV_PsNToken::PST_STRING) {
            const KV_String &text = static_cast<KV_PsStringToken &>(*m_token).GetValue();
            return {text.Ptr(), text.Size()};
        }
        return m_bytes.substr(
            m_begin, std::min(m_bytes.find_first_of(" \t\r\n()<>[]{}\0"sv, m_begin), m_end) - m_begin);
    }

    void compare(KV_UVal &value, std::int32_t index) {
        const std::string word = written();
        if (holds(value, index, word)) return;
        const auto inForm = [](const std::string &text, bool isText) {
            const std::string shown = shortened(text);
            return isText ? '(' + shown + ')' : shown;
        };
        misread(
            inForm(word, kind() == KV_PsNToken::PST_STRING) + " is read as " +
            inForm(elementText(value, value.GetType(), index), value.GetFamily() == KV_UVAL_FAMILY_STRING));
    }

    void step() {
        switch (kind()) {
        case KV_PsNToken::PST_DICT_BEGIN:
            m_levels.emplace_back();
            advance();
            break;
        case KV_PsNToken::PST_DICT_END:
            m_levels.pop_back();
            m_isDone = m_levels.empty();
            if (!m_isDone) m_levels.back().keyIsNext = true;
            advance();
            break;
        case KV_PsNToken::PST_IDENTIFIER:
            key(static_cast<KV_PsIdentifierToken &>(*m_token).GetValue());
            advance();
            break;
        case KV_PsNToken::PST_TYPE:
            misread(written() + " has no value before it, and no effect");
            advance();
            break;
        default:
            value();
        }
    }

    // A number, a text or an array, as the value of an entry or as its key.
    void value() {
        const std::unique_ptr<KV_UVal> value = valueHere();
        if (!value) return giveUp(kNoArray);
        const bool isKey = m_levels.back().keyIsNext;
        if (isAt(KV_PsNToken::PST_ARRAY_BEGIN)) {
            if (isKey) misread("an array in the place of a key");
            elements(*value);
        } else {
            compare(*value, 0);
        }
        if (m_isDone) return;
        advance();
        if (isAt(KV_PsNToken::PST_TYPE)) advance();
        m_levels.back().keyIsNext = true;
        if (!isKey) return;
        KV_String text;
        value->GetStrValue(text, 0);
        key(text);
    }

    void elements(KV_UVal &array) {
        advance();
        for (std::int32_t index = 0; m_token && kind() != KV_PsNToken::PST_ARRAY_END && !m_isDone;
             advance()) {
            switch (kind()) {
            case KV_PsNToken::PST_ARRAY_BEGIN:
            case KV_PsNToken::PST_DICT_BEGIN:
            case KV_PsNToken::PST_DICT_END:
                return giveUp(kNoArray);
            case KV_PsNToken::PST_TYPE:
                misread(written() + " stands within an array, where it has no effect");
                break;
            default:
                compare(array, index++);
            }
        }
    }

    // What the reader makes of the text from the token at hand on; null when it makes nothing of it.
    std::unique_ptr<KV_UVal> valueHere() {
        KV_UVal *value = nullptr;
        m_stream.rdbuf()->pubseekpos(static_cast<std::streamoff>(m_begin), std::ios::in);
        try {
            m_stream.clear();
            KV_ReadUValTxt(m_stream, value);
        } catch (const KV_FileException &) {
            value = nullptr;
        }
        m_stream.clear();
        m_stream.rdbuf()->pubseekpos(static_cast<std::streamoff>(m_end), std::ios::in);
        return std::unique_ptr<KV_UVal>(value);
    }

    void key(const KV_String &text) {
        const std::string name(text.Ptr(), text.Size());
        m_levels.back().keyIsNext = false;
        const auto tell = [&](const char *what) { misread("the key '" + shortened(name) + "' " + what); };
        if (!m_levels.back().keys.insert(name).second) tell("comes twice, and the later one counts");
        if (name.empty()) tell("is empty, and its entry is not kept");
        if (name.find('\0') != std::string::npos) tell("ends at its zero byte");
        if (name.find(KV_DictPath::GetSeparator()) != std::string::npos)
            tell("holds the path separator and is read as a dictionary within a dictionary");
    }

    const std::string &m_bytes;
    std::stringstream m_stream;
    std::unique_ptr<KV_PsNToken> m_token;  // null behind the last one
    std::size_t m_begin = 0;               // where it begins and ends in the text
    std::size_t m_end = 0;
    std::vector<Level> m_levels;
    std::size_t m_comments = 0;
    bool m_isDone = false;
    TextSurvey m_survey;
};

}  // namespace

TextSurvey surveyText(const std::string &bytes) { return Survey(bytes).run(); }

}  // namespace kvtool
