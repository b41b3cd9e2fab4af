#pragma once

#include <kvbase/kvbase.h>

#include <string>

namespace kvtool {

/// The value at the path itself, null when there is none: KV_UValDict's own look-up through a number or text
/// would answer with that.
KV_UVal *findValue(KV_UValDict &dict, const KV_DictPath &path);

/// Prints a tree. Throws BadInput about file when it is nested deeper than kDeepestTree.
void printTree(KV_UValDict &dict, const std::string &file);

}  // namespace kvtool
