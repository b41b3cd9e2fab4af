#include "runtime/fixed_decimal.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>
#include <system_error>

namespace kv::detail {
namespace {

static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == 8,
              "doubles are of 64 bits, IEC 60559");
constexpr int kMantissaBits = 52;
constexpr std::uint64_t kMantissaMask = (std::uint64_t{1} << kMantissaBits) - 1;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << kMantissaBits;
constexpr int kSpecialExponent = 0x7ff;  // of infinity and not-a-number
constexpr int kUnitExponent = 1075;      // of doubles whose mantissa counts ones: 2^52 up to 2^53

// "00", "01" up to "99".
constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

char *appendPair(char *out, std::uint32_t value) {
    out[0] = kPairs[2 * std::size_t{value}];
    out[1] = kPairs[2 * std::size_t{value} + 1];
    return out + 2;
}

char *appendText(char *out, std::string_view text) { return out + text.copy(out, text.size()); }

char *appendDecimals(char *out, std::uint32_t millionths) {
    *out++ = '.';
    out = appendPair(out, millionths / 10000);
    out = appendPair(out, millionths / 100 % 100);
    return appendPair(out, millionths % 100);
}

// n * 10^6 / 2^shift to nearest, ties to even, for n below 2^53 and below 2^shift, and shift from 1 to 73.
std::uint32_t toMillionths(std::uint64_t n, int shift) {
    constexpr std::uint64_t million = 1000000;
    std::uint64_t product = 0;
    bool lowBits = false;  // whether the product goes on below the bits that are kept of it
    if (shift <= 32) {
        product = n * million;
    } else {
        const std::uint64_t low = (n & 0xffffffffu) * million;
        product = (n >> 32) * million + (low >> 32);
        lowBits = (low & 0xffffffffu) != 0;
        shift -= 32;
    }
    const std::uint64_t quotient = product >> shift;
    const std::uint64_t rest = product & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const bool up = rest > half || (rest == half && (lowBits || (quotient & 1) != 0));
    return static_cast<std::uint32_t>(quotient) + (up ? 1 : 0);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isExponentMark(char c) { return c == 'e' || c == 'E'; }
bool isSign(char c) { return c == '+' || c == '-'; }
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The end of the longest run from first that goes on like a decimal number; its sign is already behind. A
// stream takes no exponent without a digit in front; here it may stay, since either run is none that can be
// read.
const char *endOfRun(const char *first, const char *last) {
    bool point = false;
    bool exponent = false;
    for (; first < last; ++first) {
        if (*first == '.' && !point && !exponent) {
            point = true;
        } else if (isExponentMark(*first) && !exponent) {
            exponent = true;
            if (last - first > 1 && isSign(first[1])) ++first;
        } else if (!isDigit(*first)) {
            break;
        }
    }
    return first;
}

// Of a number out of range: whether it is too large and not too small. Counts the places of its first digit
// other than 0 in front of the point, and adds the exponent.
bool isTooLarge(const char *first, const char *last) {
    std::ptrdiff_t places = 0;
    bool significant = false;
    bool point = false;
    for (; first < last && !isExponentMark(*first); ++first) {
        significant = significant || (*first != '0' && *first != '.');
        if (*first == '.')
            point = true;
        else if (significant && !point)
            ++places;
        else if (!significant && point)
            --places;
    }
    int exponent = 0;
    if (first < last) {
        first += first[1] == '+' ? 2 : 1;
        if (std::from_chars(first, last, exponent).ec == std::errc::result_out_of_range) return *first != '-';
    }
    return places + exponent > 0;
}

}  // namespace

char *appendFixed6(char *out, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    if ((bits >> 63) != 0) *out++ = '-';
    const int exponent = static_cast<int>(bits >> kMantissaBits) & kSpecialExponent;
    const std::uint64_t fractionBits = bits & kMantissaMask;
    if (exponent == kSpecialExponent) return appendText(out, fractionBits == 0 ? "inf" : "nan");

    // The magnitude is mantissa / 2^shift. Subnormal numbers have no hidden bit, but then nothing is left of
    // them.
    const std::uint64_t mantissa = fractionBits | kHiddenBit;
    const int shift = kUnitExponent - exponent;
    if (shift > 73)
        return appendText(out, "0.000000");  // below 2^-21, which is less than half of a millionth
    if (shift < -11) {                       // 2^64 and more
        const double magnitude = value < 0 ? -value : value;
        return std::to_chars(out, out + kLongestFixed6 - 1, magnitude, std::chars_format::fixed, 6).ptr;
    }
    std::uint64_t whole = 0;
    std::uint32_t millionths = 0;
    if (shift <= 0) {
        whole = mantissa << -shift;
    } else if (shift <= kMantissaBits) {
        whole = mantissa >> shift;
        millionths = toMillionths(mantissa & ((std::uint64_t{1} << shift) - 1), shift);
    } else {
        millionths = toMillionths(mantissa, shift);
    }
    if (millionths == 1000000) {
        millionths = 0;
        ++whole;
    }
    out = std::to_chars(out, out + 20, whole).ptr;  // 20 digits hold every 64-bit number
    return appendDecimals(out, millionths);
}

char *appendInteger(char *out, std::int32_t value) {
    return std::to_chars(out, out + kLongestInteger, value).ptr;
}

bool readDouble(const char *first, const char *last, double &value) {
    value = 0.0;
    while (first < last && isSpace(*first))
        ++first;
    bool negative = false;
    if (first < last && isSign(*first)) negative = *first++ == '-';
    last = endOfRun(first, last);

    double magnitude = 0.0;
    const auto [end, error] = std::from_chars(first, last, magnitude);
    if (error == std::errc::invalid_argument || end != last) return false;
    const bool tooLarge = error == std::errc::result_out_of_range && isTooLarge(first, last);
    if (error == std::errc::result_out_of_range)
        magnitude = tooLarge ? std::numeric_limits<double>::max() : 0.0;
    value = negative ? -magnitude : magnitude;
    return !tooLarge;
}

}  // namespace kv::detail
