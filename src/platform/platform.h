#pragma once

// What the library needs of the operating system, by role. posix/ and windows/ implement this header; no
// other file of the tree includes a header of the operating system. Paths come with backslashes as
// separators, and only here, at the moment of a call, do they turn into the native form.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvbase/base/types.h"

namespace kv::platform {

// ---- code pages ------------------------------------------------------------------------------------------

/// The code page of the process's own encoding.
constexpr int kDefaultCodePage = 0;
/// The code page number of UTF-8.
constexpr int kUtf8CodePage = 65001;

/// How a conversion went. A failed conversion (error not 0) leaves its output empty.
struct Conversion {
    std::int32_t error = 0;  ///< the system's error number, 0 for success
    bool replaced = false;   ///< something had no counterpart, and a replacement stands in its place
};

/// Text of a code page to 16-bit units, embedded zeros included. Bytes that mean nothing there become U+FFFD.
/// The default code page of a process that never chose a locale is UTF-8 on POSIX, as its file names are. The
/// system's tables decide; they hold no look-alikes for what a code page lacks. For code pages with a shift
/// state, such as those of ISO 2022, Windows decides what stands for such bytes, and only where that is
/// U+FFFD do they count as replaced.
Conversion toUnits(int codePage, std::string_view text, KV_WString &out);

/// 16-bit units to text of a code page, embedded zeros included. A unit that has no form there becomes "?",
/// so a pair of surrogates two of them, and an unpaired surrogate U+FFFD where the code page is UTF-8; both
/// count as replaced.
Conversion fromUnits(int codePage, std::basic_string_view<KV_WChar> units, std::string &out);

/// The name of the process's current locale for characters, such as "C" or "German_Germany.1252".
std::string localeName();

// ---- files -----------------------------------------------------------------------------------------------

/// Opens a file in a mode of the C library; programs that the process starts do not inherit it. Null on
/// failure, with the C library's number in error (0 on success). A directory and a path with a zero unit in
/// it fail; a mode that does not begin with r, w or a fails with EINVAL. On Windows others can't write to the
/// file meanwhile, nor read one that is open for writing; a mode that its C library does not know, such as
/// "rtb", fails with EINVAL, too.
std::FILE *openFile(const KV_WString &path, const char *mode, std::int32_t &error);

/// Moves to offset from origin (SEEK_SET, SEEK_CUR, SEEK_END), in 64 bits. True on success.
bool seekFile(std::FILE *file, std::int64_t offset, int origin);

/// The position in 64 bits, -1 on failure.
std::int64_t tellFile(std::FILE *file);

/// Deletes a file, never a directory. True when it is gone by this call. On Windows an open file stays.
bool deleteFile(const KV_WString &path);

/// Whether anything, file or directory, is found at the path. The last component may hold the wild cards "*"
/// and "?"; a ".*" at the end also matches nothing, so that "*.*" matches all names. On POSIX names match
/// with their case, and "." and ".." match no wild card, nor do names that no path of this library stands for
/// (with a backslash, or bytes that are no UTF-8); on Windows as FindFirstFileW matches. A link counts
/// wherever it leads, and a path that ends in a separator finds nothing.
bool pathExists(const KV_WString &path);

/// Moves a file to another name of the same volume. A file that has that name is replaced in one step:
/// whoever opens it gets the old contents or the new. On Windows that fails while the other file is open.
/// True on success.
bool renameFile(const KV_WString &from, const KV_WString &to);

/// What became of a request for a directory.
enum class DirectoryOutcome {
    made,          ///< it was created by this call
    exists,        ///< something of that name is there already, a file too
    pathNotFound,  ///< the directory that it should lie in does not exist
    other          ///< anything else, such as a lack of rights
};

/// Creates one directory; its parent must exist.
DirectoryOutcome createDirectory(const KV_WString &path);

/// Takes the marks of a read-only, hidden or system file away where the system has them; on POSIX nothing.
void setNormalAttributes(const KV_WString &path);

/// The names (without their directory) that match a path whose last component holds wild cards, in ascending
/// order of their units, by the rules of pathExists. A last component without wild cards gives the name that
/// it finds, which on Windows may differ in case. Nothing is found in what is no folder, or none that can be
/// read.
std::vector<KV_WString> findNames(const KV_WString &pattern);

/// A path of this library as the system spells it, in UTF-8: "a\b" is "a/b" on POSIX. Unpaired surrogates
/// become U+FFFD.
std::string nativePath(const KV_WString &path);

/// The way back. Bytes that are no UTF-8 become U+FFFD.
KV_WString fromNativePath(std::string_view path);

// ---- folders ---------------------------------------------------------------------------------------------
// All are absolute and empty when the system does not tell.

/// The file of the running program.
KV_WString programPath();

/// The current folder of the process, without a separator at its end unless it is a root.
KV_WString currentFolder();

/// The folder for temporary files, with a separator at its end. On POSIX $TMPDIR, else /tmp.
KV_WString temporaryFolder();

/// The folder of the user's application data. On Windows "APPDATA" of the registry key "Volatile
/// Environment"; on POSIX the first of $APPDATA, $XDG_DATA_HOME and $HOME/.local/share that is set to an
/// absolute path.
KV_WString userDataFolder();

// ---- dynamic libraries -----------------------------------------------------------------------------------

/// What the names of dynamic libraries end in here.
#if defined(_WIN32)
constexpr const char *kLibraryExtension = ".dll";
#else
constexpr const char *kLibraryExtension = ".so";
#endif

/// A loaded library. The system counts how often each was loaded.
using Library = void *;

/// Loads the library at a path. A name without a dot gets the extension first, and one without a folder is
/// looked for beside the program, then in the current folder, then by the system (on Windows wholly by the
/// system, in its own order). Null on failure, with a number of the system in error (0 on success).
Library loadLibrary(const KV_WString &path, std::int32_t &error);

/// Loads the library of that name from a folder, relative to the current one if it is not absolute. On
/// Windows what it depends on is looked for there first; on POSIX the library says itself where ($ORIGIN).
/// Does not change the current folder, which belongs to all threads.
Library loadLibraryFrom(const KV_WString &folder, const KV_WString &name, std::int32_t &error);

/// Gives a library back; the last one to do so unloads it. Null is ignored.
void freeLibrary(Library library);

/// The address of an exported function, null when there is none. Null as library means the running program
/// alone, without the libraries that it has loaded.
void *findSymbol(Library library, const char *name);

// ---- threads ---------------------------------------------------------------------------------------------

/// A mutex within the process that its holder may take again. Its thread must release it as often. Without a
/// heap block of its own.
class RecursiveMutex {
public:
    /// Throws std::bad_alloc or std::system_error when the system has none left.
    RecursiveMutex();
    ~RecursiveMutex();
    RecursiveMutex(const RecursiveMutex &) = delete;
    RecursiveMutex &operator=(const RecursiveMutex &) = delete;
    void lock();
    void unlock();

private:
    alignas(std::max_align_t) unsigned char m_native[64];  // the system's mutex lives in here
};

/// A mutex of the same rules that is an object of the kernel where the system tells the two apart, as Windows
/// does. Private to the process, without a name.
class KernelMutex {
public:
    /// Throws std::bad_alloc or std::system_error when the system has none left.
    KernelMutex();
    ~KernelMutex();
    KernelMutex(const KernelMutex &) = delete;
    KernelMutex &operator=(const KernelMutex &) = delete;
    void lock();
    void unlock();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// A counting semaphore within the process.
class Semaphore {
public:
    /// A maximum below 1, a count outside 0..maximum, or lack of memory makes one that is not valid.
    Semaphore(int initial, int maximum);
    ~Semaphore();
    Semaphore(const Semaphore &) = delete;
    Semaphore &operator=(const Semaphore &) = delete;
    bool isValid() const;
    /// Raises the count by 1; at the maximum it stays. Does nothing when not valid.
    void signal();
    /// Waits for a count above 0 and takes 1. Returns at once when not valid.
    void wait();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// An event that lets one waiter through for each signal; signals do not add up.
class AutoResetEvent {
public:
    AutoResetEvent();
    ~AutoResetEvent();
    AutoResetEvent(const AutoResetEvent &) = delete;
    AutoResetEvent &operator=(const AutoResetEvent &) = delete;
    void signal();
    /// True when a signal came within the time, which takes the signal away. A time of 0 or below only looks.
    bool wait(std::chrono::milliseconds atMost);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// ---- facts -----------------------------------------------------------------------------------------------

/// The operating system's version, in the form of the home platform's version information.
struct OsVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    std::uint32_t platformId = 0;
};

/// A moment in the process's time zone.
std::tm localTime(std::time_t time);

/// Whether the running system is at least the one given. Other systems than the home platform count as its
/// newest.
bool osVersionAtLeast(const OsVersion &wanted);

/// The four parts of the version that the library's file carries: on Windows those of the version resource of
/// "kvbase.dll", elsewhere those that the build gave. False when it carries none.
bool libraryVersion(std::uint16_t (&parts)[4]);

}  // namespace kv::platform
