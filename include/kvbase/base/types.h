#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Wide text has 16-bit units on every platform.
#if defined(_WIN32)
/// One 16-bit unit of wide text.
using KV_WChar = wchar_t;
/// A wide literal: KV_W("text").
#    define KV_W(text) L##text
#else
/// One 16-bit unit of wide text.
using KV_WChar = char16_t;
/// A wide literal: KV_W("text").
#    define KV_W(text) u##text
#endif
static_assert(sizeof(KV_WChar) == 2, "wide text has 16-bit units");

/// Wide text; UTF-16 where it names a file.
using KV_WString = std::basic_string<KV_WChar>;
