#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/runtime/kv_lock.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/univval/kv_dict_path.h"
#include "kvbase/univval/kv_uval_dict.h"

class KV_COMComponent;
class KV_Cacher;
class KV_ProfileCompare;
class KV_ProfileRef;
class KV_Registry;
enum KV_CachingMethod : std::int32_t;

/// The root of the component framework, which a program makes once. It reads the registry, knows the
/// component modules, hands out their objects by path, keeps the folders and settings of the installation,
/// and owns the cache of links and the comparer of profiles.
///
/// The registry is a text file of values (kvbase/univval/kv_uval_text.h) that holds one dictionary:
///
///     << /Components << /ProfileModule (profilemodule) >>
///        /Environment << /Profiles (@{Environment:PreferencePath}\\Profiles) >>
///        /Tracing << /DoTracing 1 /TraceToFile 1 /TraceFileName (MyLog) /KvBaseTrace 1 >> >>
///
/// "Components" is a tree of any depth whose strings are the modules' file names; the keys that lead to one
/// are a path that it serves. "Environment" has paths: "PreferencePath", the folder of this system's files of
/// the user, and "TmpPath", unless the file says otherwise, and any others. "Tracing" switches tracing on
/// ("DoTracing", an integer that isn't 0), to a file ("TraceToFile" 1) of a name that begins with
/// "TraceFileName", and gives a mask for each tracer by its name. Within strings "@{" path "}" stands for the
/// string at that path from the top; for nothing when there is none. One that would go on for ever, or a
/// value that takes more than 1,000 of them or 65,536 further bytes (all together 100,000 and 16 MiB), is a
/// syntax error, and so are components whose paths have more than 16 MiB together.
///
/// The first object of a module loads it; it stays loaded as long as the manager lives. All objects must be
/// released before.
///
/// CreateObject may be called by any number of threads at once; it holds a lock that the same thread may take
/// again, so a module may call it from KV_Init and KV_CreateObject. Use counts may be changed by any thread
/// while nobody adds components or registry entries. All else, the setters and what changes the registry,
/// runs unguarded: callers keep other threads away themselves. The cache has locks of its own.
class KV_EXPORT KV_COMManager {
public:
    /// Gives the file of characterization data of a name.
    using CharacterizationCallback = KV_WString (*)(const std::string &name);

    /// Takes the registry "NAME.krg" beside the running program "NAME.exe" if there is such a file, else
    /// "kalvor.krg" in the current folder. Makes the folder of the user's files of this system, starts
    /// tracing when the registry says so, and loads no module. Throws KV_FileException when the file can't be
    /// opened or isn't a dictionary, KV_COMException for what is wrong in it: SyntaxError for a reference
    /// without an end or without bound, RegistryNotCreated for a section that is no dictionary,
    /// InvalidComponentId for a "PreferencePath" that is no string. Nothing is left behind then.
    KV_COMManager();
    /// The same with that registry. A module that is found nowhere else is looked for beside this file.
    explicit KV_COMManager(const KV_FileSpec &registryFile);
    KV_COMManager(const KV_COMManager &) = delete;
    KV_COMManager &operator=(const KV_COMManager &) = delete;
    /// Empties the cache, ends and unloads the modules in the order of their file names, and ends the trace
    /// file that this manager began.
    ~KV_COMManager();

    // ---- objects and components --------------------------------------------------------------------------

