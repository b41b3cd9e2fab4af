// The writer of the text form. It goes through a tree with a stack of its own, so that depth needs no
// recursion.

#include <algorithm>
#include <cstdint>
#include <locale>
#include <ostream>
#include <string_view>
#include <vector>

#include "dict_access.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_leaf.h"
#include "kvbase/univval/kv_uval_text.h"
#include "number_cast.h"
#include "runtime/fixed_decimal.h"
#include "stream_failure.h"
#include "text_chars.h"
#include "text_keywords.h"
#include "text_value.h"

namespace kv::detail {

namespace {

/// The longest piece of text that is put out at once.
constexpr std::size_t kPiece = 1024;

/// What is written, gathered in a block before it goes to the stream. After a failure of the stream nothing
/// does.
class TextSink {
public:
    explicit TextSink(std::ostream &stream) : m_stream(stream) {}
    TextSink(const TextSink &) = delete;
    TextSink &operator=(const TextSink &) = delete;

    /// A place for size bytes, at most 4 * kPiece. Whoever has written there calls end with the end of it.
    char *room(std::size_t size) {
        if (size > static_cast<std::size_t>(m_block + sizeof(m_block) - m_end)) flush();
        return m_end;
    }
    void end(char *end) { m_end = end; }

    void put(std::string_view text) {  // at most kPiece
        char *const out = room(text.size());
        end(std::copy(text.begin(), text.end(), out));
    }
    void putBlanks(std::int64_t count) {
        static constexpr char kBlanks[] = "                ";
        constexpr std::int64_t kFew = sizeof(kBlanks) - 1;
        for (; count > 0 && m_isGood; count -= kFew) {  // a fixed size is copied without a loop
            char *const out = room(kFew);
            std::copy_n(kBlanks, kFew, out);
            end(out + std::min(count, kFew));
        }
    }

    /// Whether a double is written as the "C" locale does with 6 decimals. Sets the stream to fixed.
    bool writesPlainDoubles();
    /// Lets the stream write a double.
    void putByStream(double value) {
        flush();
        m_stream << value;
    }

    void flush() {
        const std::streamsize size = m_end - m_block;
        m_end = m_block;
        m_isGood = m_stream.good();
        if (m_isGood && m_stream.rdbuf()->sputn(m_block, size) != size) {
            m_isGood = false;
            m_stream.setstate(std::ios_base::badbit);
        }
    }
    /// Whether there is any use in going on, as far as is known.
    bool isGood() const { return m_isGood; }

private:
    std::ostream &m_stream;
    bool m_isGood = true;
    bool m_isFixed = false;      // the stream was set to it
    bool m_writesPlain = false;  // what was found then
    char m_block[8 * kPiece];
    char *m_end = m_block;
};

bool TextSink::writesPlainDoubles() {
    if (m_isFixed) return m_writesPlain;
    m_isFixed = true;
    m_stream.setf(std::ios_base::fixed, std::ios_base::floatfield);
    const std::locale locale = m_stream.getloc();
    const auto &point = std::use_facet<std::numpunct<char>>(locale);
    m_writesPlain = m_stream.precision() == 6 &&
                    (m_stream.flags() & (std::ios_base::showpos | std::ios_base::uppercase)) == 0 &&
                    &std::use_facet<std::num_put<char>>(locale) ==
                        &std::use_facet<std::num_put<char>>(std::locale::classic()) &&
                    point.decimal_point() == '.' && point.grouping().empty();
    return m_writesPlain;
}

/// Asks for what will be read soon: the entries of a tree lie scattered, and writing one hides the way to the
/// next.
inline void prefetch([[maybe_unused]] const void *address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#endif
}

/// Writes a byte of a text. At most 4 bytes come of it.
char *appendEscaped(char *out, char c) {
    *out++ = '\\';
    switch (c) {
    case '\t':
        *out++ = 't';
        return out;
    case '\n':
        *out++ = 'n';
        return out;
    case '\f':
        *out++ = 'f';
        return out;
    case '\r':
        *out++ = 'r';
        return out;
    case '(':
    case ')':
    case '\\':
        *out++ = c;
        return out;
    default:
        break;
    }
    const unsigned byte = static_cast<unsigned char>(c);
    for (const unsigned shift : {6U, 3U, 0U})
        *out++ = static_cast<char>('0' + ((byte >> shift) & 7));
    return out;
}

class TextWriter {
public:
    explicit TextWriter(std::ostream &stream) : m_sink(stream) {}

