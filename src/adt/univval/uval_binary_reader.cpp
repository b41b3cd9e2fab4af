// The upper layer of the binary form, reading. Nothing that a file says is believed before it is looked at: a
// size against the bytes that can still come, and the second statement of a length against the first.

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

#include "binary_form.h"
#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_binary.h"
#include "stream/byte_order.h"

using namespace kv::detail;

namespace {

constexpr std::uint64_t kUnknown = std::uint64_t{1} << 62;
/// The fewest bytes of an entry and of an element of strings.
constexpr std::uint64_t kShortestEntry = 8, kShortestText = 5;

/// Takes a whole atom of one number. False, with nothing taken, when the block doesn't have it all, or not in
/// the form in which it is usually written.
template <class Number>
bool takeNumber(unsigned char *&at, const unsigned char *end, Number &number) {
    using Word = std::make_unsigned_t<Number>;
    constexpr std::ptrdiff_t size = 1 + sizeof(Word);
    if (end - at < size || *at != kAtomOf<Number>) return false;
    number = static_cast<Number>(wordFromBytes<ByteOrder::little, Word>(at + 1));
    at += size;
    return true;
}

/// The same for the header of an atom with count elements of a type, if the block has them all.
bool takeHeader(unsigned char *&at, const unsigned char *end, int type, std::int32_t count,
                std::size_t elementSize) {
    const std::size_t header = count == 1 ? 1 : 5;
    const std::size_t size = header + static_cast<std::size_t>(count) * elementSize;
    if (at >= end || static_cast<std::size_t>(end - at) < size) return false;
    if (count == 1) {
        if (*at != type) return false;
    } else if (*at != (static_cast<unsigned>(type) | kAtomHasCount) ||
               wordFromBytes<ByteOrder::big, std::uint32_t>(at + 1) != static_cast<std::uint32_t>(count)) {
        return false;
    }
    at += header;
    return true;
}

/// The same for numbers and all.
template <class Element>
bool takeElements(unsigned char *&at, const unsigned char *end, Element *data, std::int32_t count) {
    if (sizeof(Element) > 1 && std::endian::native != std::endian::little) return false;
    if (!takeHeader(at, end, kAtomOf<Element>, count, sizeof(Element))) return false;
    const std::size_t size = static_cast<std::size_t>(count) * sizeof(Element);
    std::memcpy(data, at, size);
    at += size;
    return true;
}

/// Where there is no more to come, though the data says so.
void needBytes(std::uint64_t needed, std::uint64_t left) {
    if (needed > left) failAsTruncated();
}

/// What takes memory out of proportion to its bytes.
[[noreturn]] void failAsTooMuch(const char *what) {
    throw KV_FileException((std::string("ReadBinFromStream failed because of too many ") + what).c_str(),
                           KV_FileException::ReadError, 0, KV_HERE);
}

void demand(bool isTrue) {
    if (!isTrue) throw KV_BinPackException();
}

/// A new value of a number type. The elements of an array are not set.
template <class Leaf>
std::unique_ptr<Leaf> makeNumbers(std::int32_t dimension) {
    std::unique_ptr<ElementOf<Leaf>[]> block;
    if (dimension > 0) block.reset(new ElementOf<Leaf>[static_cast<std::size_t>(dimension)]);
    auto value = std::make_unique<Leaf>(dimension, block.get());
    (void)block.release();  // the value has adopted it
    return value;
}

void setText(KV_UVal &value, std::int32_t index, std::string_view text) {
    KV_String string(text.data(), static_cast<std::uint32_t>(text.size()));
    if (value.GetType() == KV_UVAL_STRING) {
        *static_cast<KV_UValString &>(value).GetValuePtr(index) = std::move(string);
    } else {
        *static_cast<KV_UValUTFString &>(value).GetValuePtr(index) = string;
    }
}

/// Stores a value in a dictionary under its key; gives it back when there is no place for it. A null value is
/// stored, too.
std::unique_ptr<KV_UVal> storeUnder(KV_UValDict &dict, std::string &&key, std::unique_ptr<KV_UVal> value) {
    if (key.find(KV_DictPath::GetSeparator()) != key.npos)
        return DictAccess::putAtPath(dict, key, std::move(value));
    DictAccess::put(dict, std::move(key), std::move(value));
    return nullptr;
}

}  // namespace

