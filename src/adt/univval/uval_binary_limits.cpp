// What a dictionary may not have if it is to be written in binary form.

#include <cstdio>
#include <string>
#include <vector>

#include "binary_form.h"
#include "dict_access.h"
#include "kvbase/runtime/kv_exception.h"

namespace kv::detail {

namespace {

using Map = KV_UValDict::Map;

/// Adds a control character as a backslash and three octal digits, any other byte as it is.
void addVisible(std::string &text, char c) {
    const unsigned byte = static_cast<unsigned char>(c);
    char shown[5] = {c};
    if (byte < 0x20 || byte == 0x7F) std::snprintf(shown, sizeof shown, "\\%03o", byte);
    text += shown;
}

/// A walk through a tree, level by level of the path on which it is.
class LimitCheck {
public:
    explicit LimitCheck(KV_UValDict &root) { enter(root); }

    void run() {
        while (!m_levels.empty()) {
            Level &level = m_levels.back();
            if (level.next == level.end) {
                m_levels.pop_back();
                continue;
            }
            const auto entry = level.next++;
            if (entry->first.size() >= kLongestText) fail("the key of ", " is longer than 32766 bytes");
            if (!spendSeparators(m_separators, entry->first))
                fail("the key of ", " has a separator too many for a file");
            if (entry->second != nullptr) check(*entry->second);
        }
    }

private:
    struct Level {
        Map::iterator next, end;  // next: behind the entry that is looked at
    };

    void enter(KV_UValDict &dict) {
        Map &map = *dict.GetValuePtr();
        if (map.size() > kMostEntries) fail("", " has more than 65535 entries");
        m_levels.push_back({map.begin(), map.end()});
    }

    void check(KV_UVal &value) {
        switch (value.GetType()) {
        case KV_UVAL_DICT:
            enter(static_cast<KV_UValDict &>(value));
            break;
        case KV_UVAL_STRING:
            checkTexts(static_cast<KV_UValString &>(value));
            break;
        case KV_UVAL_UTFSTRING:
            checkTexts(static_cast<KV_UValUTFString &>(value));
            break;
        case KV_UVAL_PTR:
            m_pointers += static_cast<std::uint32_t>(value.GetDimension());
            if (m_pointers > kMostPointers) fail("", " is beyond the 1048576 elements of pointers");
            break;
        default:
            if (value.GetType() < KV_UVAL_NONE || value.GetType() > KV_UVAL_PTR) throw KV_BinPackException();
        }
    }

    template <class Leaf>
    void checkTexts(Leaf &value) {
        for (std::int32_t i = 0; i == 0 || i < value.GetDimension(); ++i) {
            if (value.GetValue(i).Size() >= kLongestText) fail("", " has a text of more than 32766 bytes");
        }
    }

    [[noreturn]] void fail(const char *before, const char *behind) const {
        const std::string message = "AppendBinToStream failed because " + (before + path()) + behind;
        throw KV_FileException(message.c_str(), KV_FileException::WriteError, 0, KV_HERE);
    }

    /// The keys of the entry that is looked at, cut in the middle where they are long. Control characters,
    /// zero bytes among them, would end a message or break its line: they are shown as octal escapes.
    std::string path() const {
        if (m_levels.empty()) return "the dictionary";
        std::string path;
        for (const Level &level : m_levels) {
            if (&level != &m_levels.front()) path += KV_DictPath::GetSeparator();
            for (const char c : std::prev(level.next)->first)
                addVisible(path, c);
        }
        constexpr std::size_t kEnds = 100;
        if (path.size() <= 2 * kEnds) return path;
        return path.substr(0, kEnds) + "..." + path.substr(path.size() - kEnds);
    }

    std::vector<Level> m_levels;
    std::uint32_t m_pointers = 0;              // elements so far
    std::uint64_t m_separators = kSeparators;  // of keys that may still come
};

}  // namespace

void checkBinaryLimits(KV_UValDict &dict) { LimitCheck(dict).run(); }

}  // namespace kv::detail
