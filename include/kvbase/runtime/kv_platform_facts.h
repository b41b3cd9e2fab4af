#pragma once

// Facts about the running platform, and the version of this library.

#include "kvbase/base/export.h"

/// Makes sure of the record of the operating system's version: 5.0, build 0, platform id 2. When the running
/// system is at least that, and the tracer "KvBaseTrace" is on for the level 0x080, writes the record there
/// as a banner of eight lines. Systems of another family count as such a one. For start-up, on one thread.
KV_EXPORT void SetRuntimeOSVersion();

// The tests answer from that record, also before SetRuntimeOSVersion was called.

/// Platform id 0. Never holds here.
KV_EXPORT bool KV_Win32s();
/// Platform id 1, version 4.0 to 4.9. Never holds here.
KV_EXPORT bool KV_Win95();
/// Platform id 1, version 4.10 or a later 4. Never holds here.
KV_EXPORT bool KV_Win98();
/// Platform id 2, version 4. Never holds here.
KV_EXPORT bool KV_WinNT4();
/// Platform id 2, version 5 or later. Holds always: all that the library runs on counts as such.
KV_EXPORT bool KV_WinNT5();

/// The version of this library as "major.minor.patch.build", on Windows as the version resource of the file
/// "kvbase.dll" tells it, and the empty text when that has none. The text stays the library's.
KV_EXPORT const char *KV_KalvorVersion();
