#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"

class KV_UVal;

// The text form of values: names, strings, numbers, arrays and dictionaries.
//
//   value       scalar, array or dictionary
//   scalar      a number or a text, and an optional type keyword
//   array       "[", one or more numbers or texts, "]", and an optional type keyword
//   dictionary  "<<", pairs of a key and a value, ">>"
//   key         "/" and a word, or a text
//   text        "(", characters, ")", or a bare word
//
// White space is tab, LF, CR and blank; a word ends at white space, at a zero byte and before ( ) < > [ ] {
// }. "%" at the beginning of a token begins a comment, up to the end of the line. A backslash escapes: \f \n
// \r \t, one to three octal digits (modulo 256), and any other byte, which stands for itself; in a word a
// delimiter ends the word also when it is escaped. The input ends at the end of the stream and at a byte
// 0xFF; either sets the stream's end-of-file state. No token is too long: where the caller's buffer is too
// small, the reader takes one of its own.
//
// Type keywords and their numbers: satchar 0, satuchar 1, satshort 2, satushort 3, satlong 4, satulong 5,
// satfloat 6, satdouble 7, satstring 8, satutfstring 9, satptr 10.
//
// Any input at all gives a value or KV_FileException (or std::bad_alloc when memory runs out); neither
// reading nor writing recurses by the depth of a value. Reading takes, besides what the value itself does and
// a few KiB, at most 8 times the size of the text that it has read. Where a stream's buffer throws, the
// stream becomes bad and readers throw KV_FileException: the buffer's own, or "ReadError" with the reason as
// its message. A stream with an exception mask throws by that. The functions share no state but the tracer
// "KvBaseTrace"; reading looks at the separator of paths.

/// A token of the text form. Its own kind is all there is to a bracket; the classes below add what was read.
class KV_EXPORT KV_PsNToken {
public:
    enum Kind : int {
        PST_INT = 0,          ///< KV_PsIntToken: a number of digits and minus signs
        PST_FLOAT = 1,        ///< KV_PsFloatToken: any other number
        PST_TYPE = 2,         ///< KV_PsTypeToken: a type keyword
        PST_DICT_BEGIN = 3,   ///< "<<"
        PST_DICT_END = 4,     ///< ">>"
        PST_ARRAY_BEGIN = 5,  ///< "["
        PST_ARRAY_END = 6,    ///< "]"
        PST_STRING = 7,       ///< KV_PsStringToken: a text, a bare word, or one of ) { }
        PST_IDENTIFIER = 8,   ///< KV_PsIdentifierToken: a slash and a word
        PST_UVAL = 9          ///< KV_PsUValToken: a value; never read
    };
    /// The type of a token that no type keyword follows.
    static constexpr int kNoType = -1;

    explicit KV_PsNToken(Kind kind) : m_kind(kind) {}
    KV_PsNToken(const KV_PsNToken &) = delete;
    KV_PsNToken &operator=(const KV_PsNToken &) = delete;
    virtual ~KV_PsNToken();

    Kind GetKind() const { return m_kind; }
    /// The number of the type keyword behind the token, kNoType until one is set. KV_GetToken sets none: the
    /// keyword is a token of its own there.
    int GetType() const { return m_type; }
    void SetType(int type) { m_type = type; }

private:
    Kind m_kind;
    int m_type = kNoType;
};

/// A whole number. What lies beyond 32 bits is saturated.
class KV_EXPORT KV_PsIntToken : public KV_PsNToken {
public:
    explicit KV_PsIntToken(std::int32_t value) : KV_PsNToken(PST_INT), m_value(value) {}
    ~KV_PsIntToken() override;
    std::int32_t GetValue() const { return m_value; }

private:
    std::int32_t m_value;
};

/// A number with anything but digits and minus signs in it.
class KV_EXPORT KV_PsFloatToken : public KV_PsNToken {
public:
    explicit KV_PsFloatToken(double value) : KV_PsNToken(PST_FLOAT), m_value(value) {}
    ~KV_PsFloatToken() override;
    double GetValue() const { return m_value; }

private:
    double m_value;
};

/// A type keyword.
class KV_EXPORT KV_PsTypeToken : public KV_PsNToken {
public:
    /// number  that of the keyword, 0 to 10.
    explicit KV_PsTypeToken(int number) : KV_PsNToken(PST_TYPE), m_number(number) {}
    ~KV_PsTypeToken() override;
    int GetValue() const { return m_number; }

private:
    int m_number;
};

/// A text, its escapes resolved; it may hold zero bytes.
class KV_EXPORT KV_PsStringToken : public KV_PsNToken {
public:
    explicit KV_PsStringToken(const KV_String &value) : KV_PsNToken(PST_STRING), m_value(value) {}
    ~KV_PsStringToken() override;
    const KV_String &GetValue() const { return m_value; }

private:
    KV_String m_value;
};

