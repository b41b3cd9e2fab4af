#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/univval/kv_dict_path.h"
#include "kvbase/univval/kv_uval.h"

class KV_FileSpec;
class KV_Stream;

namespace kv::detail {
struct DictAccess;
class DictMove;
}  // namespace kv::detail

/// An ordered map from keys to values that it owns; a value may itself be a dictionary, so trees nest.
/// Entries are addressed by a KV_DictPath, keys are ordered by their bytes as unsigned values, and that is
/// the order of every operation, of printing and of the files. A dictionary is a KV_UVal of type KV_UVAL_DICT
/// with the dimension 0.
///
/// Ownership: a value that is given to a dictionary belongs to it at once, and must not stand in another
/// place of this or another tree. What GetUVal returns is borrowed and stays valid until its entry is
/// replaced, removed or moved. Copying always copies in full. An entry may hold a null value.
///
/// Nothing here raises an exception but the lack of memory and the file operations: what is missing gives
/// null, -1, 0, the caller's default, or no effect. No operation recurses by the depth of the tree.
///
/// A path that runs through a value that is no dictionary stops there. Reading (GetUVal and its relatives,
/// GetValue, SetValue) then means that value. Everything that makes, replaces, removes, copies or moves an
/// entry finds none.
///
/// A dictionary has no lock. Readers may run together when no thread writes.
class KV_EXPORT KV_UValDict : public KV_UVal {
public:
    /// Keys to values. The comparison is std::less<>, so that looking up by std::string_view allocates
    /// nothing. Name the type KV_UValDict::Map.
    using Map = std::map<std::string, KV_UVal *, std::less<>>;
    /// A key and its value.
    using Pair = std::pair<std::string, KV_UVal *>;

    /// An empty dictionary. The argument has no effect; the library itself passes 16384.
    explicit KV_UValDict(unsigned int capacity);
    /// Full copies: every entry by its DeepCopy, but dictionaries inside, also those of a derived class, as
    /// plain KV_UValDicts; a null value stays one. The number of items to print is copied, too. The
    /// assignment drops the former entries; it may take this dictionary, one of those inside it, or one
    /// around it. When memory runs out nothing has changed.
    KV_UValDict(const KV_UValDict &other);
    KV_UValDict &operator=(const KV_UValDict &other);
    /// Deletes all values.
    ~KV_UValDict() override;

    /// A new dictionary by the copy constructor.
    KV_UVal *DeepCopy() override;

    /// Makes a value of the type, as the constructors in kv_uval_leaf.h do from dimension and data, and
    /// stores it by SetUVal. Returns it; it stays the dictionary's. Type 1 goes to DefineUValDict. A type
    /// outside 1 to 12 gives null. For these, for type 1 and for a dimension below 1 data stays the caller's.
    /// When path has no place for the value it is released, with the data that it adopted, and the result is
    /// null. Adopted data is released, too, when memory runs out; as with SetUVal and DefineUValDict, entries
    /// already made on the way then stay, the last of them possibly with a null value.
    KV_UVal *DefineUVal(const KV_DictPath &path, KV_UValType type, std::int32_t dimension, void *data);
    /// The dictionary at path; makes it and those on the way where there is none, also in an entry with a
    /// null value. Null when anything else stands there or on the way, or for the path of no keys; nothing is
    /// changed then.
    KV_UValDict *DefineUValDict(const KV_DictPath &path);
    /// Stores value at path, makes the dictionaries on the way, also in an entry with a null value, and
    /// deletes the value that stood there, unless it is the same. Returns value. When path has no place for
    /// it (it runs through a value that is no dictionary, or has no keys), or value is this dictionary, one
    /// around it or one on the way, the result is null, nothing is changed and value stays the caller's. It
    /// stays the caller's, too, when memory runs out. A dictionary is looked through for this one, so build
    /// deep trees from the outside in.
    KV_UVal *SetUVal(const KV_DictPath &path, KV_UVal *value);
    /// Deletes all values.
    void Clear();

    /// The value at path, or null.
    KV_UVal *GetUVal(const KV_DictPath &path);
    /// Its type, KV_UVAL_NONE when there is no value.
    KV_UValType GetUValType(const KV_DictPath &path);
    /// Its dimension, -1 when there is no value.
    std::int32_t GetUValDimension(const KV_DictPath &path);

