#pragma once

#include <string>
#include <string_view>

namespace kvtool {

/// Whether the text is UTF-8 throughout, in sequences of one to four bytes.
bool isUtf8(std::string_view text);

/// A text in the form in which it may go to a terminal, for what comes from a file must not steer that:
/// control characters but line ends and tabs, and bytes that are no UTF-8, become octal escapes.
std::string visible(std::string_view text);

}  // namespace kvtool
