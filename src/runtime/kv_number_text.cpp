#include "kvbase/runtime/kv_number_text.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

constexpr int kDefaultPrecision = 6;
constexpr int kLargestPrecision = 39;
constexpr std::ptrdiff_t kWholeDigits = 309;    // of the largest double
constexpr std::ptrdiff_t kFractionWhole = 16;   // of the largest double with a fraction, below 2^52
constexpr std::ptrdiff_t kLongestExponent = 5;  // "e-324"
constexpr std::ptrdiff_t kFront = 3;            // a carry, the digit in front of the point, and the sign
constexpr std::ptrdiff_t kRoom = 512;           // of the caller
static_assert(kFront + kWholeDigits + kLongestExponent < kRoom, "integers fit, whatever the form");
static_assert(kFront + kFractionWhole + 1 + kLargestPrecision + kLongestExponent < kRoom, "fractions fit");

// Below this the digits of w / 10 are those of integer division: the quotient, below 2^47, is off by at most
// 2^-7, less than the 0.01 that is added, and never reaches the next integer from a last digit of 9.
constexpr double kExactWhole = 0x1p50;

// The text of a magnitude under way: digits and perhaps a point, with room in front.
class NumberText {
public:
    NumberText(double magnitude, bool negative) : m_negative(negative) {
        if (magnitude < kExactWhole) {
            const auto whole = static_cast<std::int64_t>(magnitude);
            m_fraction = magnitude - static_cast<double>(whole);
            if (whole > 0) m_end = std::to_chars(m_end, m_room + kRoom, whole).ptr;
        } else {
            double whole = 0;
            m_fraction = std::modf(magnitude, &whole);
            putLargeWhole(whole);
        }
    }

    void formFixed(int precision) {
        const bool isZero = size() == 0;
        if (isZero) put('0');
        if (m_fraction == 0) return;
        put('.');
        for (int i = 0; i < precision && m_fraction != 0; ++i)
            put(nextDigit());
        const bool endsInZero = m_end[-1] == '0';
        roundBy(nextDigit());
        if (m_negative && isZero)
            m_negative = std::string_view(m_first, size()).find_first_not_of("0.") != npos;
        if (endsInZero) cutZeros();
    }

    void formExponent(int precision, char letter, bool trim) {
        int exponent = static_cast<int>(size()) - 1;
        if (size() == 0) {
            char digit = nextDigit();
            if (m_fraction == 0 && digit == '0') exponent = 0;
            for (; m_fraction != 0 && digit == '0'; --exponent)
                digit = nextDigit();
            put(digit);
        }
        const std::size_t kept = static_cast<std::size_t>(precision) + 1;
        while (size() <= kept)
            put(nextDigit());
        m_end = m_first + kept;
        if (roundBy(*m_end)) {
            --m_end;
            ++exponent;
        }
        if (trim) cutZeros();
        if (size() > 1) {
            m_first[-1] = m_first[0];
            *m_first-- = '.';
        }
        putExponent(letter, exponent);
    }

    void formGeneral(int precision, char letter) {
        int significant = static_cast<int>(size());
        if (significant > precision || (significant == 0 && m_fraction != 0 && m_fraction < 0.0001)) {
            formExponent(precision - 1, letter, true);
            return;
        }
        if (significant == 0) put('0');
        put('.');
        while (significant < precision && m_fraction != 0) {
            const char digit = nextDigit();
            put(digit);
            if (significant > 0 || digit != '0') ++significant;
        }
        const bool usedUp = m_fraction == 0;
        roundBy(nextDigit());
        if (!usedUp) return;
        cutZeros();
        if (m_end[-1] == '.') --m_end;
    }

    /// Copies the text with its sign and a zero to out. Returns its length.
    int copyTo(char *out) {
        if (m_negative) *--m_first = '-';
        std::memcpy(out, m_first, size());
        out[size()] = '\0';
        return static_cast<int>(size());
    }

private:
    static constexpr auto npos = std::string_view::npos;

    std::size_t size() const { return static_cast<std::size_t>(m_end - m_first); }
    void put(char c) { *m_end++ = c; }

    // The integer part by its own division, last digit first.
    void putLargeWhole(double whole) {
        char digits[kWholeDigits];
        char *first = digits + kWholeDigits;
        while (whole != 0) {
            const double rest = std::modf(whole / 10, &whole);
            *--first = static_cast<char>('0' + static_cast<int>((rest + 0.01) * 10));
        }
        const auto count = static_cast<std::size_t>(digits + kWholeDigits - first);
        std::memcpy(m_end, first, count);
        m_end += count;
    }

