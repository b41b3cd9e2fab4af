#include "kvbase/univval/kv_dict_path.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <ostream>
#include <utility>

char KV_DictPath::mSeparator = ':';

namespace {

// KV_String with its length checked: the number of keys, which is at most that of the bytes, must fit an int.
KV_String copyOf(const char *bytes, std::size_t count) {
    if (count > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    return {bytes, static_cast<std::uint32_t>(count)};
}

}  // namespace

KV_DictPath::KV_DictPath() : m_first(m_text.Ptr()), m_end(m_first) {}
KV_DictPath::KV_DictPath(const char *text) : KV_DictPath(keysIn(text)) {}
KV_DictPath::KV_DictPath(const KV_String &text) : KV_DictPath(keysIn(text.Ptr())) {}
KV_DictPath::KV_DictPath(const KV_DictPath &base, const char *sub) : KV_DictPath(base) { *this += sub; }
KV_DictPath::KV_DictPath(const KV_DictPath &other) : KV_DictPath(other.keys()) {}

KV_DictPath::KV_DictPath(KV_DictPath &&other) noexcept : KV_DictPath() { *this = std::move(other); }

// All paths but the empty one begin here.
KV_DictPath::KV_DictPath(Keys &&keys)
    : m_text(std::move(keys.text)),
      m_first(m_text.Ptr()),
      m_end(m_first + m_text.Size()),
      m_count(static_cast<int>(keys.count)) {}

KV_DictPath &KV_DictPath::operator=(const KV_DictPath &other) { return *this = KV_DictPath(other); }

KV_DictPath &KV_DictPath::operator=(KV_DictPath &&other) noexcept {
    KV_String text(std::move(other.m_text));  // keeps its buffer, also when other is this path
    const std::ptrdiff_t end = other.m_end - other.m_first;
    const int count = std::exchange(other.m_count, 0);
    other.m_first = other.m_end = other.m_text.Ptr();
    m_text = std::move(text);
    m_first = m_text.Ptr();
    m_end = m_first + end;
    m_count = count;
    return *this;
}

KV_DictPath &KV_DictPath::operator=(const char *text) { return *this = KV_DictPath(text); }
KV_DictPath &KV_DictPath::operator=(const KV_String &text) { return *this = KV_DictPath(text); }

KV_DictPath::~KV_DictPath() = default;

void KV_DictPath::PrintOn(std::ostream &stream) const { stream << static_cast<KV_String>(*this); }

KV_DictPath::operator KV_String() const {
    KV_String text = keys().text;
    for (std::uint32_t i = 0; i < text.Length(); ++i)
        if (text[i] == 0) text[i] = mSeparator;
    return text;
}

KV_DictPath KV_DictPath::operator+(const KV_DictPath &other) const {
    KV_DictPath sum(*this);
    sum += other;
    return sum;
}

KV_DictPath KV_DictPath::operator+(const char *text) const { return {*this, text}; }

KV_DictPath &KV_DictPath::operator+=(const KV_DictPath &other) {
    Keys sum = keys();
    const Keys more = other.keys();
    if (sum.text.Size() + more.text.Size() > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    sum.text += more.text;
    sum.count += more.count;
    return *this = KV_DictPath(std::move(sum));
}

KV_DictPath &KV_DictPath::operator+=(const char *text) { return *this += KV_DictPath(text); }

KV_DictPath &KV_DictPath::operator--() {
    if (m_count == 0) return *this;
    const char *end = m_first;
    if (--m_count > 0) {
        for (int key = 1; key < m_count; ++key)
            end += std::strlen(end) + 1;
        end += std::strlen(end);
    }
    m_end = end;
    return *this;
}

KV_DictPath &KV_DictPath::operator--(int) { return --*this; }

bool KV_DictPath::operator==(const KV_DictPath &other) const {
    const std::size_t bytes = keyBytes();
    return m_count == other.m_count && bytes == other.keyBytes() &&
           std::memcmp(m_first, other.m_first, bytes) == 0;
}

// Where the text's last key lacks its separator, the text's terminator is that of the key, too.
KV_DictPath::Keys KV_DictPath::keysIn(const char *text) {
    const std::size_t size = text != nullptr ? std::strlen(text) : 0;
    if (size == 0) return {KV_String(), 0};
    const char separator = mSeparator;
    const bool isOpen = text[size - 1] != separator;
    Keys keys{copyOf(text, isOpen ? size + 1 : size), isOpen ? 1U : 0U};
    char *copy = &keys.text[0];
    const char *next = text;  // not in the copy: reading bytes just written in other pieces is slow
    while ((next = static_cast<const char *>(
                std::memchr(next, separator, size - static_cast<std::size_t>(next - text))))) {
        copy[next++ - text] = '\0';
        ++keys.count;
    }
    return keys;
}

KV_DictPath::Keys KV_DictPath::keys() const {
    return {copyOf(m_first, keyBytes()), static_cast<std::size_t>(m_count)};
}

const char *KV_DictPath::keyBehind(const char *key) const {
    const std::less<> before;
    if (before(key, m_first) || !before(key, m_end)) return nullptr;
    return key + std::strlen(key) + 1;
}

// The bytes of all keys, each with its terminator.
std::size_t KV_DictPath::keyBytes() const {
    if (m_count == 0) return 0;
    const bool isShortened = m_end != m_first + m_text.Size();  // the end marker stands on a terminator
    return static_cast<std::size_t>(m_end - m_first) + (isShortened ? 1 : 0);
}
