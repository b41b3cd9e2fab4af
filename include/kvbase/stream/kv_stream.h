#pragma once

/// Byte streams with fixed byte order, on a file (kv_fstream.h) or on memory (kv_sstream.h).
/// A stream belongs to one thread at a time. Byte counts and positions are in bytes from the start.

#include <cstdint>
#include <string>

#include "kvbase/base/export.h"

class KV_FileSpec;

/// The bits of the IEEE 754 single form of f, whatever the machine's byte order: 1.0f gives 0x3F800000.
/// Both zeros give 0. Infinities, NaN and subnormal numbers give their IEEE 754 bits too.
KV_EXPORT std::uint32_t pack754_32(float f);

/// The float whose IEEE 754 single form has the bits u; 0 gives 0. Made for finite, normal numbers. The
/// formula, (1 + fraction) * 2^(exponent field - 127) with the sign of bit 31, is kept for all other bits as
/// well: an exponent field of 255 gives an infinity, whatever the fraction, and one of 0 a number whose size
/// is in [2^-127, 2^-126].
KV_EXPORT float unpack754_32(std::uint32_t u);

/// Abstract byte stream. Get... and Put... move words most significant byte first (BE) or least significant
/// byte first (LE); a float is always the four BE bytes of its IEEE 754 single form. Unless a derived class
/// says otherwise, nothing raises but Seek.
///
/// Getf754_32, Putf754_32, ReadFile, ReadEncrypted and WriteEncrypted are abstract but have a body, made of
/// the other operations, for derived classes to call.
class KV_EXPORT KV_Stream {
public:
    /// Where Seek counts from.
    enum SeekStartPos : int { SeekFromStart = 0, SeekFromCurrent = 1, SeekFromEnd = 2 };

    /// The file's name, owned by the stream; null for a stream that is on no file.
    virtual KV_FileSpec *GetFileSpec() = 0;
    /// The block of memory behind the stream, not to be released by the caller; null for a stream on a file.
    virtual const char *GetMemPtr() = 0;

    /// Opens for what mode says, "r", "w" and so on as in the C library. text asks for the platform's
    /// translation of line endings; false reads and writes bytes as they are. Forgets an earlier failure.
    /// False when it cannot be opened; never raises.
    virtual bool Open(const char *mode, bool text) = 0;
    /// Ends the use. True when the stream is closed, or needs no closing.
    virtual bool Close() = 0;
    /// Deletes what the stream is on. True on success.
    virtual bool Remove() = 0;

    /// Moves to offset bytes from the given origin. True on success. Throws KV_FileException (SeekError,
    /// "invalid seekorigin") for an origin other than the three.
    virtual bool Seek(std::int64_t offset, SeekStartPos from) = 0;
    /// Reads count items of size bytes into buffer, which must hold them. The result tells what came.
    virtual std::uint64_t Read(void *buffer, std::uint64_t size, std::uint64_t count) = 0;
    /// Writes count items of size bytes. The result tells how many went out.
    virtual std::uint64_t Write(const void *buffer, std::uint64_t size, std::uint64_t count) = 0;
    /// Hands on what is buffered. 0 on success.
    virtual std::uint64_t Flush() = 0;
    /// Number of bytes in the stream (its low 32 bits), whatever the position, which stays.
    virtual std::uint32_t Length() = 0;

    /// Reads up to length bytes as Read does and deciphers the whole blocks of 8 among them, in place. A zero
    /// byte is put behind the last character that is not a blank, since blanks pad an enciphered text: buffer
    /// must hold length + 1 bytes. Pieces of a long text must be multiples of 8 bytes. Returns the number of
    /// bytes read, not the length of the text; 0, with the buffer untouched, when nothing came. Throws
    /// std::bad_alloc when the process's first use of the cipher finds no memory for the key; what was read
    /// then stands in buffer as it was.
    virtual std::uint32_t ReadEncrypted(char *buffer, std::uint32_t length) = 0;
    /// Enciphers length bytes, padded with blanks to a multiple of 8, and writes them; buffer stays. Returns
    /// what Write did, 0 when memory runs out or the padded length does not fit 32 bits. Throws as
    /// ReadEncrypted, with nothing written.
    virtual std::uint32_t WriteEncrypted(const char *buffer, std::uint32_t length) = 0;
    /// Opens, reads all of the stream (as many bytes as the low 32 bits of its length say), deciphered on
    /// demand, and closes it. out gets the text up to its first zero byte; when reading fails on the way,
    /// that of the part that came, and the result is true then too. False, with out untouched, when the
    /// stream cannot be opened, is empty, or has no length, and when memory runs out.
    virtual bool ReadFile(std::string &out, bool encrypted) = 0;

    /// Not 0 after a failure, until ClearError.
    virtual int GetLastError() = 0;
    /// Forgets failure and end of file.
    virtual void ClearError() = 0;
    /// True after a read that met the end.
    virtual bool EndOfFile() = 0;
    virtual bool IsOpen() = 0;
    /// The position, -1 when there is none.
    virtual std::int64_t Tell() = 0;

    /// One byte; -1 (byte 0xFF) at the end.
    virtual char Getc() = 0;
    /// Writes one byte; -1 (byte 0xFF) on failure.
    virtual char Putc(char c) = 0;
    /// Reads a line, at most size - 1 bytes of it, and terminates it with a zero byte.
    virtual char *Gets(char *buffer, int size) = 0;
    /// Writes a zero-terminated text without adding a line ending; -1 (byte 0xFF) on failure.
    virtual char Puts(const char *text) = 0;

    /// A float in 4 bytes: GetlongwordBE, unpacked.
    virtual float Getf754_32() = 0;
    /// Writes a float as text; -1 (byte 0xFF) on failure.
    virtual char Putf(float value) = 0;
    /// Writes a float in 4 bytes: packed, by PutlongwordBE. Returns the bits written.
    virtual std::uint32_t Putf754_32(float value) = 0;
    /// Writes a number as decimal text; -1 (byte 0xFF) on failure.
    virtual char Putd(int value) = 0;

    // Words of 2, 4 and 8 bytes.
    virtual std::uint16_t GetwordBE() = 0;
    virtual std::uint16_t GetwordLE() = 0;
    virtual std::uint32_t GetlongwordBE() = 0;
    virtual std::uint32_t GetlongwordLE() = 0;
    virtual std::uint64_t GetquadwordBE() = 0;
    virtual std::uint64_t GetquadwordLE() = 0;

    // Each returns the value written.
    virtual std::uint16_t PutwordBE(std::uint16_t value) = 0;
    virtual std::uint16_t PutwordLE(std::uint16_t value) = 0;
    virtual std::uint32_t PutlongwordBE(std::uint32_t value) = 0;
    virtual std::uint32_t PutlongwordLE(std::uint32_t value) = 0;
    virtual std::uint64_t PutquadwordBE(std::uint64_t value) = 0;
    virtual std::uint64_t PutquadwordLE(std::uint64_t value) = 0;

    virtual ~KV_Stream();

protected:
    KV_Stream() = default;
    KV_Stream(const KV_Stream &) = default;
    KV_Stream &operator=(const KV_Stream &) = default;
};
