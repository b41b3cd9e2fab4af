#pragma once

#include <kvbase/univval/kv_uval_dict.h>

#include <cctype>
#include <sstream>
#include <string>

// Dictionaries as words, to make them and to compare them.

/// Fills a dictionary from words such as "a:b=5"; "a=null" makes a null entry, "a={}" an empty dictionary.
inline void fill(KV_UValDict &dict, const std::string &words) {
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        const std::size_t sign = word.find('=');
        const std::string path = word.substr(0, sign), value = word.substr(sign + 1);
        if (value == "null") dict.SetUVal(path.c_str(), nullptr);
        if (value == "{}") dict.DefineUValDict(path.c_str());
        if (std::isdigit(value[0]) != 0)
            dict.DefineUVal(path.c_str(), KV_UVAL_LONG, 0, nullptr)->SetLongValue(std::stoi(value), 0);
    }
}

/// The same words back, in key order.
inline std::string flat(KV_UValDict &dict, const std::string &prefix = "") {
    std::string words;
    for (const auto &[key, value] : *dict.GetValuePtr()) {
        auto *inner = dynamic_cast<KV_UValDict *>(value);
        if (!words.empty()) words += " ";
        if (inner != nullptr && inner->GetSize() > 0) {
            words += flat(*inner, prefix + key + ":");
        } else {
            words += prefix + key + "=" + (inner != nullptr ? "{}" : "");
            if (inner == nullptr) words += value != nullptr ? std::to_string(value->GetLongValue(0)) : "null";
        }
    }
    return words;
}

struct Filled : KV_UValDict {
    using KV_UValDict::operator=;
    explicit Filled(const std::string &words) : KV_UValDict(16384) { fill(*this, words); }
};

inline KV_UValDict *dictAt(KV_UValDict &dict, const char *path) {
    return *path == 0 ? &dict : dynamic_cast<KV_UValDict *>(dict.GetUVal(path));
}
