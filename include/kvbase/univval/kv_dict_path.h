#pragma once

#include <cstddef>
#include <iosfwd>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"

/// The address of an entry in a tree of dictionaries: a list of keys, from the outermost inward.
///
/// As text the keys are joined by the separator, ":" unless it was changed; the canonical text has one behind
/// the last key too, so "a:b:c:" is the path of a, b and c, and "a:b:c" means the same. The empty text is the
/// path of no keys. A leading separator, and two in a row, make an empty key. Keys are not checked or
/// trimmed. A text ends at its first zero byte, also where its length goes on; a null text counts as empty. A
/// path of 2 GB and more raises std::bad_alloc.
///
/// The separator applies when a path is built from text and when it is turned back into text. A path that is
/// built keeps its keys, and so do its copies.
class KV_EXPORT KV_DictPath {
public:
    /// The path of no keys.
    KV_DictPath();
    /// Builds from text.
    KV_DictPath(const char *text);
    KV_DictPath(const KV_String &text);
    /// The base's keys followed by the keys in sub.
    KV_DictPath(const KV_DictPath &base, const char *sub);
    /// The same keys; the copy is as if built anew, also when other was shortened.
    KV_DictPath(const KV_DictPath &other);
    KV_DictPath &operator=(const KV_DictPath &other);
    /// Takes the keys over; other is the path of no keys afterwards.
    KV_DictPath(KV_DictPath &&other) noexcept;
    KV_DictPath &operator=(KV_DictPath &&other) noexcept;
    /// The text may be one of this path's keys.
    KV_DictPath &operator=(const char *text);
    KV_DictPath &operator=(const KV_String &text);

    virtual ~KV_DictPath();

    /// Writes the text form, with its separators.
    virtual void PrintOn(std::ostream &stream) const;

    /// The number of keys.
    int Size() const { return m_count; }

    /// Null gives the first key (null for the path of no keys). A key of this path gives the text behind that
    /// key's terminator, or null when it has reached the end marker. Walk with Size() as the bound: from the
    /// last key there is one further text before null: the empty one at the end of a new path; the dropped
    /// key after --, unless the last remaining key is empty, which gives null at once. A pointer from
    /// elsewhere gives null. The texts stay the path's, and go when it changes.
    const char *NextKey(const char *key) const {
        if (key != nullptr) return keyBehind(key);
        return m_count > 0 ? m_first : nullptr;
    }

    /// Each key followed by the current separator.
    operator KV_String() const;

    /// This path's keys, then the other's.
    KV_DictPath operator+(const KV_DictPath &other) const;
    KV_DictPath operator+(const char *text) const;
    /// Appends the other's keys. A path may be appended to itself.
    KV_DictPath &operator+=(const KV_DictPath &other);
    KV_DictPath &operator+=(const char *text);

    /// Drops the last key, when there is one. Both forms return this path.
    KV_DictPath &operator--();
    KV_DictPath &operator--(int);

    /// The same keys, also when one of the two was shortened by --.
    bool operator==(const KV_DictPath &other) const;

    static char GetSeparator() { return mSeparator; }
    /// For the whole process and without a lock: set it before other threads use paths.
    static void SetSeparator(char separator) { mSeparator = separator; }

    /// The separator.
    static char mSeparator;

private:
    struct Keys {
        KV_String text;
        std::size_t count;
    };
    explicit KV_DictPath(Keys &&keys);
    static Keys keysIn(const char *text);
    Keys keys() const;
    const char *keyBehind(const char *key) const;
    std::size_t keyBytes() const;

    KV_String m_text;     // the keys, each with a zero byte behind it
    const char *m_first;  // the first key: the beginning of m_text
    const char *m_end;    // the end of m_text; after -- the terminator of the last remaining key
    int m_count = 0;
};
