#include "kvbase/univval/kv_uval_leaf.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>

#include "adt/univval/dict_access.h"
#include "adt/univval/number_cast.h"
#include "kvbase/text/kv_system_string.h"

namespace kv::detail {

namespace {

struct LeafFacts {
    KV_UValType type;
    KV_UValFamily family;
    const char *word;
};

template <class Leaf>
constexpr LeafFacts kFacts{KV_UVAL_NONE, KV_UVAL_FAMILY_NUMBER, ""};
template <>
constexpr LeafFacts kFacts<KV_UValChar>{KV_UVAL_CHAR, KV_UVAL_FAMILY_NUMBER, "Char"};
template <>
constexpr LeafFacts kFacts<KV_UValUChar>{KV_UVAL_UCHAR, KV_UVAL_FAMILY_NUMBER, "UChar"};
template <>
constexpr LeafFacts kFacts<KV_UValShort>{KV_UVAL_SHORT, KV_UVAL_FAMILY_NUMBER, "Short"};
template <>
constexpr LeafFacts kFacts<KV_UValUShort>{KV_UVAL_USHORT, KV_UVAL_FAMILY_NUMBER, "UShort"};
template <>
constexpr LeafFacts kFacts<KV_UValLong>{KV_UVAL_LONG, KV_UVAL_FAMILY_NUMBER, "Long"};
template <>
constexpr LeafFacts kFacts<KV_UValULong>{KV_UVAL_ULONG, KV_UVAL_FAMILY_NUMBER, "ULong"};
template <>
constexpr LeafFacts kFacts<KV_UValFloat>{KV_UVAL_FLOAT, KV_UVAL_FAMILY_NUMBER, "Float"};
template <>
constexpr LeafFacts kFacts<KV_UValDouble>{KV_UVAL_DOUBLE, KV_UVAL_FAMILY_NUMBER, "Double"};
template <>
constexpr LeafFacts kFacts<KV_UValString>{KV_UVAL_STRING, KV_UVAL_FAMILY_STRING, "String"};
template <>
constexpr LeafFacts kFacts<KV_UValUTFString>{KV_UVAL_UTFSTRING, KV_UVAL_FAMILY_STRING, "UTFString"};
template <>
constexpr LeafFacts kFacts<KV_UValPtr>{KV_UVAL_PTR, KV_UVAL_FAMILY_POINTER, "Ptr"};

template <class Element>
constexpr bool kIsText = std::is_base_of_v<KV_Str, Element>;

/// An adopted string is one single object; all other blocks are arrays.
template <class Element>
void releaseAdopted(Element *block) {
    if constexpr (kIsText<Element>) {
        delete block;
    } else {
        delete[] block;
    }
}

/// char and unsigned char are numbers here and no letters.
template <class Element>
void printElement(std::ostream &stream, const Element &element) {
    if constexpr (sizeof(Element) == 1) {
        stream << castNumber<std::int32_t>(element);
    } else if constexpr (std::is_pointer_v<Element>) {
        stream << static_cast<const void *>(element);
    } else {
        stream << element;
    }
}

}  // namespace

template <class Leaf, class Element>
UValLeaf<Leaf, Element>::UValLeaf(std::int32_t dimension, void *data)
    : KV_UVal(kFacts<Leaf>.type, kFacts<Leaf>.family) {
    setDimension(0);
    if (dimension < 1) return;
    m_adopted = data != nullptr;
    m_array = m_adopted ? static_cast<Element *>(data) : new Element[static_cast<std::size_t>(dimension)]();
    setDimension(m_adopted && kIsText<Element> ? 1 : dimension);
}

template <class Leaf, class Element>
UValLeaf<Leaf, Element>::UValLeaf(const UValLeaf &other) : KV_UVal(other), m_scalar(other.m_scalar) {
    if (other.m_array == nullptr) return;
    const auto count = static_cast<std::size_t>(GetDimension());
    std::unique_ptr<Element[]> block(new Element[count]);
    std::copy_n(other.m_array, count, block.get());
    m_array = block.release();
}

template <class Leaf, class Element>
UValLeaf<Leaf, Element>::~UValLeaf() {
    if (m_adopted) {
        releaseAdopted(m_array);
    } else {
        delete[] m_array;
    }
}

template <class Leaf, class Element>
KV_UVal *UValLeaf<Leaf, Element>::DeepCopy() {
    return new Leaf(static_cast<Leaf &>(*this));
}

template <class Leaf, class Element>
void UValLeaf<Leaf, Element>::PrintOn(std::ostream &stream) {
    stream << '(' << kFacts<Leaf>.word;
    if (GetDimension() < 1) {
        stream << ')';
        printElement(stream, m_scalar);
        return;
    }
    stream << '#' << std::to_string(GetDimension()) << ") ";  // ungrouped, whatever the stream's locale
    if (GetNrItemsToPrint() < 1) return;
    stream << '{';
    const std::int32_t count = std::min(GetNrItemsToPrint(), GetDimension());
    for (std::int32_t i = 0; i < count; ++i) {
        printElement(stream, m_array[i]);
        stream << ',';
    }
    stream << '}';
}

// Number types.

template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetStrValue(const KV_String &text, std::int32_t index) {
    if constexpr (std::is_floating_point_v<Element>) {
        this->at(index) = static_cast<Element>(std::strtod(text.Ptr(), nullptr));
    } else {
        this->at(index) = static_cast<Element>(parseInt32(text.Ptr()));
    }
}

template <class Leaf, class Element>
void UValNumber<Leaf, Element>::GetStrValue(KV_String &text, std::int32_t index) {
    if constexpr (std::is_floating_point_v<Element>) {
        text.Format("%f", static_cast<double>(this->at(index)));
    } else {
        text.Format("%ld", static_cast<long>(castNumber<std::int32_t>(this->at(index))));
    }
}

template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) std::memcpy(&this->at(index), p, sizeof(Element));
}

