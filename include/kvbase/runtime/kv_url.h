#pragma once

#include <string>

#include "kvbase/base/export.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/text/kv_string.h"

/// The URL of a file, made from its path and turned back into it. The scheme "file:" is the only one it
/// knows; there is no host, no query and no general percent coding. The URL is "file:", directly followed by
/// the path in UTF-8 with slashes for backslashes and "%20" for blanks: "D:\a b\c.icc" gives
/// "file:D:/a%20b/c.icc". All other bytes, "%", "#" and those above 127 too, stand as they are. So a path
/// comes back as it was when it holds no slash and no "%20" of its own, and no half of a surrogate pair,
/// which becomes U+FFFD.
///
/// Nothing here raises. A value is used by one thread at a time.
class KV_EXPORT KV_URL {
public:
    /// The URL of a path. An empty path gives "file:" and, as wherever it is asked for, is reported to the
    /// tracer.
    KV_URL(const KV_FileSpec &spec);
    /// The text as it stands, unchecked.
    KV_URL(const KV_String &text);
    KV_URL(const KV_URL &) = default;
    KV_URL &operator=(const KV_URL &) = default;
    virtual ~KV_URL();

    /// The URL's text.
    const KV_String &GetURL() const { return m_text; }
    /// The path: the text, without "file:" where it begins so, with backslashes for slashes and blanks for
    /// "%20". Text of another scheme, or of none, is taken whole; "file:" further on is part of the path.
    KV_FileSpec GetUNCPath();
    /// Not offered: gives false and leaves out as it was. GetUNCPath is the working conversion.
    bool GetFileSpec(KV_FileSpec &out) const;
    /// "localhost".
    static KV_String GetHostName();
    /// Not offered: the empty text.
    KV_String GetSambaURL();

private:
    KV_URL() = default;

    static KV_String CreateFileURLFromPath(const KV_FileSpec &spec);
    static KV_FileSpec CreateFileSpecFromFileURL(const KV_String &text);
    static std::string UrlEscape(const std::string &text);
    static std::string UrlUnEscape(const std::string &text);
    // Network paths are not offered: the empty text, and false.
    static KV_String CreateSambaURLFromPath(const KV_FileSpec &spec);
    static bool MountSambaVolume(const KV_String &url);

    KV_String m_text;
};
