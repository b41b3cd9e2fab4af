#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "kvbase/univval/kv_dict_path.h"
#include "kvbase/univval/kv_uval_leaf.h"

class KV_UValDict;

// The numbers of the binary form, and what the writer and the reader of it share.

namespace kv::detail {

/// The types of atoms.
enum AtomType : int {
    kAtomByte = 1,
    kAtomText = 2,
    kAtom16 = 3,
    kAtom32 = 4,
    kAtomFloat = 6,
    kAtomDouble = 7
};
/// The bits of a tag.
constexpr unsigned kAtomTypeBits = 0x0F, kAtomHasCount = 0x10, kAtomBigEndian = 0x40;
/// The size of an element by the type of its atom.
constexpr std::uint8_t kAtomElementSize[16] = {0, 1, 1, 2, 4, 8, 4, 8};

constexpr char kBinaryMagic[] = "UVALBINDUMP_2.0";

/// The limits of a dictionary: entries of a level, bytes of a key or string with its zero, elements of
/// pointers in all.
constexpr std::size_t kMostEntries = 65535, kLongestText = 32767;
constexpr std::uint32_t kMostPointers = 1U << 20;

/// Separators that the keys of a dictionary may have in all: so many, and so many more for each entry. Every
/// one of them can make a dictionary, of some 200 bytes, out of one byte of a file.
constexpr std::uint64_t kSeparators = 65536, kSeparatorsOfEntry = 2;

/// Takes a key's separators from those that are left. False when these do not suffice.
inline bool spendSeparators(std::uint64_t &left, std::string_view key) {
    const char separator = KV_DictPath::GetSeparator();
    left += kSeparatorsOfEntry;
    if (key.find(separator) == key.npos) return true;
    const auto count = static_cast<std::uint64_t>(std::count(key.begin(), key.end(), separator));
    if (count > left) return false;
    left -= count;
    return true;
}

/// Calls visit with a null pointer to the leaf class of a number type. False for any other type.
template <class Visit>
bool visitNumberType(KV_UValType type, const Visit &visit) {
    switch (type) {
    case KV_UVAL_CHAR:
        return visit(static_cast<KV_UValChar *>(nullptr)), true;
    case KV_UVAL_UCHAR:
        return visit(static_cast<KV_UValUChar *>(nullptr)), true;
    case KV_UVAL_SHORT:
        return visit(static_cast<KV_UValShort *>(nullptr)), true;
    case KV_UVAL_USHORT:
        return visit(static_cast<KV_UValUShort *>(nullptr)), true;
    case KV_UVAL_LONG:
        return visit(static_cast<KV_UValLong *>(nullptr)), true;
    case KV_UVAL_ULONG:
        return visit(static_cast<KV_UValULong *>(nullptr)), true;
    case KV_UVAL_FLOAT:
        return visit(static_cast<KV_UValFloat *>(nullptr)), true;
    case KV_UVAL_DOUBLE:
        return visit(static_cast<KV_UValDouble *>(nullptr)), true;
    default:
        return false;
    }
}

/// The element type of a leaf class.
template <class Leaf>
using ElementOf = std::remove_pointer_t<decltype(std::declval<Leaf &>().GetValuePtr(0))>;

/// The type of the atom that holds such numbers.
template <class Element>
constexpr int kAtomOf = std::is_floating_point_v<Element> ? (sizeof(Element) == 4 ? kAtomFloat : kAtomDouble)
                        : sizeof(Element) == 1            ? kAtomByte
                        : sizeof(Element) == 2            ? kAtom16
                                                          : kAtom32;

/// Throws what reading gives when there is less than it needs: KV_FileException ("ReadError").
[[noreturn]] void failAsTruncated();

/// Throws when the tree has something that the binary form has no place for: KV_FileException
/// ("WriteError"), which names the entry, or KV_BinPackException for a type above 12. Does not recurse.
void checkBinaryLimits(KV_UValDict &dict);

}  // namespace kv::detail
