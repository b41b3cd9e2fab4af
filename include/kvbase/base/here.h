#pragma once

/// Time stamp of the source file that is being compiled, as in "Mon Nov 21 14:54:44 2022".
/// A build may define it as one fixed text, which makes the build reproducible.
#if !defined(KV_SOURCE_STAMP)
#    define KV_SOURCE_STAMP __TIMESTAMP__
#endif

/// The place of origin of an exception: time stamp, path and line of the source, as the three
/// arguments that the exceptions' constructors take. The paths of the library's own sources are relative to
/// the project's root when they were built with GCC or clang; any other source has the path that its compiler
/// was given.
#define KV_HERE KV_SOURCE_STAMP, __FILE__, __LINE__
