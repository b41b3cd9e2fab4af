#pragma once

// What makes a reader of XML: typed attributes, a handler object for each kind of element, and a base class
// that brings them together.

#include <cstdint>
#include <map>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/xml/kal_sax.h"

namespace KalSAX {

/// Attributes as values. None of these raises; an attribute that is absent and one that is empty are alike.
class KV_EXPORT ElementAttributes {
public:
    /// Whether the text is "true". False, and value false, without a text; any other text is a valid false.
    static bool GetBoolValue(const AttributeList &attributes, const char *name, bool &value);
    /// The text as a whole number: digits, and a "-" in front of them at most. False, and value 0, for
    /// anything else. A lone "-" is 0; a number beyond 32 bits becomes the nearest that there is.
    static bool GetIntegerValue(const AttributeList &attributes, const char *name, std::int32_t &value);
    /// The same with points among the digits: the longest beginning that is a number counts ("1.2.3" is 1.2).
    static bool GetDoubleValue(const AttributeList &attributes, const char *name, double &value);
    /// The index of the text among choices, which a null pointer ends; -1 when it is none of them or empty.
    static int GetValueChoice(const AttributeList &attributes, const char *name, const char *const *choices);
};

/// What a reader does with one kind of element.
class KV_EXPORT ElementHandler : public ElementAttributes {
public:
    ElementHandler() = default;
    ElementHandler(const ElementHandler &) = default;
    ElementHandler &operator=(const ElementHandler &) = default;
    virtual ~ElementHandler();
    /// Called when the handler is added, and after each HandleEnd.
    virtual void Reset();
    virtual void HandleStart(const AttributeList &attributes) = 0;
    virtual void HandleEnd() = 0;
};

/// Finds the handler of an element by its name, or hands a whole subtree to another document handler.
/// Elements without a handler are passed over.
class KV_EXPORT Dispatcher {
public:
    Dispatcher() = default;
    Dispatcher(const Dispatcher &) = delete;
    Dispatcher &operator=(const Dispatcher &) = delete;
    /// Destroys the handlers that are entered, each once.
    ~Dispatcher();

    /// Calls the handler's Reset and enters it; it is the dispatcher's from then on, made with new. One that
    /// had the name is given back to whoever added it, and not destroyed, unless it is entered under another
    /// name, too. Null is ignored. When Reset raises, or memory runs out, the handler stays the caller's.
    void AddHandler(const char *name, ElementHandler *handler);

    void StartElement(const KV_String &name, const AttributeList &attributes);
    void EndElement(const KV_String &name);

    /// Hands all further events to handler, which stays its owner's, up to the first end of an element of
    /// that name: its handler then gets its HandleEnd. Called from a HandleStart, the element that begins is
    /// the first that handler gets. Null ends a redirection.
    void StartRedirection(const KV_String &endElement, DocumentHandler *handler);
    bool RedirectionActive() const { return m_redirect != nullptr; }

private:
    ElementHandler *handlerOf(const KV_String &name) const;

    std::map<KV_String, ElementHandler *> m_handlers;
    DocumentHandler *m_redirect = nullptr;
    KV_String m_redirectEnd;
};

}  // namespace KalSAX

/// The base of a reader: document handler and error handler at once. Elements go to the dispatcher, character
/// data to the derived class.
class KV_EXPORT XMLSchemaHandler : public KalSAX::DocumentHandler, public KalSAX::ErrorHandler {
public:
    XMLSchemaHandler() = default;
    XMLSchemaHandler(const XMLSchemaHandler &) = delete;
    XMLSchemaHandler &operator=(const XMLSchemaHandler &) = delete;
    ~XMLSchemaHandler() override;

    void StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) override;
    void EndElement(const KV_String &name) override;

    /// The texts are dropped: a caller learns from the result of Parse that it failed. A class that wants
    /// them overrides these.
    void Warning(const KV_String &message) override;
    void Error(const KV_String &message) override;
    void FatalError(const KV_String &message) override;

    /// As AddHandler of the dispatcher.
    void AddElementHandler(const char *name, KalSAX::ElementHandler *handler);
    KalSAX::Dispatcher &GetElementDispatcher() { return m_dispatcher; }

private:
    KalSAX::Dispatcher m_dispatcher;
};