    void write(KV_UVal &root, std::int64_t indent);

private:
    /// A dictionary that is being written.
    struct Level {
        KV_UValDict::Map::const_iterator next;
        KV_UValDict::Map::const_iterator end;
    };

    void open(KV_UValDict &dict, std::int64_t indent);
    void putKey(std::string_view key);
    void putText(std::string_view text, std::string_view behind);
    void putLeaf(KV_UVal &value);
    template <class Element, class Append>
    void putNumbers(const Element *element, std::int32_t dimension, std::size_t longest,
                    const Append &append);
    template <class Leaf, class PutElement>
    void putElements(KV_UVal &value, std::string_view closing, const PutElement &putElement);
    template <class Leaf>
    void putIntegers(KV_UVal &value);
    template <class Leaf>
    void putDoubles(KV_UVal &value);
    template <class Leaf>
    void putTexts(KV_UVal &value);
    void putPointers(KV_UVal &value);

    TextSink m_sink;
    std::vector<Level> m_levels;
};

void TextWriter::write(KV_UVal &root, std::int64_t indent) {
    if (KV_UValDict *dict = asDict(&root))
        open(*dict, indent);
    else
        putLeaf(root);
    while (!m_levels.empty() && m_sink.isGood()) {
        Level &level = m_levels.back();
        const std::int64_t levelIndent = indent + static_cast<std::int64_t>(m_levels.size()) - 1;
        if (level.next == level.end) {
            m_levels.pop_back();
            m_sink.putBlanks(2 * levelIndent);
            m_sink.put(">>");
            if (!m_levels.empty()) m_sink.put("\n");
            continue;
        }
        const auto &[key, value] = *level.next++;
        if (level.next != level.end) prefetch(level.next->second);
        if (value == nullptr) continue;
        m_sink.putBlanks(2 * levelIndent);
        putKey(key);
        if (KV_UValDict *dict = asDict(value)) {
            open(*dict, levelIndent + 1);
        } else {
            putLeaf(*value);
            m_sink.put("\n");
        }
    }
    m_sink.flush();
}

void TextWriter::open(KV_UValDict &dict, std::int64_t indent) {
    if (indent != 0) {
        m_sink.put("\n");
        m_sink.putBlanks(2 * indent);
    }
    m_sink.put("<<\n");
    m_levels.push_back({dict.GetValuePtr()->cbegin(), dict.GetValuePtr()->cend()});
}

/// The key and the blank behind it.
void TextWriter::putKey(std::string_view key) {
    char *out = m_sink.room(kPiece);
    if (key.size() <= kPiece - 2) {
        *out++ = '/';
        for (const char c : key) {
            if (!isTextClass(c, kTextNamed)) return putText(key, "  ");
            *out++ = c;
        }
        *out++ = ' ';
        return m_sink.end(out);
    }
    if (!std::all_of(key.begin(), key.end(), [](char c) { return isTextClass(c, kTextNamed); })) {
        return putText(key, "  ");
    }
    m_sink.put("/");
    for (; !key.empty(); key.remove_prefix(std::min(key.size(), kPiece)))
        m_sink.put(key.substr(0, kPiece));
    m_sink.put(" ");
}

void TextWriter::putText(std::string_view text, std::string_view behind) {
    m_sink.put("(");
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, kPiece);
        text.remove_prefix(piece.size());
        char *out = m_sink.room(4 * kPiece);
        for (const char c : piece) {
            if (isTextClass(c, kTextPlain))
                *out++ = c;
            else
                out = appendEscaped(out, c);
        }
        m_sink.end(out);
    }
    m_sink.put(")");
    m_sink.put(behind);
}

/// A scalar; or "[ ", the elements with a blank behind each, and " ]". append(out, element) writes at most
/// longest bytes and gives their end.
template <class Element, class Append>
void TextWriter::putNumbers(const Element *element, std::int32_t dimension, std::size_t longest,
                            const Append &append) {
    if (dimension < 1) return m_sink.end(append(m_sink.room(longest), *element));
    m_sink.put("[ ");
    const auto atOnce = static_cast<std::int32_t>(4 * kPiece / (longest + 1));
    while (dimension > 0 && m_sink.isGood()) {
        char *out = m_sink.room(4 * kPiece);
        for (std::int32_t i = std::min(dimension, atOnce); i > 0; --i) {
            out = append(out, *element++);
            *out++ = ' ';
        }
        m_sink.end(out);
        dimension -= atOnce;
    }
    m_sink.put(" ]");
}

