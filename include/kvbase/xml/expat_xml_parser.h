#pragma once

#include <exception>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/xml/kal_sax.h"

struct XML_ParserStruct;

/// The attributes of an element as Expat gives them.
class KV_EXPORT ExpatXMLAttributeList : public KalSAX::AttributeList {
public:
    /// attributes  name and value in turn, ended by a null name; null for none. Borrowed.
    explicit ExpatXMLAttributeList(const char **attributes);
    ~ExpatXMLAttributeList() override;
    ExpatXMLAttributeList(const ExpatXMLAttributeList &) = default;
    ExpatXMLAttributeList &operator=(const ExpatXMLAttributeList &) = default;

    int GetLength() const override { return m_count; }
    /// Always "CDATA".
    KV_String GetType(int index) const override;
    KV_String GetType(const char *name) const override;
    /// The value of the first attribute whose name is the same byte for byte; empty when there is none.
    KV_String GetValue(const char *name) const override;
    /// Empty when the index is out of range.
    KV_String GetValue(int index) const override;

private:
    const char **m_attributes;
    int m_count = 0;
};

/// Reads XML by the Expat library, which has to be told nothing: the document's declaration or byte-order
/// mark decides its encoding (UTF-8, UTF-16, ISO-8859-1 or US-ASCII). Names are as the document has them,
/// namespaces are not looked at. Elements and character data cause events; comments, processing instructions,
/// declarations, and the beginning and end of the document don't. Entities of other files are not read. Expat
/// limits what the expansion of entities may come to.
///
/// Both handlers have to be set before Parse. An object may parse any number of documents, one after the
/// other; one thread at a time. A Parse that a handler calls while its own document is being read is false,
/// and FatalError is told so: documents within documents take a parser each. What a handler raises passes
/// through Parse, once Expat has gone on to the end of what it has at hand (without events), and everything
/// is released.
class KV_EXPORT ExpatXMLParser : public KalSAX::Parser {
public:
    ExpatXMLParser() = default;
    ExpatXMLParser(const ExpatXMLParser &) = delete;
    ExpatXMLParser &operator=(const ExpatXMLParser &) = delete;
    ~ExpatXMLParser() override;

    void SetDocumentHandler(KalSAX::DocumentHandler &handler) override { m_documentHandler = &handler; }
    void SetErrorHandler(KalSAX::ErrorHandler &handler) override { m_errorHandler = &handler; }

    /// Reads a document of length bytes in memory, which are only read. When it is not well-formed, the error
    /// handler's FatalError gets Expat's text, " at line " and the line, and the result is false. What was
    /// read before has caused its events. When Expat runs out of memory that is its text, too; std::bad_alloc
    /// is thrown when there is none to begin with.
    bool Parse(char *buffer, std::uint32_t length) override;
    /// The same for a file, in blocks of 512 bytes. False, without a word to the error handler, when it can't
    /// be opened.
    ///
    /// encrypted  whether the file is enciphered (KV_FStream::WriteEncrypted), which fills it up with blanks:
    ///            a document in UTF-16 then does not end well-formed
    bool Parse(const KV_FileSpec &file, bool encrypted) override;

    /// Empty: nothing fills them.
    const KV_String &GetPublicID() const { return m_publicID; }
    const KV_String &GetSystemID() const { return m_systemID; }
    /// Always 0.
    int GetLineNumber() const { return 0; }
    int GetColumnNumber() const { return 0; }

    // What Expat calls, with the parser as user, and what these call. One event carries at most 65,535 bytes
    // of character data; a longer run comes in several, cut between characters.
    static void StartElement(void *user, const char *name, const char **attributes);
    static void EndElement(void *user, const char *name);
    static void CData(void *user, const char *text, int length);
    void StartElementHandler(const char *name, const char **attributes);
    void EndElementHandler(const char *name);
    void CDataHandler(const char *text, int length);

private:
    class Session;
    // Uses its buffer again.
    class Text : public KV_String {
    public:
        void take(const char *text, std::uint32_t length) { assignCopy(length, text); }
    };
    bool isBusy();
    template <class Event>
    static void guarded(void *user, const Event &event);

    KalSAX::DocumentHandler *m_documentHandler = nullptr;
    KalSAX::ErrorHandler *m_errorHandler = nullptr;
    KV_String m_publicID;
    KV_String m_systemID;
    XML_ParserStruct *m_parser = nullptr;  // null but during Parse
    std::exception_ptr m_raised;           // by a handler
    Text m_text;                           // of the event at hand
};
