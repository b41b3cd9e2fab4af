// The reader of the text form: a parser with a stack of tokens, so that depth costs a byte and no recursion.

#include "text_parser.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "kvbase/univval/kv_uval_text.h"
#include "number_cast.h"
#include "runtime/trace_line.h"
#include "text_keywords.h"
#include "text_lexer.h"

namespace kv::detail {

namespace {

using Kind = KV_PsNToken::Kind;

/// A number or a text as it was read.
struct Scalar {
    Kind kind;
    std::int32_t integer = 0;
    double number = 0;
    std::string_view text = {};
};

/// The type of a value that no keyword follows; KV_UVAL_NONE for what is neither number nor text.
KV_UValType defaultType(Kind kind) {
    switch (kind) {
    case KV_PsNToken::PST_INT:
        return KV_UVAL_LONG;
    case KV_PsNToken::PST_FLOAT:
        return KV_UVAL_DOUBLE;
    case KV_PsNToken::PST_STRING:
        return KV_UVAL_STRING;
    default:
        return KV_UVAL_NONE;
    }
}

/// Puts what was read into the element at index.
void store(KV_UVal &value, const Scalar &scalar, std::int32_t index) {
    const KV_UValType type = value.GetType();
    if (scalar.kind == KV_PsNToken::PST_STRING) {
        KV_String text = toKVString(scalar.text);
        if (type == KV_UVAL_STRING) {
            *static_cast<KV_UValString &>(value).GetValuePtr(index) = std::move(text);
        } else {
            value.SetStrValue(text, index);
        }
    } else if (type == KV_UVAL_PTR) {
        const std::int64_t address =
            scalar.kind == KV_PsNToken::PST_INT ? scalar.integer : truncateTo64(scalar.number);
        static_cast<KV_UValPtr &>(value).SetValue(std::bit_cast<void *>(static_cast<std::intptr_t>(address)),
                                                  index);
    } else if (scalar.kind == KV_PsNToken::PST_INT) {
        value.SetLongValue(scalar.integer, index);
    } else {
        value.SetDoubleValue(scalar.number, index);
    }
}

/// Stores a pair of a dictionary. A key with the separator or a zero byte in it is a path; a value that finds
/// no place is released.
void storePair(KV_UValDict &dict, std::string_view key, std::unique_ptr<KV_UVal> value) {
    if (key.empty()) return;
    if (key.find(KV_DictPath::GetSeparator()) == key.npos && key.find('\0') == key.npos) {
        DictAccess::put(dict, std::string(key), std::move(value));
    } else if (dict.SetUVal(KV_DictPath(toKVString(key)), value.get()) != nullptr) {
        static_cast<void>(value.release());
    }
}

[[noreturn]] void fail(const char *traced, const char *message, const char *date, const char *file,
                       int line) {
    traceLine(kTraceError, traced);
    throw KV_FileException(message, KV_FileException::InvalidFile, 0, date, file, line);
}

/// The stack of tokens. A token is a byte, its kind; what else belongs to it lies on the stack of its kind.
class TokenStack {
public:
    /// Where a token, and what belongs to it and to those above it, begins.
    struct Place {
        std::size_t token = 0, integer = 0, number = 0, text = 0, value = 0;
    };

    // Room for the keys on the way down an ordinary tree.
    TokenStack() { m_texts.reserve(kTokenBufferSize); }

    void push(Kind bracket) { m_kinds.push_back(static_cast<char>(bracket)); }
    void push(Kind kind, std::string_view text) {
        push(kind);
        m_textEnds.push_back(m_texts.size() + text.size());
        m_texts += text;
    }
    void push(const Scalar &scalar) {
        if (scalar.kind == KV_PsNToken::PST_STRING) return push(scalar.kind, scalar.text);
        push(scalar.kind);
        if (scalar.kind == KV_PsNToken::PST_INT)
            m_integers.push_back(scalar.integer);
        else
            m_numbers.push_back(scalar.number);
    }
    void push(std::unique_ptr<KV_UVal> value) {
        push(KV_PsNToken::PST_UVAL);
        m_values.push_back(std::move(value));
    }

