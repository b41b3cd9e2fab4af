#include <iconv.h>
#include <langinfo.h>

#include <cerrno>
#include <clocale>
#include <cstddef>

#include "platform/platform.h"
#include "platform/utf16.h"

namespace kv::platform {
namespace {

constexpr std::string_view kUtf8 = "UTF-8";

struct CharsetName {
    int codePage;
    const char *name;
};

// Code pages that iconv knows by another name than "CP" and their number.
constexpr CharsetName kCharsetNames[] = {
    {10000, "MACINTOSH"}, {20127, "US-ASCII"}, {20866, "KOI8-R"}, {21866, "KOI8-U"},
    {51932, "EUC-JP"},    {51936, "EUC-CN"},   {51949, "EUC-KR"}, {54936, "GB18030"},
};

// The C locale's codeset is ASCII by name only: a process that never chose a locale gets its file names in
// UTF-8.
std::string defaultCharset() {
    const std::string codeset = nl_langinfo(CODESET);
    const bool isAscii = codeset == "ANSI_X3.4-1968" || codeset == "US-ASCII" || codeset == "ASCII";
    return isAscii ? std::string(kUtf8) : codeset;
}

std::string charsetOf(int codePage) {
    if (codePage == kDefaultCodePage) return defaultCharset();
    if (codePage == kUtf8CodePage) return std::string(kUtf8);
    if (codePage > 28590 && codePage <= 28606) return "ISO-8859-" + std::to_string(codePage - 28590);
    for (const CharsetName &known : kCharsetNames)
        if (known.codePage == codePage) return known.name;
    const std::string number = std::to_string(codePage);
    return "CP" + std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
}

// One conversion from one character set to another. It is opened for each text: the C library keeps the
// tables.
class Converter {
public:
    Converter(const std::string &to, const std::string &from)
        : m_converter(iconv_open(to.c_str(), from.c_str())), m_error(isOpen() ? 0 : errno) {}
    ~Converter() {
        if (isOpen()) iconv_close(m_converter);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool isOpen() const { return reinterpret_cast<std::intptr_t>(m_converter) != -1; }
    std::int32_t error() const { return m_error; }

    // Appends the text up to the first character without a counterpart, and gives the length of what it took.
    std::size_t take(std::string_view text, std::string &out) {
        char *from = const_cast<char *>(text.data());  // iconv only reads it
        std::size_t left = text.size();
        while (run(&from, &left, out) && left > 0) {
        }
        return text.size() - left;
    }

    // Appends a character that was held back for a mark that may follow, and returns to the initial shift
    // state.
    void finish(std::string &out) { run(nullptr, nullptr, out); }

private:
    // One block of output. True when there may be more.
    bool run(char **from, std::size_t *left, std::string &out) {
        char block[1024];
        char *to = block;
        std::size_t room = sizeof block;
        const std::size_t result = iconv(m_converter, from, left, &to, &room);
        const bool goOn = result != std::size_t(-1) || (errno == E2BIG && to != block);
        out.append(block, sizeof block - room);
        return goOn;
    }

    iconv_t m_converter;
    std::int32_t m_error;
};

bool isUtf8(const std::string &charset) { return charset == kUtf8 || charset == "utf8"; }

}  // namespace

Conversion toUnits(int codePage, std::string_view text, KV_WString &out) {
    out.clear();
    const std::string charset = charsetOf(codePage);
    if (isUtf8(charset)) return {0, detail::appendUnits(text, out)};

    Converter converter(std::string(kUtf8), charset);
    if (!converter.isOpen()) return {converter.error(), false};
    Conversion outcome;
    std::string utf8;
    for (text.remove_prefix(converter.take(text, utf8)); !text.empty();
         text.remove_prefix(converter.take(text, utf8))) {
        outcome.replaced = true;
        converter.finish(utf8);
        utf8 += "\xEF\xBF\xBD";
        text.remove_prefix(1);
    }
    converter.finish(utf8);
    detail::appendUnits(utf8, out);
    return outcome;
}

Conversion fromUnits(int codePage, std::basic_string_view<KV_WChar> units, std::string &out) {
    out.clear();
    const std::string charset = charsetOf(codePage);
    if (isUtf8(charset)) return {0, detail::appendUtf8(units, out)};

    Converter converter(charset, std::string(kUtf8));
    if (!converter.isOpen()) return {converter.error(), false};
    Conversion outcome;
    std::string utf8;
    outcome.replaced = detail::appendUtf8(units, utf8);
    std::string_view text = utf8;
    for (text.remove_prefix(converter.take(text, out)); !text.empty();
         text.remove_prefix(converter.take(text, out))) {
        outcome.replaced = true;
        const auto lead = static_cast<unsigned char>(text[0]);
        converter.take(lead >= 0xF0 ? "??" : "?", out);  // one for each unit
        text.remove_prefix(lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1);
    }
    converter.finish(out);
    return outcome;
}

std::string localeName() {
    const char *name = std::setlocale(LC_CTYPE, nullptr);
    return name != nullptr ? name : "C";
}

}  // namespace kv::platform
