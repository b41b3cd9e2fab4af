#pragma once

#include <iosfwd>
#include <memory>

#include "kvbase/text/kv_string.h"
#include "kvbase/univval/kv_uval.h"

namespace kv::detail {

/// Reads one value in text form as KV_ReadUValTxt does; never null.
std::unique_ptr<KV_UVal> readTextValue(std::istream &stream, const KV_String &name);

/// Writes one value in text form as KV_WriteUValTxt does, but every exception passes on.
void writeTextValue(std::ostream &stream, KV_UVal *value, int indent);

}  // namespace kv::detail
