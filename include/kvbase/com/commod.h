#pragma once

// The edge between this library and a component module: a dynamic library outside this system that offers
// objects to it. docs/modules.md shows how one is written.

#include <atomic>
#include <cstdint>

#include "kvbase/base/export.h"
#include "kvbase/runtime/sharelib.h"
#include "kvbase/univval/kv_dict_path.h"

class KV_COMManager;

namespace kv::detail {
struct ComponentAccess;
}

// What a module defines. KV_Init and KV_CreateObject run under the manager's lock, KV_Exit on the thread that
// ends the manager. They may raise: what they raise reaches the
// caller of CreateObject as it is, to be caught by its type, except from KV_Exit, which ends there. An
// exception has to be gone before the manager is.
extern "C" {
/// Called once, before the module is asked for its first object; again only after it raised, or when
/// KV_CreateObject was missing. manager outlives the module's last call; id is the part of the tree of paths
/// that the module serves. Returns a context of the module's choice, which may be null. The module
/// may ask for objects of other modules here, not for its own.
KV_MODULE_EXPORT void *KV_Init(KV_COMManager *manager, KV_DictPath id);
/// Called for each object. subId is the wanted path without the keys of id. Returns a pointer of the type
/// that interfaceName stands for, which is the caller's by the rules of that interface; null when there is
/// none.
KV_MODULE_EXPORT void *KV_CreateObject(void *context, KV_DictPath subId, const char *interfaceName);
/// Called last, when the manager goes. Not when the module is locked, or two or more of its objects still
/// live: it is then unloaded without.
KV_MODULE_EXPORT void KV_Exit(void *context);
}

/// A module as the manager sees it: its file, what it serves, whether it is loaded and how many of its
/// objects live. Made and driven by KV_COMManager.
///
/// The counts may be changed and read by any thread at any time; all else is the manager's to guard.
class KV_EXPORT KV_COMComponent {
public:
    /// file  the module's file name, UTF-8; only the pointer is kept, and has to outlive the component.
    /// path  what it serves.
    /// Loads nothing.
    KV_COMComponent(const char *file, KV_DictPath path);
    KV_COMComponent(const KV_COMComponent &) = delete;
    KV_COMComponent &operator=(const KV_COMComponent &) = delete;
    /// Ends and unloads the module. One of its objects that still lives, or a lock, is reported by an error
    /// line; with one such object and no lock the module still gets its KV_Exit, with more it gets none.
    virtual ~KV_COMComponent();

    /// The number of objects that the module reports as alive. When there are such, a line of internal detail
    /// (trace bit 0x010) tells so.
    std::uint32_t GetUseCount() const;
    /// The part of the tree of paths that the module serves: what all its paths have in common.
    KV_DictPath Id() const { return m_id; }

private:
    friend class KV_COMManager;
    friend struct kv::detail::ComponentAccess;

    using InitFunction = void *(*)(KV_COMManager *, KV_DictPath);
    using CreateObjectFunction = void *(*)(void *, KV_DictPath, const char *);
    using ExitFunction = void (*)(void *);

    // Finds the library by the manager's GetLibPath and GetPath, calls KV_Init, and looks the other entry
    // points up. Does nothing when a use is counted, an entry point is known, or the module is being loaded
    // further up the stack. Throws KV_FileException (FileNotFound), KV_COMException (InvalidComponent)
    // without an entry point, and what KV_Init throws. What was found until then stays: the library, and
    // KV_CreateObject when only KV_Exit is missing, which then serves.
    void LoadComponent(KV_COMManager *manager);
    // Counts a use down. At none and without a lock ends and unloads the module.
    void UnloadComponent();
    // A lock keeps the module from being unloaded. Both throw InvalidComponent: without a use, without a
    // lock.
    void Lock(KV_COMManager *manager);
    void Unlock();
    // Narrows the id to what it has in common with path.
    void BaseID(const KV_DictPath &path);
    // The path without as many keys as the id has.
    KV_DictPath SubID(const KV_DictPath &path) const;
    // What the module gives for the whole path; null when it isn't loaded.
    void *CreateObject(const KV_DictPath &path, const char *interfaceName);

    void use() { ++m_useCount; }
    void release();

    const char *m_file;
    KV_SharedLib m_library;
    void *m_context = nullptr;
    KV_DictPath m_id;
    std::atomic<std::uint32_t> m_useCount{0};
    std::atomic<std::uint32_t> m_lockCount{0};
    CreateObjectFunction m_createObject = nullptr;
    ExitFunction m_exitModule = nullptr;
    bool m_isLoading = false;
};
