#pragma once

#include <locale>
#include <string>

// Numbers as a program's locale may have them: a comma for the point, and groups of three digits.
struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '_'; }
    std::string do_grouping() const override { return "\3"; }
};
