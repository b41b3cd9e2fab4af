#include "kvbase/text/kv_string.h"

#include <algorithm>
#include <new>
#include <ostream>

#include "adt/text/byte_range.h"

using kv::detail::liesIn;
using kv::detail::moveBytes;

char KV_Str::s_empty[1] = {0};

void KV_Str::throwTooLong() { throw std::bad_alloc(); }

char *KV_Str::newBuffer(std::uint32_t capacity) {
    return static_cast<char *>(::operator new (std::size_t{capacity} + 1));
}

void KV_Str::safeDelete(char *p) noexcept {
    if (p != s_empty) ::operator delete(p);
}

KV_Str::KV_Str(std::uint32_t n) {
    allocBuffer(toLength(n));
    setLength(0);
}

KV_Str::KV_Str(const KV_SubStr &range) {
    allocBuffer(range.m_length);
    moveBytes(m_data, range.m_start, range.m_length);
}

KV_Str &KV_Str::operator=(KV_Str &&other) noexcept {
    if (this == &other) return *this;
    if (other.m_capacity < m_capacity) {
        std::memcpy(m_data, other.m_data, other.m_length);
        setLength(other.m_length);
        other.Empty();
    } else {
        safeDelete(m_data);
        m_data = other.m_data;
        m_length = other.m_length;
        m_capacity = other.m_capacity;
        other.init();
    }
    return *this;
}

KV_Str &KV_Str::operator=(const KV_SubStr &range) {
    if (range.m_owner == this) {
        if (range.m_start != m_data) moveBytes(m_data, range.m_start, range.m_length);
        setLength(range.m_length);
    } else {
        assignCopy(range.m_length, range.m_start);
    }
    return *this;
}

KV_Str &KV_Str::operator+=(const KV_SubStr &range) {
    concatInPlace(range.m_length, range.m_start);
    return *this;
}

void KV_Str::PrintOn(std::ostream &stream) const { stream << m_data; }

int KV_Str::Compare(const KV_Str &other) const noexcept {
    const int order = std::strcmp(m_data, other.m_data);
    return (order > 0) - (order < 0);
}

std::uint32_t KV_Str::ReSize(std::uint32_t n) {
    const std::uint32_t capacity = grownCapacity(std::max(toLength(n), m_length));
    char *buffer = newBuffer(capacity);
    std::memcpy(buffer, m_data, m_length);
    install(buffer, m_length, capacity);
    return Capacity();
}

void KV_Str::allocBuffer(std::uint32_t n) {
    const std::uint32_t capacity = grownCapacity(n);
    m_data = newBuffer(capacity);
    m_capacity = capacity;
    setLength(n);
}

void KV_Str::allocCopy(KV_Str &dest, std::uint32_t count, std::uint32_t start, std::uint32_t extra) const {
    const char *from = m_data + start;  // dest may be this string
    char *former = dest.m_data;
    dest.allocBuffer(toLength(std::uint64_t{count} + extra));
    std::memcpy(dest.m_data, from, count);
    safeDelete(former);
}

void KV_Str::assignBeyond(std::uint32_t n, const char *s) {
    const std::uint32_t capacity = capacityFor(toLength(n));
    char *buffer = newBuffer(capacity);
    std::memcpy(buffer, s, n);
    install(buffer, n, capacity);
}

// The way of every string that grows, so it makes as few calls as it can.
void KV_Str::appendBeyond(std::uint32_t n, const char *s) {
    const std::uint32_t total = toLength(std::uint64_t{m_length} + n), capacity = grownCapacity(total);
    char *const buffer = static_cast<char *>(::operator new (std::size_t{capacity} + 1));
    std::memcpy(buffer, m_data, m_length);
    std::memcpy(buffer + m_length, s, n);
    if (m_capacity != 0) ::operator delete(m_data);
    m_data = buffer;
    m_capacity = capacity;
    setLength(total);
}

void KV_Str::concatCopy(std::uint32_t n1, const char *s1, std::uint32_t n2, const char *s2) {
    const std::uint32_t total = toLength(std::uint64_t{n1} + n2);
    if (total <= m_capacity) {
        const bool inPlace = s1 == m_data;  // the first range stays where it is
        if (inPlace || !(liesIn(s1, m_data, m_capacity) || liesIn(s2, m_data, m_capacity))) {
            if (!inPlace) moveBytes(m_data, s1, n1);
            moveBytes(m_data + n1, s2, n2);
            setLength(total);
            return;
        }
    }
    const std::uint32_t capacity = grownCapacity(total);
    char *buffer = newBuffer(capacity);
    moveBytes(buffer, s1, n1);
    moveBytes(buffer + n1, s2, n2);
    install(buffer, total, capacity);
}

std::ostream &operator<<(std::ostream &stream, const KV_Str &text) {
    text.PrintOn(stream);
    return stream;
}
