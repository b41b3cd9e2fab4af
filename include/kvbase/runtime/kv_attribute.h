#pragma once

// Numbered attributes, and the lists in which callers hand them over.

#include <cstdint>

#include "kvbase/base/export.h"

class KV_Argument;

/// An attribute: a number. Base of attributes with contents.
class KV_EXPORT KV_Attribute {
public:
    /// The attribute of that number.
    KV_Attribute(std::uint32_t number) : m_number(number) {}
    /// Takes the next element of the list: its number is stored and the cursor moves on by 1. Throws
    /// KV_AttributeException with the reason 1 and the attribute 0 when the list is exhausted.
    KV_Attribute(KV_Argument &list);
    /// A cursor that cannot move on is refused; it would pass for the number of its element.
    KV_Attribute(const KV_Argument &list) = delete;
    KV_Attribute(const KV_Attribute &) = default;
    KV_Attribute &operator=(const KV_Attribute &) = default;

    virtual ~KV_Attribute();
    /// Takes the next element of the list, as the constructor. On an exhausted list the number becomes 0, and
    /// the exception follows.
    virtual KV_Attribute &operator=(KV_Argument &list);

    /// The number.
    operator std::uint32_t() const { return m_number; }
    /// The number.
    std::uint32_t Get_KV_AttributeID() const { return m_number; }

private:
    void take(KV_Argument &list);

    std::uint32_t m_number;
};

/// A cursor on a caller's list of attributes. The list and its attributes stay the caller's and have to
/// outlive the cursor. One thread at a time.
class KV_EXPORT KV_Argument {
public:
    /// A cursor on no list: exhausted.
    KV_Argument() = default;
    /// A cursor on the first of count elements. A null list is exhausted; a null element counts as number 0.
    KV_Argument(KV_Attribute **list, unsigned int count) : m_element(list), m_count(count) {}
    /// Stands where source stands, and is marked as a copy.
    KV_Argument(const KV_Argument &source)
        : m_isCopy(true), m_element(source.m_element), m_count(source.m_count) {}
    /// Stands where source stands, and is marked as a copy. A source that is no copy itself, but was made for
    /// the assignment, gives up its list.
    KV_Argument &operator=(KV_Argument source);
    ~KV_Argument() = default;

    /// The number of the present element, without moving on; 0 when the list is exhausted.
    operator std::uint32_t() const;

private:
    friend class KV_Attribute;
    bool isExhausted() const { return m_element == nullptr || m_count == 0; }

    bool m_isCopy = false;
    KV_Attribute **m_element = nullptr;
    unsigned int m_count = 0;
};
