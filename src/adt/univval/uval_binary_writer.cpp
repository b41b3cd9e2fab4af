// The upper layer of the binary form, writing.

#include <bit>
#include <cstring>

#include "binary_form.h"
#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "stream/byte_order.h"

using namespace kv::detail;

namespace {

/// Puts a whole atom. False, with nothing put, when the block has no room for all of it.
template <class Element>
bool putAtom(unsigned char *&at, const unsigned char *end, int type, const Element *data,
             std::int32_t count) {
    if (sizeof(Element) > 1 && std::endian::native != std::endian::little) return false;
    const std::size_t size = static_cast<std::size_t>(count) * sizeof(Element);
    const std::size_t header = count == 1 ? 1 : 5;
    if (at >= end || static_cast<std::size_t>(end - at) < header + size) return false;
    if (count == 1) {
        *at = static_cast<unsigned char>(type);
        std::memcpy(at + 1, data, sizeof(Element));
    } else {
        *at = static_cast<unsigned char>(static_cast<unsigned>(type) | kAtomHasCount);
        wordToBytes<ByteOrder::big>(static_cast<std::uint32_t>(count), at + 1);
        std::memcpy(at + 5, data, size);
    }
    at += header + size;
    return true;
}

/// The length of a text with its zero.
std::uint16_t lengthWithZero(std::size_t size) {
    if (size >= kLongestText) throw KV_BinPackException();
    return static_cast<std::uint16_t>(size + 1);
}

/// An element of a value of the string family.
const KV_Str &textOf(KV_UVal &value, std::int32_t index) {
    if (value.GetType() == KV_UVAL_STRING) return static_cast<KV_UValString &>(value).GetValue(index);
    return static_cast<KV_UValUTFString &>(value).GetValue(index);
}

}  // namespace

int KV_BinPackUValDict::Put(unsigned char **cursor, const unsigned char *end) {
    if (m_atomOpen && m_atom.Put(cursor, end) != 0) return 1;
    m_atomOpen = false;
    // Puts an atom; one that doesn't fit is left open, with the block used up: then false.
    unsigned char *at = *cursor;
    const auto put = [&](int type, const auto *data, std::int32_t count) {
        if (putAtom(at, end, type, data, count)) return true;
        *cursor = at;
        m_atom.Specify(type, const_cast<void *>(static_cast<const void *>(data)), count);
        m_atomOpen = m_atom.Put(cursor, end) != 0;
        at = *cursor;
        return !m_atomOpen;
    };
    for (;;) {
        switch (m_state) {
        case State::Level: {
            KV_UValDict::Map &map = *static_cast<KV_UValDict *>(m_value)->GetValuePtr();
            if (map.size() > kMostEntries) throw KV_BinPackException();
            m_levels.push_back({map.begin(), map.end()});
            m_size = static_cast<std::uint16_t>(map.size());
            m_state = State::NextEntry;
            if (!put(kAtom16, &m_size, 1)) return 1;
            [[fallthrough]];
        }
        case State::NextEntry:
            while (!m_levels.empty() && m_levels.back().next == m_levels.back().end)
                m_levels.pop_back();
            if (m_levels.empty()) {
                m_state = State::Done;
                continue;
            }
            m_keyInHand = &m_levels.back().next->first;
            m_value = m_levels.back().next->second;
            ++m_levels.back().next;
            if (!spendSeparators(m_separators, *m_keyInHand)) throw KV_BinPackException();
            m_keyLength = lengthWithZero(m_keyInHand->size());
            m_state = State::Key;
            if (!put(kAtom16, &m_keyLength, 1)) return 1;
            [[fallthrough]];
        case State::Key:
            m_state = State::Type;
            if (!put(kAtomText, m_keyInHand->c_str(), m_keyLength)) return 1;
            [[fallthrough]];
        case State::Type: {
            const int type = m_value != nullptr ? m_value->GetType() : KV_UVAL_NONE;
            if (type < KV_UVAL_NONE || type > KV_UVAL_PTR) throw KV_BinPackException();
            m_type = static_cast<std::uint16_t>(type);
            m_state = type == KV_UVAL_NONE   ? State::NextEntry
                      : type == KV_UVAL_DICT ? State::Level
                                             : State::Dimension;
            if (!put(kAtom16, &m_type, 1)) return 1;
            if (m_state != State::Dimension) continue;
            [[fallthrough]];
        }
        case State::Dimension:
            m_dimension = m_value->GetDimension();
            m_itemsToPrint = m_value->GetNrItemsToPrint();
            if (m_type == KV_UVAL_PTR) m_pointers += static_cast<std::uint32_t>(m_dimension);
            if (m_pointers > kMostPointers) throw KV_BinPackException();
            m_state = State::ItemsToPrint;
            if (!put(kAtom32, &m_dimension, 1)) return 1;
            [[fallthrough]];
        case State::ItemsToPrint:
            m_count = m_dimension < 1 ? 1 : m_dimension;
            m_index = 0;
            m_state = m_type < KV_UVAL_STRING ? State::Numbers
                      : m_type < KV_UVAL_PTR  ? State::TextLength
                                              : State::NextEntry;
            if (!put(kAtom32, &m_itemsToPrint, 1)) return 1;
            continue;
        case State::Numbers: {
            bool isPut = false;
            m_state = State::NextEntry;
            visitNumberType(m_value->GetType(), [&](auto *leaf) {
                using Leaf = std::remove_pointer_t<decltype(leaf)>;
                const auto *data = static_cast<Leaf *>(m_value)->GetValuePtr(0);
                isPut = put(kAtomOf<ElementOf<Leaf>>, data, m_count);
            });
            if (!isPut) return 1;
            continue;
        }
        case State::TextLength:
            if (m_index == m_count) {
                m_state = State::NextEntry;
                continue;
            }
            m_textLength = lengthWithZero(textOf(*m_value, m_index).Size());
            m_state = State::Text;
            if (!put(kAtom16, &m_textLength, 1)) return 1;
            [[fallthrough]];
        case State::Text: {
            const KV_Str &text = textOf(*m_value, m_index);
            ++m_index;
            m_state = State::TextLength;
            if (!put(kAtomText, text.Ptr(), m_textLength)) return 1;
            continue;
        }
        default:
            *cursor = at;
            return 0;
        }
    }
}
