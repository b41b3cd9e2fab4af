#include "kvbase/text/std_string_utils.h"

#include <cctype>

namespace {

template <class Case>
std::string withCase(std::string text, Case caseOf) {
    for (char &c : text)
        c = static_cast<char>(caseOf(static_cast<unsigned char>(c)));
    return text;
}

}  // namespace

namespace StdStringUtils {

std::string ToLowerCase(const std::string &text) {
    return withCase(text, [](int c) { return std::tolower(c); });
}

std::string ToUpperCase(const std::string &text) {
    return withCase(text, [](int c) { return std::toupper(c); });
}

}  // namespace StdStringUtils
