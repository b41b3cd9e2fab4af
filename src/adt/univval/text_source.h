#pragma once

#include <cstddef>
#include <cstring>
#include <istream>
#include <memory>
#include <string_view>

#include "text_chars.h"

namespace kv::detail {

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

/// Reads bytes straight from the block that a stream's buffer holds, and gives the buffer back what was not
/// taken. Where the buffer throws, the stream becomes bad, and a KV_FileException goes out (callBuffer).
class TextSource {
public:
    explicit TextSource(std::istream &stream) : m_stream(stream) {}
    TextSource(const TextSource &) = delete;
    TextSource &operator=(const TextSource &) = delete;

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
    /// Gives the buffer its position. Whoever uses the buffer afterwards calls it before.
    void release();

private:
    bool refill();

    std::istream &m_stream;
    const char *m_begin = nullptr;  // where the buffer stands, in its block
    const char *m_next = nullptr;
    const char *m_end = nullptr;
    bool m_isSingle = false;  // the buffer has no block; m_single is its next byte
    char m_single = 0;
};

}  // namespace kv::detail
