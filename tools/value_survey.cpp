#include "value_survey.h"

#include <kvbase/kvbase.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

namespace kvtool {
namespace {

constexpr std::size_t kMostNotes = 10;

struct Range {
    double least;
    double most;
};

// What the integer types of the keywords, by the keyword's number, can hold. An unsigned long is written as a
// signed one.
constexpr Range kRanges[] = {{-128, 127},
                             {0, 255},
                             {-32768, 32767},
                             {0, 65535},
                             {-2147483648.0, 2147483647},
                             {-2147483648.0, 4294967295.0}};
constexpr int kFirstTextKeyword = 8;

class Survey {
public:
    explicit Survey(const std::string &bytes) : m_bytes(bytes), m_stream(bytes) {}

    std::vector<std::string> run() {
        while (!m_done && skipToToken() && token()) {
        }
        checkLast();
        if (m_comments > 0) note(std::to_string(m_comments) + (m_comments == 1 ? " comment" : " comments"));
        if (skipToToken() || m_stream.peek() == 0xFF) note("text behind the values");
        return std::move(m_notes);
    }

private:
    struct Level {
        std::set<std::string> keys;
        bool keyIsNext = true;
    };
    // The last number or text, until it is known whether a type keyword follows.
    struct Last {
        KV_PsNToken::Kind kind;
        std::string word;
    };

    void note(const std::string &text) {
        if (m_notes.size() < kMostNotes && std::find(m_notes.begin(), m_notes.end(), text) == m_notes.end())
            m_notes.push_back(text);
    }

    bool skipToToken() {
        for (;;) {
            const int c = m_stream.peek();
            if (c == '%') {
                ++m_comments;
                while (m_stream.peek() != EOF && m_stream.peek() != 0xFF && m_stream.peek() != '\n' &&
                       m_stream.peek() != '\r')
                    m_stream.get();
            } else if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
                m_stream.get();
            } else {
                return c != EOF && c != 0xFF;
            }
        }
    }

    bool token() {
        const auto begin = static_cast<std::size_t>(m_stream.tellg());
        char buffer[1024];
        const std::unique_ptr<KV_PsNToken> token(KV_GetToken(m_stream, buffer, sizeof buffer));
        if (!token) return false;
        if (token->GetKind() == KV_PsNToken::PST_TYPE) {
            checkLast(static_cast<KV_PsTypeToken &>(*token).GetValue());
            return true;
        }
        checkLast();
        switch (token->GetKind()) {
        case KV_PsNToken::PST_DICT_BEGIN:
            m_levels.emplace_back();
            break;
        case KV_PsNToken::PST_DICT_END:
            if (!m_levels.empty()) m_levels.pop_back();
            valueEnds();
            break;
        case KV_PsNToken::PST_ARRAY_BEGIN:
            if (m_inArray) note("an array within an array");
            m_inArray = true;
            m_elementKind.reset();
            break;
        case KV_PsNToken::PST_ARRAY_END:
            m_inArray = false;
            valueEnds();
            break;
        case KV_PsNToken::PST_IDENTIFIER:
            key(static_cast<KV_PsIdentifierToken &>(*token).GetValue());
            break;
        case KV_PsNToken::PST_STRING:
            if (!m_inArray && !m_levels.empty() && m_levels.back().keyIsNext) {
                key(static_cast<KV_PsStringToken &>(*token).GetValue());
                break;
            }
            [[fallthrough]];
        default:
            element(token->GetKind(), begin);
        }
        return true;
    }

    void element(KV_PsNToken::Kind kind, std::size_t begin) {
        const std::size_t end = std::min(m_bytes.find_first_of(" \t\r\n()<>[]{}", begin), m_bytes.size());
        m_last = Last{kind, m_bytes.substr(begin, end - begin)};
        if (m_inArray) {
            if (m_elementKind && *m_elementKind != kind) note("an array of elements of several kinds");
            m_elementKind = kind;
        } else {
            valueEnds();
        }
    }

    // Whether the number or text before is held by the type that it gets; without a keyword that is the type
    // of its look.
    void checkLast(int keyword = -1) {
        if (!m_last) return;
        const Last last = *m_last;
        m_last.reset();
        if (last.kind == KV_PsNToken::PST_STRING) {
            if (keyword >= 0 && keyword < kFirstTextKeyword && !m_inArray)
                note("a text in the place of a number");
            return;
        }
        double number = 0;
        const char *end = last.word.data() + last.word.size();
        const auto result = std::from_chars(last.word.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end) {
            note("the word '" + last.word + "', of which only the beginning counts as a number");
            return;
        }
        const bool isInt = last.kind == KV_PsNToken::PST_INT;
        if (keyword == kFirstTextKeyword || keyword == kFirstTextKeyword + 1) {
            note("the number " + last.word + " in the place of a text");
        } else if (isInt || (keyword >= 0 && keyword < static_cast<int>(std::size(kRanges)))) {
            const Range range =
                kRanges[keyword >= 0 && keyword < static_cast<int>(std::size(kRanges)) ? keyword : 4];
            // A whole number is read with 32 bits whatever its type.
            const bool held =
                number >= range.least && number <= range.most && !(isInt && number > kRanges[4].most);
            if (!held) note("the number " + last.word + ", which is out of its type's range");
        }
    }

    void valueEnds() {
        if (m_levels.empty())
            m_done = true;
        else
            m_levels.back().keyIsNext = true;
    }

    void key(const KV_String &text) {
        if (m_levels.empty()) return;
        const std::string name(text.Ptr(), text.Length());
        m_levels.back().keyIsNext = false;
        if (!m_levels.back().keys.insert(name).second)
            note("the key '" + name + "' twice, of which the later one counts");
        if (name.empty()) note("an entry with an empty key, which is not kept");
        if (name.find('\0') != std::string::npos) note("a key with a zero byte, which ends it");
        if (name.find(KV_DictPath::GetSeparator()) != std::string::npos)
            note("the key '" + name +
                 "', which holds the path separator and is read as a dictionary within a dictionary");
    }

    const std::string &m_bytes;
    std::istringstream m_stream;
    std::vector<Level> m_levels;
    std::vector<std::string> m_notes;
    std::optional<Last> m_last;
    std::optional<KV_PsNToken::Kind> m_elementKind;
    std::size_t m_comments = 0;
    bool m_inArray = false;
    bool m_done = false;
};

}  // namespace

std::vector<std::string> surveyText(const std::string &bytes) { return Survey(bytes).run(); }

}  // namespace kvtool
