#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string_view>

#include "kvbase/univval/kv_uval_text.h"
#include "text_chars.h"
#include "text_source.h"

namespace kv::detail {

/// The working buffer of whoever reads tokens: longer than most of them.
constexpr std::size_t kTokenBufferSize = 1024;

/// A text as a string. Throws std::bad_alloc when it is longer than a string may be.
KV_String toKVString(std::string_view text);

/// Cuts the text form into tokens. Takes no more from the stream than the tokens need. Throws what TextSource
/// throws.
class TextLexer {
public:
    /// The buffer is one to work in, for the text of a token; it may be null with a size of 0. The stream's
    /// buffer is not used by anybody else while the lexer lives.
    TextLexer(std::istream &stream, char *buffer, std::size_t size);
    TextLexer(const TextLexer &) = delete;
    TextLexer &operator=(const TextLexer &) = delete;
    /// Offers a delimiter that is still to be read to the stream. A buffer that throws here leaves the stream
    /// bad.
    ~TextLexer();

    /// Reads the next token. False at the end of the input and on a "<" or ">" that doesn't stand twice.
    bool next();
    /// Whether the end of the input was met.
    bool isAtEnd() const { return m_atEnd; }
    /// Whether the token's first byte was made by an escape, so that the stream can't be set back to it.
    bool isEscaped() const { return m_isEscaped; }

    /// Reads the next token if it is a plain number that the stream's block holds whole, behind white space
    /// or none. Else false: the token is unchanged, and white space may be taken.
    bool nextNumber() {
        if (m_pending != kNone) return false;
        m_source.skip(kTextSpace);
        return readShortNumber();
    }

    // The token that was read. Only what belongs to its kind is set.
    KV_PsNToken::Kind kind() const { return m_kind; }
    std::int32_t integer() const { return m_integer; }  ///< PST_INT
    double number() const { return m_number; }          ///< PST_FLOAT
    int keyword() const { return m_keyword; }           ///< PST_TYPE
    /// PST_STRING, PST_IDENTIFIER. It stays until the next token is read.
    std::string_view text() const { return m_text; }

private:
    static constexpr int kNone = -1;

    bool endOfInput();
    int skipToToken();
    bool twice(int c);
    bool takeWhole(unsigned stop);
    int takeRun(unsigned stop);
    void readString();
    void readStringParts();
    void endString(int c);
    void readWord();
    void readWordParts();
    void endWord(int c);
    bool readEscape(int &byte);
    bool readShortNumber();
    void classifyWord(std::string_view word);

    std::istream &m_stream;
    TextSource m_source;
    TokenText m_parts;  // of a text that does not stand in the stream's block as it is meant
    bool m_atEnd;
    int m_pending = kNone;  // a delimiter, made by an escape, that is the next thing to read
    bool m_isEscaped = false;

    KV_PsNToken::Kind m_kind = KV_PsNToken::PST_STRING;
    std::int32_t m_integer = 0;
    double m_number = 0;
    int m_keyword = 0;
    std::string_view m_text;  // in m_parts or in the stream's block
};

/// Reads up to the "<<" of the first dictionary of that name, which becomes the lexer's token; traces it.
/// False when the input ended.
bool findDictionary(TextLexer &lexer, const KV_String &name);

}  // namespace kv::detail
