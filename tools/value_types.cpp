#include "value_types.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

#include "command.h"
#include "utf8_text.h"

namespace kvtool {
namespace {

struct TypeRow {
    const char *name;
    KV_UValType type;
    bool settable;
};

constexpr TypeRow kTypes[] = {
    {"none", KV_UVAL_NONE, false},    {"dict", KV_UVAL_DICT, false},
    {"char", KV_UVAL_CHAR, true},     {"uchar", KV_UVAL_UCHAR, true},
    {"short", KV_UVAL_SHORT, true},   {"ushort", KV_UVAL_USHORT, true},
    {"long", KV_UVAL_LONG, true},     {"ulong", KV_UVAL_ULONG, true},
    {"float", KV_UVAL_FLOAT, true},   {"double", KV_UVAL_DOUBLE, true},
    {"string", KV_UVAL_STRING, true}, {"utfstring", KV_UVAL_UTFSTRING, true},
    {"ptr", KV_UVAL_PTR, false},
};

// The whole text as a number, or an error that names text and type.
template <class Number>
Number numberOf(const std::string &text, KV_UValType type) {
    const char *first = text.c_str() + (text.size() > 1 && text[0] == '+' && text[1] != '-' ? 1 : 0);
    const char *last = text.c_str() + text.size();
    Number number{};
    const auto [end, error] = std::from_chars(first, last, number);
    if (error == std::errc::result_out_of_range)
        throw BadInput("'" + text + "' is out of the range of " + typeName(type));
    if (error != std::errc() || end != last) throw BadInput("'" + text + "' is not a " + typeName(type));
    return number;
}

template <class Number>
std::string textOf(Number number) {
    char buffer[64];
    const auto result = std::to_chars(std::begin(buffer), std::end(buffer), number);
    return {buffer, result.ptr};
}

}  // namespace

const char *typeName(KV_UValType type) {
    for (const TypeRow &row : kTypes)
        if (row.type == type) return row.name;
    return "unknown";
}

KV_UValType typeOfName(const std::string &name) {
    for (const TypeRow &row : kTypes)
        if (row.settable && name == row.name) return row.type;
    return KV_UVAL_NONE;
}

std::string typeNames() {
    std::string names;
    for (const TypeRow &row : kTypes)
        if (row.settable) names += (names.empty() ? "" : ", ") + std::string(row.name);
    return names;
}

KV_UValType typeOfText(const std::string &text) {
    for (const KV_UValType type : {KV_UVAL_LONG, KV_UVAL_DOUBLE}) {
        try {
            const double number =
                type == KV_UVAL_LONG ? numberOf<std::int32_t>(text, type) : numberOf<double>(text, type);
            // "nan" and "inf" are words to a reader of the file.
            if (number - number == 0) return type;
        } catch (const BadInput &) {
        }
    }
    const bool ascii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
    return ascii ? KV_UVAL_STRING : KV_UVAL_UTFSTRING;
}

void setElement(KV_UVal &value, const std::string &text, std::int32_t index) {
    const KV_UValType type = value.GetType();
    switch (type) {
    case KV_UVAL_CHAR:
        value.SetLongValue(numberOf<std::int8_t>(text, type), index);
        break;
    case KV_UVAL_UCHAR:
        value.SetLongValue(numberOf<std::uint8_t>(text, type), index);
        break;
    case KV_UVAL_SHORT:
        value.SetLongValue(numberOf<std::int16_t>(text, type), index);
        break;
    case KV_UVAL_USHORT:
        value.SetLongValue(numberOf<std::uint16_t>(text, type), index);
        break;
    case KV_UVAL_LONG:
        value.SetLongValue(numberOf<std::int32_t>(text, type), index);
        break;
    case KV_UVAL_ULONG:
        value.SetULongValue(numberOf<std::uint32_t>(text, type), index);
        break;
    case KV_UVAL_FLOAT:
        value.SetFloatValue(numberOf<float>(text, type), index);
        break;
    case KV_UVAL_DOUBLE:
        value.SetDoubleValue(numberOf<double>(text, type), index);
        break;
    case KV_UVAL_UTFSTRING:
        if (!isUtf8(text)) throw BadInput("'" + text + "' is not valid UTF-8");
        if (isutfstr(text.c_str()) == 0)
            throw BadInput("'" + text +
                           "' has a character that a utfstring can't hold: U+0080, or one beyond U+FFFF");
        value.SetStrValue(KV_String(text.c_str()), index);
        break;
    case KV_UVAL_STRING:
        value.SetStrValue(KV_String(text.c_str()), index);
        break;
    default:
        throw BadInput(std::string("a ") + typeName(type) + " can't be set from text");
    }
}

std::string elementText(KV_UVal &value, KV_UValType type, std::int32_t index) {
    switch (type) {
    case KV_UVAL_CHAR:
        return textOf(int{static_cast<signed char>(value.GetCharValue(index))});
    case KV_UVAL_UCHAR:
        return textOf(int{value.GetUCharValue(index)});
    case KV_UVAL_SHORT:
        return textOf(value.GetShortValue(index));
    case KV_UVAL_USHORT:
        return textOf(value.GetUShortValue(index));
    case KV_UVAL_LONG:
        return textOf(value.GetLongValue(index));
    case KV_UVAL_ULONG:
        return textOf(value.GetULongValue(index));
    case KV_UVAL_FLOAT:
        return textOf(value.GetFloatValue(index));
    case KV_UVAL_DOUBLE:
        return textOf(value.GetDoubleValue(index));
    default: {
        KV_String text;
        value.GetStrValue(text, index);
        return {text.Ptr(), text.Length()};
    }
    }
}

}  // namespace kvtool
