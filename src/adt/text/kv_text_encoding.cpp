#include "kvbase/text/kv_text_encoding.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "adt/text/code_page.h"
#include "kvbase/base/types.h"
#include "kvbase/text/kv_utf.h"
#include "platform/platform.h"
#include "runtime/trace_line.h"

namespace {

using kv::detail::kTraceError;
using kv::detail::traceLine;

// The number by which converters say that the output is full; it goes into the trace line alone. The C
// library's, on every platform: here the output is filled, whatever the system converted before.
constexpr std::int32_t kNoRoom = E2BIG;

constexpr const char *kUtfFailure = "ERROR : UnicodeTuUTF failure : ";

void set(std::int32_t *written, std::int32_t count) {
    if (written != nullptr) *written = count;
}

// Makes the output the empty text. False when there is no place for that.
template <class Element>
bool begin(Element *out, std::int32_t outSize, std::int32_t *written) {
    set(written, 0);
    if (out == nullptr || outSize < 1) return false;
    out[0] = 0;
    return true;
}

// Stores the text and a terminator, as much as fits. 0, or kNoRoom when the text was cut.
template <class From, class To>
std::int32_t store(const std::basic_string<From> &text, To *out, std::int32_t outSize,
                   std::int32_t *written) {
    if (out == nullptr || outSize < 1) return kNoRoom;
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(outSize) - 1);
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(count), out,
                   [](From element) { return static_cast<To>(element); });
    out[count] = 0;
    set(written, static_cast<std::int32_t>(count) + 1);
    return count == text.size() ? 0 : kNoRoom;
}

// Terminates what a buffer conversion without enough room has stored.
template <class Element>
void cut(Element *out, std::int32_t outSize, std::int32_t count) {
    if (out != nullptr && outSize >= 1) out[std::min(count, outSize - 1)] = 0;
}

KV_WString toWide(const unsigned short *units) {
    KV_WString wide;
    for (; units != nullptr && *units != 0; ++units)
        wide.push_back(static_cast<KV_WChar>(*units));
    return wide;
}

// Units between the two steps of a conversion; null, and a line that names count, when there is no memory for
// them.
struct Scratch {
    Scratch(std::size_t unitCount, std::size_t count) {
        if (unitCount <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
            units.reset(new (std::nothrow) unsigned short[unitCount]);
            size = static_cast<std::int32_t>(unitCount);
        }
        if (units == nullptr)
            traceLine(kTraceError, "ERROR : Unicode Buffer allocation failure : #Runes=", count);
    }

    std::unique_ptr<unsigned short[]> units;
    std::int32_t size = 0;
};

}  // namespace

int kv::detail::codePageOf(std::string_view localeName) {
    int codePage = kv::platform::kDefaultCodePage;
    const std::size_t dot = localeName.rfind('.');  // a country's name may have some, too
    // What is no number, such as the end of "C.UTF-8", leaves the process's own.
    if (dot != std::string_view::npos)
        std::from_chars(localeName.data() + dot + 1, localeName.data() + localeName.size(), codePage);
    return codePage;
}

int KV_TextEncodingConverter::Initialize(const char *locale) {
    if (locale == nullptr) mCodePage = kv::detail::codePageOf(kv::platform::localeName());
    return 0;
}

void KV_TextEncodingConverter::Cleanup() {}

int KV_TextEncodingConverter::Text2Ucs(const char *text, unsigned short *out, std::int32_t outSize,
                                       std::int32_t *written) const {
    begin(out, outSize, written);
    if (mCodePage < 0) {
        traceLine(kTraceError, "ERROR : mCodePage < 0");
        return -1;
    }
    KV_WString units;
    std::int32_t error = kv::platform::toUnits(mCodePage, text != nullptr ? text : "", units).error;
    if (error == 0) error = store(units, out, outSize, written);
    if (error == 0) return 0;
    traceLine(kTraceError, "ERROR : TECConvertText() failure : ", error);
    return -1;
}

