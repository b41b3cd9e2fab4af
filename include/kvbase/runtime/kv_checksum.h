#pragma once

// Checksums of 128 bits, by which links and profiles are told apart and link files are named, and the message
// digest that fills them. Nothing here raises. A value is used by one thread at a time.

#include <cstdint>
#include <iosfwd>
#include <string>

#include "kvbase/base/export.h"

/// 16 bytes that stand for something larger: held, compared, printed and parsed, but never computed here. All
/// zero is the empty checksum, otherwise a value as any.
///
/// The text form has exactly 32 characters, two for each byte in their order, the high half first, as digits
/// and capitals A to F. A text of any other length is read as the empty checksum; in a text of 32, any other
/// character counts as 0, small letters too.
class KV_EXPORT KV_CheckSum {
public:
    /// The empty checksum.
    KV_CheckSum() = default;
    KV_CheckSum(const KV_CheckSum &) = default;
    /// From the text form.
    KV_CheckSum(const std::string &text) { FromString(text); }
    /// As SetSum of the same arguments.
    KV_CheckSum(const unsigned char *bytes, std::uint32_t length) { SetSum(bytes, length); }
    KV_CheckSum &operator=(const KV_CheckSum &) = default;
    virtual ~KV_CheckSum();

    /// As unsigned numbers, byte 0 the highest.
    virtual bool operator<(const KV_CheckSum &other) const;
    virtual bool operator==(const KV_CheckSum &other) const;
    virtual bool operator!=(const KV_CheckSum &other) const;

    /// From the text form.
    void SetSum(const std::string &text) { FromString(text); }
    /// Takes 16 bytes, which must be there whatever length says: it is not looked at. Null gives the empty
    /// checksum.
    void SetSum(const unsigned char *bytes, std::uint32_t length);
    /// The text form.
    std::string GetSum() const { return AsString(); }
    /// Copies the 16 bytes to out.
    void GetSum(unsigned char *out) const;
    /// 16.
    std::uint32_t GetSize() const { return kSize; }
    /// Does nothing: the size is fixed.
    void SetSize(const std::uint32_t &size);
    /// Makes it the empty checksum.
    void Reset();

private:
    static constexpr std::uint32_t kSize = 16;

    void FromString(const std::string &text);
    std::string AsString() const;

    unsigned char m_bytes[kSize] = {};
};

/// Writes the text form; the stream's width and fill apply. The checksum is only read.
KV_EXPORT std::ostream &operator<<(std::ostream &out, KV_CheckSum &sum);

/// Reads 32 characters, each as >> reads a character, so that white space before and between them is left
/// out, and parses them. When the stream ends early, "0" stands for each character that is missing.
KV_EXPORT std::istream &operator>>(std::istream &in, KV_CheckSum &sum);

/// The MD5 digest of length bytes at data, which are only read; null is no data. digest gets 16 bytes in the
/// order of the standard, as KV_CheckSum takes them, and may lie within the data.
/// It tells files apart; it does not protect them, since texts of equal digests can be made on purpose.
/// Source: Rivest, RFC 1321, The MD5 Message-Digest Algorithm (1992).
KV_EXPORT void MD5String(unsigned char *data, unsigned int length, unsigned char *digest);
