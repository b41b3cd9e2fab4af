#include "kvbase/xml/expat_xml_parser.h"

#include <expat.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_fstream.h"

namespace {

constexpr std::uint32_t kBlock = 512;
constexpr int kMostCharacters = 65535;

/// A block of an enciphered file. ReadEncrypted ends the text with a zero byte; where that took the place of
/// a padding blank, the blank is put back. A zero byte of the document itself stays, for Expat to refuse.
std::uint32_t readDeciphered(KV_FStream &stream, char *block) {
    std::fill_n(block, kBlock + 1, ' ');
    const std::uint32_t size = stream.ReadEncrypted(block, kBlock);
    if (block[size] == 0) return size;  // the text fills the block
    std::uint32_t end = size;
    while (end > 0 && block[end - 1] == ' ')
        --end;
    if (end > 0 && block[end - 1] == 0) block[end - 1] = ' ';
    return size;
}

/// How much of a text goes into one event: all of it, or what leaves no character cut.
int pieceOf(const char *text, int length) {
    if (length <= kMostCharacters) return length;
    int size = kMostCharacters;
    while (size > kMostCharacters - 4 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size;
    return size;
}

/// Names are short, and most differ at once: a call would cost more than the comparison.
bool isSame(const char *one, const char *other) {
    for (; *one == *other; ++one, ++other)
        if (*one == 0) return true;
    return false;
}

}  // namespace

/// Expat at work for one document.
class ExpatXMLParser::Session {
public:
    explicit Session(ExpatXMLParser &owner) : m_owner(owner) {
        m_owner.m_raised = nullptr;
        m_owner.m_parser = XML_ParserCreate(nullptr);
        if (m_owner.m_parser == nullptr) throw std::bad_alloc();
        XML_SetUserData(m_owner.m_parser, &m_owner);
        XML_SetElementHandler(m_owner.m_parser, StartElement, EndElement);
        XML_SetCharacterDataHandler(m_owner.m_parser, CData);
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    ~Session() { XML_ParserFree(std::exchange(m_owner.m_parser, nullptr)); }

    /// False when the document is not well-formed, which the error handler is told.
    bool feed(const char *text, std::uint32_t length, bool isFinal) {
        constexpr auto kMost = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
        for (; length > kMost; text += kMost, length -= kMost)
            if (!feedPiece(text, kMost, false)) return false;
        return feedPiece(text, length, isFinal);
    }

private:
    bool feedPiece(const char *text, std::uint32_t length, bool isFinal) {
        const XML_Status status =
            XML_Parse(m_owner.m_parser, text, static_cast<int>(length), isFinal ? XML_TRUE : XML_FALSE);
        if (m_owner.m_raised) std::rethrow_exception(std::exchange(m_owner.m_raised, nullptr));
        if (status != XML_STATUS_ERROR) return true;
        const char *const reason = XML_ErrorString(XML_GetErrorCode(m_owner.m_parser));
        const std::string message = (reason != nullptr ? reason : "unknown error") +
                                    std::string(" at line ") +
                                    std::to_string(XML_GetCurrentLineNumber(m_owner.m_parser));
        m_owner.m_errorHandler->FatalError(message.c_str());
        return false;
    }

    ExpatXMLParser &m_owner;
};

ExpatXMLParser::~ExpatXMLParser() = default;

bool ExpatXMLParser::isBusy() {
    if (m_parser == nullptr) return false;
    m_errorHandler->FatalError("the parser is reading another document");
    return true;
}

bool ExpatXMLParser::Parse(char *buffer, std::uint32_t length) {
    if (isBusy()) return false;
    return Session(*this).feed(buffer, length, true);
}

bool ExpatXMLParser::Parse(const KV_FileSpec &file, bool encrypted) {
    if (isBusy()) return false;
    KV_FStream stream(file);
    if (!stream.Open(encrypted ? "rb" : "r", false)) return false;
    Session session(*this);
    char block[kBlock + 1];
    for (;;) {
        const std::uint32_t size = encrypted ? readDeciphered(stream, block)
                                             : static_cast<std::uint32_t>(stream.Read(block, 1, kBlock));
        if (!session.feed(block, size, size < kBlock)) return false;
        if (size < kBlock) return true;
    }
}

// ---- events ----------------------------------------------------------------------------------------------
// Expat is C: nothing may be raised through it. What a handler raised is kept, and nothing more is told.

template <class Event>
void ExpatXMLParser::guarded(void *user, const Event &event) {
    auto &parser = *static_cast<ExpatXMLParser *>(user);
    if (parser.m_raised) return;
    try {
        event(parser);
    } catch (...) {
        parser.m_raised = std::current_exception();
    }
}

void ExpatXMLParser::StartElement(void *user, const char *name, const char **attributes) {
    guarded(user, [=](ExpatXMLParser &parser) { parser.StartElementHandler(name, attributes); });
}

void ExpatXMLParser::EndElement(void *user, const char *name) {
    guarded(user, [=](ExpatXMLParser &parser) { parser.EndElementHandler(name); });
}

void ExpatXMLParser::CData(void *user, const char *text, int length) {
    guarded(user, [=](ExpatXMLParser &parser) { parser.CDataHandler(text, length); });
}

void ExpatXMLParser::StartElementHandler(const char *name, const char **attributes) {
    m_text.take(name, static_cast<std::uint32_t>(std::strlen(name)));
    m_documentHandler->StartElement(m_text, ExpatXMLAttributeList(attributes));
}

void ExpatXMLParser::EndElementHandler(const char *name) {
    m_text.take(name, static_cast<std::uint32_t>(std::strlen(name)));
    m_documentHandler->EndElement(m_text);
}

void ExpatXMLParser::CDataHandler(const char *text, int length) {
    while (length > 0) {
        const int size = pieceOf(text, length);
        m_text.take(text, static_cast<std::uint32_t>(size));
        m_documentHandler->Characters(m_text);
        text += size;
        length -= size;
    }
}

// ---- attributes ------------------------------------------------------------------------------------------

ExpatXMLAttributeList::ExpatXMLAttributeList(const char **attributes) : m_attributes(attributes) {
    while (m_attributes != nullptr && m_attributes[std::ptrdiff_t{2} * m_count] != nullptr)
        ++m_count;
}

ExpatXMLAttributeList::~ExpatXMLAttributeList() = default;

KV_String ExpatXMLAttributeList::GetType(int /*index*/) const { return "CDATA"; }
KV_String ExpatXMLAttributeList::GetType(const char * /*name*/) const { return "CDATA"; }

KV_String ExpatXMLAttributeList::GetValue(const char *name) const {
    if (m_attributes == nullptr) return {};
    for (const char **pair = m_attributes; *pair != nullptr; pair += 2)
        if (isSame(*pair, name)) return pair[1];
    return {};
}

KV_String ExpatXMLAttributeList::GetValue(int index) const {
    if (index < 0 || index >= m_count) return {};
    return m_attributes[std::ptrdiff_t{2} * index + 1];
}
