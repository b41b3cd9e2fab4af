#include "kvbase/text/kv_string.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>

#include "adt/text/byte_range.h"
#include "runtime/trace_line.h"

using kv::detail::boundedLength;
using kv::detail::liesIn;
using kv::detail::moveBytes;

namespace {

// Copies the bytes of src up to its first 0, at most n, and fills n bytes up with 0. The ranges may overlap.
void copyPadded(char *to, const char *src, std::size_t n) {
    if (n == 0) return;
    const std::size_t used = boundedLength(src, n);
    moveBytes(to, src, used);
    std::memset(to + used, 0, n - used);
}

// The order of a and b over n bytes; when that is even, of the lengths.
int orderOf(const char *a, const char *b, std::uint32_t n, std::size_t lengthA, std::size_t lengthB) {
    const int order = n == 0 ? 0 : std::strncmp(a, b, n);
    if (order != 0 || lengthA == lengthB) return order;
    return lengthA > lengthB ? 1 : -1;
}

}  // namespace

KV_SubStr &KV_SubStr::operator=(const KV_SubStr &source) {
    if (this != &source) writeThrough(source.m_start, source.m_length);
    return *this;
}

KV_SubStr &KV_SubStr::operator=(const KV_Str &source) {
    writeThrough(source.m_data, source.m_length);
    return *this;
}

void KV_SubStr::PrintOn(std::ostream &stream) const { KV_Str(*this).PrintOn(stream); }

int KV_SubStr::compare(const KV_SubStr &other) const noexcept {
    return orderOf(m_start, other.m_start, std::min(m_length, other.m_length), m_length, other.m_length);
}

int KV_SubStr::compare(const KV_Str &other) const noexcept {
    return orderOf(m_start, other.m_data, m_length, m_length, other.m_length);
}

int KV_SubStr::compare(const char *s) const noexcept {
    return orderOf(m_start, s, m_length, m_length, std::strlen(s));
}

void KV_SubStr::writeThrough(const char *src, std::size_t n) {
    if (m_owner == nullptr) return;
    if (n == m_length) {
        copyPadded(m_start, src, n);
    } else {
        replace(src, KV_Str::toLength(n));
    }
}

void KV_SubStr::replace(const char *src, std::uint32_t n) {
    KV_Str &owner = *m_owner;
    std::unique_ptr<char[]> block;  // the source's bytes, when writing would damage them
    std::ptrdiff_t tailDelta = 0;   // how far the source moves with the tail
    bool overlap = liesIn(src, owner.m_data, owner.m_length);
    if (overlap && src < m_start + m_length) {
        if (src + n > m_start) {
            block.reset(new char[n]);
            moveBytes(block.get(), src, n);
            src = block.get();
            overlap = false;
        }
    } else if (overlap) {
        tailDelta = static_cast<std::ptrdiff_t>(n) - static_cast<std::ptrdiff_t>(m_length);
    }
    kv::detail::traceLine(kv::detail::kTraceDetail, "Overlap=", overlap, "  tailDelta=", tailDelta,
                          "  srcbuf=", reinterpret_cast<std::uintptr_t>(block.get()));

    const std::uint32_t newLength = KV_Str::toLength(std::uint64_t{owner.m_length} - m_length + n);
    if (std::uint64_t{owner.m_length} + n >= std::uint64_t{owner.m_capacity} + m_length) {
        const std::ptrdiff_t startAt = m_start - owner.m_data;
        const std::ptrdiff_t sourceAt = overlap ? src - owner.m_data : 0;
        owner.ReSize(newLength);
        m_start = owner.m_data + startAt;
        if (overlap) src = owner.m_data + sourceAt;
    }

    const char *tail = m_start + m_length;
    const auto tailLength = static_cast<std::size_t>(owner.m_data + owner.m_length - tail);
    const std::size_t moved = m_length <= n ? tailLength : boundedLength(tail, tailLength);
    std::memmove(m_start + n, tail, moved + 1);
    owner.setLength(newLength);
    copyPadded(m_start, src + tailDelta, n);
}

std::ostream &operator<<(std::ostream &stream, const KV_SubStr &text) {
    text.PrintOn(stream);
    return stream;
}
