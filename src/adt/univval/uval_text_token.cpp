// The tokens of the text form.

#include <algorithm>
#include <istream>
#include <limits>
#include <new>

#include "kvbase/univval/kv_uval.h"
#include "kvbase/univval/kv_uval_text.h"
#include "runtime/fixed_decimal.h"
#include "runtime/trace_line.h"
#include "stream_failure.h"
#include "text_chars.h"
#include "text_keywords.h"
#include "text_lexer.h"

KV_PsNToken::~KV_PsNToken() = default;
KV_PsIntToken::~KV_PsIntToken() = default;
KV_PsFloatToken::~KV_PsFloatToken() = default;
KV_PsTypeToken::~KV_PsTypeToken() = default;
KV_PsStringToken::~KV_PsStringToken() = default;
KV_PsIdentifierToken::~KV_PsIdentifierToken() = default;
KV_PsUValToken::~KV_PsUValToken() { delete m_value; }

namespace kv::detail {

namespace {

constexpr std::int64_t kMax32 = std::numeric_limits<std::int32_t>::max();

std::int32_t saturated(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp(value, -kMax32 - 1, kMax32));
}

/// The number at the beginning of a word of digits and minus signs, as atol reads it where a long has 32
/// bits.
std::int32_t readInteger(std::string_view word) {
    const bool negative = word.front() == '-';
    std::int64_t value = 0;
    for (const char c : word.substr(negative ? 1 : 0)) {
        if (c == '-') break;
        value = std::min(value * 10 + (c - '0'), kMax32 + 1);
    }
    return saturated(negative ? -value : value);
}

bool isNumberStart(int c) { return isTextClass(c, kTextDigit) || c == '-' || c == '.'; }

/// The length of the run up to the first byte of one of the classes, or of all of it.
std::size_t runLength(std::string_view bytes, unsigned stop) {
    std::size_t length = 0;
    while (length != bytes.size() && !isTextClass(bytes[length], stop))
        ++length;
    return length;
}

/// Reads the digits at next, in front of end, behind those that number holds; it wraps beyond 19 of them.
/// Gives their count.
inline std::size_t readDigits(const char *&next, const char *end, std::uint64_t &number) {
    const char *const begin = next;
    for (; next != end; ++next) {
        const unsigned digit = static_cast<unsigned char>(*next) - unsigned{'0'};
        if (digit > 9) break;
        number = number * 10 + digit;
    }
    return static_cast<std::size_t>(next - begin);
}

}  // namespace

KV_String toKVString(std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    return {text.data(), static_cast<std::uint32_t>(text.size())};
}

TextLexer::TextLexer(std::istream &stream, char *buffer, std::size_t size)
    : m_stream(stream),
      m_source(stream),
      m_parts(buffer, size),
      m_atEnd(!std::istream::sentry(stream, true)) {}

TextLexer::~TextLexer() {
    try {
        m_source.release();
        if (m_pending != kNone) m_stream.rdbuf()->sputbackc(static_cast<char>(m_pending));
    } catch (...) {
        setBad(m_stream);
    }
}

bool TextLexer::next() {
    if (m_atEnd) return false;
    int c = m_pending;
    m_isEscaped = c != kNone;
    if (!m_isEscaped) {
        c = m_source.peek();
        if (isTextClass(c, kTextSpace) || c == '%') c = skipToToken();
        if (isNumberStart(c) && readShortNumber()) return true;
        if (isTextClass(c, kTextEnd)) return endOfInput();
        if (!isTextClass(c, kTextDelimiter) && c != '/') {
            readWord();
            classifyWord(m_text);
            return true;
        }
        m_source.take();
    }
    m_pending = kNone;
    switch (c) {
    case '<':
        m_kind = KV_PsNToken::PST_DICT_BEGIN;
        return twice(c);
    case '>':
        m_kind = KV_PsNToken::PST_DICT_END;
        return twice(c);
    case '[':
        m_kind = KV_PsNToken::PST_ARRAY_BEGIN;
        return true;
    case ']':
        m_kind = KV_PsNToken::PST_ARRAY_END;
        return true;
    case '/':
        m_kind = KV_PsNToken::PST_IDENTIFIER;
        readWord();
        return true;
    case '(':
        m_kind = KV_PsNToken::PST_STRING;
        readString();
        return true;
    default:  // ")", "{" and "}"
        m_kind = KV_PsNToken::PST_STRING;
        m_parts.clear();
        m_parts.append(static_cast<char>(c));
        m_text = m_parts.view();
        return true;
    }
}

