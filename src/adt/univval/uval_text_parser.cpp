// The reader of the text form: a parser with a stack of tokens, so that depth costs a byte and no recursion.

#include "text_value.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "kvbase/univval/kv_uval_text.h"
#include "number_cast.h"
#include "runtime/trace_line.h"
#include "text_keywords.h"
#include "text_lexer.h"
#include "text_stack.h"

namespace kv::detail {

namespace {

using Kind = KV_PsNToken::Kind;

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

/// The same for an array by its first token.
KV_UValType defaultType(TokenStack::Mark first) {
    switch (first) {
    case TokenStack::kInteger:
        return KV_UVAL_LONG;
    case TokenStack::kFloat:
    case TokenStack::kZero:
        return KV_UVAL_DOUBLE;
    case TokenStack::kText:
        return KV_UVAL_STRING;
    default:
        return KV_UVAL_NONE;
    }
}

/// Puts what was read into the element at index.
void store(KV_UVal &value, Scalar &&scalar, std::int32_t index) {
    const KV_UValType type = value.GetType();
    if (scalar.kind == KV_PsNToken::PST_STRING) {
        if (type == KV_UVAL_STRING) {
            *static_cast<KV_UValString &>(value).GetValuePtr(index) = std::move(scalar.text);
        } else {
            value.SetStrValue(scalar.text, index);
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

/// The working buffer of the reader comes from the heap and is large, since glibc joins its small free blocks
/// before it gives a large one. The parts of a tree then lie side by side, and not in the scattered places
/// of former trees.
constexpr std::size_t kReaderBufferSize = 4096;

[[noreturn]] void fail(const char *traced, const char *message, const char *date, const char *file,
                       int line) {
    traceLine(kTraceError, traced);
    throw KV_FileException(message, KV_FileException::InvalidFile, 0, date, file, line);
}

class TextParser {
public:
    /// With tokenIsRead the lexer's token is the first one.
    TextParser(TextLexer &lexer, bool tokenIsRead) : m_lexer(lexer), m_held(tokenIsRead) {}

    std::unique_ptr<KV_UVal> read();

private:
    bool nextToken();
    int readTypeKeyword();
    void act();
    void element();
    void scalar();
    void push(std::unique_ptr<KV_UVal> value);
    void endArray();
    void fill(KV_UVal &array, std::size_t count);
    void endDictionary();

    TextLexer &m_lexer;
    bool m_held;           // the lexer's token was read ahead and is the next one
    bool m_ended = false;  // there are no more tokens
    bool m_inArray = false;
    std::size_t m_depth = 0;  // of open brackets
    TokenStack m_stack;
    std::unique_ptr<KV_UVal> m_first;  // what the lowest token is, if that is a value
};

std::unique_ptr<KV_UVal> TextParser::read() {
    while (nextToken()) {
        act();
        if (m_depth == 0) break;
    }
    if (m_stack.size() != 1) fail("Error in object hierarchy", "Error in object hierarchy", KV_HERE);
    if (m_first == nullptr) {
        throw KV_FileException("KV_PsNToken::PST_UVAL differs ", KV_FileException::InvalidFile, 0, KV_HERE);
    }
    return std::move(m_first);
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
    switch (m_lexer.kind()) {
    case KV_PsNToken::PST_INT:
    case KV_PsNToken::PST_FLOAT:
    case KV_PsNToken::PST_STRING:
        m_inArray ? element() : scalar();
        break;
    case KV_PsNToken::PST_ARRAY_BEGIN:
        m_inArray = true;
        ++m_depth;
        m_stack.push(TokenStack::kArrayBegin);
        break;
    case KV_PsNToken::PST_DICT_BEGIN:
        ++m_depth;
        m_stack.push(TokenStack::kDictBegin);
        break;
    case KV_PsNToken::PST_IDENTIFIER:
        if (m_stack.wantsKey())
            m_stack.pushKey(m_lexer.text());
        else
            m_stack.push(TokenStack::kOther);
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

/// A number or text of an array, and the numbers behind it. A keyword that follows is dropped like any other.
void TextParser::element() {
    if (m_lexer.kind() == KV_PsNToken::PST_STRING) return m_stack.pushElement(m_lexer.text());
    do {
        if (m_lexer.kind() == KV_PsNToken::PST_INT)
            m_stack.pushElement(m_lexer.integer());
        else
            m_stack.pushElement(m_lexer.number());
    } while (m_lexer.nextNumber());
}

void TextParser::scalar() {
    Scalar scalar{m_lexer.kind(), m_lexer.integer(), m_lexer.number()};
    if (scalar.kind == KV_PsNToken::PST_STRING) scalar.text = toKVString(m_lexer.text());
    const int keyword = readTypeKeyword();
    const KV_UValType type =
        keyword == KV_PsNToken::kNoType ? defaultType(scalar.kind) : kTypeKeywords[keyword].type;
    std::unique_ptr<KV_UVal> value = makeLeaf(type, 0, nullptr);
    store(*value, std::move(scalar), 0);
    push(std::move(value));
}

/// A finished value: the result, a value or a key of a dictionary, or out of place.
void TextParser::push(std::unique_ptr<KV_UVal> value) {
    if (m_stack.isEmpty()) {
        m_first = std::move(value);
        m_stack.push(TokenStack::kOther);
    } else if (m_stack.top() == TokenStack::kKey) {
        m_stack.pushPaired(std::move(value));
    } else if (m_stack.wantsKey() && value->GetFamily() == KV_UVAL_FAMILY_STRING) {
        KV_String text;
        value->GetStrValue(text, 0);
        m_stack.pushKey(text.Ptr());  // as a path, it ends at a zero byte
    } else {
        m_stack.push(TokenStack::kOther);
    }
}

void TextParser::endArray() {
    const int keyword = readTypeKeyword();
    const std::size_t begin = m_stack.find(TokenStack::kArrayBegin);
    if (begin == TokenStack::npos) {
        fail("[ ] pairs do not match", "KV_ReadUValTxt [ ] pairs do not match", KV_HERE);
    }
    const std::size_t count = m_stack.size() - begin - 1;
    if (count == 0) {
        fail("Empty arrays are not supported", "KV_ReadUValTxt Empty arrays are not supported", KV_HERE);
    }
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        fail("Too long an array", "KV_ReadUValTxt Too long an array", KV_HERE);
    }
    const KV_UValType type =
        keyword == KV_PsNToken::kNoType ? defaultType(m_stack.at(begin + 1)) : kTypeKeywords[keyword].type;
    if (type == KV_UVAL_NONE) fail("Illegal type in array", "KV_ReadUValTxt Illegal type in array", KV_HERE);
    std::unique_ptr<KV_UVal> array = makeLeaf(type, static_cast<std::int32_t>(count), nullptr);
    fill(*array, count);
    m_stack.pop();
    push(std::move(array));
    --m_depth;
    m_inArray = false;
}

/// Moves the topmost count tokens into the places of an array.
void TextParser::fill(KV_UVal &array, std::size_t count) {
    const KV_UValType type = array.GetType();
    if (type == KV_UVAL_LONG && m_stack.pop(static_cast<KV_UValLong &>(array).GetValuePtr(0), count)) return;
    if (type == KV_UVAL_DOUBLE && m_stack.pop(static_cast<KV_UValDouble &>(array).GetValuePtr(0), count))
        return;
    for (std::size_t index = count; index-- > 0;) {
        Scalar element = m_stack.pop();
        if (element.kind != KV_PsNToken::PST_UVAL)
            store(array, std::move(element), static_cast<std::int32_t>(index));
    }
}

void TextParser::endDictionary() {
    const std::size_t begin = m_stack.find(TokenStack::kDictBegin);
    if (begin == TokenStack::npos) {
        fail("<< >> pairs do not match", "KV_ReadUValTxt << >> pairs do not match", KV_HERE);
    }
    if ((m_stack.size() - begin) % 2 == 0) {
        fail("Attribute/value pairs in dictionary do not match",
             "KV_ReadUValTxt ttribute/value pairs in dictionary do not match", KV_HERE);
    }
    std::unique_ptr<KV_UValDict> dict = m_stack.popDictionary(begin);
    if (dict == nullptr) {
        fail("Error in attribute/value pairs of dictionary", "Error in attribute/value pairs of dictionary",
             KV_HERE);
    }
    push(std::move(dict));
    --m_depth;
}

}  // namespace

std::unique_ptr<KV_UVal> readTextValue(std::istream &stream, const KV_String &name) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(kReaderBufferSize);
    TextLexer lexer(stream, buffer.get(), kReaderBufferSize);
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