void kv::detail::failAsTruncated() {
    throw KV_FileException("ReadBinFromStream failed, 0 bytes read.", KV_FileException::ReadError, 0,
                           KV_HERE);
}

KV_BinPackUValDict::KV_BinPackUValDict() = default;

KV_BinPackUValDict::KV_BinPackUValDict(const KV_BinPackUValDict &other) { Specify(other.m_root); }

KV_BinPackUValDict &KV_BinPackUValDict::operator=(const KV_BinPackUValDict &other) {
    if (this != &other) Specify(other.m_root);
    return *this;
}

KV_BinPackUValDict::~KV_BinPackUValDict() = default;

void KV_BinPackUValDict::Specify(KV_UValDict *dictionary) {
    m_state = dictionary != nullptr ? State::Level : State::Done;
    m_atomOpen = false;
    m_root = dictionary;
    m_value = dictionary;
    m_pointers = 0;
    m_separators = kSeparators;
    m_levels.clear();
    m_rest = kUnknown;
    m_newValue.reset();
    m_frames.clear();
    m_entries.clear();
    m_homeless.clear();
}

int KV_BinPackUValDict::Get(unsigned char **cursor, const unsigned char *end) {
    unsigned char *at = *cursor;
    const auto inBlock = [&] { return at < end ? static_cast<std::uint64_t>(end - at) : 0; };
    const std::uint64_t behindBlock = m_rest - std::min(m_rest, inBlock());
    const auto left = [&] { return inBlock() + behindBlock; };
    // Each takes an atom. One that the block doesn't hold is left open, with the block used up: then false.
    const auto resume = [&] {
        m_atomOpen = m_atom.Get(&at, end) != 0;
        return !m_atomOpen;
    };
    const auto open = [&](int type, void *data, std::int32_t count) {
        m_atom.Expect(type, data, count);
        return resume();
    };
    const auto take = [&](auto &number, State whenTaken) {
        m_state = whenTaken;
        return takeNumber(at, end, number) || open(kAtomOf<std::decay_t<decltype(number)>>, &number, 1);
    };
    const auto takeText = [&](std::uint16_t length, State whenTaken) {
        needBytes(length, left());
        demand(length > 0 && length <= kLongestText);
        m_state = whenTaken;
        if (takeHeader(at, end, kAtomText, length, 1)) {
            m_text = {reinterpret_cast<const char *>(at), length};
            at += length;
            return true;
        }
        m_scratch.resize(length);
        m_text = m_scratch;
        return open(kAtomText, m_scratch.data(), length);
    };
    const auto takeNumbers = [&] {
        bool isTaken = false;
        m_state = State::Value;
        visitNumberType(static_cast<KV_UValType>(m_type), [&](auto *leaf) {
            using Leaf = std::remove_pointer_t<decltype(leaf)>;
            using Element = ElementOf<Leaf>;
            needBytes(static_cast<std::uint64_t>(m_count) * sizeof(Element), left());
            std::unique_ptr<Leaf> value = makeNumbers<Leaf>(m_dimension);
            Element *data = value->GetValuePtr(0);
            m_newValue = std::move(value);
            isTaken = takeElements(at, end, data, m_count) || open(kAtomOf<Element>, data, m_count);
        });
        return isTaken;
    };

    const auto advance = [&] {
        if (m_atomOpen && !resume()) return 1;
        for (;;) {
            switch (m_state) {
            case State::Level:
                if (!take(m_size, State::Size)) return 1;
                [[fallthrough]];
            case State::Size:
                needBytes(m_size * kShortestEntry, left());
                m_frames.push_back({static_cast<KV_UValDict *>(m_value), m_size, 0});
                m_state = State::NextEntry;
                [[fallthrough]];
            case State::NextEntry:
                while (!m_frames.empty() && m_frames.back().read == m_frames.back().count)
                    m_frames.pop_back();
                if (m_frames.empty()) {
                    m_state = State::Done;
                    storeEntries();
                    continue;
                }
                ++m_frames.back().read;
                if (!take(m_keyLength, State::KeyLength)) return 1;
                [[fallthrough]];
            case State::KeyLength:
                if (!takeText(m_keyLength, State::Key)) return 1;
                [[fallthrough]];
            case State::Key:
                demand(m_text.back() == 0);
                m_key.assign(m_text.data(), m_text.size() - 1);
                if (!spendSeparators(m_separators, m_key)) failAsTooMuch("separators in keys");
                if (!take(m_type, State::Type)) return 1;
                [[fallthrough]];
            case State::Type:
                demand(m_type <= KV_UVAL_PTR);
                if (m_type == KV_UVAL_NONE) {
                    store(nullptr);
                    m_state = State::NextEntry;
                    continue;
                }
                if (m_type == KV_UVAL_DICT) {
                    openDictionary();
                    m_state = State::Level;
                    continue;
                }
                if (!take(m_dimension, State::Dimension)) return 1;
                [[fallthrough]];
            case State::Dimension:
                m_count = std::max<std::int32_t>(m_dimension, 1);
                m_index = 0;
                if (!take(m_itemsToPrint, State::ItemsToPrint)) return 1;
                [[fallthrough]];
            case State::ItemsToPrint:
                if (m_type < KV_UVAL_STRING) {
                    if (!takeNumbers()) return 1;
                    continue;
                }
                openValue(left());
                m_state = m_type == KV_UVAL_PTR ? State::Value : State::NextText;
                continue;
            case State::NextText:
                if (m_index == m_count) {
                    m_state = State::Value;
                    continue;
                }
                if (!take(m_textLength, State::TextLength)) return 1;
                [[fallthrough]];
            case State::TextLength:
                if (!takeText(m_textLength, State::Text)) return 1;
                [[fallthrough]];
            case State::Text:
                demand(m_text.back() == 0);
                setText(*m_newValue, m_index++, m_text.substr(0, m_text.size() - 1));
                m_state = State::NextText;
                continue;
            case State::Value:
                m_newValue->SetNrItemsToPrint(m_itemsToPrint);
                store(std::move(m_newValue));
                m_state = State::NextEntry;
                continue;
            default:
                return 0;
            }
        }
    };
    const int result = advance();
    *cursor = at;
    m_rest = left();
    return result;
}

