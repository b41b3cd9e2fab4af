#include "number_text.h"

#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace kvtool {

std::string fixed(double number, int digits) {
    char text[400];
    const auto [end, error] = std::to_chars(text, std::end(text), number, std::chars_format::fixed, digits);
    const std::string_view whole(text, static_cast<std::size_t>(end - text));
    const bool isZero = whole.find_first_not_of("-0.") == std::string_view::npos;
    return std::string(isZero && whole.front() == '-' ? whole.substr(1) : whole);
}

std::string hundredths(double number) {
    std::string text = fixed(number, 2);
    if (text.back() == '0') text.pop_back();
    return text;
}

}  // namespace kvtool
