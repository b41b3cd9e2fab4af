#include "kvbase/runtime/kv_attribute.h"

#include "kvbase/runtime/kv_exception.h"

namespace {
constexpr unsigned short kListExhausted = 1;
}

KV_Attribute::KV_Attribute(KV_Argument &list) : m_number(0) { take(list); }

KV_Attribute::~KV_Attribute() = default;

KV_Attribute &KV_Attribute::operator=(KV_Argument &list) {
    take(list);
    return *this;
}

void KV_Attribute::take(KV_Argument &list) {
    m_number = list;
    if (list.isExhausted()) throw KV_AttributeException(kListExhausted, 0);
    ++list.m_element;
    --list.m_count;
}

KV_Argument &KV_Argument::operator=(KV_Argument source) {
    m_element = source.m_element;
    m_count = source.m_count;
    m_isCopy = true;
    if (!source.m_isCopy) source.m_element = nullptr;
    return *this;
}

KV_Argument::operator std::uint32_t() const {
    if (isExhausted() || *m_element == nullptr) return 0;
    return (*m_element)->Get_KV_AttributeID();
}