template <class Leaf>
void TextWriter::putIntegers(KV_UVal &value) {
    putNumbers(static_cast<Leaf &>(value).GetValuePtr(0), value.GetDimension(), kLongestInteger,
               [](char *out, auto element) { return appendInteger(out, castNumber<std::int32_t>(element)); });
}

template <class Leaf>
void TextWriter::putDoubles(KV_UVal &value) {
    if (m_sink.writesPlainDoubles()) {
        return putNumbers(static_cast<Leaf &>(value).GetValuePtr(0), value.GetDimension(), kLongestFixed6,
                          [](char *out, double element) { return appendFixed6(out, element); });
    }
    putElements<Leaf>(value, " ]", [this, isArray = value.GetDimension() > 0](double element) {
        m_sink.putByStream(element);
        if (isArray) m_sink.put(" ");
    });
}

/// A scalar; or "[ ", the elements, and what closes the array.
template <class Leaf, class PutElement>
void TextWriter::putElements(KV_UVal &value, std::string_view closing, const PutElement &putElement) {
    const auto *element = static_cast<Leaf &>(value).GetValuePtr(0);
    const std::int32_t dimension = value.GetDimension();
    if (dimension < 1) return putElement(*element);
    m_sink.put("[ ");
    for (std::int32_t i = 0; i < dimension && m_sink.isGood(); ++i)
        putElement(element[i]);
    m_sink.put(closing);
}

/// Texts end in a blank, in an array and alone.
template <class Leaf>
void TextWriter::putTexts(KV_UVal &value) {
    putElements<Leaf>(value, "]", [this](const KV_Str &element) {
        putText({element.Ptr(), element.Size()}, " ");
    });
}

/// Addresses mean nothing in a file.
void TextWriter::putPointers(KV_UVal &value) {
    putElements<KV_UValPtr>(value, " ]", [this](const void *) { m_sink.put("0 "); });
}

void TextWriter::putLeaf(KV_UVal &value) {
    switch (value.GetType()) {
    case KV_UVAL_CHAR:
        putIntegers<KV_UValChar>(value);
        break;
    case KV_UVAL_UCHAR:
        putIntegers<KV_UValUChar>(value);
        break;
    case KV_UVAL_SHORT:
        putIntegers<KV_UValShort>(value);
        break;
    case KV_UVAL_USHORT:
        putIntegers<KV_UValUShort>(value);
        break;
    case KV_UVAL_LONG:
        return putIntegers<KV_UValLong>(value);
    case KV_UVAL_ULONG:
        putIntegers<KV_UValULong>(value);
        break;
    case KV_UVAL_FLOAT:
        putDoubles<KV_UValFloat>(value);
        break;
    case KV_UVAL_DOUBLE:
        return putDoubles<KV_UValDouble>(value);
    case KV_UVAL_STRING:
        return putTexts<KV_UValString>(value);
    case KV_UVAL_UTFSTRING:
        putTexts<KV_UValUTFString>(value);
        break;
    case KV_UVAL_PTR:
        putPointers(value);
        break;
    default:
        return;
    }
    m_sink.put(" ");
    m_sink.put(keywordOf(value.GetType()));
}

}  // namespace

void writeTextValue(std::ostream &stream, KV_UVal *value, int indent) {
    if (value == nullptr) return;
    const std::ostream::sentry ready(stream);
    if (!ready) return;
    stream.width(0);
    TextWriter(stream).write(*value, indent);
}

}  // namespace kv::detail

namespace {

/// Does as the standard's functions of output: an exception makes the stream bad, and passes on where the
/// stream is to throw in that state.
template <class Output>
std::ostream &putOut(std::ostream &stream, const Output &output) {
    try {
        output();
    } catch (...) {
        kv::detail::setBad(stream);
        if ((stream.exceptions() & std::ios_base::badbit) != 0) throw;
    }
    return stream;
}

}  // namespace

std::ostream &KV_WriteUValTxt(std::ostream &stream, KV_UVal *value, int indent) {
    return putOut(stream, [&] { kv::detail::writeTextValue(stream, value, indent); });
}

std::ostream &KV_Indent(std::ostream &stream, int n) {
    return putOut(stream, [&] {
        const std::ostream::sentry ready(stream);
        if (!ready) return;
        kv::detail::TextSink sink(stream);
        sink.putBlanks(2 * std::int64_t{n});
        sink.flush();
    });
}
