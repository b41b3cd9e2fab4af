#include "value_print.h"

#include <iostream>
#include <sstream>
#include <string_view>

#include "command.h"
#include "utf8_text.h"
#include "value_compare.h"
#include "value_file.h"

namespace kvtool {

KV_UVal *findValue(KV_UValDict &dict, const KV_DictPath &path) {
    KV_UValDict *level = &dict;
    const char *key = nullptr;
    for (int i = 0; i < path.Size(); ++i) {
        key = path.NextKey(key);
        const auto at = level->GetValuePtr()->find(std::string_view(key));
        if (at == level->GetValuePtr()->end() || at->second == nullptr) return nullptr;
        if (i + 1 == path.Size()) return at->second;
        if (at->second->GetType() != KV_UVAL_DICT) return nullptr;
        level = static_cast<KV_UValDict *>(at->second);
    }
    return nullptr;
}

void printTree(KV_UValDict &dict, const std::string &file) {
    if (sizeOf(dict).depth > kDeepestTree)
        throw BadInput(
            file, "is nested deeper than the " + std::to_string(kDeepestTree) + " levels that are printed");
    std::ostringstream text;
    dict.PrintOn(text);
    std::cout << visible(text.str());
}

}  // namespace kvtool
