// The lower layers of the binary form: bytes, and atoms.

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "binary_form.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "stream/byte_order.h"

using namespace kv::detail;

namespace {

/// So many elements of any size stay below 4 GiB.
constexpr std::uint32_t kLongestRun = 1U << 28;

std::size_t room(const unsigned char *at, const unsigned char *end) {
    return at < end ? static_cast<std::size_t>(end - at) : 0;
}

}  // namespace

void KV_BinPackBuffer::Specify(unsigned char *data, std::int32_t count, short elementSize, bool swap) {
    m_remaining = 0;
    if (count < 1 || elementSize < 1) return;
    const std::uint64_t bytes = static_cast<std::uint64_t>(count) * static_cast<std::uint64_t>(elementSize);
    if (bytes > std::numeric_limits<std::uint32_t>::max()) throw KV_BinPackException();
    m_swap = swap && elementSize > 1;
    m_remaining = static_cast<std::uint32_t>(bytes);
    m_elementSize = elementSize;
    m_leftInElement = static_cast<std::uint32_t>(elementSize);
    m_next = m_swap ? data + elementSize - 1 : data;
}

// Calls move(data, size) for what lies in the order of the block: all that is left, or, swapped, byte by
// byte: backwards through an element, then on to the last byte of the next one.
template <class Move>
int KV_BinPackBuffer::pass(std::size_t most, const Move &move) {
    const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(most, m_remaining));
    if (!m_swap) {
        if (size != 0) move(m_next, size);
        m_next += size;
        m_remaining -= size;
        return m_remaining != 0 ? 1 : 0;
    }
    for (const std::uint32_t behind = m_remaining - size; m_remaining != behind;) {
        move(m_next, 1);
        if (--m_remaining == 0) break;
        if (--m_leftInElement != 0) {
            --m_next;
        } else {
            m_leftInElement = static_cast<std::uint32_t>(m_elementSize);
            m_next += 2 * m_elementSize - 1;
        }
    }
    return m_remaining != 0 ? 1 : 0;
}

int KV_BinPackBuffer::Put(unsigned char **cursor, const unsigned char *end) {
    return pass(room(*cursor, end), [cursor](const unsigned char *data, std::size_t size) {
        std::memcpy(*cursor, data, size);
        *cursor += size;
    });
}

int KV_BinPackBuffer::Get(unsigned char **cursor, const unsigned char *end) {
    return pass(room(*cursor, end), [cursor](unsigned char *data, std::size_t size) {
        std::memcpy(data, *cursor, size);
        *cursor += size;
    });
}

void KV_BinPackAtom::Specify(int type, void *data, std::int32_t count) {
    m_part = Part::Begin;
    m_expect = false;
    m_count = count > 0 ? static_cast<std::uint32_t>(count) : 0;
    m_tag = static_cast<std::uint8_t>((static_cast<unsigned>(type) & (kAtomTypeBits | kAtomBigEndian)) |
                                      (m_count != 1 ? kAtomHasCount : 0));
    m_elementSize = kAtomElementSize[m_tag & kAtomTypeBits];
    m_data = static_cast<unsigned char *>(data);
}

void KV_BinPackAtom::Expect(int type, void *data, std::int32_t count) {
    Specify(type, data, count);
    m_expect = true;
}

// Arms the buffer for the next elements: for all of them, but for those that a 32-bit size can't tell. False
// when there are none left.
bool KV_BinPackAtom::nextRun() {
    if (m_count == 0 || m_elementSize == 0) return false;
    const std::uint32_t run = std::min(m_count, kLongestRun);
    const bool isSwapped = ((m_tag & kAtomBigEndian) != 0) != (std::endian::native == std::endian::big);
    KV_BinPackBuffer::Specify(m_data, static_cast<std::int32_t>(run), m_elementSize, isSwapped);
    m_data += std::size_t{run} * static_cast<std::size_t>(m_elementSize);
    m_count -= run;
    return true;
}

int KV_BinPackAtom::Put(unsigned char **cursor, const unsigned char *end) {
    if (m_part == Part::Begin) {
        m_header[0] = m_tag;
        wordToBytes<ByteOrder::big>(m_count, m_header + 1);
        KV_BinPackBuffer::Specify(m_header, (m_tag & kAtomHasCount) != 0 ? 5 : 1, 1, false);
        m_part = Part::Data;
    }
    do {
        if (KV_BinPackBuffer::Put(cursor, end) != 0) return 1;
    } while (nextRun());
    return 0;
}

int KV_BinPackAtom::Get(unsigned char **cursor, const unsigned char *end) {
    if (m_part == Part::Begin) {
        KV_BinPackBuffer::Specify(m_header, 1, 1, false);
        m_part = Part::Tag;
    }
    for (;;) {
        if (KV_BinPackBuffer::Get(cursor, end) != 0) return 1;
        switch (m_part) {
        case Part::Tag:
            if (((m_header[0] ^ m_tag) & kAtomTypeBits) != 0) throw KV_BinPackException();
            m_tag = m_header[0];
            if ((m_tag & kAtomHasCount) == 0) {
                beginData(1);
                break;
            }
            KV_BinPackBuffer::Specify(m_header + 1, 4, 1, false);
            m_part = Part::Count;
            break;
        case Part::Count:
            beginData(wordFromBytes<ByteOrder::big, std::uint32_t>(m_header + 1));
            break;
        default:
            if (!nextRun()) return 0;
        }
    }
}

void KV_BinPackAtom::beginData(std::uint32_t count) {
    if (m_expect && count != m_count) throw KV_BinPackException();
    m_count = count;
    m_part = Part::Data;
}
