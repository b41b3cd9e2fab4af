#pragma once

// Number text in its plain form: strings, modf, one step after another. Slow; tests and the fuzzer compare
// with it.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace plain {

inline char takeDigit(double &fraction) {
    double digit = 0;
    fraction = std::modf(fraction * 10, &digit);
    return static_cast<char>('0' + static_cast<int>(digit));
}

inline std::string wholeDigits(double whole) {
    std::string digits;
    while (whole != 0) {
        const double rest = std::modf(whole / 10, &whole);
        digits += static_cast<char>('0' + static_cast<int>((rest + 0.01) * 10));
    }
    return {digits.rbegin(), digits.rend()};
}

// Rounds text by the digit behind it, through the point; true when a 1 came in front.
inline bool roundText(std::string &text, char behind) {
    if (behind <= '4') return false;
    auto p = text.rbegin();
    for (; p != text.rend() && (*p == '9' || *p == '.'); ++p)
        if (*p == '9') *p = '0';
    if (p == text.rend()) {
        text.insert(0, 1, '1');
        return true;
    }
    ++*p;
    return false;
}

inline void cutZeros(std::string &text) { text.erase(text.find_last_not_of('0') + 1); }

inline std::string exponentForm(std::string digits, double fraction, std::size_t precision, char letter,
                                bool trim) {
    int exponent = digits.empty() ? 0 : static_cast<int>(digits.size()) - 1;
    if (digits.empty() && fraction != 0)
        for (; digits.empty(); --exponent)
            if (const char digit = takeDigit(fraction); digit != '0') digits = digit;
    while (digits.size() < precision + 2)
        digits += digits.empty() ? '0' : takeDigit(fraction);
    std::string kept = digits.substr(0, precision + 1);
    if (roundText(kept, digits[precision + 1])) {
        kept.pop_back();
        ++exponent;
    }
    if (trim) kept.erase(std::max<std::size_t>(1, kept.find_last_not_of('0') + 1));
    if (kept.size() > 1) kept.insert(1, 1, '.');
    char tail[16];
    std::snprintf(tail, sizeof tail, "%c%+03d", letter, exponent);
    return kept + tail;
}

// The text of kv_dtoa; the precision is 1 to 39.
inline std::string dtoa(double value, char format, int precision) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
    double whole = 0;
    double fraction = std::modf(std::fabs(value), &whole);
    const std::string digits = wholeDigits(whole);
    const auto places = static_cast<std::size_t>(precision);
    std::string sign = value < 0 ? "-" : "";

    if (format == 'e' || format == 'E') return sign + exponentForm(digits, fraction, places, format, false);
    std::string text = digits.empty() ? "0" : digits;
    if (format == 'f') {
        if (fraction == 0) return sign + text;
        text += '.';
        for (int i = 0; i < precision && fraction != 0; ++i)
            text += takeDigit(fraction);
        const bool endsInZero = text.back() == '0';
        roundText(text, takeDigit(fraction));
        if (text.find_first_not_of("0.") == std::string::npos) sign.clear();
        if (endsInZero) cutZeros(text);
        return sign + text;
    }
    if (digits.size() > places || (whole == 0 && fraction != 0 && fraction < 0.0001))
        return sign + exponentForm(digits, fraction, places - 1, format == 'g' ? 'e' : 'E', true);
    text += '.';
    for (std::size_t count = digits.size(); count < places && fraction != 0;) {
        text += takeDigit(fraction);
        if (count > 0 || text.back() != '0') ++count;
    }
    const bool usedUp = fraction == 0;
    roundText(text, takeDigit(fraction));
    if (usedUp) {
        cutZeros(text);
        if (text.back() == '.') text.pop_back();
    }
    return sign + text;
}

// The value of kv_strtod, and in used the count of characters read. Exponents count up to 20000.
inline double strtod(const std::string &text, std::size_t &used) {
    std::size_t i = text.find_first_not_of(" \t");
    if (i == std::string::npos) i = text.size();
    const auto at = [&text](std::size_t place) { return place < text.size() ? text[place] : '\0'; };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const double sign = at(i) == '-' ? -1.0 : 1.0;
    if (at(i) == '-' || at(i) == '+') ++i;
    int count = 0;
    double value = 0.0;
    for (; isDigit(at(i)); ++i, ++count)
        value = value * 10 + (at(i) - '0');
    if (at(i) == '.') {
        double scale = 0.1;
        for (++i; isDigit(at(i)); ++i, ++count, scale *= 0.1)
            value += (at(i) - '0') * scale;
    }
    used = i;
    if (count == 0) return 0.0;
    if (at(i) == 'e' || at(i) == 'E') {
        const double factor = at(++i) == '-' ? 0.1 : 10.0;
        if (at(i) == '-' || at(i) == '+') ++i;
        int exponent = 0;
        for (; isDigit(at(i)); ++i)
            exponent = std::min(exponent * 10 + (at(i) - '0'), 20000);
        for (; exponent > 0; --exponent)
            value *= factor;
        used = i;
    }
    return sign * value;
}

}  // namespace plain
