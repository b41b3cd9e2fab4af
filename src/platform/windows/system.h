#pragma once

// The system's own header, without what it would do to our names, and what more than one file here needs.

#if !defined(NOMINMAX)
#    define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#    define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <memory>

#include "kvbase/base/types.h"

namespace kv::detail {

/// Closes a handle of the kernel.
struct CloseKernelHandle {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using KernelHandle = std::unique_ptr<void, CloseKernelHandle>;

/// A path as system calls take it. One that could be too long for them becomes absolute and gets the prefix
/// "\\?\", which lifts the limit of 260 units. False when it holds a zero unit: the system would take the
/// text before that for the path.
bool systemPath(const KV_WString &path, KV_WString &out);

/// The path from its root, without "." and "..". It must not hold a zero unit. Empty on failure.
KV_WString absolutePath(const KV_WString &path);

/// What a call gives that fills a buffer of a stated size and returns the length without its zero, or, where
/// the text did not fit, the size or more. Empty when it fails.
template <class Call>
KV_WString filledBy(Call call) {
    KV_WString text(MAX_PATH, KV_WChar{0});
    for (;;) {
        const DWORD length = call(text.data(), static_cast<DWORD>(text.size()));
        if (length < text.size()) {
            text.resize(length);
            return text;
        }
        text.resize(2 * text.size());
    }
}

}  // namespace kv::detail
