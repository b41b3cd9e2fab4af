#include "kvbase/univval/kv_uval.h"

#include <ostream>

// What every family inherits for the operations that it doesn't define.

KV_UVal::~KV_UVal() = default;

KV_UVal *KV_UVal::DeepCopy() { return nullptr; }

void KV_UVal::SetStrValue(const KV_String & /*text*/, std::int32_t /*index*/) {}
void KV_UVal::GetStrValue(KV_String & /*text*/, std::int32_t /*index*/) {}
void KV_UVal::SetPtrValue(void * /*p*/, std::int32_t /*index*/) {}
void KV_UVal::GetPtrValue(void * /*p*/, std::int32_t /*index*/) {}

void KV_UVal::SetCharValue(char /*value*/, std::int32_t /*index*/) {}
char KV_UVal::GetCharValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetUCharValue(unsigned char /*value*/, std::int32_t /*index*/) {}
unsigned char KV_UVal::GetUCharValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetShortValue(short /*value*/, std::int32_t /*index*/) {}
short KV_UVal::GetShortValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetUShortValue(unsigned short /*value*/, std::int32_t /*index*/) {}
unsigned short KV_UVal::GetUShortValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetLongValue(std::int32_t /*value*/, std::int32_t /*index*/) {}
std::int32_t KV_UVal::GetLongValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetULongValue(std::uint32_t /*value*/, std::int32_t /*index*/) {}
std::uint32_t KV_UVal::GetULongValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetFloatValue(float /*value*/, std::int32_t /*index*/) {}
float KV_UVal::GetFloatValue(std::int32_t /*index*/) { return 0; }
void KV_UVal::SetDoubleValue(double /*value*/, std::int32_t /*index*/) {}
double KV_UVal::GetDoubleValue(std::int32_t /*index*/) { return 0; }

const char *KV_UVal::GetCStringValue(std::int32_t /*index*/) { return nullptr; }
int KV_UVal::GetSystemStringValue(KV_SystemString * /*target*/, std::int32_t /*index*/) { return -1; }

std::ostream &operator<<(std::ostream &stream, KV_UVal &value) {
    value.PrintOn(stream);
    return stream;
}
