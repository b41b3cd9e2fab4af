#include "kvbase/text/kv_string7bit.h"

#include "adt/text/byte_range.h"

using kv::detail::replaceHighBytes;

String7Bit::String7Bit(const char *s) : KV_String(s) { replaceHighBytes(m_data, m_length); }

String7Bit::String7Bit(const KV_Str &s) : KV_String(s) { replaceHighBytes(m_data, m_length); }

String7Bit::String7Bit(const KV_SubStr &range) {
    KV_String::operator=(range);
    replaceHighBytes(m_data, m_length);
}
