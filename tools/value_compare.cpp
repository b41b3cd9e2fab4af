#include "value_compare.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace kvtool {
namespace {

bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool sameElement(KV_UVal &a, KV_UVal &b, std::int32_t index) {
    switch (a.GetFamily()) {
    case KV_UVAL_FAMILY_NUMBER:
        return sameBits(a.GetDoubleValue(index), b.GetDoubleValue(index));
    case KV_UVAL_FAMILY_STRING: {
        KV_String textA;
        KV_String textB;
        a.GetStrValue(textA, index);
        b.GetStrValue(textB, index);
        return textA == textB;
    }
    case KV_UVAL_FAMILY_POINTER: {
        void *pointerA = nullptr;
        void *pointerB = nullptr;
        a.GetPtrValue(&pointerA, index);
        b.GetPtrValue(&pointerB, index);
        return pointerA == pointerB;
    }
    default:
        return true;
    }
}

std::string whyNumberDiffers(double value) {
    if (!std::isfinite(value)) return "a number that is not finite has no text form";
    return "has more than the six decimals that the text form keeps";
}

// Empty when both are the same; b stands for what is left of a.
std::string whyDifferent(KV_UVal *a, KV_UVal *b) {
    if (a == nullptr) return "has no value, and entries without one have no text form";
    if (a->GetType() == KV_UVAL_PTR) {
        for (std::int32_t i = 0; i < std::max<std::int32_t>(1, a->GetDimension()); ++i)
            if (b == nullptr || b->GetType() != KV_UVAL_PTR || !sameElement(*a, *b, i))
                return "pointers are not stored";
        return {};
    }
    const bool number = a->GetFamily() == KV_UVAL_FAMILY_NUMBER;
    if (b == nullptr || a->GetType() != b->GetType() || a->GetDimension() != b->GetDimension()) {
        if (number)
            for (std::int32_t i = 0; i < std::max<std::int32_t>(1, a->GetDimension()); ++i)
                if (!std::isfinite(a->GetDoubleValue(i))) return whyNumberDiffers(a->GetDoubleValue(i));
        return "is not read back as it was";
    }
    if (a->GetType() != KV_UVAL_DICT && a->GetNrItemsToPrint() != b->GetNrItemsToPrint())
        return "has a number of items to print, which has no text form";
    for (std::int32_t i = 0; i < std::max<std::int32_t>(1, a->GetDimension()); ++i)
        if (!sameElement(*a, *b, i))
            return number ? whyNumberDiffers(a->GetDoubleValue(i)) : "is not read back as it was";
    return {};
}

}  // namespace

void TreeWalk::enter(KV_UValDict &dict) {
    Map *map = dict.GetValuePtr();
    m_levels.push_back({map, map->begin(), false});
}

bool TreeWalk::next() {
    if (m_levels.back().started) {
        KV_UVal *last = value();
        if (last != nullptr && last->GetType() == KV_UVAL_DICT) enter(*static_cast<KV_UValDict *>(last));
    }
    for (;;) {
        Level &level = m_levels.back();
        if (level.started) ++level.at;
        level.started = true;
        if (level.at != level.map->end()) return true;
        if (m_levels.size() == 1) return false;
        m_levels.pop_back();
    }
}

std::string TreeWalk::path() const {
    std::string path;
    for (const Level &level : m_levels)
        path += level.at->first + KV_DictPath::GetSeparator();
    path.pop_back();
    return path;
}

TreeSize sizeOf(KV_UValDict &root) {
    TreeSize size;
    for (TreeWalk walk(root); walk.next(); ++size.entries)
        size.depth = std::max(size.depth, walk.depth());
    return size;
}

std::vector<std::string> differences(KV_UValDict &root, KV_UValDict &other, std::size_t most) {
    std::vector<std::string> found;
    // partners[d]: the dictionary of other that stands where the walk is at depth d + 1; null when there is
    // none.
    std::vector<KV_UValDict *> partners{&other};
    for (TreeWalk walk(root); found.size() < most && walk.next();) {
        partners.resize(walk.depth());
        KV_UVal *partner = nullptr;
        bool present = false;
        if (KV_UValDict *level = partners.back()) {
            const auto at = level->GetValuePtr()->find(walk.key());
            present = at != level->GetValuePtr()->end();
            if (present) partner = at->second;
        }
        KV_UVal *value = walk.value();
        KV_UValDict *below = nullptr;
        if (value != nullptr && partner != nullptr && value->GetType() == KV_UVAL_DICT &&
            partner->GetType() == KV_UVAL_DICT)
            below = static_cast<KV_UValDict *>(partner);
        std::string reason;
        if (!present &&
            (walk.key().empty() || walk.key().find(KV_DictPath::GetSeparator()) != std::string::npos))
            reason = "a key that is empty or holds the path separator is not read back";
        else if (partners.back() != nullptr && !(present && value == nullptr && partner == nullptr))
            reason = whyDifferent(value, partner);
        if (reason.empty() && below != nullptr &&
            static_cast<KV_UValDict *>(value)->GetSize() < below->GetSize())
            reason = "has further entries when it is read back";
        if (!reason.empty()) found.push_back(walk.path() + ": " + reason);
        partners.push_back(below);
    }
    return found;
}

}  // namespace kvtool
