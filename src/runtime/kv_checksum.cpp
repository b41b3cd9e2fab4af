#include "kvbase/runtime/kv_checksum.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <istream>
#include <ostream>

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

// The value of a digit of the text form, 0 for any other character.
unsigned valueOf(char c) {
    const char *const end = kDigits + 16;
    const char *const digit = std::find(kDigits, end, c);
    return digit == end ? 0 : static_cast<unsigned>(digit - kDigits);
}

}  // namespace

KV_CheckSum::~KV_CheckSum() = default;

bool KV_CheckSum::operator<(const KV_CheckSum &other) const {
    return std::memcmp(m_bytes, other.m_bytes, kSize) < 0;
}

bool KV_CheckSum::operator==(const KV_CheckSum &other) const {
    return std::memcmp(m_bytes, other.m_bytes, kSize) == 0;
}

bool KV_CheckSum::operator!=(const KV_CheckSum &other) const { return !(*this == other); }

void KV_CheckSum::SetSum(const unsigned char *bytes, std::uint32_t /*length*/) {
    if (bytes == nullptr)
        Reset();
    else
        std::memcpy(m_bytes, bytes, kSize);
}

void KV_CheckSum::GetSum(unsigned char *out) const { std::memcpy(out, m_bytes, kSize); }

void KV_CheckSum::SetSize(const std::uint32_t & /*size*/) {}

void KV_CheckSum::Reset() { std::memset(m_bytes, 0, kSize); }

void KV_CheckSum::FromString(const std::string &text) {
    Reset();
    if (text.size() != 2 * kSize) return;
    for (std::size_t i = 0; i < kSize; ++i)
        m_bytes[i] = static_cast<unsigned char>(valueOf(text[2 * i]) << 4 | valueOf(text[2 * i + 1]));
}

std::string KV_CheckSum::AsString() const {
    std::string text;
    text.reserve(2 * kSize);
    for (const unsigned char byte : m_bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::ostream &operator<<(std::ostream &out, KV_CheckSum &sum) { return out << sum.GetSum(); }

std::istream &operator>>(std::istream &in, KV_CheckSum &sum) {
    std::string text(2 * sum.GetSize(), '0');
    for (char &c : text)
        if (!(in >> c)) break;
    sum.SetSum(text);
    return in;
}
