#include "kvbase/text/kv_string.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <string_view>

#include "adt/text/byte_range.h"

namespace {

// The analyzer does not see that the constructors set the list.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)

// The arguments behind a format, as often as they are needed: a copy starts where its source stands.
class FormatArguments {
public:
    explicit FormatArguments(va_list list) noexcept { va_copy(m_list, list); }
    FormatArguments(const FormatArguments &other) noexcept {
        va_copy(m_list, const_cast<FormatArguments &>(other).m_list);
    }
    FormatArguments &operator=(const FormatArguments &) = delete;
    ~FormatArguments() { va_end(m_list); }

    template <class T>
    T next() {
        return va_arg(m_list, T);
    }
    int print(char *to, std::size_t size, const char *format) {
        return std::vsnprintf(to, size, format, m_list);
    }

private:
    va_list m_list;
};

// NOLINTEND(clang-analyzer-valist.Uninitialized)

bool isOneOf(char c, std::string_view set) { return set.find(c) != std::string_view::npos; }

// About how long a text becomes. Directives are followed as the C standard has them; the estimate ends before
// the first that is none of these, since only the C library knows what arguments it takes.
class FormatEstimate {
public:
    FormatEstimate(const char *format, const FormatArguments &arguments)
        : m_at(format), m_arguments(arguments) {
        for (; *m_at != 0; ++m_at) {
            if (*m_at != '%' || *++m_at == '%') {
                ++m_total;
            } else if (!directive()) {
                break;
            }
        }
    }

    std::uint64_t total() const { return m_total; }

private:
    // From behind the "%" to the conversion. False when the arguments cannot be followed.
    bool directive() {
        for (; isOneOf(*m_at, "-+ #0"); ++m_at) {
            if (*m_at == '#') m_total += 2;
        }
        m_precision = -1;
        if (!readNumber(m_width)) return false;
        m_width = std::abs(m_width);
        if (*m_at == '.') {
            ++m_at;
            if (!readNumber(m_precision)) return false;
        }
        const char *modifier = m_at;
        if (isOneOf(*m_at, "hlLjzt")) ++m_at;
        if (isOneOf(*m_at, "hl") && *m_at == *modifier) ++m_at;
        return convert(*m_at, {modifier, static_cast<std::size_t>(m_at - modifier)});
    }

    // False for the position of an argument, as in "*1$"; the one in "1$" stops at its "$".
    bool readNumber(std::int64_t &number) {
        if (*m_at == '*') {
            number = m_arguments.next<int>();
            return !isOneOf(*++m_at, kDigits);
        }
        for (number = 0; isOneOf(*m_at, kDigits); ++m_at) {
            number = std::min<std::int64_t>(10 * number + (*m_at - '0'), INT32_MAX);
        }
        return true;
    }

    bool convert(char c, std::string_view modifier) {
        if (isOneOf(c, "diouxX")) return passInteger(modifier) && addNumber();
        if (isOneOf(c, "efgGEFaA")) return passReal(modifier) && (isOneOf(c, "EFaA") || addNumber());
        if (c == 'n') return modifier != "L" && pass<void *>();
        if (c == 'c' && modifier == "l") return pass<int>() && addText(2);
        if (c == 's' && modifier == "l") return addText(wideLength());
        if (!modifier.empty()) return false;
        if (c == 'c' || c == 'C') return pass<int>() && addText(2);
        if (c == 's' || c == 'S') return addText(c == 's' ? textLength() : wideLength());
        return c == 'p' && pass<void *>() && addNumber();
    }

    // Passes over an argument.
    template <class T>
    bool pass() {
        m_arguments.next<T>();
        return true;
    }

    bool passInteger(std::string_view modifier) {
        if (modifier.empty() || modifier[0] == 'h') return pass<int>();
        if (modifier == "l") return pass<long>();
        if (modifier == "ll") return pass<long long>();
        if (modifier == "j") return pass<std::intmax_t>();
        if (modifier == "z") return pass<std::size_t>();
        return modifier == "t" && pass<std::ptrdiff_t>();
    }

    bool passReal(std::string_view modifier) {
        if (modifier == "L") return pass<long double>();
        return (modifier.empty() || modifier == "l") && pass<double>();
    }

    // With a precision the argument need not be terminated.
    std::size_t textLength() {
        const char *text = m_arguments.next<const char *>();
        if (text == nullptr || m_precision < 0) return text == nullptr ? 0 : std::strlen(text);
        return kv::detail::boundedLength(text, static_cast<std::size_t>(m_precision));
    }

    // With a precision, which counts bytes, nothing tells how many elements there are to look at.
    std::size_t wideLength() {
        const wchar_t *text = m_arguments.next<const wchar_t *>();
        return text == nullptr || m_precision >= 0 ? 0 : std::wcslen(text);
    }

    bool addText(std::size_t length) {
        const std::int64_t padded = std::max({static_cast<std::int64_t>(length), m_width, std::int64_t{1}});
        m_total += static_cast<std::uint64_t>(m_precision >= 0 ? std::min(padded, m_precision) : padded);
        return true;
    }

    bool addNumber() {
        const std::int64_t digits = m_width + std::max<std::int64_t>(m_precision, 0);
        m_total += static_cast<std::uint64_t>(std::max<std::int64_t>(32, digits));
        return true;
    }

    static constexpr std::string_view kDigits = "0123456789";

    const char *m_at;
    FormatArguments m_arguments;
    std::uint64_t m_total = 0;
    std::int64_t m_width = 0;
    std::int64_t m_precision = -1;  // negative: none
};

}  // namespace

KV_String &KV_String::Format(const char *format, ...) {
    if (format == nullptr || *format == 0) return *this;
    va_list list;
    va_start(list, format);
    const FormatArguments arguments(list);
    va_end(list);

    using Buffer = std::unique_ptr<char, void (*)(char *)>;
    // The former text stays until the new one is written, since arguments may lie in it.
    for (std::uint64_t length = FormatEstimate(format, arguments).total();;) {
        const bool fits = m_capacity != 0 && length <= m_capacity;
        const std::uint32_t capacity = fits ? m_capacity : grownCapacity(toLength(length));
        Buffer buffer(newBuffer(capacity), safeDelete);
        const int written = FormatArguments(arguments).print(buffer.get(), std::size_t{capacity} + 1, format);
        if (written < 0) return *this;
        length = static_cast<std::uint64_t>(written);
        if (length > capacity) continue;
        const auto used = static_cast<std::uint32_t>(std::strlen(buffer.get()));
        install(buffer.release(), used, capacity);
        return *this;
    }
}