bool TextLexer::endOfInput() {
    m_atEnd = true;
    m_stream.setstate(std::ios_base::eofbit);
    return false;
}

/// Passes over white space and comments. The byte that it stops at is not taken.
int TextLexer::skipToToken() {
    for (;;) {
        m_source.skip(kTextSpace);
        int c = m_source.peek();
        if (c == '%') {
            do {
                m_source.take();
                c = m_source.peek();
            } while (!isTextClass(c, kTextEnd) && c != '\n' && c != '\r');
        }
        if (!isTextClass(c, kTextSpace)) return c;
    }
}

/// Takes the second of two equal brackets, if it is there.
bool TextLexer::twice(int c) {
    const int next = m_source.peek();
    if (isTextClass(next, kTextEnd)) return endOfInput();
    if (next != c) return false;
    m_source.take();
    return true;
}

/// Makes the bytes up to one of the classes the text, if the block holds them all and none is escaped. False,
/// with nothing taken, otherwise.
bool TextLexer::takeWhole(unsigned stop) {
    const std::string_view block = m_source.block();
    const std::size_t length = runLength(block, stop);
    if (length == block.size() || block[length] == '\\') return false;
    m_text = block.substr(0, length);
    m_source.take(length);
    return true;
}

/// Appends the bytes up to one of the classes to the parts. That byte, or the end, is the result and is not
/// taken.
int TextLexer::takeRun(unsigned stop) {
    for (;;) {
        const int c = m_source.peek();
        if (isTextClass(c, stop)) return c;
        const std::string_view block = m_source.block();
        const std::size_t length = runLength(block, stop);
        m_parts.append(block.substr(0, length));
        m_source.take(length);
    }
}

void TextLexer::readString() {
    if (takeWhole(kTextStringStop)) return endString(m_source.peek());
    m_parts.clear();
    readStringParts();
    m_text = m_parts.view();
}

void TextLexer::readStringParts() {
    for (;;) {
        int c = takeRun(kTextStringStop);
        if (c != '\\') return endString(c);
        if (!readEscape(c)) return;
        m_parts.append(static_cast<char>(c));
    }
}

/// Takes what ends a string: its bracket, or the end of the input.
void TextLexer::endString(int c) {
    if (c == ')')
        m_source.take();
    else
        endOfInput();
}

void TextLexer::readWord() {
    if (takeWhole(kTextWordStop)) return endWord(m_source.peek());
    m_parts.clear();
    readWordParts();
    m_text = m_parts.view();
}

void TextLexer::readWordParts() {
    for (;;) {
        int c = takeRun(kTextWordStop);
        if (c != '\\') return endWord(c);
        if (!readEscape(c) || c == 0 || isTextClass(c, kTextSpace)) return;
        if (isTextClass(c, kTextDelimiter)) {
            m_pending = c;
            return;
        }
        m_parts.append(static_cast<char>(c));
    }
}

/// Takes what ends a word, unless it is a delimiter that counts.
void TextLexer::endWord(int c) {
    if (isTextClass(c, kTextEnd))
        endOfInput();
    else if (c == 0 || isTextClass(c, kTextSpace))
        m_source.take();
}

/// Takes a backslash and what it escapes, and gives the byte that is meant. False when the input ends there.
bool TextLexer::readEscape(int &byte) {
    const auto isOctal = [](int c) { return c >= '0' && c <= '7'; };
    m_source.take();
    int c = m_source.peek();
    if (isTextClass(c, kTextEnd)) return endOfInput();
    m_source.take();
    switch (c) {
    case 'f':
        byte = '\f';
        return true;
    case 'n':
        byte = '\n';
        return true;
    case 'r':
        byte = '\r';
        return true;
    case 't':
        byte = '\t';
        return true;
    default:
        byte = c;
    }
    if (!isOctal(c)) return true;
    byte = c - '0';
    for (int digits = 1; digits < 3 && isOctal(c = m_source.peek()); ++digits) {
        byte = byte * 8 + c - '0';
        m_source.take();
    }
    byte &= 0xFF;
    return true;
}

