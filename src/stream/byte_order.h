#pragma once

#include <cstddef>
#include <type_traits>

namespace kv::detail {

/// Which byte of a word comes first.
enum class ByteOrder { big, little };

/// How far byte i of a stored word is shifted within the word.
template <ByteOrder Order, class Word>
constexpr unsigned shiftOfByte(std::size_t i) {
    return static_cast<unsigned>(8 * (Order == ByteOrder::little ? i : sizeof(Word) - 1 - i));
}

/// The word that sizeof(Word) bytes make.
template <ByteOrder Order, class Word>
constexpr Word wordFromBytes(const unsigned char *bytes) {
    static_assert(std::is_unsigned_v<Word>);
    Word word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i)
        word = static_cast<Word>(word | static_cast<Word>(bytes[i]) << shiftOfByte<Order, Word>(i));
    return word;
}

/// Stores a word in sizeof(Word) bytes.
template <ByteOrder Order, class Word>
constexpr void wordToBytes(Word word, unsigned char *bytes) {
    static_assert(std::is_unsigned_v<Word>);
    for (std::size_t i = 0; i < sizeof(Word); ++i)
        bytes[i] = static_cast<unsigned char>(word >> shiftOfByte<Order, Word>(i));
}

}  // namespace kv::detail
