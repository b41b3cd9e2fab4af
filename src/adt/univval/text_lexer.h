#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <memory>
#include <streambuf>
#include <string_view>

#include "kvbase/univval/kv_uval_text.h"
#include "text_chars.h"

namespace kv::detail {

/// The working buffer of whoever reads tokens: longer than most of them.
constexpr std::size_t kTokenBufferSize = 1024;

/// The text of a token, in a buffer of the caller as long as that suffices, then in one of its own.
class TokenText {
public:
    TokenText(char *buffer, std::size_t size) : m_data(buffer), m_capacity(buffer != nullptr ? size : 0) {}

    void clear() { m_size = 0; }
    void append(char c) { append({&c, 1}); }
    void append(std::string_view text) {
        if (text.empty()) return;
        if (text.size() > m_capacity - m_size) grow(text.size());
        std::memcpy(m_data + m_size, text.data(), text.size());
        m_size += text.size();
    }
    /// The text; it stays until the next change.
    std::string_view view() const { return {m_data, m_size}; }

private:
    void grow(std::size_t more);

    char *m_data;
    std::size_t m_size = 0;
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_own;
};

/// A text as a string. Throws std::bad_alloc when it is longer than a string may be.
KV_String toKVString(std::string_view text);

/// Reads bytes straight from the block that a stream's buffer holds, and gives the buffer back what was not
/// taken.
class TextSource {
public:
    explicit TextSource(std::istream &stream) : m_buffer(stream.rdbuf()) {}
    TextSource(const TextSource &) = delete;
    TextSource &operator=(const TextSource &) = delete;
    /// Calls release.
    ~TextSource() { release(); }

    /// The next byte, -1 at the end of the stream. take() takes it.
    int peek() { return m_next != m_end || refill() ? static_cast<unsigned char>(*m_next) : -1; }
    void take() { ++m_next; }
    /// Takes the bytes of a class that come next in the block.
    void skip(unsigned classes) {
        const char *next = m_next;
        while (next != m_end && isTextClass(*next, classes))
            ++next;
        m_next = next;
    }
    /// The bytes at hand; may be empty. take(count) takes some of them.
    std::string_view block() const { return {m_next, static_cast<std::size_t>(m_end - m_next)}; }
    void take(std::size_t count) { m_next += count; }
    /// Gives the buffer its position. Whoever uses the buffer while this object lives calls it before.
    void release();

private:
    bool refill();

    std::streambuf *m_buffer;
    const char *m_begin = nullptr;  // where the buffer stands, in its block
    const char *m_next = nullptr;
    const char *m_end = nullptr;
    bool m_isSingle = false;  // the buffer has no block; m_single is its next byte
    char m_single = 0;
};

/// Cuts the text form into tokens. Takes no more from the stream than the tokens need.
class TextLexer {
public:
    /// The buffer is one to work in, for the text of a token; it may be null with a size of 0. The stream's
    /// buffer is not used by anybody else while the lexer lives.
    TextLexer(std::istream &stream, char *buffer, std::size_t size);
    TextLexer(const TextLexer &) = delete;
    TextLexer &operator=(const TextLexer &) = delete;
    /// Offers a delimiter that is still to be read to the stream.
    ~TextLexer();

    /// Reads the next token. False at the end of the input and on a "<" or ">" that doesn't stand twice.
    bool next();
    /// Whether the end of the input was met.
    bool isAtEnd() const { return m_atEnd; }
    /// Whether the token's first byte was made by an escape, so that the stream can't be set back to it.
    bool isEscaped() const { return m_isEscaped; }

    // The token that was read. Only what belongs to its kind is set.
    KV_PsNToken::Kind kind() const { return m_kind; }
    std::int32_t integer() const { return m_integer; }  ///< PST_INT
    double number() const { return m_number; }          ///< PST_FLOAT
    int keyword() const { return m_keyword; }           ///< PST_TYPE
    TokenText &text() { return m_text; }                ///< PST_STRING, PST_IDENTIFIER

private:
    static constexpr int kNone = -1;

    bool endOfInput();
    int skipToToken();
    bool twice(int c);
    int readRun(unsigned stop);
    void readString();
    void readWord();
    bool readEscape(int &byte);
    bool readShortNumber();
    void classifyWord(std::string_view word);

    std::istream &m_stream;
    TextSource m_source;
    TokenText m_text;
    bool m_atEnd;
    int m_pending = kNone;  // a delimiter, made by an escape, that is the next thing to read
    bool m_isEscaped = false;

    KV_PsNToken::Kind m_kind = KV_PsNToken::PST_STRING;
    std::int32_t m_integer = 0;
    double m_number = 0;
    int m_keyword = 0;
};

/// Reads up to the "<<" of the first dictionary of that name, which becomes the lexer's token; traces it.
/// False when the input ended.
bool findDictionary(TextLexer &lexer, const KV_String &name);

}  // namespace kv::detail
