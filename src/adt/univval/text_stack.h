#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "kvbase/text/kv_string.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_text.h"

namespace kv::detail {

/// A number or a text as it was read.
struct Scalar {
    KV_PsNToken::Kind kind;
    std::int32_t integer = 0;
    double number = 0;
    KV_String text = {};
};

/// The tokens that wait for their closing bracket. Each is a byte, its mark. There is more only of what may
/// still become a part of a value: elements of an array lie on the stack of their kind, and a finished pair
/// stands in its dictionary already. All of it takes a few times the size of the text at most.
class TokenStack {
public:
    enum Mark : char {
        kDictBegin,
        kArrayBegin,
        kKey,        // of a pair whose value is to come, in a dictionary that has only good pairs so far
        kFirstPair,  // the key of such a dictionary's first pair, which made the dictionary
        kPaired,     // any other key or value that stands in its dictionary
        kInteger,    // elements of an array, also behind a "<<" in it
        kFloat,
        kZero,  // a float of 0
        kText,
        kOther  // what no value is made of: bad in a dictionary, in an array it keeps its place
    };

    bool isEmpty() const { return m_marks.empty(); }
    std::size_t size() const { return m_marks.size(); }
    Mark at(std::size_t place) const { return m_marks[place]; }
    Mark top() const { return m_marks.back(); }
    /// Whether the next token is a key, in a dictionary that has only good pairs so far.
    bool wantsKey() const { return !isEmpty() && (top() == kDictBegin || top() == kPaired); }
    /// The place of the topmost bracket of a kind, npos when there is none.
    std::size_t find(Mark bracket) const;
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    void push(Mark mark) { append(m_marks, mark); }
    void pushKey(std::string_view text) {
        push(kKey);
        pushText(text);
    }
    void pushElement(std::int32_t integer) {
        push(kInteger);
        append(m_integers, integer);
    }
    void pushElement(double number) {
        const bool isZero = std::bit_cast<std::uint64_t>(number) == 0;
        push(isZero ? kZero : kFloat);
        if (!isZero) append(m_numbers, number);
    }
    void pushElement(std::string_view text) {
        push(kText);
        pushText(text);
    }
    /// The value of the key on top: the pair goes into its dictionary.
    void pushPaired(std::unique_ptr<KV_UVal> value);

    /// Takes a token off; whatever belongs to it is dropped. For an element of an array the result is that
    /// element; for any other it is of a kind without content.
    Scalar pop();
    /// Takes all from the "<<" at place off, if only good pairs stand behind it, and gives the dictionary.
    std::unique_ptr<KV_UValDict> popDictionary(std::size_t place);
    /// Takes count integers, or floats, off and puts them to an array. False, with nothing taken, when other
    /// tokens are among them.
    bool pop(std::int32_t *to, std::size_t count) { return popPlain(m_integers, kInteger, to, count); }
    bool pop(double *to, std::size_t count) { return popPlain(m_numbers, kFloat, to, count); }

private:
    // Stacks grow by half, so that they take at most 2.5 times their content while they move.
    template <class T>
    static void grow(std::vector<T> &stack, std::size_t count) {
        stack.reserve(stack.size() + std::max(count, stack.size() / 2 + 64 / sizeof(T)));
    }
    template <class T>
    static void append(std::vector<T> &stack, T item) {
        if (stack.size() == stack.capacity()) grow(stack, 1);
        stack.push_back(std::move(item));
    }
    template <class T>
    static T take(std::vector<T> &stack) {
        T item = std::move(stack.back());
        stack.pop_back();
        return item;
    }
    template <class T>
    bool popPlain(std::vector<T> &stack, Mark mark, T *to, std::size_t count) {
        const auto isOther = [mark](Mark other) { return other != mark; };
        const auto begin = m_marks.end() - static_cast<std::ptrdiff_t>(count);
        if (stack.size() < count || std::any_of(begin, m_marks.end(), isOther)) return false;
        std::copy_n(stack.end() - static_cast<std::ptrdiff_t>(count), count, to);
        stack.resize(stack.size() - count);
        m_marks.erase(begin, m_marks.end());
        return true;
    }
    void pushText(std::string_view text);
    std::string_view popText();

    std::vector<Mark> m_marks;
    std::vector<std::unique_ptr<KV_UValDict>> m_dicts;  // one for each kFirstPair
    std::vector<std::int32_t> m_integers;
    std::vector<double> m_numbers;
    std::vector<char> m_texts;  // of keys and elements, each with its length behind it
};

}  // namespace kv::detail
