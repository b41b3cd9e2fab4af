#pragma once

#include <cstdint>

#include "kvbase/base/export.h"

// Runes and UTF-8. A rune is one 16-bit unit: the Basic Multilingual Plane, in 1 to 3 bytes. There are no
// four-byte sequences and no pairs: a unit from 0xD800 to 0xDFFF passes as any other. The error rune is 0x80,
// which therefore is never good text. Texts end at their first 0 byte, behind which nothing is read, whatever
// the bytes before it are.
//
// The counting functions (utflen, utfbytepos, utfrunepos, utfnsize) and the searches take a byte below 0xA0
// as a rune of its own without decoding it, so that a stray byte from 0x80 to 0x9F is one; any other bad byte
// is one, too. All functions hold no state and may be called by any thread.

/// Decodes the rune at s. Returns the bytes used, 1 to 3; bad input stores the error rune and uses 1. Bad are
/// a cut or overlong sequence, a lead byte of 0xF0 and above, and a byte from 0x80 to 0xBF in the place of a
/// lead byte.
KV_EXPORT int chartorune(unsigned short *rune, const char *s);
/// Encodes a rune at s, without a terminator. Returns the bytes written, 1 to 3.
KV_EXPORT int runetochar(char *s, const unsigned short *rune);
/// The bytes that runetochar writes.
KV_EXPORT int runelen(unsigned short rune);
/// 1 when the n bytes at s hold a whole rune, by what its first byte asks for; else 0.
KV_EXPORT int fullrune(const char *s, int n);
/// The bytes of the rune at s, 0 when it is bad.
KV_EXPORT int isutf(const char *s);
/// 1 when the whole text is good, else 0. Bytes up to 0xA0 pass without a look at their neighbours. Null is
/// good.
KV_EXPORT int isutfstr(const char *s);

/// The number of runes. 0 for null.
KV_EXPORT unsigned int utflen(const char *s);
/// Byte offset of rune n, 0 for null. A text of fewer runes gives its length in bytes.
KV_EXPORT int utfbytepos(const char *s, unsigned int n);
/// Index of the rune that begins at a byte offset; that of the terminator is the number of runes. 0 for null,
/// -1 for an offset within a rune or behind the terminator.
KV_EXPORT int utfrunepos(const char *s, unsigned int byte);
/// Length in bytes of the first n runes, or of the text when it has fewer. 0 for null.
KV_EXPORT unsigned int utfnsize(const char *s, unsigned int n);

/// The first or last rune c of the text, null when there is none or s is null. For a c below 33 these are
/// strchr and strrchr, which find the terminator for c = 0.
KV_EXPORT char *utfrune(const char *s, std::int32_t c);
KV_EXPORT char *utfrrune(const char *s, std::int32_t c);
/// The first place where sub stands in s, null when there is none or one of them is null.
KV_EXPORT char *utfutf(const char *s, const char *sub);

// Conversions between UTF-8, Latin-1 and 16-bit units.
//
// Sizes and lengths count elements of the respective array; a negative sourceLength says that the source ends
// with a terminator. A source of a given length ends at a terminator, too, and nothing behind the length is
// read, so that a sequence which the length cuts is bad. The arrays must not overlap. Each returns 0; -1 when
// the target is too small; -2 when all was converted, but at least one rune had to be replaced by "?". What
// was stored before a -1 stands there, without a terminator. *written, which may be null, is the number of
// elements stored, and whether a source's terminator counts is told below. A terminator that follows because
// the given length is at its end is written when it fits, and never counts. With a null source, or a size
// below 1, the target's first element becomes 0 and the result is 0: a target has room for one element,
// whatever its size says. A null target gives -1.

/// Latin-1 to UTF-8. -1 when the size is below 3, or when less than 3 bytes are left before a byte or the
/// terminator of the source. The terminator is written and not counted.
KV_EXPORT int UTFfromLatin1(char *target, int size, const char *source, int sourceLength, int *written);
/// 16-bit units to UTF-8. -1 when less than 3 bytes are left before a unit. The terminator is written when it
/// fits, and not counted.
KV_EXPORT int UTFfromUniCode(char *target, int size, const unsigned short *source, int sourceLength,
                             int *written);
/// UTF-8 to Latin-1. The error rune and runes of 256 and above become "?". The terminator is counted.
KV_EXPORT int UTFtoLatin1(char *target, int size, const char *source, int sourceLength, int *written);
/// UTF-8 to 16-bit units. The error rune becomes "?". The terminator is counted.
KV_EXPORT int UTFtoUnicode(unsigned short *target, int size, const char *source, int sourceLength,
                           int *written);
/// Latin-1 to 16-bit units. The terminator needs its room, but is not counted.
KV_EXPORT int UnicodefromLatin1(unsigned short *target, int size, const char *source, int sourceLength,
                                int *written);
/// 16-bit units to Latin-1. A unit of 256 and above, or 0x80, becomes "?". The terminator is counted.
KV_EXPORT int UnicodetoLatin1(char *target, int size, const unsigned short *source, int sourceLength,
                              int *written);
