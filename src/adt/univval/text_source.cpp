#include "text_source.h"

#include <algorithm>
#include <limits>

#include "stream_failure.h"

namespace kv::detail {

namespace {

/// What lies behind the protected doors of a stream's buffer: its block and the position in it.
struct BufferBlock : std::streambuf {
    static const char *next(const std::streambuf &buffer) { return (buffer.*&BufferBlock::gptr)(); }
    static const char *end(const std::streambuf &buffer) { return (buffer.*&BufferBlock::egptr)(); }
    static void advance(std::streambuf &buffer, int count) { (buffer.*&BufferBlock::gbump)(count); }
};

}  // namespace

void TokenText::grow(std::size_t more) {
    const std::size_t capacity = std::max({std::size_t{64}, m_capacity * 2, m_size + more});
    std::unique_ptr<char[]> own(new char[capacity]);
    if (m_size != 0) std::memcpy(own.get(), m_data, m_size);
    m_own = std::move(own);
    m_data = m_own.get();
    m_capacity = capacity;
}

void TextSource::release() {
    const std::ptrdiff_t taken = m_next - m_begin;
    m_begin = m_next = m_end = nullptr;
    if (taken == 0) return;
    if (m_isSingle)
        callBuffer(m_stream, [](std::streambuf &buffer) { return buffer.sbumpc(); });
    else
        BufferBlock::advance(*m_stream.rdbuf(), static_cast<int>(taken));
}

bool TextSource::refill() {
    constexpr std::ptrdiff_t kLongestBlock = std::numeric_limits<int>::max();
    release();
    const int c = callBuffer(m_stream, [](std::streambuf &buffer) { return buffer.sgetc(); });
    if (c == std::streambuf::traits_type::eof()) return false;
    const std::streambuf &buffer = *m_stream.rdbuf();
    m_begin = m_next = BufferBlock::next(buffer);
    m_end = BufferBlock::end(buffer);
    m_isSingle = m_next == m_end;
    if (m_isSingle) {
        m_single = static_cast<char>(c);
        m_begin = m_next = &m_single;
        m_end = m_begin + 1;
    } else if (m_end - m_next > kLongestBlock) {
        m_end = m_next + kLongestBlock;
    }
    return true;
}

}  // namespace kv::detail
