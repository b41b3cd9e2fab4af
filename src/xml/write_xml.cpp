#include "kvbase/xml/write_xml.h"

#include <algorithm>
#include <ostream>

#include "kvbase/runtime/kv_number_text.h"

namespace WriteXML {
namespace {

constexpr const char *kHeader = "<?xml version = \"1.0\" encoding = \"UTF-8\"?>\r\n";
constexpr const char *kOpener = " = \"";
constexpr std::int64_t kWidth = 80;
constexpr std::size_t kField = 10;

/// Four decimals, where the number has any.
std::string number(double value) {
    constexpr std::size_t kDecimals = 4;
    std::string text = kv_dtostr(value, kDecimals);
    if (text.find_first_not_of("-0123456789.") != std::string::npos) return text;  // infinity and the like
    const std::size_t point = text.find('.');
    const std::size_t decimals = point == std::string::npos ? 0 : text.size() - point - 1;
    if (point == std::string::npos) text += '.';
    return text.append(kDecimals - std::min(decimals, kDecimals), '0');
}

}  // namespace

Element::Element(std::ostream &stream, const char *name) : m_stream(stream) { open(name); }

Element::Element(std::ostream &stream, const char *name, const char *attribute, const char *value)
    : m_stream(stream) {
    open(name);
    m_stream << ' ' << attribute << kOpener << value << '"';
}

Element::Element(std::ostream &stream, const char *name, const char *value) : m_stream(stream) {
    open(name);
    m_stream << kOpener << value << '"';
}

void Element::open(const char *name) {
    m_name = name;
    m_stream << kHeader;
    m_lineStart = m_stream.tellp();
    m_stream << '<' << name;
}

Element::Element(std::ostream &stream, const char *name, bool selfClosing, Element &parent)
    : m_stream(stream), m_name(name), m_selfClosing(selfClosing) {
    parent.Flush();
    m_lineStart = m_stream.tellp();
    m_indent = parent.IndentTo() + 1;
    tabs(m_indent);
    m_stream << '<' << name;
}

Element::Element(std::ostream &stream, Element &parent)
    : m_stream(stream), m_selfClosing(true), m_comment(true) {
    parent.Flush();
    m_lineStart = m_stream.tellp();
    m_indent = parent.IndentTo() + 1;
    tabs(m_indent);
    m_stream << "<!-- ";
}

Element::~Element() {
    try {
        Flush();
        if (m_selfClosing) return;
        tabs(m_indent);
        m_stream << "</" << m_name << ">\r\n";
    } catch (...) {  // what the stream's exceptions() ask for; its state tells it, too
    }
}

// ---- attributes ------------------------------------------------------------------------------------------

void Element::beginAttribute(const char *name) {
    CheckWrap();
    m_stream << ' ' << name << kOpener;
}

void Element::Attribute(const char *name, const char *value) { Attribute(name, KV_String(value)); }

void Element::Attribute(const char *name, const KV_String &value) {
    beginAttribute(name);
    m_stream << SubstituteSpecialChars(value) << '"';
}

void Element::Attribute(const char *name, std::int32_t value) {
    beginAttribute(name);
    m_stream << value << '"';
}

void Element::Attribute(const char *name, bool value) {
    beginAttribute(name);
    m_stream << (value ? "true" : "false") << '"';
}

void Element::Attribute(const char *name, double value) {
    beginAttribute(name);
    m_stream << number(value) << '"';
}

void Element::Attribute(const char *name, double value, const char *unit) {
    beginAttribute(name);
    m_stream << number(value) << ' ' << unit << '"';
}

void Element::Attribute(const char *name, std::uint32_t count, const std::uint16_t *values) {
    beginAttribute(name);
    std::for_each(values, values + count, [this](std::uint16_t value) { m_stream << value << ' '; });
    m_stream << '"';
}

void Element::Attribute(const char *name, std::uint32_t count, const float *values) {
    constexpr std::uint32_t kGroup = 4;
    beginAttribute(name);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (i % kGroup == 0) GotoNextLineWithIntendations();
        const std::string text = number(values[i]);
        m_stream << std::string(kField - std::min(text.size(), kField), ' ') << text;
    }
    m_stream << '"';
}

void Element::Comment(std::string text) {  // NOLINT(performance-unnecessary-value-param): the interface
    CheckWrap();
    m_stream << text;
}

void Element::Text(const KV_String &text) {
    FlushWithoutNewLine();
    m_stream << text;
    m_indent = 0;
}

void Element::Text(const char *text) { Text(KV_String(text)); }

// ---- lines -----------------------------------------------------------------------------------------------

void Element::CheckWrap() {
    if (m_stream.tellp() > m_lineStart + kWidth) GotoNextLineWithIntendations();
}

void Element::GotoNextLineWithIntendations() {
    newLine();
    tabs(m_indent + 1);
}

void Element::newLine() {
    m_stream << "\r\n";
    m_lineStart = m_stream.tellp();
}

void Element::tabs(std::int32_t count) {
    for (; count > 0; --count)
        m_stream << '\t';
}

void Element::finishTag() {
    m_flushed = true;
    m_stream << (m_comment ? " -->" : m_selfClosing ? "/>" : ">");
}

void Element::Flush() {
    if (m_flushed) return;
    finishTag();
    newLine();
}

void Element::FlushWithoutNewLine() {
    if (m_flushed) return;
    finishTag();
    m_lineStart = m_stream.tellp();
}

std::string Element::SubstituteSpecialChars(const KV_String &text) {
    std::string safe;
    for (std::uint32_t i = 0; i < text.Size(); ++i) {
        switch (const char c = text.Ptr()[i]) {
        case '&':
            safe += "&amp;";
            break;
        case '<':
            safe += "&lt;";
            break;
        case '>':
            safe += "&gt;";
            break;
        case '\'':
            safe += "&apos;";
            break;
        case '"':
            safe += "&quot;";
            break;
        default:
            safe += c;
        }
    }
    return safe;
}

}  // namespace WriteXML
