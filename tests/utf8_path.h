#pragma once

#include <filesystem>
#include <string>

// Paths in UTF-8, as the library's narrow text has them. Those of std::filesystem that come from a
// std::string, or turn into one, are in the system's code page on Windows.

inline std::filesystem::path pathFromUtf8(const std::string &text) {
    return std::u8string(text.begin(), text.end());
}

inline std::string utf8FromPath(const std::filesystem::path &path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}
