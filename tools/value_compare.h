#pragma once

#include <kvbase/kvbase.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kvtool {

/// A walk through a tree of dictionaries, entry by entry in key order, a dictionary before its entries. Its
/// own memory grows with the depth of the tree, not the stack.
class TreeWalk {
public:
    explicit TreeWalk(KV_UValDict &root) { enter(root); }
    /// Goes to the next entry, of which value(), key() and path() then tell. False behind the last one.
    bool next();
    /// The entry's value; null for an entry without one.
    KV_UVal *value() const { return m_levels.back().at->second; }
    const std::string &key() const { return m_levels.back().at->first; }
    /// The entry's keys, joined with the path separator.
    std::string path() const;
    /// 1 for the entries of the root.
    std::size_t depth() const { return m_levels.size(); }

private:
    using Map = KV_UValDict::Map;
    struct Level {
        Map *map;
        Map::iterator at;
        bool started;
    };
    void enter(KV_UValDict &dict);
    std::vector<Level> m_levels;
};

struct TreeSize {
    std::size_t entries = 0;
    std::size_t depth = 0;
};
/// How many entries a tree has in all its levels, and how many levels.
TreeSize sizeOf(KV_UValDict &root);

/// Why other is not the same tree as root: a line for each entry that differs, at most `most`, "PATH:
/// reason". Empty when both are equal, numbers to the last bit.
std::vector<std::string> differences(KV_UValDict &root, KV_UValDict &other, std::size_t most);

}  // namespace kvtool
