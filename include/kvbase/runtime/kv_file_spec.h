#pragma once

// Names of files and directories. Names only: nothing here opens, creates, removes or lists anything. A value
// is used by one thread at a time.

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"
#include "kvbase/text/kv_string.h"

class KV_SystemString;

/// The path of a file or a directory: wide text with the backslash as the only separator, on every platform.
/// What goes in is what comes out: nothing is normalised, forward slashes are plain characters, drive letters
/// have no meaning of their own, and an unpaired surrogate or a zero unit stays as it stands. An empty path
/// means "not set".
///
/// Narrow text, in and out, is UTF-8. Paths of any length are converted whole. What has no counterpart, an
/// invalid byte sequence on the way in or an unpaired surrogate on the way out, becomes U+FFFD.
///
/// Nothing raises. Each query says what an empty path gives; those that report it write one error line to the
/// tracer "KvBaseTrace". Copies are deep.
class KV_EXPORT KV_FileSpec {
public:
    /// The empty path.
    KV_FileSpec() = default;
    /// The text as it stands.
    KV_FileSpec(const KV_WString &path);
    /// The text, from UTF-8.
    KV_FileSpec(const KV_String &path);
    /// The system string's bytes, taken as UTF-8.
    KV_FileSpec(const KV_SystemString &path);

    /// Equal lengths and equal units. Case counts, also where the file system does not tell cases apart, and
    /// so does a separator at the end.
    bool operator==(const KV_FileSpec &other) const;
    bool operator!=(const KV_FileSpec &other) const;

    /// Appends a piece of a path. A separator goes between when the path is not empty and neither does the
    /// path end with one nor the piece begin with one; so an empty piece gives such a path a separator at its
    /// end. Separators on both sides are both kept. The piece may be the path of this very object.
    KV_FileSpec &operator+=(const KV_WString &piece);
    /// The same with a piece in UTF-8.
    KV_FileSpec &operator+=(KV_String piece);
    /// The same with a piece in UTF-8, up to its terminator. Null counts as the empty piece.
    KV_FileSpec &operator+=(const char *piece);

    /// True when the path is not empty.
    bool IsValid() const;

    /// True when the file system finds anything at the path: a file, a directory, also a link that leads
    /// nowhere. The last component may hold the wild cards "*" and "?"; such a path exists when any name of
    /// its directory matches: on Windows as FindFirstFileW matches, on POSIX any but "." and ".." and those
    /// for which no path of this class stands (with a backslash, or bytes that are no UTF-8). Case counts
    /// where it does in the file system; on POSIX always beside wild cards. A path that ends in a separator,
    /// and the empty path, give false; nothing is reported.
    bool FileExists() const;

    /// The whole path, not its last component. The reference holds until the path changes. An empty path is
    /// reported.
    const KV_WString &GetFileNameW() const;
    /// The whole path in UTF-8. An empty path is reported.
    KV_String GetFileName() const;

    /// The last component, extension included: what follows the last separator, or the whole path when there
    /// is none. The result is false when that is empty; out is then empty. An empty path is reported, gives
    /// false, and leaves out as it was.
    bool GetBaseFileNameW(KV_WString &out) const;
    /// The same in UTF-8; out stays as it was whenever the result is false.
    bool GetBaseFileName(KV_String &out) const;

    /// The directory: what precedes the last separator, without that separator. The result is false when that
    /// is empty; out is then empty. Without a separator the result is false and out stays as it was; for an
    /// empty path likewise, and that is reported.
    bool GetFullPathNameW(KV_WString &out) const;
    /// The same in UTF-8; out stays as it was whenever the result is false.
    bool GetFullPathNameW(KV_String &out) const;

    /// The bare name of the directory that holds the file: the last component of its directory, not a path.
    /// Results and failures are those of GetFullPathNameW.
    bool GetParentDirectoryNameW(KV_WString &out) const;
    /// The same in UTF-8; out stays as it was whenever the result is false.
    bool GetParentDirectoryName(KV_String &out) const;

private:
    KV_WString m_path;
};

/// The file at a path as the system spells it, in UTF-8. On POSIX the separators "/" become backslashes, and
/// a backslash that is part of a name cannot be told from them.
KV_EXPORT KV_FileSpec KV_FileSpecFromNative(const KV_String &path);

/// The path of a file as the system spells it, in UTF-8; on POSIX with "/" as separator. Empty for an empty
/// path, which is not reported.
KV_EXPORT KV_String KV_NativePath(const KV_FileSpec &file);
