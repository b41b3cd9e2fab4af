#pragma once

#include <cstdint>
#include <iosfwd>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/univval/kv_uval.h"

// The eleven leaf classes of the value family: eight number types, two string types and the pointer.
//
// Each has the same constructors:
//
// (std::int32_t dimension, void *data)
//   A dimension below 1 makes a scalar; data is ignored and stays the caller's. With a null data the value
//   allocates an array of dimension elements. Numbers and pointers in it count as unset until they are
//   written (they are zeroed, so that no stale memory gets out), strings are empty. With another data the
//   value adopts that block, which from then on is its own, and releases it in its destructor: by delete[] of
//   the element type; for the string classes by delete, for there the block is one single string object, so
//   the dimension becomes 1. Throws std::bad_alloc; data is then still the caller's.
//
// (const KV_UValX &) and (KV_UValX &)
//   A full copy. Its array is its own also when the other's is adopted: no two values share a block.
//
// A value keeps its dimension. Its scalar slot starts as 0 or the empty text.

namespace kv::detail {

/// What all leaf classes share: the scalar slot, the array block and who allocated it, the index rule.
template <class Leaf, class Element>
class KV_EXPORT UValLeaf : public KV_UVal {
public:
    ~UValLeaf() override;
    UValLeaf &operator=(const UValLeaf &) = delete;

    KV_UVal *DeepCopy() override;

    /// The address of the element, by the index rule; never null. It stays valid as long as the value lives.
    Element *GetValuePtr(std::int32_t index) { return &at(index); }

    /// A scalar: "(Word)" and the scalar. An array: "(Word#", the dimension, ") ", and, when the number of
    /// items to print is above 0, "{", up to that many elements with a "," behind each, and "}".
    void PrintOn(std::ostream &stream) override;

protected:
    UValLeaf(std::int32_t dimension, void *data);
    UValLeaf(const UValLeaf &other);

    Element &at(std::int32_t index) {
        return index >= 0 && index < GetDimension() ? m_array[index] : m_scalar;
    }

private:
    Element m_scalar{};
    bool m_adopted = false;      // the block came from the caller
    Element *m_array = nullptr;  // GetDimension() elements, null for a scalar
};

/// The eight number types. Conversions are plain casts, without saturation and without a report: integers
/// keep their low bits; floating values are truncated toward zero into signed 32 bits (signed 64 bits, where
/// unsigned 32 bits are read from or written to), of which the low bits are kept. What lies outside that
/// range, and a NaN, becomes the indefinite integer, 0x80000000 (0x8000000000000000), whose low bits are
/// kept.
template <class Leaf, class Element>
class KV_EXPORT UValNumber : public UValLeaf<Leaf, Element> {
public:
    /// The element itself, by the index rule.
    Element GetValue(std::int32_t index) { return this->at(index); }
    void SetValue(Element value, std::int32_t index) { this->at(index) = value; }

    /// Reads a decimal number at the beginning of the text; 0 when there is none. Integers are read as signed
    /// 32 bits, saturated, then cut to the low bits of the element. Floating values are read with the decimal
    /// point of the process's C locale.
    void SetStrValue(const KV_String &text, std::int32_t index) override;
    /// Integers as signed decimal numbers, UChar and UShort by their unsigned value, ULong as Long: above
    /// 2147483647 it prints negative. Float and Double with 6 decimals, and with the decimal point of the
    /// process's C locale.
    void GetStrValue(KV_String &text, std::int32_t index) override;
    void SetPtrValue(void *p, std::int32_t index) override;
    void GetPtrValue(void *p, std::int32_t index) override;

    void SetCharValue(char value, std::int32_t index) override;
    char GetCharValue(std::int32_t index) override;
    void SetUCharValue(unsigned char value, std::int32_t index) override;
    unsigned char GetUCharValue(std::int32_t index) override;
    void SetShortValue(short value, std::int32_t index) override;
    short GetShortValue(std::int32_t index) override;
    void SetUShortValue(unsigned short value, std::int32_t index) override;
    unsigned short GetUShortValue(std::int32_t index) override;
    void SetLongValue(std::int32_t value, std::int32_t index) override;
    std::int32_t GetLongValue(std::int32_t index) override;
    void SetULongValue(std::uint32_t value, std::int32_t index) override;
    std::uint32_t GetULongValue(std::int32_t index) override;
    void SetFloatValue(float value, std::int32_t index) override;
    float GetFloatValue(std::int32_t index) override;
    void SetDoubleValue(double value, std::int32_t index) override;
    double GetDoubleValue(std::int32_t index) override;

protected:
    using UValLeaf<Leaf, Element>::UValLeaf;
};

/// The two string types. They don't convert to numbers or from them.
template <class Leaf, class Element>
class KV_EXPORT UValText : public UValLeaf<Leaf, Element> {
public:
    /// The element itself, by the index rule.
    const Element &GetValue(std::int32_t index) { return this->at(index); }
    void SetValue(const Element &value, std::int32_t index) { this->at(index) = value; }

    /// Into a KV_String the bytes as they stand; into a KV_UTFString the text up to its first 0, made 7-bit
    /// when it is no valid UTF-8.
    void SetStrValue(const KV_String &text, std::int32_t index) override;
    /// The bytes as they stand.
    void GetStrValue(KV_String &text, std::int32_t index) override;
    /// The KV_Str object at p is assigned from or to the element as bytes: nobody looks whether they are
    /// UTF-8.
    void SetPtrValue(void *p, std::int32_t index) override;
    void GetPtrValue(void *p, std::int32_t index) override;

