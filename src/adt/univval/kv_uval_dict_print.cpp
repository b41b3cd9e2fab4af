#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "adt/univval/dict_access.h"
#include "kvbase/univval/kv_uval_dict.h"

void KV_UValDict::PrintOn(std::ostream &stream) { PrintDict(stream, ""); }

void KV_UValDict::PrintDict(std::ostream &stream, const char *prefix) {
    constexpr std::string_view kStep = "    |";
    struct Level {
        Map::const_iterator next, end;
    };
    std::string margin(prefix != nullptr ? prefix : "");
    margin += kStep;
    std::vector<Level> open{{m_map.begin(), m_map.end()}};
    while (!open.empty()) {
        Level &level = open.back();
        if (level.next == level.end) {
            open.pop_back();
            margin.resize(margin.size() - kStep.size());
            continue;
        }
        const auto &[key, value] = *level.next++;
        stream << margin << "- " << key;
        if (value == nullptr) {
            stream << "<NULL>\n";
        } else if (const KV_UValDict *dict = kv::detail::asDict(value)) {
            stream << '\n';
            margin += kStep;
            open.push_back({dict->m_map.begin(), dict->m_map.end()});
        } else {
            stream << " => " << *value << '\n';
        }
    }
}
