#pragma once

// Reading XML by events, in the shape of SAX 1: what a reader implements (DocumentHandler, ErrorHandler) and
// what a parser gives it. ExpatXMLParser is the parser of this library; readers are written against these
// classes alone.
//
// Text is UTF-8, whatever the document's encoding. Nothing here has state or threads of its own.

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"

class KV_FileSpec;

namespace KalSAX {

/// Where in a document an event lies.
class KV_EXPORT Locator {
public:
    Locator() = default;
    Locator(const Locator &) = default;
    Locator &operator=(const Locator &) = default;
    virtual ~Locator();
    virtual const KV_String &GetPublicID() const = 0;
    virtual const KV_String &GetSystemID() const = 0;
    virtual int GetLineNumber() const = 0;
    virtual int GetColumnNumber() const = 0;
};

/// The attributes of an element, in the document's order. It lives for the time of StartElement alone.
class KV_EXPORT AttributeList {
public:
    AttributeList() = default;
    AttributeList(const AttributeList &) = default;
    AttributeList &operator=(const AttributeList &) = default;
    virtual ~AttributeList();
    /// The number of attributes.
    virtual int GetLength() const = 0;
    /// The type as the document's definition has it, "CDATA" without one.
    virtual KV_String GetType(int index) const = 0;
    virtual KV_String GetType(const char *name) const = 0;
    /// The value; empty when there is no such attribute, as for one with an empty value.
    virtual KV_String GetValue(const char *name) const = 0;
    virtual KV_String GetValue(int index) const = 0;
};

/// What a reader of documents implements. Whatever it raises passes through the parser.
class KV_EXPORT DocumentHandler {
public:
    DocumentHandler() = default;
    DocumentHandler(const DocumentHandler &) = default;
    DocumentHandler &operator=(const DocumentHandler &) = default;
    virtual ~DocumentHandler();
    virtual void SetDocumentLocator(const Locator &locator);
    virtual void StartDocument();
    virtual void EndDocument();
    virtual void StartElement(const KV_String &name, const AttributeList &attributes) = 0;
    virtual void EndElement(const KV_String &name) = 0;
    /// A piece of character data: one run of text may come in several.
    virtual void Characters(const KV_String &text) = 0;
    virtual void IgnorableWhitespace(const KV_String &text);
    virtual void ProcessingInstruction(const KV_String &target, const KV_String &data);
};

/// Who hears of what is wrong with a document.
class KV_EXPORT ErrorHandler {
public:
    ErrorHandler() = default;
    ErrorHandler(const ErrorHandler &) = default;
    ErrorHandler &operator=(const ErrorHandler &) = default;
    virtual ~ErrorHandler();
    virtual void Warning(const KV_String &message) = 0;
    virtual void Error(const KV_String &message) = 0;
    virtual void FatalError(const KV_String &message) = 0;
};

/// What reads a document and calls the handlers, which stay their owners'.
class KV_EXPORT Parser {
public:
    Parser() = default;
    Parser(const Parser &) = default;
    Parser &operator=(const Parser &) = default;
    virtual ~Parser();
    virtual void SetDocumentHandler(DocumentHandler &handler) = 0;
    virtual void SetErrorHandler(ErrorHandler &handler) = 0;
    /// Reads a document in memory. False when it is not well-formed.
    virtual bool Parse(char *buffer, std::uint32_t length) = 0;
    /// Reads a file, which may be an enciphered one. False when it can't be opened or is not well-formed.
    virtual bool Parse(const KV_FileSpec &file, bool encrypted) = 0;
};

/// The owner of a parser, from which factories of parsers derive.
class KV_EXPORT ParserInstances {
public:
    ParserInstances(const ParserInstances &) = delete;
    ParserInstances &operator=(const ParserInstances &) = delete;
    /// Destroys the parser.
    virtual ~ParserInstances();
    /// The parser, which stays this object's; null without one.
    Parser *GetParser() { return m_parser; }

protected:
    /// Takes over a parser that was made with new.
    explicit ParserInstances(Parser *parser) : m_parser(parser) {}

private:
    ParserInstances() = default;

    Parser *m_parser = nullptr;
};

}  // namespace KalSAX
