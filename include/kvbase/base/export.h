#pragma once

/// KV_EXPORT marks every class and function that leaves the library; nothing else does.
/// KV_MODULE_EXPORT marks, with extern "C", what a component module shows to those who load it.
#if defined(_WIN32)
#    if defined(KVBASE_BUILDING)
#        define KV_EXPORT __declspec(dllexport)
#    else
#        define KV_EXPORT __declspec(dllimport)
#    endif
#    define KV_MODULE_EXPORT __declspec(dllexport)
#else
#    define KV_EXPORT __attribute__((visibility("default")))
#    define KV_MODULE_EXPORT __attribute__((visibility("default")))
#endif
