#include "adt/univval/dict_access.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"

namespace {

template <class Number>
Number read(KV_UVal *value, Number (KV_UVal::*getter)(std::int32_t), Number defaultValue,
            std::int32_t index) {
    return value != nullptr ? (value->*getter)(index) : defaultValue;
}

template <class Number>
void write(KV_UVal *value, void (KV_UVal::*setter)(Number, std::int32_t), Number number, std::int32_t index) {
    if (value != nullptr) (value->*setter)(number, index);
}

/// The value as one of a leaf class, null when it is of another type.
template <class Leaf>
Leaf *as(KV_UVal *value, KV_UValType type) {
    return value != nullptr && value->GetType() == type ? static_cast<Leaf *>(value) : nullptr;
}

/// The element of a value of the string family, null for other values.
KV_Str *textOf(KV_UVal *value, std::int32_t index) {
    if (auto *text = as<KV_UValString>(value, KV_UVAL_STRING)) return text->GetValuePtr(index);
    if (auto *text = as<KV_UValUTFString>(value, KV_UVAL_UTFSTRING)) return text->GetValuePtr(index);
    return nullptr;
}

}  // namespace

KV_UValType KV_UValDict::GetUValType(const KV_DictPath &path) {
    const KV_UVal *value = GetUVal(path);
    return value != nullptr ? value->GetType() : KV_UVAL_NONE;
}

std::int32_t KV_UValDict::GetUValDimension(const KV_DictPath &path) {
    const KV_UVal *value = GetUVal(path);
    return value != nullptr ? value->GetDimension() : -1;
}

char KV_UValDict::GetValue(const KV_DictPath &path, char defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetCharValue, defaultValue, index);
}
unsigned char KV_UValDict::GetValue(const KV_DictPath &path, unsigned char defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetUCharValue, defaultValue, index);
}
short KV_UValDict::GetValue(const KV_DictPath &path, short defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetShortValue, defaultValue, index);
}
unsigned short KV_UValDict::GetValue(const KV_DictPath &path, unsigned short defaultValue,
                                     std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetUShortValue, defaultValue, index);
}
std::int32_t KV_UValDict::GetValue(const KV_DictPath &path, std::int32_t defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetLongValue, defaultValue, index);
}
std::uint32_t KV_UValDict::GetValue(const KV_DictPath &path, std::uint32_t defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetULongValue, defaultValue, index);
}
float KV_UValDict::GetValue(const KV_DictPath &path, float defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetFloatValue, defaultValue, index);
}
double KV_UValDict::GetValue(const KV_DictPath &path, double defaultValue, std::int32_t index) {
    return read(GetUVal(path), &KV_UVal::GetDoubleValue, defaultValue, index);
}

const char *KV_UValDict::GetValue(const KV_DictPath &path, const char *defaultValue, std::int32_t index) {
    const KV_Str *text = textOf(GetUVal(path), index);
    return text != nullptr ? text->Ptr() : defaultValue;
}

KV_String KV_UValDict::GetValue(const KV_DictPath &path, const KV_String &defaultValue, std::int32_t index) {
    const KV_Str *text = textOf(GetUVal(path), index);
    return text != nullptr ? KV_String(*text) : defaultValue;
}

KV_UTFString KV_UValDict::GetValue(const KV_DictPath &path, const KV_UTFString &defaultValue,
                                   std::int32_t index) {
    // Through a plain string, which is looked at, also from a KV_UValUTFString: a setter may have given it
    // bytes as they stand.
    const KV_Str *text = textOf(GetUVal(path), index);
    return text != nullptr ? KV_UTFString(KV_String(*text)) : defaultValue;
}

void *KV_UValDict::GetValue(const KV_DictPath &path, void *defaultValue, std::int32_t index) {
    auto *pointer = as<KV_UValPtr>(GetUVal(path), KV_UVAL_PTR);
    return pointer != nullptr ? pointer->GetValue(index) : defaultValue;
}

void KV_UValDict::SetValue(const KV_DictPath &path, char value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetCharValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, unsigned char value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetUCharValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, short value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetShortValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, unsigned short value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetUShortValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, std::int32_t value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetLongValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, std::uint32_t value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetULongValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, float value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetFloatValue, value, index);
}
void KV_UValDict::SetValue(const KV_DictPath &path, double value, std::int32_t index) {
    write(GetUVal(path), &KV_UVal::SetDoubleValue, value, index);
}

void KV_UValDict::SetValue(const KV_DictPath &path, const KV_String &value, std::int32_t index) {
    if (KV_Str *text = textOf(GetUVal(path), index)) *text = static_cast<const KV_Str &>(value);
}

void KV_UValDict::SetValue(const KV_DictPath &path, const KV_UTFString &value, std::int32_t index) {
    if (KV_Str *text = textOf(GetUVal(path), index)) *text = static_cast<const KV_Str &>(value);
}

void KV_UValDict::SetValue(const KV_DictPath &path, const char *value, std::int32_t index) {
    KV_UVal *there = GetUVal(path);
    if (auto *text = as<KV_UValString>(there, KV_UVAL_STRING)) text->SetValue(KV_String(value), index);
    if (auto *utf = as<KV_UValUTFString>(there, KV_UVAL_UTFSTRING)) utf->SetValue(KV_UTFString(value), index);
}

void KV_UValDict::SetValue(const KV_DictPath &path, void *value, std::int32_t index) {
    if (auto *pointer = as<KV_UValPtr>(GetUVal(path), KV_UVAL_PTR)) pointer->SetValue(value, index);
}
