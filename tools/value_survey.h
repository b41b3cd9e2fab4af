#pragma once

#include <string>
#include <vector>

namespace kvtool {

/// What a text that has been read well holds and its values don't: comments, keys that come twice or hold the
/// path separator or a zero byte, numbers out of range, texts that stand for numbers, arrays of several
/// kinds, text behind the value. At most ten lines.
std::vector<std::string> surveyText(const std::string &bytes);

}  // namespace kvtool