    const char *GetCStringValue(std::int32_t index) override;
    int GetSystemStringValue(KV_SystemString *target, std::int32_t index) override;

protected:
    using UValLeaf<Leaf, Element>::UValLeaf;
};

}  // namespace kv::detail

/// Signed 8 bits. Printed as "(Char)", a number.
class KV_EXPORT KV_UValChar : public kv::detail::UValNumber<KV_UValChar, char> {
public:
    KV_UValChar(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValChar(const KV_UValChar &) = default;
    KV_UValChar(KV_UValChar &) = default;
    ~KV_UValChar() override;
};

/// Unsigned 8 bits. Printed as "(UChar)", a number.
class KV_EXPORT KV_UValUChar : public kv::detail::UValNumber<KV_UValUChar, unsigned char> {
public:
    KV_UValUChar(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValUChar(const KV_UValUChar &) = default;
    KV_UValUChar(KV_UValUChar &) = default;
    ~KV_UValUChar() override;
};

/// Signed 16 bits. Printed as "(Short)".
class KV_EXPORT KV_UValShort : public kv::detail::UValNumber<KV_UValShort, short> {
public:
    KV_UValShort(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValShort(const KV_UValShort &) = default;
    KV_UValShort(KV_UValShort &) = default;
    ~KV_UValShort() override;
};

/// Unsigned 16 bits. Printed as "(UShort)".
class KV_EXPORT KV_UValUShort : public kv::detail::UValNumber<KV_UValUShort, unsigned short> {
public:
    KV_UValUShort(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValUShort(const KV_UValUShort &) = default;
    KV_UValUShort(KV_UValUShort &) = default;
    ~KV_UValUShort() override;
};

/// Signed 32 bits. Printed as "(Long)".
class KV_EXPORT KV_UValLong : public kv::detail::UValNumber<KV_UValLong, std::int32_t> {
public:
    KV_UValLong(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValLong(const KV_UValLong &) = default;
    KV_UValLong(KV_UValLong &) = default;
    ~KV_UValLong() override;
};

/// Unsigned 32 bits. Printed as "(ULong)", unsigned.
class KV_EXPORT KV_UValULong : public kv::detail::UValNumber<KV_UValULong, std::uint32_t> {
public:
    KV_UValULong(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValULong(const KV_UValULong &) = default;
    KV_UValULong(KV_UValULong &) = default;
    ~KV_UValULong() override;
};

/// Single precision. Printed as "(Float)".
class KV_EXPORT KV_UValFloat : public kv::detail::UValNumber<KV_UValFloat, float> {
public:
    KV_UValFloat(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValFloat(const KV_UValFloat &) = default;
    KV_UValFloat(KV_UValFloat &) = default;
    ~KV_UValFloat() override;
};

/// Double precision. Printed as "(Double)".
class KV_EXPORT KV_UValDouble : public kv::detail::UValNumber<KV_UValDouble, double> {
public:
    KV_UValDouble(std::int32_t dimension, void *data) : UValNumber(dimension, data) {}
    KV_UValDouble(const KV_UValDouble &) = default;
    KV_UValDouble(KV_UValDouble &) = default;
    ~KV_UValDouble() override;
};

/// Plain bytes as text. Printed as "(String)" and the text without quotes.
class KV_EXPORT KV_UValString : public kv::detail::UValText<KV_UValString, KV_String> {
public:
    KV_UValString(std::int32_t dimension, void *data) : UValText(dimension, data) {}
    KV_UValString(const KV_UValString &) = default;
    KV_UValString(KV_UValString &) = default;
    ~KV_UValString() override;
};

/// UTF-8 text. Printed as "(UTFString)" and the element's own 7-bit view.
class KV_EXPORT KV_UValUTFString : public kv::detail::UValText<KV_UValUTFString, KV_UTFString> {
public:
    KV_UValUTFString(std::int32_t dimension, void *data) : UValText(dimension, data) {}
    KV_UValUTFString(const KV_UValUTFString &) = default;
    KV_UValUTFString(KV_UValUTFString &) = default;
    ~KV_UValUTFString() override;
};

/// A pointer, which is carried and never followed: what it points to is the caller's affair. Printed as
/// "(Ptr)". It doesn't convert to numbers or from them.
class KV_EXPORT KV_UValPtr : public kv::detail::UValLeaf<KV_UValPtr, void *> {
public:
    KV_UValPtr(std::int32_t dimension, void *data) : UValLeaf(dimension, data) {}
    KV_UValPtr(const KV_UValPtr &) = default;
    KV_UValPtr(KV_UValPtr &) = default;
    ~KV_UValPtr() override;

    /// The element itself, by the index rule.
    void *GetValue(std::int32_t index) { return at(index); }
    void SetValue(void *value, std::int32_t index) { at(index) = value; }

    /// Reads an unsigned decimal number into the scalar slot, whatever the index. A text without one gives
    /// null, a number beyond the width of a pointer the highest address.
    void SetStrValue(const KV_String &text, std::int32_t index) override;
    /// "0x" and the low 32 bits in eight hexadecimal capitals.
    void GetStrValue(KV_String &text, std::int32_t index) override;
    void SetPtrValue(void *p, std::int32_t index) override;
    void GetPtrValue(void *p, std::int32_t index) override;
};