    /// The element at index as a number: the value's getter of that type (so a string gives 0). defaultValue
    /// when there is no value.
    char GetValue(const KV_DictPath &path, char defaultValue, std::int32_t index);
    unsigned char GetValue(const KV_DictPath &path, unsigned char defaultValue, std::int32_t index);
    short GetValue(const KV_DictPath &path, short defaultValue, std::int32_t index);
    unsigned short GetValue(const KV_DictPath &path, unsigned short defaultValue, std::int32_t index);
    std::int32_t GetValue(const KV_DictPath &path, std::int32_t defaultValue, std::int32_t index);
    std::uint32_t GetValue(const KV_DictPath &path, std::uint32_t defaultValue, std::int32_t index);
    /// A plain long counts with its low 32 bits.
    std::int32_t GetValue(const KV_DictPath &path, long defaultValue, std::int32_t index) {
        return GetValue(path, static_cast<std::int32_t>(defaultValue), index);
    }
    std::uint32_t GetValue(const KV_DictPath &path, unsigned long defaultValue, std::int32_t index) {
        return GetValue(path, static_cast<std::uint32_t>(defaultValue), index);
    }
    float GetValue(const KV_DictPath &path, float defaultValue, std::int32_t index);
    double GetValue(const KV_DictPath &path, double defaultValue, std::int32_t index);
    /// The element's buffer, which stays the value's, for a value of the string family; else defaultValue.
    const char *GetValue(const KV_DictPath &path, const char *defaultValue, std::int32_t index);
    /// A copy of the element for a value of the string family; else of defaultValue. As a KV_UTFString, text
    /// that is no valid UTF-8 is made 7-bit.
    KV_String GetValue(const KV_DictPath &path, const KV_String &defaultValue, std::int32_t index);
    KV_UTFString GetValue(const KV_DictPath &path, const KV_UTFString &defaultValue, std::int32_t index);
    /// The element of a KV_UValPtr; else defaultValue.
    void *GetValue(const KV_DictPath &path, void *defaultValue, std::int32_t index);

    /// Sets the element at index of an existing value, and never makes one. A number through the value's
    /// setter of that type.
    void SetValue(const KV_DictPath &path, char value, std::int32_t index);
    void SetValue(const KV_DictPath &path, unsigned char value, std::int32_t index);
    void SetValue(const KV_DictPath &path, short value, std::int32_t index);
    void SetValue(const KV_DictPath &path, unsigned short value, std::int32_t index);
    void SetValue(const KV_DictPath &path, std::int32_t value, std::int32_t index);
    void SetValue(const KV_DictPath &path, std::uint32_t value, std::int32_t index);
    /// A plain long counts with its low 32 bits.
    void SetValue(const KV_DictPath &path, long value, std::int32_t index) {
        SetValue(path, static_cast<std::int32_t>(value), index);
    }
    void SetValue(const KV_DictPath &path, unsigned long value, std::int32_t index) {
        SetValue(path, static_cast<std::uint32_t>(value), index);
    }
    void SetValue(const KV_DictPath &path, float value, std::int32_t index);
    void SetValue(const KV_DictPath &path, double value, std::int32_t index);
    /// Assigns the bytes as they stand to a value of the string family; leaves other types alone.
    void SetValue(const KV_DictPath &path, const KV_String &value, std::int32_t index);
    void SetValue(const KV_DictPath &path, const KV_UTFString &value, std::int32_t index);
    /// Assigns the text to a value of the string family, to a KV_UValUTFString through a KV_UTFString; leaves
    /// other types alone. Null counts as the empty text.
    void SetValue(const KV_DictPath &path, const char *value, std::int32_t index);
    /// Assigns to a KV_UValPtr; leaves other types alone.
    void SetValue(const KV_DictPath &path, void *value, std::int32_t index);

    /// A copy of the key and the value of this level alone, or of the miss pair: the empty key and null.
    Pair KVPairAt(const char *key);
    /// The map of this level, for walking it. It stays the dictionary's.
    Map *GetValuePtr() { return &m_map; }
    /// The number of entries of this level alone.
    int GetSize() const { return static_cast<int>(m_map.size()); }

    /// Deletes the entry and its value. A missing path does nothing.
    void RemoveUVal(const KV_DictPath &path);

    /// Merges this dictionary into target: where both hold a dictionary under a key these are merged; else
    /// target's entry is replaced by a copy. Entries with a null value are skipped; target keeps what this
    /// one lacks. Target receives what stood here when the call began, also when one of the two lies within
    /// the other; copying to itself does nothing, nor does a null target. When target's entry is replaced
    /// with this dictionary in it, this dictionary goes with it.
    void CopyTo(KV_UValDict *target);
    /// Copies one entry to the same path in target. Where both hold a dictionary merges as CopyTo and returns
    /// target's dictionary; else stores a DeepCopy by SetUVal and returns that. Null when there is no value
    /// at path or no place for it in target.
    KV_UVal *CopyUValTo(const KV_DictPath &path, KV_UValDict *target);
    /// Moves the entries one by one, by their keys as they stand, as MoveUValTo does. This dictionary is
    /// empty afterwards. A dictionary cannot move into itself: nothing happens when target is this one or
    /// null, and an entry within which target lies stays here. A dictionary in target that has to make room
    /// is deleted at the end; when this one lies in it, that holds for this one too. Needs no memory. Each
    /// dictionary that moves is looked through for target.
    void MoveTo(KV_UValDict *target);
    /// Moves one entry, a null value included, to the same path in target, makes the dictionaries on the way
    /// there and returns the value now in target. Where both are dictionaries the moved one is merged into
    /// target's as by MoveTo; else target's value is deleted. Null when path doesn't exist here. Null, with
    /// the entry left where it was, when target has no place for it, is null or lies within the value. The
    /// entry is also left there when memory runs out.
    KV_UVal *MoveUValTo(const KV_DictPath &path, KV_UValDict *target);