    /// A new object of the module that serves the path. The last key of path names the kind of object, those
    /// before it the entry in "Components". The module gets the keys behind those that all its paths have in
    /// common, and answers with a pointer of the type that interfaceName stands for; it is the caller's by
    /// the rules of that interface. Loads the module when it isn't loaded yet.
    ///
    /// Throws KV_COMException (ComponentNotFound) when there is no such entry, the module refuses, or it is
    /// asked while its own KV_Init runs; KV_FileException (FileNotFound) when the module isn't found, and
    /// KV_COMException (InvalidComponent) when it lacks an entry point; what the module throws.
    void *CreateObject(KV_DictPath path, const char *interfaceName);
    /// Adds the module file (its name, UTF-8, which is copied and should hold no references) at a path of
    /// "Components", in place of a former one there. A module that is known already serves path from now on,
    /// too, so that its objects are asked for by longer paths if path lies elsewhere. Throws KV_COMException
    /// (InvalidComponentId, SyntaxError) when the registry has no place for it; nothing is changed then.
    void NewComponent(char *file, KV_DictPath path);
    /// Does nothing.
    void AddComponents(char *file, KV_DictPath path, bool flag);
    /// Forgets the component whose file name equals the path's text, in which each key has a separator behind
    /// it: "a.b:" for the path of the key "a.b". It serves no longer, but stays loaded as long as the
    /// manager. Throws KV_COMException (InvalidComponentId) when there is none of that name.
    void DeleteComponent(KV_DictPath path);
    /// The number of entries of a section of the registry, at its own level. Throws KV_COMException
    /// (NoSuchSection) when there is none.
    std::uint32_t ComponentCount(KV_DictPath section);
    /// For modules, to count an object that was made or released: the component at that path of "Components"
    /// has one use more, or less, down to none. A path without a component has no effect.
    void IncreaseUseCount(KV_DictPath path);
    void DecreaseUseCount(KV_DictPath path);
    /// The uses of the component whose whole id is that path; 0 when there is none.
    std::uint32_t UseCount(KV_DictPath id);
    /// The uses of all components.
    std::uint32_t TotalUseCount();

    // ---- registry ----------------------------------------------------------------------------------------
    // Text is UTF-8, with its references expanded.

    /// Reads a registry as the constructor does, for those who only look: no folder is made, no trace begun,
    /// no module known. raw becomes what the file holds, with the sections and the entries of "Environment"
    /// that it lacks; expanded the same with references expanded, all strings as KV_UTFString. Throws as the
    /// constructor does, except that "PreferencePath" may be of any type; raw and expanded then keep what
    /// they hold.
    static void ReadRegistry(const KV_FileSpec &file, KV_UValDict &raw, KV_UValDict &expanded);

    /// The string at section and key, new; the caller deletes it. Throws KV_COMException: NoSuchValue, or
    /// InvalidComponentId when it is no string.
    KV_UTFString *RegistryGetEntry(KV_DictPath section, KV_DictPath key) const;
    /// The dictionary of a section, which stays the registry's. Throws KV_COMException: NoSuchSection, or
    /// InvalidComponentId when it is none.
    KV_UValDict *RegistryGetSection(KV_DictPath section);
    /// Stores value at section and key, in place of a former entry, and returns its expanded form. Both are
    /// the registry's from then on, and live until the entry is replaced or the manager goes: value has to be
    /// made with new, and neither is deleted by the caller. A value whose references fail stays in the raw
    /// form, where others can still refer to it.
    /// Nothing is written to the file. Throws KV_COMException: NoSuchSection, with value still the caller's;
    /// SyntaxError for its references and InvalidComponentId when there is no place for it, with value
    /// deleted, at once or with the registry.
    KV_UTFString *RegistryNewEntry(KV_DictPath section, KV_DictPath key, KV_UTFString *value);
    /// The path at a key of "Environment". Throws as RegistryGetEntry; out is as it was then.
    void GetRegFileSpec(KV_String key, KV_FileSpec &out) const;
    /// The trace mask at a name of "Tracing". Throws KV_COMException: NoSuchValue, or InvalidComponentId when
    /// it is no 32-bit integer.
    std::uint32_t GetTracingMask(KV_String module) const;

    // ---- folders -----------------------------------------------------------------------------------------
    // Null until set. What a getter returns stays the manager's and goes at the next setting; a setter
    // copies.

    /// The registry's file, when it was given to the constructor.
    KV_FileSpec *GetPath() const { return m_path.get(); }
    /// The folder of the modules; the first place in which one is looked for.
    KV_FileSpec *GetLibPath() const { return m_libPath.get(); }
    void SetLibPath(const KV_FileSpec &path);
    KV_FileSpec *GetSITRDirPath() const { return m_sitrDirPath.get(); }
    void SetSITRDirPath(const KV_FileSpec &path);
    KV_FileSpec *GetScreenDirPath() const { return m_screenDirPath.get(); }
    void SetScreenDirPath(const KV_FileSpec &path);
    KV_FileSpec *GetColorConversionProfilesPath() const { return m_colorConversionProfilesPath.get(); }
    void SetColorConversionProfilesPath(const KV_FileSpec &path);
    /// At first "TonvaleX\Targets\" in the "PreferencePath" of the registry.
    KV_FileSpec *GetTargetDirPath() const { return m_targetDirPath ? m_targetDirPath.get() : GetPath(); }
    void SetTargetDirPath(const KV_FileSpec &path);
    KV_FileSpec *GetCachingPath() const { return m_cachingPath.get(); }
    /// Also sets that of the cache, whose link files' names begin with this text: it should end with a
    /// separator.
    void SetCachingPath(const KV_FileSpec &path);
    /// Bytes up to the terminator, as they stand. Null unsets it.
    char *GetTmpDirPath() const { return m_tmpDirPath.get(); }
    void SetTmpDirPath(char *path);

