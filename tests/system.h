#pragma once

// Which of the systems the tests run on.

#include "platform/platform.h"

#if defined(_WIN32)
constexpr bool kOnWindows = true;
#else
constexpr bool kOnWindows = false;
#endif

// On Windows nobody else may read a file while it is open for writing, nor write to it while it is open at
// all.
constexpr bool kOpenFilesAreShared = !kOnWindows;

// Whether Windows is played by Wine, which lacks some of what Windows has. tests/wine_skips.txt names the
// tests that are skipped there.
inline bool onWine() {
    std::int32_t error = 0;
    const kv::platform::Library system =
        kOnWindows ? kv::platform::loadLibrary(KV_W("ntdll.dll"), error) : nullptr;
    const bool isWine = system != nullptr && kv::platform::findSymbol(system, "wine_get_version") != nullptr;
    kv::platform::freeLibrary(system);
    return isWine;
}