    std::size_t size() const { return m_kinds.size(); }
    Kind kind(const Place &place) const { return static_cast<Kind>(m_kinds[place.token]); }
    std::string_view text(const Place &place) const {
        const std::size_t begin = place.text == 0 ? 0 : m_textEnds[place.text - 1];
        return std::string_view(m_texts).substr(begin, m_textEnds[place.text] - begin);
    }
    std::unique_ptr<KV_UVal> &value(const Place &place) { return m_values[place.value]; }
    /// The number or text there; any other kind has nothing but its kind.
    Scalar scalar(const Place &place) const {
        switch (kind(place)) {
        case KV_PsNToken::PST_INT:
            return {KV_PsNToken::PST_INT, m_integers[place.integer], 0, {}};
        case KV_PsNToken::PST_FLOAT:
            return {KV_PsNToken::PST_FLOAT, 0, m_numbers[place.number], {}};
        case KV_PsNToken::PST_STRING:
            return {KV_PsNToken::PST_STRING, 0, 0, text(place)};
        default:
            return {kind(place)};
        }
    }

    /// Goes on to the token above.
    void advance(Place &place) const {
        switch (kind(place)) {
        case KV_PsNToken::PST_INT:
            ++place.integer;
            break;
        case KV_PsNToken::PST_FLOAT:
            ++place.number;
            break;
        case KV_PsNToken::PST_STRING:
        case KV_PsNToken::PST_IDENTIFIER:
            ++place.text;
            break;
        case KV_PsNToken::PST_UVAL:
            ++place.value;
            break;
        default:
            break;
        }
        ++place.token;
    }

    /// Looks for the topmost bracket of a kind. False when there is none.
    bool find(Kind bracket, Place &place) const {
        const auto found = std::find(m_kinds.rbegin(), m_kinds.rend(), static_cast<char>(bracket));
        if (found == m_kinds.rend()) return false;
        const auto token = static_cast<std::size_t>(m_kinds.rend() - found) - 1;
        Place above;
        for (above.token = token; above.token != size();)
            advance(above);
        place = {token, m_integers.size() - above.integer, m_numbers.size() - above.number,
                 m_textEnds.size() - above.text, m_values.size() - above.value};
        return true;
    }

    /// Copies the count tokens from there on into an array of their own type, if they are numbers of one
    /// kind.
    bool copyNumbers(const Place &place, std::size_t count, KV_UVal &array) const {
        if (array.GetType() == KV_UVAL_LONG && m_integers.size() - place.integer == count) {
            std::copy_n(&m_integers[place.integer], count, static_cast<KV_UValLong &>(array).GetValuePtr(0));
            return true;
        }
        if (array.GetType() == KV_UVAL_DOUBLE && m_numbers.size() - place.number == count) {
            std::copy_n(&m_numbers[place.number], count, static_cast<KV_UValDouble &>(array).GetValuePtr(0));
            return true;
        }
        return false;
    }

    /// Drops the token there and all above it.
    void dropFrom(const Place &place) {
        m_kinds.resize(place.token);
        m_integers.resize(place.integer);
        m_numbers.resize(place.number);
        m_textEnds.resize(place.text);
        m_texts.resize(place.text == 0 ? 0 : m_textEnds.back());
        m_values.resize(place.value);
    }

private:
    std::vector<char> m_kinds;
    std::vector<std::int32_t> m_integers;
    std::vector<double> m_numbers;
    std::string m_texts;  // one behind the other
    std::vector<std::size_t> m_textEnds;
    std::vector<std::unique_ptr<KV_UVal>> m_values;
};

class TextParser {
public:
    /// With tokenIsRead the lexer's token is the first one.
    TextParser(TextLexer &lexer, bool tokenIsRead) : m_lexer(lexer), m_held(tokenIsRead) {}

