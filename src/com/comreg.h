#pragma once

#include <cstddef>
#include <cstdint>

#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/univval/kv_dict_path.h"
#include "kvbase/univval/kv_uval_dict.h"

/// The store of an installation's settings: which modules there are, where folders lie, what is traced. It is
/// read from a text file of values, once, and lives in two forms: raw, as the file has it, and clean, where
/// every string is a KV_UTFString whose references "@{" path "}" are expanded. Reads go to the clean form;
/// the file is never written.
///
/// The sections "Components", "Environment" and "Tracing" always exist. "Environment" has "PreferencePath",
/// the folder of this system's files of the user, and "TmpPath", unless the file says otherwise.
///
/// A reference stands for the string at that path from the top of the registry, clean if it has been cleaned
/// already, else raw; what it holds is expanded in turn. A path that leads nowhere or to something else than
/// a string stands for nothing. References that would go on for ever are a syntax error: a value takes at
/// most 1,000 expansions and grows by at most 65,536 bytes, all values together 100,000 and 16 MiB.
///
/// Failures are KV_COMException, and KV_FileException from reading the file. Internal; no lock: the manager's
/// callers keep apart those who add entries.
class KV_Registry {
public:
    /// Reads "NAME.krg" beside the running program "NAME.exe" if there is such a file, else "kalvor.krg" in
    /// the current folder.
    KV_Registry();
    /// What becomes of the folder that is the default of "PreferencePath".
    enum class UserFolder { made, told };
    /// Reads a file.
    explicit KV_Registry(const KV_FileSpec &file, UserFolder folder = UserFolder::made);
    KV_Registry(const KV_Registry &) = delete;
    KV_Registry &operator=(const KV_Registry &) = delete;
    ~KV_Registry() = default;

    /// The clean string at section and key; the caller's, to be deleted. Throws NoSuchValue when there is
    /// none, InvalidComponentId when it is no string.
    KV_UTFString *GetEntry(const KV_DictPath &section, const KV_DictPath &key);
    /// The clean dictionary at a path, which stays the registry's. Throws NoSuchSection, or
    /// InvalidComponentId when it is something else.
    KV_UValDict *GetSection(const KV_DictPath &section);
    /// The same; makes it in both forms when there is none. Throws RegistryNotCreated when there is no place
    /// for it.
    KV_UValDict *NewSection(const KV_DictPath &section);
    /// Stores value raw and expanded, in place of an earlier entry, and returns the expanded string, which is
    /// the registry's and lives until the entry is replaced. value, made with new, is the registry's from now
    /// on, also when its expansion fails (SyntaxError), there is no place for it (InvalidComponentId) or
    /// memory runs out; without the section (NoSuchSection, InvalidComponentId) it stays the caller's.
    KV_UTFString *NewEntry(const KV_DictPath &section, const KV_DictPath &key, KV_UTFString *value);

    /// The file at a key of "Environment". Throws as GetEntry does.
    void GetFileSpec(const KV_String &key, KV_FileSpec &out);
    /// The mask of a module's tracer. Throws NoSuchValue, or InvalidComponentId for anything but a
    /// KV_UValLong.
    std::uint32_t GetTracingMask(const KV_String &module);
    /// Whether there is tracing, and whether it is 1 to a file. 0 when the entry is missing or no
    /// KV_UValLong.
    std::int32_t DoTracing();
    std::int32_t TraceToFile();
    /// The name of a trace file that is begun now, of any length: "TraceFileName", "KalvorLog" without it,
    /// and the local time.
    void TraceFileName(KV_String &out);

    /// The file that was read.
    const KV_FileSpec &File() const { return m_file; }
    /// The whole of the raw form.
    KV_UValDict &Raw() { return m_raw; }

private:
    /// What the expansion of values may still cost.
    struct Budget {
        std::size_t expansions = 100000, bytes = std::size_t{1} << 24;
    };

    void read(UserFolder folder);
    void clean();
    KV_UTFString expanded(const KV_UTFString &value, Budget &budget);
    KV_String textAt(const KV_String &path);
    std::int32_t switchAt(const char *key);

    KV_FileSpec m_file;
    KV_UValDict m_raw{16384}, m_clean{16384};
};
