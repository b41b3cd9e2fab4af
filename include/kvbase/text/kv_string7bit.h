#pragma once

#include "kvbase/text/kv_string.h"

/// A copy of a text in which every byte with the top bit set has become "#", which makes it good UTF-8 of the
/// same length. A null pointer counts as the empty text.
class KV_EXPORT String7Bit : public KV_String {
public:
    String7Bit(const char *s);
    /// All bytes, 0 bytes included.
    String7Bit(const KV_Str &s);
    String7Bit(const KV_SubStr &range);
};