/// Reads a short number where it stands: a minus sign or none, up to 15 digits, with a point among them or
/// without, and a delimiter, all in one block. False, with nothing taken, for anything else. 15 digits and
/// the powers of ten up to 10^15 are whole doubles, so the one rounding is that of the division.
bool TextLexer::readShortNumber() {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::size_t kMaxDigits = 15;
    const std::string_view block = m_source.block();
    const char *next = block.data();
    const char *const end = next + block.size();
    const bool negative = next != end && *next == '-';
    if (negative) ++next;
    std::uint64_t digits = 0;
    std::size_t count = readDigits(next, end, digits), decimals = 0;
    const bool hasPoint = next != end && *next == '.';
    if (hasPoint) {
        ++next;
        decimals = readDigits(next, end, digits);
        count += decimals;
    }
    if (count == 0 || count > kMaxDigits || next == end || !isTextClass(*next, kTextDelimiter)) return false;
    const auto whole = static_cast<std::int64_t>(digits);
    if (hasPoint) {
        m_kind = KV_PsNToken::PST_FLOAT;
        m_number = static_cast<double>(whole) / kPowers[decimals];
        if (negative) m_number = -m_number;
    } else {
        m_kind = KV_PsNToken::PST_INT;
        m_integer = saturated(negative ? -whole : whole);
    }
    if (isTextClass(*next, kTextSpace)) ++next;
    m_source.take(static_cast<std::size_t>(next - block.data()));
    return true;
}

void TextLexer::classifyWord(std::string_view word) {
    if (word.empty() || !isNumberStart(word[0])) {
        m_keyword = keywordNumber(word);
        m_kind = m_keyword < 0 ? KV_PsNToken::PST_STRING : KV_PsNToken::PST_TYPE;
    } else if (std::all_of(word.begin(), word.end(),
                           [](char c) { return c == '-' || isTextClass(c, kTextDigit); })) {
        m_kind = KV_PsNToken::PST_INT;
        m_integer = readInteger(word);
    } else {
        m_kind = KV_PsNToken::PST_FLOAT;
        readDouble(word.data(), word.data() + word.size(), m_number);
    }
}

bool findDictionary(TextLexer &lexer, const KV_String &name) {
    const std::string_view wanted(name.Ptr(), name.Size());
    for (bool named = false; !lexer.isAtEnd();) {
        const bool read = lexer.next();
        if (read && named && lexer.kind() == KV_PsNToken::PST_DICT_BEGIN && !lexer.isEscaped()) {
            traceLine(kTraceDetail, "KV_FindDictionaryInText: found dictionary ", name);
            return true;
        }
        named = read && lexer.kind() == KV_PsNToken::PST_IDENTIFIER && lexer.text() == wanted;
    }
    return false;
}

}  // namespace kv::detail

KV_PsNToken *KV_GetToken(std::istream &stream, char *buffer, std::size_t size) {
    kv::detail::TextLexer lexer(stream, buffer, size);
    if (!lexer.next()) return nullptr;
    switch (lexer.kind()) {
    case KV_PsNToken::PST_INT:
        return new KV_PsIntToken(lexer.integer());
    case KV_PsNToken::PST_FLOAT:
        return new KV_PsFloatToken(lexer.number());
    case KV_PsNToken::PST_TYPE:
        return new KV_PsTypeToken(lexer.keyword());
    case KV_PsNToken::PST_STRING:
        return new KV_PsStringToken(kv::detail::toKVString(lexer.text()));
    case KV_PsNToken::PST_IDENTIFIER:
        return new KV_PsIdentifierToken(kv::detail::toKVString(lexer.text()));
    default:
        return new KV_PsNToken(lexer.kind());
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
int KV_FindDictionaryInText(std::istream &stream, KV_String name) {
    {
        char buffer[kv::detail::kTokenBufferSize];
        kv::detail::TextLexer lexer(stream, buffer, sizeof(buffer));
        if (!kv::detail::findDictionary(lexer, name)) return 0;
    }
    // Whoever reads on needs the brackets again.
    constexpr int kEnd = std::streambuf::traits_type::eof();
    const bool isBack = kv::detail::callBuffer(stream, [](std::streambuf &buffer) {
        const bool stepped = buffer.sungetc() != kEnd;
        if (stepped && buffer.sungetc() != kEnd) return true;
        const std::streamoff back = stepped ? -1 : -2;
        return buffer.pubseekoff(back, std::ios_base::cur, std::ios_base::in) != std::streampos(-1);
    });
    if (!isBack) stream.setstate(std::ios_base::badbit);
    return 1;
}
