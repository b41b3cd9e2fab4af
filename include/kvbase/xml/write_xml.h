#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"

namespace WriteXML {

/// One element of a document that is being written: the constructor opens its tag, Attribute extends it, a
/// child or Text finishes it, and the destructor writes the end tag. So the nesting of the objects is that of
/// the document, and a parent has to outlive its children.
///
/// Lines end in CR LF (open the stream as a binary one) and are indented with tabs. A line that is more than
/// 80 bytes long is broken before the next attribute; on a stream that can't tell its position none is. Texts
/// are UTF-8 and must not be null. Attributes have no place any more once there was a child or a text.
///
/// Failures are the stream's to tell. When it raises, Attribute and the like pass that on, and the destructor
/// ends there. One thread at a time.
class KV_EXPORT Element {
public:
    /// A root, behind the header line of the document.
    Element(std::ostream &stream, const char *name);
    /// A root with one attribute, whose value is written as it is, without escapes.
    Element(std::ostream &stream, const char *name, const char *attribute, const char *value);
    /// A root whose name is followed by a value right away, which is no well-formed XML: kept for those who
    /// wrote so.
    Element(std::ostream &stream, const char *name, const char *value);
    /// A child.
    /// selfClosing  whether it ends with "/>" and has neither children nor text
    Element(std::ostream &stream, const char *name, bool selfClosing, Element &parent);
    /// A comment, whose text Comment gives.
    Element(std::ostream &stream, Element &parent);
    Element(const Element &) = delete;
    Element &operator=(const Element &) = delete;
    ~Element();

    /// Escaped: &, <, >, ' and " become entities.
    void Attribute(const char *name, const char *value);
    void Attribute(const char *name, const KV_String &value);
    /// As the stream writes integers.
    void Attribute(const char *name, std::int32_t value);
    /// "true" or "false".
    void Attribute(const char *name, bool value);
    /// Four decimals.
    void Attribute(const char *name, double value);
    /// The same, a blank and the unit, which is not escaped.
    void Attribute(const char *name, double value, const char *unit);
    /// count values, as the stream writes integers, each with a blank behind it.
    void Attribute(const char *name, std::uint32_t count, const std::uint16_t *values);
    /// count values of four decimals, right-aligned in ten characters, four a line. A last line may have
    /// fewer.
    void Attribute(const char *name, std::uint32_t count, const float *values);

    /// The text of a comment, as it is.
    void Comment(std::string text);
    /// The text of the element, as it is: the caller escapes it. The end tag follows on the same line.
    void Text(const KV_String &text);
    void Text(const char *text);

    /// Empty for a comment.
    const KV_String &ElementName() const { return m_name; }

private:
    void open(const char *name);
    void beginAttribute(const char *name);
    void CheckWrap();
    void Flush();
    void FlushWithoutNewLine();
    void GotoNextLineWithIntendations();
    std::int32_t IndentTo() const { return m_indent; }
    static std::string SubstituteSpecialChars(const KV_String &text);
    void finishTag();
    void newLine();
    void tabs(std::int32_t count);

    std::ostream &m_stream;
    std::int64_t m_lineStart = 0;  // where the line begins in the stream
    KV_String m_name;
    bool m_selfClosing = false;
    bool m_comment = false;
    bool m_flushed = false;  // the start tag is finished
    std::int32_t m_indent = 0;
};

}  // namespace WriteXML
