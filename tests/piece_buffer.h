#pragma once

#include <algorithm>
#include <cstddef>
#include <streambuf>
#include <string>
#include <utility>

// A source that hands its bytes out a few at a time and takes none back. In pieces of 0 it has no block at
// all, as the standard input has none.
class PieceBuffer : public std::streambuf {
public:
    PieceBuffer(std::string text, std::size_t piece) : m_text(std::move(text)), m_piece(piece) {}

protected:
    int_type underflow() override {
        if (m_next == m_text.size()) return traits_type::eof();
        char *begin = m_text.data() + m_next;
        const std::size_t size = std::min(m_piece, m_text.size() - m_next);
        m_next += size;
        if (size != 0) setg(begin, begin, begin + size);
        return traits_type::to_int_type(*begin);
    }
    int_type uflow() override {
        if (m_piece != 0) return std::streambuf::uflow();
        return m_next == m_text.size() ? traits_type::eof() : traits_type::to_int_type(m_text[m_next++]);
    }

private:
    std::string m_text;
    std::size_t m_piece;
    std::size_t m_next = 0;
};