    /// PrintDict with the empty prefix.
    void PrintOn(std::ostream &stream) override;
    /// Writes a line for each entry: the prefix and "    |", "- ", the key, and then " => " and the value, or
    /// "<NULL>"; a dictionary's entries follow below its line, one level further in.
    void PrintDict(std::ostream &stream, const char *prefix);

    /// Reads a dictionary in text form and merges it into this one by MoveTo: what is here stays where the
    /// file doesn't overwrite it. With a name, the first dictionary under that name in the text is read.
    /// Throws KV_FileException: "OpenRdError" with the file's name when the file doesn't open, "ReadError"
    /// with it when the file can't be read on, "InvalidFile" when it holds no dictionary or not that one. The
    /// stream form gives "OpenRdError" for every exception while it reads, and leaves the stream with a
    /// locale whose decimal point is ".". This dictionary is unchanged on failure.
    void ReadTextFile(KV_FileSpec &file, KV_String name = KV_String());
    void ReadTextFile(std::istream &stream, KV_String name = KV_String());
    /// Writes this dictionary in text form. Throws KV_FileException: "OpenWrError" when the file doesn't open
    /// or, in the stream form, on any exception on the way; "WriteError" when the file can't be written
    /// whole. The decimal point is "." whatever the global locale; the stream form leaves the stream with a
    /// locale that has it, and bad after an exception.
    void WriteTextFile(KV_FileSpec &file);
    void WriteTextFile(std::ostream &stream);

    /// Writes this dictionary in binary form (kv_uval_binary.h), header included, at the stream's position,
    /// in blocks of 512 bytes; up to 4 MiB are held in memory until all is known to fit. Throws
    /// KV_FileException with "WriteError": when the stream isn't open; when it takes less than it is given
    /// (one in memory takes nothing when it has failed or was read to its end); and, before the first byte,
    /// when something in the tree is beyond the form's limits (entries of a level, bytes of a text, pointers,
    /// separators in keys): the message then names the entry. A value of a type above 12 raises
    /// KV_BinPackException, before the first byte as well.
    void AppendBinToStream(KV_Stream *stream);
    /// Reads a dictionary in binary form from the stream's position, as KV_BinPackUValDict::Get tells. The
    /// stream then stands directly behind it, so that another may follow; a stream that doesn't tell where it
    /// reads (a pipe, a stream in memory that is open for writing) is read to its end, into memory, and stays
    /// there. Throws KV_FileException: "ReadError" when there is no stream, it ends too early, the data names
    /// more bytes than the stream still holds, or has more pointers or separators in keys than the limits of
    /// kv_uval_binary.h; "InvalidFile" when this is no such form, or its statements contradict each other.
    /// This dictionary is unchanged on failure; the stream stands somewhere.
    void ReadBinFromStream(KV_Stream *stream);
    /// AppendBinToStream into a file of its own. Throws KV_FileException as that does, the file untouched
    /// when something is beyond the limits; "OpenWrError" when the file doesn't open, and "WriteError" when
    /// it can't be written whole: the former contents are gone then, and what could be written stays.
    void WriteBinFile(KV_FileSpec &file);
    /// ReadBinFromStream from the beginning of a file. Throws as that does, and KV_FileException with
    /// "OpenRdError" when the file doesn't open.
    void ReadBinFile(KV_FileSpec &file);
    /// The number of bytes that AppendBinToStream writes, 2147483647 when they are more. Throws as that does
    /// for what is beyond the limits.
    std::int32_t ByteSize();
    /// Reads a file of either form: ReadBinFile, and when that finds it invalid, ReadTextFile without a name.
    /// Throws KV_FileException as the last of these does.
    void ReadFile(KV_FileSpec &file);

private:
    friend struct kv::detail::DictAccess;
    friend class kv::detail::DictMove;

    const Map::value_type *FindUValPath(const KV_DictPath &path) const;
    Map::iterator FindUValPathIterator(const KV_DictPath &path, bool create, Map *&container,
                                       const KV_UValDict *shut = nullptr);
    Map::iterator IteratorAt(const char *key);

    Pair m_miss;  // stands for a missing entry; its value chains dictionaries while Clear or a move works
    Map m_map;    // owns the values
};
