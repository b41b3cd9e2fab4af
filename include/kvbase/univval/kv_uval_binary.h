#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/univval/kv_uval.h"
#include "kvbase/univval/kv_uval_dict.h"

// The binary form of a dictionary, as three layers that move bytes between memory and blocks of any size.
// KV_UValDict reads and writes whole streams and files through them (kv_uval_dict.h).
//
// A file is a header of 24 bytes and a dictionary, both made of atoms. An atom is a tag byte, a count where
// the tag says so, and count elements:
//
//   tag bits 0 to 3   type: 1 bytes, 2 text, 3 of 16 bits, 4 of 32 bits, 5 of 64 bits, 6 float, 7 double;
//                     all others have no data
//   tag bit 4 (0x10)  four bytes of count follow, most significant first; without them the count is 1
//   tag bit 6 (0x40)  elements are stored most significant byte first, else least significant byte first
//
//   header      the number 16 (type 3); the text "UVALBINDUMP_2.0" with its zero (type 2)
//   dictionary  the number of its entries (type 3); the entries in the order of their keys
//   entry       the key's length with its zero (type 3); the key with its zero (type 2); the KV_UValType, 0
//               for an entry without a value (type 3); then a dictionary, or for types 2 to 12 a value
//   value       the dimension (type 4); the number of items to print (type 4); the data
//   data        of numbers an atom of the dimension, of 1 for a scalar: types 1, 3, 4, 6 and 7; of strings
//               for each element the length with its zero (type 3) and the text with its zero (type 2); of
//               pointers nothing, they are read as null
//
// Limits: a level has at most 65535 entries, a key or string 32766 bytes, and the pointers of a dictionary
// have at most 1048576 elements in all, since a file could ask for any number of them without a byte of data.
// Keys have at most 65536 separators, and two more for each entry, in all: each of them makes a dictionary
// when the file is read.
//
// Writing stores least significant bytes first, and a count exactly when it isn't 1.
//
// The layers can stop between any two bytes. Put and Get move bytes between *cursor and end, and advance
// *cursor. The result is 1 when the block is used up and there is more, else 0: all is done, and a further
// call does nothing. Calls of Put and of Get are not mixed. One thread at a time; nothing is shared.

/// Moves elements between memory and a block as they stand, or with each element's bytes reversed.
class KV_EXPORT KV_BinPackBuffer {
public:
    /// Arms the buffer for count elements at data, which stays the caller's. A count or a size below 1 makes
    /// nothing to move. Throws KV_BinPackException, with nothing to move, for 4 GiB and more.
    void Specify(unsigned char *data, std::int32_t count, short elementSize, bool swap);
    /// Copies from the data to the block.
    int Put(unsigned char **cursor, const unsigned char *end);
    /// Copies from the block to the data.
    int Get(unsigned char **cursor, const unsigned char *end);

private:
    template <class Move>
    int pass(std::size_t most, const Move &move);

    bool m_swap = false;
    unsigned char *m_next = nullptr;    // the byte that is moved next
    std::uint32_t m_remaining = 0;      // bytes
    std::uint32_t m_leftInElement = 0;  // bytes, counted while swapping alone
    short m_elementSize = 0;
};

/// Moves an atom: its tag, its count, its elements.
class KV_EXPORT KV_BinPackAtom : public KV_BinPackBuffer {
public:
    KV_BinPackAtom() = default;
    KV_BinPackAtom(const KV_BinPackAtom &) = delete;  // it moves bytes from and to itself
    KV_BinPackAtom &operator=(const KV_BinPackAtom &) = delete;

    /// Arms the atom. data stays the caller's and holds the elements in this machine's order.
    /// type   1 to 7; any other has no data. With 0x40 added Put stores the most significant byte first.
    /// count  for Put; below 0 means 0. Get ignores it, for the count comes from the file: data must have
    ///        room for whatever the file says. Where that is not known, Expect is the safe call.
    void Specify(int type, void *data, std::int32_t count);
    /// The same for Get alone, which then throws before it touches data when the file has another count.
    void Expect(int type, void *data, std::int32_t count);

    int Put(unsigned char **cursor, const unsigned char *end);
    /// Throws KV_BinPackException when the atom is of another type.
    int Get(unsigned char **cursor, const unsigned char *end);

private:
    enum class Part { Begin, Tag, Count, Data };

    void beginData(std::uint32_t count);
    bool nextRun();

