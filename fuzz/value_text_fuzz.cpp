// Any bytes as the text form of a value. What is read does not depend on how the stream cuts the text, and
// what is written reads back as the same text; a dictionary that is found by name is the one that is read by
// name.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_text.h"
#include "piece_buffer.h"

namespace {

using Value = std::unique_ptr<KV_UVal>;

// Null for the documented failure.
Value read(std::istream &stream, const char *name = "") {
    KV_UVal *value = nullptr;
    try {
        KV_ReadUValTxt(stream, value, KV_String(name));
    } catch (const KV_FileException &e) {
        if (e.GetFileErrorId() != KV_FileException::InvalidFile || value != nullptr) std::abort();
    }
    return Value(value);
}

std::string write(KV_UVal *value, int indent) {
    std::ostringstream out;
    KV_WriteUValTxt(out, value, indent);
    return out.str();
}

// Whether the form has words for all that is in the value: numbers are finite, and no key is empty or holds
// a backslash.
bool readsBack(KV_UVal *root) {
    for (std::vector<KV_UVal *> open{root}; !open.empty();) {
        KV_UVal *value = open.back();
        open.pop_back();
        if (value->GetType() == KV_UVAL_DICT) {
            for (const auto &[key, entry] : *static_cast<KV_UValDict *>(value)->GetValuePtr()) {
                if (key.empty() || key.find('\\') != key.npos) return false;
                open.push_back(entry);
            }
        } else if (value->GetFamily() == KV_UVAL_FAMILY_NUMBER) {
            for (std::int32_t i = 0; i == 0 || i < value->GetDimension(); ++i) {
                if (!std::isfinite(value->GetDoubleValue(i))) return false;
            }
        }
    }
    return true;
}

void expectSame(const Value &a, const Value &b) {
    constexpr int kNoIndent = -1000000;  // so that depth does not make the text long
    if ((a == nullptr) != (b == nullptr) || write(a.get(), kNoIndent) != write(b.get(), kNoIndent))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const std::size_t piece = 1 + data[0] % 5U;
    const std::string text(data + 1, data + size);

    std::istringstream whole(text);
    const Value value = read(whole);
    PieceBuffer buffer(text, piece);
    std::istream pieces(&buffer);
    expectSame(value, read(pieces));

    if (value != nullptr && readsBack(value.get())) {
        std::istringstream again(write(value.get(), size < 1000 ? data[0] % 3 : -1000000));
        expectSame(value, read(again));
    }

    std::istringstream found(text), named(text);
    if (KV_FindDictionaryInText(found, "a") == 1) {
        if (text.compare(static_cast<std::size_t>(found.tellg()), 2, "<<") != 0) std::abort();
        expectSame(read(found), read(named, "a"));
    } else if (!found.eof() || read(named, "a") != nullptr) {
        std::abort();
    }
    return 0;
}
