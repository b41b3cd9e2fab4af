#pragma once

#include <iosfwd>
#include <memory>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_text_encoding.h"
#include "kvbase/text/kv_utf_string.h"

/// Text in the system's own encoding, such as file names, with its UTF-8 form on request. The UTF-8 form is
/// made at the first request and kept until the text changes. One thread at a time, also for GetUtfString.
/// Until Initialize, a conversion of a text that is not empty fails with -1 and gives an empty text.
class KV_EXPORT KV_SystemString {
public:
    KV_SystemString() = default;
    /// Copies the text, not the UTF-8 form.
    KV_SystemString(KV_SystemString &other) : KV_SystemString(static_cast<const KV_SystemString &>(other)) {}
    KV_SystemString(const KV_SystemString &other) : m_text(other.m_text) {}
    KV_SystemString(KV_SystemString &&) noexcept = default;
    /// Copies the bytes as they stand.
    KV_SystemString(const KV_String &text) : m_text(text) {}
    /// As Set of the same argument, which tells about failure.
    KV_SystemString(const KV_UTFString &text) { Set(text); }
    KV_SystemString(const char *text, bool isUtf) { Set(text, isUtf); }
    virtual ~KV_SystemString() = default;

    KV_SystemString &operator=(const KV_SystemString &other);
    KV_SystemString &operator=(KV_SystemString &&) noexcept = default;

    /// Copy the bytes as they stand. Return 0.
    int Set(KV_SystemString &other);
    int Set(const KV_String &text);
    /// Converts to the system's encoding, up to the first 0 byte; what stands behind that is left out, which
    /// is no failure. Returns 0, or -1 when the conversion failed: a rune without a form there is "?" in the
    /// text, and what could not be converted at all leaves the empty text.
    int Set(const KV_UTFString &text);
    /// With isUtf, sanitises the text and converts it as above; else copies the bytes and returns 0. The text
    /// may be that of this object. Null counts as the empty text.
    int Set(const char *text, bool isUtf);

    /// The text in the system's encoding.
    const KV_String &GetSystemString() const { return m_text; }
    /// The text in UTF-8. It stays this object's, until the text changes. Empty when the conversion failed;
    /// the next call then tries again, and fills the same string.
    const KV_UTFString &GetUtfString() const;

    /// Writes the system text.
    virtual void PrintOn(std::ostream &stream) const;

    /// KV_TextEncodingConverter::Initialize of mSystemTEC, to be called once at start-up, before threads use
    /// system strings. Returns 0.
    static int Initialize(const char *locale);
    /// Does nothing.
    static void Cleanup();

    /// Converts all system strings.
    static KV_TextEncodingConverter mSystemTEC;

private:
    KV_String m_text;
    mutable std::unique_ptr<KV_UTFString> m_utf;  // null until asked for
};