// Makes a value of strings or pointers.
void KV_BinPackUValDict::openValue(std::uint64_t left) {
    const auto elements = static_cast<std::uint64_t>(std::max<std::int32_t>(m_dimension, 0));
    if (m_type == KV_UVAL_PTR) {
        if (elements > kMostPointers - m_pointers) {
            failAsTooMuch("pointers");
        }
        m_pointers += static_cast<std::uint32_t>(elements);
    } else {
        needBytes(elements * kShortestText, left);
    }
    m_newValue = makeLeaf(static_cast<KV_UValType>(m_type), m_dimension, nullptr);
}

// Makes a dictionary, stores it and has it in hand. Nothing else is stored above it while it is read.
void KV_BinPackUValDict::openDictionary() {
    auto dict = std::make_unique<KV_UValDict>(16384U);
    m_value = dict.get();
    store(std::move(dict));
}

// Stores a value under the key that came last. What is for the root waits until all is there.
void KV_BinPackUValDict::store(Value value) {
    if (m_frames.size() == 1) {
        m_entries.emplace_back(std::move(m_key), std::move(value));
        return;
    }
    value = storeUnder(*m_frames.back().dict, std::move(m_key), std::move(value));
    if (asDict(value.get()) != nullptr) m_homeless.push_back(std::move(value));
}

void KV_BinPackUValDict::storeEntries() {
    for (auto &[key, value] : m_entries)
        storeUnder(*m_root, std::move(key), std::move(value));
    m_entries.clear();
    m_homeless.clear();
}
