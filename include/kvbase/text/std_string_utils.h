#pragma once

#include <string>

#include "kvbase/base/export.h"

/// Case of bytes, by tolower and toupper of the current locale.
namespace StdStringUtils {

/// A copy of the text with every byte in lower or upper case.
KV_EXPORT std::string ToLowerCase(const std::string &text);
KV_EXPORT std::string ToUpperCase(const std::string &text);

}  // namespace StdStringUtils