    // ---- characterization data ---------------------------------------------------------------------------

    /// The folder of the data. A callback that was set goes before it, for good.
    void SetCharacterizationDataPath(const KV_FileSpec &path);
    /// Has callback tell where data lie, and forgets the folder. Null changes nothing.
    void SetCallBackCharacterizationDataPath(CharacterizationCallback callback);
    /// Where the data of a name lie: what the callback says, else the name (UTF-8, up to a zero byte) in the
    /// folder; null without either, and for a name of more than 511 bytes. Nothing is looked for. The result
    /// is the manager's and goes with the next call.
    KV_FileSpec *GetCharacterizationDataPath(const std::string &name);
    /// The enciphered file of the data of a name, which counts up to its first point: that name with
    /// "_Kalvor.enc" behind it, if it exists; else, as long as the name ends in "L", the same without that
    /// letter. Null when there is none. The result is as above.
    KV_FileSpec *GetCharacterizationDataFileSpec(const std::string &name);

    // ---- options -----------------------------------------------------------------------------------------

    /// A flag for modules to read. True at first.
    bool GetRegularizationOption() const { return m_regularization; }
    void SetRegularizationOption(bool on) { m_regularization = on; }

    // ---- cache -------------------------------------------------------------------------------------------

    /// The cache, which stays the manager's.
    KV_Cacher *Cacher() const { return m_cacher.get(); }
    // As the operations of KV_Cacher of these names, which tell what they do and raise.
    KV_CachingMethod GetCachingMethod() const;
    void SetCachingMethod(const KV_CachingMethod &method);
    void SetMaxCacheSize(std::uint32_t size);
    bool GetMultiThreading() const;
    void SetMultiThreading(bool on);
    void RemoveFileCache();
    void RemoveMemCache();
    void RemoveOldLinks();

    // ---- services ----------------------------------------------------------------------------------------

    /// As KV_ProfileCompare::Equal.
    bool ProfilesEqual(KV_FileSpec &first, KV_FileSpec &second);
    bool ProfilesEqual(KV_ProfileRef &first, KV_ProfileRef &second);
    /// As KalvorTrace.
    void Trace(std::string &text, std::uint32_t mask);
    /// Do nothing.
    void PrintOn(std::ostream &stream);
    void DumpOn(std::ostream &stream);

private:
    // By file name, which the component points to.
    using Components = std::map<std::string, std::unique_ptr<KV_COMComponent>, std::less<>>;

    // Ends the trace file at the end, if it was begun here.
    struct TraceFile {
        ~TraceFile();
        bool isBegun = false;
    };

    KV_COMManager(std::unique_ptr<KV_Registry> registry, std::unique_ptr<KV_FileSpec> path);
    void CollectKeys();
    void addComponent(const std::string &file, const KV_DictPath &path);
    void startTracing();
    KV_COMComponent *Component(const KV_DictPath &path) const;

    // What is below goes first.
    KV_Mutex m_mutex;  // held by CreateObject
    TraceFile m_traceFile;
    std::unique_ptr<KV_FileSpec> m_path, m_libPath, m_targetDirPath, m_sitrDirPath, m_screenDirPath,
        m_characterizationDataPath, m_characterizationResult, m_cachingPath, m_colorConversionProfilesPath;
    std::unique_ptr<char[]> m_tmpDirPath;
    CharacterizationCallback m_characterizationCallback = nullptr;
    bool m_regularization = true;
    std::unique_ptr<KV_Registry> m_registry;
    Components m_components;
    std::vector<Components::node_type> m_forgotten;  // taken out of m_components
    std::unique_ptr<KV_ProfileCompare> m_profileCompare;
    std::unique_ptr<KV_Cacher> m_cacher;
};
