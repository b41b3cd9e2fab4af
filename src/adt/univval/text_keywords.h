#pragma once

#include <string_view>

#include "kvbase/univval/kv_uval.h"

namespace kv::detail {

/// A type keyword of the text form and the type it selects.
struct TypeKeyword {
    std::string_view word;
    KV_UValType type;
};

/// All of them; the place in the array is the keyword's number.
constexpr TypeKeyword kTypeKeywords[] = {
    {"satchar", KV_UVAL_CHAR},           {"satuchar", KV_UVAL_UCHAR},   {"satshort", KV_UVAL_SHORT},
    {"satushort", KV_UVAL_USHORT},       {"satlong", KV_UVAL_LONG},     {"satulong", KV_UVAL_ULONG},
    {"satfloat", KV_UVAL_FLOAT},         {"satdouble", KV_UVAL_DOUBLE}, {"satstring", KV_UVAL_STRING},
    {"satutfstring", KV_UVAL_UTFSTRING}, {"satptr", KV_UVAL_PTR},
};
constexpr int kTypeKeywordCount = sizeof(kTypeKeywords) / sizeof(kTypeKeywords[0]);
static_assert(kTypeKeywordCount == 11, "a keyword for each leaf class");

/// The number of a keyword, -1 for any other word.
constexpr int keywordNumber(std::string_view word) {
    if (!word.starts_with("sat")) return -1;
    for (int number = 0; number < kTypeKeywordCount; ++number) {
        if (kTypeKeywords[number].word == word) return number;
    }
    return -1;
}

/// The keyword of a leaf type; empty for any other type.
constexpr std::string_view keywordOf(KV_UValType type) {
    for (const TypeKeyword &keyword : kTypeKeywords) {
        if (keyword.type == type) return keyword.word;
    }
    return {};
}

}  // namespace kv::detail