int KV_TextEncodingConverter::Ucs2Text(const unsigned short *in, char *out, std::int32_t outSize,
                                       std::int32_t *written) const {
    begin(out, outSize, written);
    if (mCodePage < 0) {
        traceLine(kTraceError, "ERROR : mCodePage < 0");
        return -1;
    }
    std::string text;
    const kv::platform::Conversion conversion = kv::platform::fromUnits(mCodePage, toWide(in), text);
    const std::int32_t error = conversion.error != 0 ? conversion.error : store(text, out, outSize, written);
    if (error != 0) {
        traceLine(kTraceError, "ERROR : WideCharToMultiByte() failure : ", error);
        return -1;
    }
    if (!conversion.replaced) return 0;
    traceLine(kTraceError, "ERROR : WideCharToMultiByte() failure : ", "fallback was used");
    return -1;
}

int KV_TextEncodingConverter::Ucs2Utf(const unsigned short *in, char *out, std::int32_t outSize,
                                      std::int32_t *written) {
    int count = 0;
    const int result = UTFfromUniCode(out, outSize, in, -1, &count);
    if (result == -1 || count == outSize) cut(out, outSize, count);
    if (result < 0) traceLine(kTraceError, kUtfFailure, result);
    set(written, count);
    return result;
}

int KV_TextEncodingConverter::Utf2Ucs(const char *in, unsigned short *out, std::int32_t outSize,
                                      std::int32_t *written) {
    int count = 0;
    const int result = UTFtoUnicode(out, outSize, in, -1, &count);
    if (result == -1) cut(out, outSize, count);
    if (result < 0) traceLine(kTraceError, "ERROR : UTFtoUnicode failure : ", result);
    set(written, count);
    return result;
}

int KV_TextEncodingConverter::Text2Utf(const char *text, char *out, std::int32_t outSize) const {
    if (!begin(out, outSize, nullptr)) return -1;
    if (text == nullptr || *text == 0) return 0;
    const std::size_t length = std::strlen(text);
    const Scratch scratch(2 * length + 2, length);
    if (scratch.units == nullptr || Text2Ucs(text, scratch.units.get(), scratch.size, nullptr) != 0)
        return -1;
    std::int32_t count = 0;
    if (Ucs2Utf(scratch.units.get(), out, outSize, &count) != 0) return -1;
    if (count < outSize) return 0;
    traceLine(kTraceError, kUtfFailure, -1);  // the terminator has cut the text
    return -1;
}

int KV_TextEncodingConverter::Utf2Text(const char *utf, char *out, std::int32_t outSize) const {
    if (!begin(out, outSize, nullptr)) return -1;
    if (utf == nullptr || *utf == 0) return 0;
    const std::size_t runes = utflen(utf);
    const Scratch scratch(runes + 1, runes);
    if (scratch.units == nullptr) return -1;
    // With runes replaced, the second step goes on: the text is worth having.
    const int first = Utf2Ucs(utf, scratch.units.get(), scratch.size, nullptr);
    const int second = Ucs2Text(scratch.units.get(), out, outSize, nullptr);
    return first == 0 && second == 0 ? 0 : -1;
}

std::int32_t KV_TextEncodingConverter::UtfStringLength(const char *utf) {
    return static_cast<std::int32_t>(utflen(utf));
}

unsigned short *TranslateKVStringTo16BitUnicodeBE(const KV_String &text) {
    const std::size_t size = std::size_t{text.Length()} + 1;
    auto units = std::make_unique<unsigned short[]>(size);
    const char *s = text.Ptr();
    for (std::size_t i = 0; *s != 0; ++i) {
        unsigned short rune;
        const int length = chartorune(&rune, s);
        if (isutf(s) == 0) rune = '?';
        const unsigned char bytes[] = {static_cast<unsigned char>(rune >> 8),
                                       static_cast<unsigned char>(rune & 0xFF)};
        std::memcpy(&units[i], bytes, sizeof bytes);
        s += length;
    }
    return units.release();
}
