#pragma once

#include <kvbase/kvbase.h>

#include <string>
#include <vector>

namespace kvtool {

/// The name of a value's type as the tool takes and shows it, such as "long"; "none" for a missing entry.
const char *typeName(KV_UValType type);

/// The types that --type and --as take, by name; KV_UVAL_NONE for a name that isn't one of them.
KV_UValType typeOfName(const std::string &name);

/// Their names, for help texts: "char, uchar, ...".
std::string typeNames();

/// The type that a text on the command line has by its look: long, double or string (utfstring with bytes
/// above 127).
KV_UValType typeOfText(const std::string &text);

/// Puts the text into element index of value. Throws BadInput when the text isn't wholly a number of the
/// value's type, is out of its range, or for a utfstring is no UTF-8 or has a character that it can't hold;
/// also for a value of a type that isn't one of typeNames(): a ptr or a dictionary.
void setElement(KV_UVal &value, const std::string &text, std::int32_t index);

/// Element index of value as text, converted to type by the library's rules: a number in its shortest exact
/// form, a string as it stands.
std::string elementText(KV_UVal &value, KV_UValType type, std::int32_t index);

}  // namespace kvtool
