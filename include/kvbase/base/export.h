#pragma once

/// KV_EXPORT marks every class and function that leaves the library; nothing else does.
#if defined(_WIN32)
#    if defined(KVBASE_BUILDING)
#        define KV_EXPORT __declspec(dllexport)
#    else
#        define KV_EXPORT __declspec(dllimport)
#    endif
#else
#    define KV_EXPORT __attribute__((visibility("default")))
#endif
