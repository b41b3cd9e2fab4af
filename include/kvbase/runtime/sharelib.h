#pragma once

#include "kvbase/base/export.h"
#include "kvbase/text/kv_system_string.h"

class KV_FileSpec;

/// A dynamic library that is looked for, loaded and held, such as a component module. The library is named as
/// a rule without folder and extension, and its folder is given beside it; both are in the process's own
/// encoding, with backslashes as separators on every platform, and are only read. ".dll" below stands for the
/// platform's extension, ".so" on POSIX.
///
/// One thread at a time. Loading never changes the current folder, which belongs to all threads.
class KV_EXPORT KV_SharedLib {
public:
    /// No name, nothing loaded.
    KV_SharedLib() = default;
    /// The library of that name in the folder path, which may be empty. Loads nothing yet.
    KV_SharedLib(KV_SystemString &name, KV_SystemString &path);
    /// Refused: each of two objects would give the one handle back.
    KV_SharedLib(const KV_SharedLib &) = delete;
    KV_SharedLib &operator=(const KV_SharedLib &) = delete;
    /// Gives the library back.
    ~KV_SharedLib();

    /// Composes the full path: the folder, a backslash, the name and ".dll"; without a folder the name and
    /// ".dll". A folder that ends in a backslash gets another one.
    void SetFullPath();
    /// The full path as it was composed last, or as Load found the library beside its neighbour.
    const KV_SystemString &GetFullPath() const { return m_fullPath; }

    /// Whether a library is loaded.
    bool IsLoaded() const { return m_loaded; }
    /// Takes name and path, then as below.
    void Load(KV_SystemString &name, KV_SystemString &path, const KV_FileSpec *neighbour);
    /// Composes the full path; then, unless a library is loaded, loads the first that is found of
    /// 1. with a folder, the name in it; what the library depends on is then looked for there first where the
    ///    system allows (on POSIX a library says so itself, by $ORIGIN);
    /// 2. the full path;
    /// 3. the bare name, by the system's own search;
    /// 4. with a neighbour, which is only read, the full path in the folder of that file: it becomes the full
    ///    path when the library is there.
    /// So the folder that is given comes before a library of that name beside the program, where the system's
    /// own search would look first: who names a folder means the library in it, wherever the program lies.
    /// A name and a full path without any folder are looked for as the system does it; on POSIX beside the
    /// program and in the current folder first. A bare name without a dot gets the extension.
    /// A name that holds "_static_dll" stands for a module that is linked into the running program: nothing
    /// is loaded, and nothing fails.
    /// Throws KV_FileException (FileNotFound, the name, the system's last error) when nothing was found;
    /// nothing is loaded then, and another attempt may follow.
    void Load(const KV_FileSpec *neighbour);
    /// Gives the library back; the system unloads it when nobody else holds it. Its functions are then gone.
    void Release();

    /// The address of an exported function of the library, null when it has none of that name. While nothing
    /// is loaded, of a function that the running program exports.
    void *FindSymbol(const char *name) const;

    /// Does nothing.
    void AddDebugD(KV_SystemString &text);

private:
    KV_SystemString m_name;
    KV_SystemString m_path;
    KV_SystemString m_fullPath;
    bool m_loaded = false;
    void *m_module = nullptr;  // the platform's handle, null unless loaded
};
