#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kvtool {

/// How many lines the tool gives to one kind of trouble in a file.
constexpr std::size_t kMostLines = 10;

/// What a file holds and the values read from it don't; at most kMostLines lines each.
struct TextSurvey {
    /// What no value holds: comments, a byte order. Writing the values over their file drops it.
    std::vector<std::string> unkept;
    /// "line N: what": a number or text that its value does not give back as it is written (a decimal with
    /// more digits than the type has, a number in the place of a text), a key that comes twice, is empty or
    /// is read as a path, a type keyword without effect, more behind the values. Wherever these go, it is
    /// lost.
    std::vector<std::string> misread;
};

/// Compares a text, which has been read as a dictionary, with what the reader makes of it, token by token.
TextSurvey surveyText(const std::string &bytes);

}  // namespace kvtool
