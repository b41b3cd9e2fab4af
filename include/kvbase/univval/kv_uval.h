#pragma once

#include <cstdint>
#include <iosfwd>

#include "kvbase/base/export.h"

class KV_String;
class KV_SystemString;

/// What a value is. The numbers stand in binary files.
enum KV_UValType : std::int32_t {
    KV_UVAL_NONE = 0,        ///< no value: what a look-up reports for a missing entry
    KV_UVAL_DICT = 1,        ///< KV_UValDict
    KV_UVAL_CHAR = 2,        ///< KV_UValChar, signed 8 bits
    KV_UVAL_UCHAR = 3,       ///< KV_UValUChar, unsigned 8 bits
    KV_UVAL_SHORT = 4,       ///< KV_UValShort, signed 16 bits
    KV_UVAL_USHORT = 5,      ///< KV_UValUShort, unsigned 16 bits
    KV_UVAL_LONG = 6,        ///< KV_UValLong, signed 32 bits
    KV_UVAL_ULONG = 7,       ///< KV_UValULong, unsigned 32 bits
    KV_UVAL_FLOAT = 8,       ///< KV_UValFloat, IEEE 754 single
    KV_UVAL_DOUBLE = 9,      ///< KV_UValDouble, IEEE 754 double
    KV_UVAL_STRING = 10,     ///< KV_UValString, KV_String
    KV_UVAL_UTFSTRING = 11,  ///< KV_UValUTFString, KV_UTFString
    KV_UVAL_PTR = 12         ///< KV_UValPtr, void *
};

/// Values of one family answer the same operations.
enum KV_UValFamily : std::int32_t {
    KV_UVAL_FAMILY_DICT = 1,
    KV_UVAL_FAMILY_NUMBER = 2,
    KV_UVAL_FAMILY_STRING = 3,
    KV_UVAL_FAMILY_POINTER = 4
};

/// A universal value: a type, a family, a dimension, and one scalar or an array of scalars. The leaf classes
/// (kv_uval_leaf.h) and KV_UValDict derive from it; it is never instantiated on its own.
///
/// Every conversion is a virtual getter or setter here, so that a caller reads or writes any value in the
/// type it likes. None of them raises an exception: what a family doesn't define does nothing or gives the
/// neutral result told below. Only running out of memory propagates.
///
/// The index rule of every operation: an index from 0 to dimension - 1 means that element of the array; any
/// other index means the scalar slot, which every value has. A scalar is thus addressed by any index.
///
/// Values have no lock: one thread at a time.
class KV_EXPORT KV_UVal {
public:
    KV_UVal &operator=(const KV_UVal &) =
        delete;  // a value keeps the type and the dimension it was born with

    /// A new object of the same class with the same content; the caller owns it. The base form gives null.
    virtual KV_UVal *DeepCopy();

    /// Parses text into the element. Nothing here.
    virtual void SetStrValue(const KV_String &text, std::int32_t index);
    /// Replaces text by the element as text. Leaves it alone here.
    virtual void GetStrValue(KV_String &text, std::int32_t index);
    /// Moves one raw element, from or to an object of the element type at p, without conversion. On the
    /// string classes p points to a KV_Str object, which is assigned. A null p does nothing. Nothing here.
    virtual void SetPtrValue(void *p, std::int32_t index);
    virtual void GetPtrValue(void *p, std::int32_t index);

    /// The number types: setters do nothing and getters give 0 here.
    virtual void SetCharValue(char value, std::int32_t index);
    virtual char GetCharValue(std::int32_t index);
    virtual void SetUCharValue(unsigned char value, std::int32_t index);
    virtual unsigned char GetUCharValue(std::int32_t index);
    virtual void SetShortValue(short value, std::int32_t index);
    virtual short GetShortValue(std::int32_t index);
    virtual void SetUShortValue(unsigned short value, std::int32_t index);
    virtual unsigned short GetUShortValue(std::int32_t index);
    virtual void SetLongValue(std::int32_t value, std::int32_t index);
    virtual std::int32_t GetLongValue(std::int32_t index);
    virtual void SetULongValue(std::uint32_t value, std::int32_t index);
    virtual std::uint32_t GetULongValue(std::int32_t index);
    virtual void SetFloatValue(float value, std::int32_t index);
    virtual float GetFloatValue(std::int32_t index);
    virtual void SetDoubleValue(double value, std::int32_t index);
    virtual double GetDoubleValue(std::int32_t index);

    /// The buffer of a string element, which stays the value's. Null here.
    virtual const char *GetCStringValue(std::int32_t index);
    /// Puts a string element into target: the result of KV_SystemString::Set, 0 on success. -1 here, and for
    /// a null target.
    virtual int GetSystemStringValue(KV_SystemString *target, std::int32_t index);

    virtual ~KV_UVal();

    /// Writes the value in the form for people and logs.
    virtual void PrintOn(std::ostream &stream) = 0;

    KV_UValType GetType() const { return m_type; }
    KV_UValFamily GetFamily() const { return m_family; }
    /// 0 for a scalar, else the number of elements.
    std::int32_t GetDimension() const { return m_dimension; }
    /// How many elements of an array PrintOn shows at most; below 1 none.
    std::int32_t GetNrItemsToPrint() const { return m_itemsToPrint; }
    void SetNrItemsToPrint(std::int32_t count) { m_itemsToPrint = count; }

protected:
    KV_UVal(KV_UValType type, KV_UValFamily family) : m_type(type), m_family(family) {}
    KV_UVal(const KV_UVal &) = default;

    /// For the constructors of derived classes: the dimension and, with it, the number of items to print.
    void setDimension(std::int32_t dimension) { m_dimension = m_itemsToPrint = dimension; }

private:
    KV_UValType m_type;
    KV_UValFamily m_family;
    std::int32_t m_itemsToPrint = 1;
    std::int32_t m_dimension = 0;
};

/// Calls PrintOn.
KV_EXPORT std::ostream &operator<<(std::ostream &stream, KV_UVal &value);