    std::unique_ptr<KV_UVal> read();

private:
    bool nextToken();
    int readTypeKeyword();
    void act();
    void scalar();
    void endArray();
    void endDictionary();

    TextLexer &m_lexer;
    bool m_held;           // the lexer's token was read ahead and is the next one
    bool m_ended = false;  // there are no more tokens
    bool m_inArray = false;
    std::size_t m_depth = 0;  // of open brackets
    TokenStack m_stack;
    char m_buffer[kTokenBufferSize];
    TokenText m_text{m_buffer, sizeof(m_buffer)};  // of the scalar, while the token behind it is read
};

std::unique_ptr<KV_UVal> TextParser::read() {
    while (nextToken()) {
        act();
        if (m_depth == 0) break;
    }
    if (m_stack.size() != 1) fail("Error in object hierarchy", "Error in object hierarchy", KV_HERE);
    if (m_stack.kind({}) != KV_PsNToken::PST_UVAL) {
        throw KV_FileException("KV_PsNToken::PST_UVAL differs ", KV_FileException::InvalidFile, 0, KV_HERE);
    }
    return std::move(m_stack.value({}));
}

/// Makes the next token the lexer's. False at the end.
bool TextParser::nextToken() {
    if (m_held) {
        m_held = false;
        return true;
    }
    if (!m_ended) m_ended = !m_lexer.next();
    return !m_ended;
}

/// The number of the type keyword that comes next, kNoType when there is none. Any other token is held.
int TextParser::readTypeKeyword() {
    if (!nextToken()) return KV_PsNToken::kNoType;
    if (m_lexer.kind() == KV_PsNToken::PST_TYPE) return m_lexer.keyword();
    m_held = true;
    return KV_PsNToken::kNoType;
}

void TextParser::act() {
    const Kind kind = m_lexer.kind();
    switch (kind) {
    case KV_PsNToken::PST_INT:
    case KV_PsNToken::PST_FLOAT:
    case KV_PsNToken::PST_STRING:
        scalar();
        break;
    case KV_PsNToken::PST_ARRAY_BEGIN:
        m_inArray = true;
        [[fallthrough]];
    case KV_PsNToken::PST_DICT_BEGIN:
        ++m_depth;
        m_stack.push(kind);
        break;
    case KV_PsNToken::PST_IDENTIFIER:
        m_stack.push(kind, m_lexer.text().view());
        break;
    case KV_PsNToken::PST_ARRAY_END:
        endArray();
        break;
    case KV_PsNToken::PST_DICT_END:
        endDictionary();
        break;
    default:
        break;  // a keyword without a value before it
    }
}

void TextParser::scalar() {
    Scalar scalar{m_lexer.kind(), m_lexer.integer(), m_lexer.number()};
    if (m_inArray) {  // a keyword that follows is dropped like any other
        if (scalar.kind == KV_PsNToken::PST_STRING) scalar.text = m_lexer.text().view();
        return m_stack.push(scalar);
    }
    if (scalar.kind == KV_PsNToken::PST_STRING) {
        std::swap(m_text, m_lexer.text());
        scalar.text = m_text.view();
    }
    const int keyword = readTypeKeyword();
    const KV_UValType type =
        keyword == KV_PsNToken::kNoType ? defaultType(scalar.kind) : kTypeKeywords[keyword].type;
    std::unique_ptr<KV_UVal> value = makeLeaf(type, 0, nullptr);
    store(*value, scalar, 0);
    m_stack.push(std::move(value));
}

void TextParser::endArray() {
    const int keyword = readTypeKeyword();
    TokenStack::Place begin;
    if (!m_stack.find(KV_PsNToken::PST_ARRAY_BEGIN, begin)) {
        fail("[ ] pairs do not match", "KV_ReadUValTxt [ ] pairs do not match", KV_HERE);
    }
    const std::size_t count = m_stack.size() - begin.token - 1;
    if (count == 0) {
        fail("Empty arrays are not supported", "KV_ReadUValTxt Empty arrays are not supported", KV_HERE);
    }
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        fail("Too long an array", "KV_ReadUValTxt Too long an array", KV_HERE);
    }
    TokenStack::Place element = begin;
    m_stack.advance(element);
    const KV_UValType type =
        keyword == KV_PsNToken::kNoType ? defaultType(m_stack.kind(element)) : kTypeKeywords[keyword].type;
    if (type == KV_UVAL_NONE) fail("Illegal type in array", "KV_ReadUValTxt Illegal type in array", KV_HERE);
    std::unique_ptr<KV_UVal> array = makeLeaf(type, static_cast<std::int32_t>(count), nullptr);
    if (!m_stack.copyNumbers(element, count, *array)) {
        for (std::int32_t index = 0; element.token != m_stack.size(); ++index, m_stack.advance(element)) {
            const Scalar scalar = m_stack.scalar(element);
            if (defaultType(scalar.kind) != KV_UVAL_NONE) store(*array, scalar, index);
        }
    }
    m_stack.dropFrom(begin);
    m_stack.push(std::move(array));
    --m_depth;
    m_inArray = false;
}

void TextParser::endDictionary() {
    TokenStack::Place begin;
    if (!m_stack.find(KV_PsNToken::PST_DICT_BEGIN, begin)) {
        fail("<< >> pairs do not match", "KV_ReadUValTxt << >> pairs do not match", KV_HERE);
    }
    if ((m_stack.size() - begin.token) % 2 == 0) {
        fail("Attribute/value pairs in dictionary do not match",
             "KV_ReadUValTxt ttribute/value pairs in dictionary do not match", KV_HERE);
    }
    auto dict = std::make_unique<KV_UValDict>(16384U);
    TokenStack::Place place = begin;
    for (m_stack.advance(place); place.token != m_stack.size(); m_stack.advance(place)) {
        const TokenStack::Place key = place;
        m_stack.advance(place);
        const bool named = m_stack.kind(key) == KV_PsNToken::PST_IDENTIFIER;
        const bool texted = m_stack.kind(key) == KV_PsNToken::PST_UVAL &&
                            m_stack.value(key)->GetFamily() == KV_UVAL_FAMILY_STRING;
        if (!(named || texted) || m_stack.kind(place) != KV_PsNToken::PST_UVAL) {
            fail("Error in attribute/value pairs of dictionary",
                 "Error in attribute/value pairs of dictionary", KV_HERE);
        }
        if (named) {
            storePair(*dict, m_stack.text(key), std::move(m_stack.value(place)));
        } else {
            KV_String text;
            m_stack.value(key)->GetStrValue(text, 0);
            storePair(*dict, {text.Ptr(), text.Size()}, std::move(m_stack.value(place)));
        }
    }
    m_stack.dropFrom(begin);
    m_stack.push(std::move(dict));
    --m_depth;
}

}  // namespace

std::unique_ptr<KV_UVal> readTextValue(std::istream &stream, const KV_String &name) {
    char buffer[kTokenBufferSize];
    TextLexer lexer(stream, buffer, sizeof(buffer));
    const bool named = !name.IsEmpty();
    if (named && !findDictionary(lexer, name)) {
        traceLine(kTraceError, "Dictionary ", name, " not found");
        throw KV_FileException("KV_ReadUValTxt coulsd not find file", KV_FileException::InvalidFile, 0,
                               KV_HERE);
    }
    return TextParser(lexer, named).read();
}

}  // namespace kv::detail

std::istream &KV_ReadUValTxt(std::istream &stream, KV_UVal *&value) {
    return KV_ReadUValTxt(stream, value, KV_String());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
std::istream &KV_ReadUValTxt(std::istream &stream, KV_UVal *&value, KV_String name) {
    value = nullptr;
    value = kv::detail::readTextValue(stream, name).release();
    return stream;
}