template <class Leaf, class Element>
void UValNumber<Leaf, Element>::GetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) std::memcpy(p, &this->at(index), sizeof(Element));
}

template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetCharValue(char value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
char UValNumber<Leaf, Element>::GetCharValue(std::int32_t index) {
    return castNumber<char>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetUCharValue(unsigned char value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
unsigned char UValNumber<Leaf, Element>::GetUCharValue(std::int32_t index) {
    return castNumber<unsigned char>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetShortValue(short value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
short UValNumber<Leaf, Element>::GetShortValue(std::int32_t index) {
    return castNumber<short>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetUShortValue(unsigned short value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
unsigned short UValNumber<Leaf, Element>::GetUShortValue(std::int32_t index) {
    return castNumber<unsigned short>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetLongValue(std::int32_t value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
std::int32_t UValNumber<Leaf, Element>::GetLongValue(std::int32_t index) {
    return castNumber<std::int32_t>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetULongValue(std::uint32_t value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
std::uint32_t UValNumber<Leaf, Element>::GetULongValue(std::int32_t index) {
    return castNumber<std::uint32_t>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetFloatValue(float value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
float UValNumber<Leaf, Element>::GetFloatValue(std::int32_t index) {
    return castNumber<float>(this->at(index));
}
template <class Leaf, class Element>
void UValNumber<Leaf, Element>::SetDoubleValue(double value, std::int32_t index) {
    this->at(index) = castNumber<Element>(value);
}
template <class Leaf, class Element>
double UValNumber<Leaf, Element>::GetDoubleValue(std::int32_t index) {
    return castNumber<double>(this->at(index));
}

// String types.

template <class Leaf, class Element>
void UValText<Leaf, Element>::SetStrValue(const KV_String &text, std::int32_t index) {
    if constexpr (std::is_same_v<Element, KV_String>) {
        this->at(index) = text;
    } else {
        this->at(index) = text.Ptr();
    }
}

template <class Leaf, class Element>
void UValText<Leaf, Element>::GetStrValue(KV_String &text, std::int32_t index) {
    text = static_cast<const KV_Str &>(this->at(index));
}

template <class Leaf, class Element>
void UValText<Leaf, Element>::SetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) static_cast<KV_Str &>(this->at(index)) = *static_cast<const KV_Str *>(p);
}

template <class Leaf, class Element>
void UValText<Leaf, Element>::GetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) *static_cast<KV_Str *>(p) = static_cast<const KV_Str &>(this->at(index));
}

template <class Leaf, class Element>
const char *UValText<Leaf, Element>::GetCStringValue(std::int32_t index) {
    return this->at(index).Ptr();
}

template <class Leaf, class Element>
int UValText<Leaf, Element>::GetSystemStringValue(KV_SystemString *target, std::int32_t index) {
    return target != nullptr ? target->Set(static_cast<const Element &>(this->at(index))) : -1;
}

// The instances.

template class UValLeaf<KV_UValChar, char>;
template class UValLeaf<KV_UValUChar, unsigned char>;
template class UValLeaf<KV_UValShort, short>;
template class UValLeaf<KV_UValUShort, unsigned short>;
template class UValLeaf<KV_UValLong, std::int32_t>;
template class UValLeaf<KV_UValULong, std::uint32_t>;
template class UValLeaf<KV_UValFloat, float>;
template class UValLeaf<KV_UValDouble, double>;
template class UValLeaf<KV_UValString, KV_String>;
template class UValLeaf<KV_UValUTFString, KV_UTFString>;
template class UValLeaf<KV_UValPtr, void *>;
template class UValNumber<KV_UValChar, char>;
template class UValNumber<KV_UValUChar, unsigned char>;
template class UValNumber<KV_UValShort, short>;
template class UValNumber<KV_UValUShort, unsigned short>;
template class UValNumber<KV_UValLong, std::int32_t>;
template class UValNumber<KV_UValULong, std::uint32_t>;
template class UValNumber<KV_UValFloat, float>;
template class UValNumber<KV_UValDouble, double>;
template class UValText<KV_UValString, KV_String>;
template class UValText<KV_UValUTFString, KV_UTFString>;

namespace {

template <class Leaf>
std::unique_ptr<KV_UVal> make(std::int32_t dimension, void *data) {
    using Element = std::remove_pointer_t<decltype(std::declval<Leaf &>().GetValuePtr(0))>;
    // Holds the block until the value does.
    const auto release = [](Element *block) { releaseAdopted(block); };
    std::unique_ptr<Element, decltype(release)> block(dimension < 1 ? nullptr : static_cast<Element *>(data),
                                                      release);
    auto value = std::make_unique<Leaf>(dimension, data);
    (void)block.release();
    return value;
}

}  // namespace

std::unique_ptr<KV_UVal> makeLeaf(KV_UValType type, std::int32_t dimension, void *data) {
    switch (type) {
    case KV_UVAL_CHAR:
        return make<KV_UValChar>(dimension, data);
    case KV_UVAL_UCHAR:
        return make<KV_UValUChar>(dimension, data);
    case KV_UVAL_SHORT:
        return make<KV_UValShort>(dimension, data);
    case KV_UVAL_USHORT:
        return make<KV_UValUShort>(dimension, data);
    case KV_UVAL_LONG:
        return make<KV_UValLong>(dimension, data);
    case KV_UVAL_ULONG:
        return make<KV_UValULong>(dimension, data);
    case KV_UVAL_FLOAT:
        return make<KV_UValFloat>(dimension, data);
    case KV_UVAL_DOUBLE:
        return make<KV_UValDouble>(dimension, data);
    case KV_UVAL_STRING:
        return make<KV_UValString>(dimension, data);
    case KV_UVAL_UTFSTRING:
        return make<KV_UValUTFString>(dimension, data);
    case KV_UVAL_PTR:
        return make<KV_UValPtr>(dimension, data);
    default:
        return nullptr;
    }
}

}  // namespace kv::detail

// Each class's virtual table stands where its destructor does.
KV_UValChar::~KV_UValChar() = default;
KV_UValUChar::~KV_UValUChar() = default;
KV_UValShort::~KV_UValShort() = default;
KV_UValUShort::~KV_UValUShort() = default;
KV_UValLong::~KV_UValLong() = default;
KV_UValULong::~KV_UValULong() = default;
KV_UValFloat::~KV_UValFloat() = default;
KV_UValDouble::~KV_UValDouble() = default;
KV_UValString::~KV_UValString() = default;
KV_UValUTFString::~KV_UValUTFString() = default;
KV_UValPtr::~KV_UValPtr() = default;

void KV_UValPtr::SetStrValue(const KV_String &text, std::int32_t /*index*/) {
    static_assert(sizeof(unsigned long long) >= sizeof(std::uintptr_t));
    const unsigned long long number = std::strtoull(text.Ptr(), nullptr, 10);
    constexpr unsigned long long highest = UINTPTR_MAX;
    at(-1) = std::bit_cast<void *>(static_cast<std::uintptr_t>(std::min(number, highest)));
}

void KV_UValPtr::GetStrValue(KV_String &text, std::int32_t index) {
    text.Format("0x%08X",
                static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(at(index)) & 0xFFFFFFFFu));
}

void KV_UValPtr::SetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) std::memcpy(&at(index), p, sizeof(void *));
}

void KV_UValPtr::GetPtrValue(void *p, std::int32_t index) {
    if (p != nullptr) std::memcpy(p, &at(index), sizeof(void *));
}
