#include "text_stack.h"

#include "dict_access.h"
#include "text_lexer.h"

namespace kv::detail {

std::size_t TokenStack::find(Mark bracket) const {
    const auto found = std::find(m_marks.rbegin(), m_marks.rend(), bracket);
    return found == m_marks.rend() ? npos : static_cast<std::size_t>(m_marks.rend() - found) - 1;
}

void TokenStack::pushPaired(std::unique_ptr<KV_UVal> value) {
    const bool isFirst = at(size() - 2) == kDictBegin;
    if (isFirst) append(m_dicts, std::make_unique<KV_UValDict>(16384U));
    DictAccess::putAtPath(*m_dicts.back(), popText(), std::move(value));  // what finds no place is dropped
    m_marks.back() = isFirst ? kFirstPair : kPaired;
    push(kPaired);
}

Scalar TokenStack::pop() {
    switch (take(m_marks)) {
    case kInteger:
        return {KV_PsNToken::PST_INT, take(m_integers), 0, {}};
    case kFloat:
        return {KV_PsNToken::PST_FLOAT, 0, take(m_numbers), {}};
    case kZero:
        return {KV_PsNToken::PST_FLOAT};
    case kText:
        return {KV_PsNToken::PST_STRING, 0, 0, toKVString(popText())};
    case kKey:
        popText();
        break;
    case kFirstPair:
        m_dicts.pop_back();
        break;
    default:
        break;
    }
    return {KV_PsNToken::PST_UVAL};
}

std::unique_ptr<KV_UValDict> TokenStack::popDictionary(std::size_t place) {
    const bool hasPairs = place + 1 < size();
    if (hasPairs && top() != kPaired) return nullptr;
    m_marks.resize(place);
    return hasPairs ? take(m_dicts) : std::make_unique<KV_UValDict>(16384U);
}

// The length stands behind the text, seven bits a byte, the lowest ones first and marked.
void TokenStack::pushText(std::string_view text) {
    std::size_t length = text.size();
    if (m_texts.capacity() - m_texts.size() < length) grow(m_texts, length);
    m_texts.insert(m_texts.end(), text.begin(), text.end());
    append(m_texts, static_cast<char>(0x80 | (length & 0x7F)));
    while ((length >>= 7) != 0)
        append(m_texts, static_cast<char>(length & 0x7F));
}

std::string_view TokenStack::popText() {
    auto byte = static_cast<unsigned char>(take(m_texts));
    std::size_t length = 0;
    for (; byte < 0x80; byte = static_cast<unsigned char>(take(m_texts)))
        length = (length | byte) << 7;
    length |= byte & 0x7F;
    m_texts.resize(m_texts.size() - length);
    return {m_texts.data() + m_texts.size(), length};
}

}  // namespace kv::detail
