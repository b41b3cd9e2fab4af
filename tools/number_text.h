#pragma once

#include <string>

namespace kvtool {

/// A number with so many digits after a decimal point, whatever the locale; never "-0".
std::string fixed(double number, int digits);

/// A number with two digits, or with one where the second is 0: what reports hold, and no more than that.
std::string hundredths(double number);

}  // namespace kvtool