    // The next digit of the fraction, '0' when it is used up.
    char nextDigit() {
        m_fraction *= 10;
        const int digit = static_cast<int>(m_fraction);
        m_fraction -= digit;
        return static_cast<char>('0' + digit);
    }

    // Rounds by the digit behind the last. True when the carry made a new leading 1.
    bool roundBy(char behind) {
        if (behind <= '4') return false;
        for (char *p = m_end; p > m_first;) {
            --p;
            if (*p == '.') continue;
            if (*p != '9') {
                ++*p;
                return false;
            }
            *p = '0';
        }
        *--m_first = '1';
        return true;
    }

    // Cuts the zeros at the end; a first digit stays.
    void cutZeros() {
        while (m_end - m_first > 1 && m_end[-1] == '0')
            --m_end;
    }

    void putExponent(char letter, int exponent) {
        put(letter);
        put(exponent < 0 ? '-' : '+');
        const int magnitude = exponent < 0 ? -exponent : exponent;
        if (magnitude < 10) put('0');
        m_end = std::to_chars(m_end, m_room + kRoom, magnitude).ptr;
    }

    char m_room[kRoom];
    char *m_first = m_room + kFront;
    char *m_end = m_first;
    double m_fraction = 0;
    bool m_negative;
};

int copyWord(char *out, std::string_view word) {
    word.copy(out, word.size());
    out[word.size()] = '\0';
    return static_cast<int>(word.size());
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSign(char c) { return c == '+' || c == '-'; }

// value multiplied by factor, count times. Ends early where nothing changes any more: at 0 and infinity.
double scaled(double value, double factor, int count) {
    for (; count > 0; --count) {
        const double next = value * factor;
        if (next == value) break;
        value = next;
    }
    return value;
}

// Reads decimal digits. Larger exponents than the limit do what the limit does: 0 or infinity is reached
// within 633 steps from any double.
int readExponent(const char *&text) {
    constexpr int limit = 1000;
    int exponent = 0;
    for (; isDigit(*text); ++text)
        if (exponent < limit) exponent = exponent * 10 + (*text - '0');
    return exponent;
}

// Reads digits and a fraction. text moves behind them; hasDigits tells whether there was a digit.
double readMantissa(const char *&text, bool &hasDigits) {
    const char *first = text;
    double value = 0.0;
    for (; isDigit(*text); ++text)
        value = value * 10 + (*text - '0');
    hasDigits = text != first;
    if (*text != '.') return value;
    first = ++text;
    for (double scale = 0.1; isDigit(*text); ++text) {
        value += (*text - '0') * scale;
        scale *= 0.1;
    }
    hasDigits = hasDigits || text != first;
    return value;
}

}  // namespace

int kv_dtoa(char *out, double value, int format, int /*reserved*/, int precision) {
    const bool isGeneral = format == 'g' || format == 'G';
    const bool isExponent = format == 'e' || format == 'E';
    if (format != 'f' && !isGeneral && !isExponent) return copyWord(out, "");
    if (std::isnan(value)) return copyWord(out, "NaN");
    if (std::isinf(value)) return copyWord(out, value < 0 ? "-Infinity" : "Infinity");

    if (precision <= 0) precision = kDefaultPrecision;
    if (precision > kLargestPrecision) precision = kLargestPrecision;
    NumberText text(std::fabs(value), value < 0);
    if (isGeneral)
        text.formGeneral(precision, format == 'g' ? 'e' : 'E');
    else if (isExponent)
        text.formExponent(precision, static_cast<char>(format), false);
    else
        text.formFixed(precision);
    return text.copyTo(out);
}

std::string kv_dtostr(double value, int precision) {
    char text[kRoom];
    return {text, static_cast<std::size_t>(kv_dtoa(text, value, 'f', 0, precision))};
}

double kv_strtod(const char *text, const char **end) {
    while (*text == ' ' || *text == '\t')
        ++text;
    const bool negative = *text == '-';
    if (isSign(*text)) ++text;
    bool hasDigits = false;
    double value = readMantissa(text, hasDigits);
    if (hasDigits && (*text == 'e' || *text == 'E')) {
        ++text;
        const bool down = *text == '-';
        if (isSign(*text)) ++text;
        value = scaled(value, down ? 0.1 : 10.0, readExponent(text));
    }
    if (end != nullptr) *end = text;
    return negative && hasDigits ? -value : value;
}