/// The name behind a slash; it may be empty.
class KV_EXPORT KV_PsIdentifierToken : public KV_PsNToken {
public:
    explicit KV_PsIdentifierToken(const KV_String &value) : KV_PsNToken(PST_IDENTIFIER), m_value(value) {}
    ~KV_PsIdentifierToken() override;
    const KV_String &GetValue() const { return m_value; }

private:
    KV_String m_value;
};

/// A finished value among tokens, for programs that build on the tokens themselves.
class KV_EXPORT KV_PsUValToken : public KV_PsNToken {
public:
    /// The value belongs to the token from now on; it may be null.
    explicit KV_PsUValToken(KV_UVal *value) : KV_PsNToken(PST_UVAL), m_value(value) {}
    /// Deletes the value.
    ~KV_PsUValToken() override;
    /// The value, which stays the token's.
    KV_UVal *GetValue() const { return m_value; }

private:
    KV_UVal *m_value;
};

/// Reads a token. The caller owns it and releases it with delete. Null at the end of the input, which sets
/// the stream's end-of-file state, and on a "<" or ">" that doesn't stand twice, which is then consumed; as
/// the last character of the input it sets that state, too.
/// - buffer: size bytes to work in; a longer token takes memory of its own. May be null with a size of 0.
///
/// A word consumes the white space or zero byte that ends it, but no other delimiter. An octal escape that
/// gives a delimiter ends a word, and the delimiter is put back on the stream in its place; where the stream
/// can't take it, it is dropped. A word that looks like a number and doesn't read as one gives 0,
/// too large a number the largest double.
KV_EXPORT KV_PsNToken *KV_GetToken(std::istream &stream, char *buffer, std::size_t size);

/// Reads one value; it is the caller's and is released with delete. value is null at the start and after a
/// failure. One token behind the value may have been consumed. Returns the stream.
///
/// Without a keyword a number is a KV_UValLong or a KV_UValDouble and a text a KV_UValString; an array goes
/// by its first element. Keywords of elements have no effect. What stands in an array and is neither number
/// nor text keeps its place there, as 0 or the empty text. A key is a path: with the separator in it, it
/// makes dictionaries, and it ends at a zero byte. A later pair replaces an earlier one. A pair whose key is
/// empty, or whose path runs through a value that is no dictionary, is dropped. A "<" or ">" that doesn't
/// stand twice ends the input.
///
/// Throws KV_FileException with "InvalidFile" on a text that is no value, after a line on the tracer, and
/// "ReadError" on a stream that can't be read on. All that was read is released then.
KV_EXPORT std::istream &KV_ReadUValTxt(std::istream &stream, KV_UVal *&value);
/// The same for the first dictionary of that name in the text, at any depth. With the empty name the text is
/// read from where it stands. A name that isn't found is a failure as above.
KV_EXPORT std::istream &KV_ReadUValTxt(std::istream &stream, KV_UVal *&value, KV_String name);

/// Writes a value as 7-bit text, without a line end behind it. Returns the stream. A null value writes
/// nothing, and entries with a null value are left out.
/// - indent: that of a dictionary's lines, in units of two blanks; other than 0 it begins on a new line.
///   Entries of a dictionary stand one further in. Below 1 nothing is indented.
///
/// Integers are decimal, signed: a KV_UValULong above 2147483647 is written as the negative number of the
/// same bits. Floating numbers are written as the stream writes a double, with its precision and its locale,
/// after it has been set to fixed; it stays so. Infinite and undefined numbers have no form that reads back.
/// Pointers are written as 0. A key is written as "/" and the key as it stands, a backslash included, which
/// the reader takes for an escape; with a delimiter or a byte outside 32 to 126 in it, it is written as a
/// text. The stream's field width does not apply.
///
/// A failing stream ends the writing; its state tells. An exception on the way makes it bad, and is thrown on
/// when the stream is set to throw in that state.
KV_EXPORT std::ostream &KV_WriteUValTxt(std::ostream &stream, KV_UVal *value, int indent = 0);

/// Writes n times two blanks; below 1 nothing. Returns the stream. Fails as KV_WriteUValTxt does.
KV_EXPORT std::ostream &KV_Indent(std::ostream &stream, int n);

/// Looks for "/", the name and a "<<" directly behind it, at any depth. 1 when it is found: the stream then
/// stands on the "<<". Else 0, and the stream is at its end. A "<" or ">" that doesn't stand twice is passed
/// over, and so is a "<<" of which an escape makes a part. The two characters are put back on the stream; a
/// stream that can't take them back is moved back. One that can do neither has its bad state set, so that
/// nothing behind the brackets is taken for the dictionary.
KV_EXPORT int KV_FindDictionaryInText(std::istream &stream, KV_String name);