    Part m_part = Part::Data;  // what is being moved
    bool m_expect = false;
    std::uint8_t m_tag = 0;
    std::uint32_t m_count = 0;  // elements for which the buffer isn't armed yet
    short m_elementSize = 0;
    unsigned char *m_data = nullptr;  // where these begin
    unsigned char m_header[5] = {};
};

/// Moves a dictionary with all that is in it, without recursion. It holds the block's state and a stack of
/// the levels, never a copy of the data.
class KV_EXPORT KV_BinPackUValDict {
public:
    KV_BinPackUValDict();
    /// A copy begins anew with the same dictionary, whatever the other has moved.
    KV_BinPackUValDict(const KV_BinPackUValDict &other);
    KV_BinPackUValDict &operator=(const KV_BinPackUValDict &other);
    virtual ~KV_BinPackUValDict();

    /// Begins with a dictionary, which stays the caller's and must not change while Put is at work. With null
    /// there is nothing to move. Necessary after an exception, too.
    void Specify(KV_UValDict *dictionary);
    /// To be called after Specify: tells Get how many bytes it is going to be given at most, from now on. Get
    /// then throws KV_FileException ("ReadError") when the data says that it needs more, before it takes
    /// memory for it. Without this call sizes are believed, and a few bytes can ask for 48 GiB.
    void SetRest(std::uint64_t bytes) { m_rest = bytes; }

    /// Writes the dictionary. Throws KV_BinPackException when it comes to what has no place in the form: a
    /// type above 12, or what is beyond the limits.
    int Put(unsigned char **cursor, const unsigned char *end);
    /// Reads entries into the dictionary, all at once when the last one is complete: up to then, and after an
    /// exception, it is as it was. (When memory runs out in that last moment it has some of them.)
    ///
    /// An entry of the dictionary under a key that comes is replaced, a dictionary as a whole. A key with the
    /// path separator in it is a path, so dictionaries are made on the way; it ends at a zero byte, and what
    /// it stands for is dropped when the path runs through a value that is no dictionary. Any other key is
    /// kept as it stands, the empty one and zero bytes included. A KV_UValUTFString sanitises its text. A
    /// dimension below 0 is read as 0.
    ///
    /// Throws KV_BinPackException for an atom of another type or count than what was said before, a type
    /// above 12, and a text without its zero; KV_FileException ("ReadError") for more pointers or separators
    /// in keys than the limits, and for what SetRest tells; std::bad_alloc.
    int Get(unsigned char **cursor, const unsigned char *end);

private:
    using Value = std::unique_ptr<KV_UVal>;
    /// What Put is to put next; what has just come to Get.
    enum class State {
        Done,
        Level,
        Size,
        NextEntry,
        KeyLength,
        Key,
        Type,
        Dimension,
        ItemsToPrint,
        Numbers,
        NextText,
        TextLength,
        Text,
        Value
    };
    struct Level {  // of writing
        KV_UValDict::Map::iterator next, end;
    };
    struct Frame {  // a level of reading
        KV_UValDict *dict;
        std::uint16_t count, read;
    };

    void openValue(std::uint64_t left);
    void openDictionary();
    void store(Value value);
    void storeEntries();

    KV_BinPackAtom m_atom;
    State m_state = State::Done;
    bool m_atomOpen = false;                   // m_atom stopped at the end of the block
    KV_UValDict *m_root = nullptr;             // what Specify was given
    KV_UVal *m_value = nullptr;                // in hand; while reading a dictionary that is stored already
    const std::string *m_keyInHand = nullptr;  // writing
    std::uint16_t m_keyLength = 0, m_type = 0, m_textLength = 0, m_size = 0;
    std::int32_t m_dimension = 0, m_itemsToPrint = 0;
    std::int32_t m_count = 0, m_index = 0;  // elements of the value in hand
    std::uint32_t m_pointers = 0;           // elements of pointers so far
    std::uint64_t m_separators = 0;         // of keys that may still come
    std::vector<Level> m_levels;
    // Of reading alone:
    std::uint64_t m_rest = 0;  // bytes that can still come
    Value m_newValue;          // in hand, not stored yet
    std::string m_key;
    std::string m_scratch;    // a text that comes in several blocks
    std::string_view m_text;  // the last text, in m_scratch or in the block
    std::vector<Frame> m_frames;
    std::vector<std::pair<std::string, Value>> m_entries;  // for the root, which doesn't have them yet
    std::vector<Value> m_homeless;  // dictionaries for which there was no place, until all is read
};
