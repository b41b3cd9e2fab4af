#include "kvbase/xml/xml_schema_handler.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <set>
#include <string_view>
#include <system_error>

#include "kvbase/runtime/kv_number_text.h"

namespace KalSAX {
namespace {

/// Digits, further characters among them, and a "-" in front at most.
bool isNumber(const KV_String &text, const char *further) {
    std::string_view digits(text.Ptr(), text.Size());
    if (digits.empty()) return false;
    if (digits.front() == '-') digits.remove_prefix(1);
    return std::all_of(digits.begin(), digits.end(), [further](char c) {
        return (c >= '0' && c <= '9') || (c != 0 && std::strchr(further, c) != nullptr);
    });
}

}  // namespace

// ---- attributes ------------------------------------------------------------------------------------------

bool ElementAttributes::GetBoolValue(const AttributeList &attributes, const char *name, bool &value) {
    const KV_String text = attributes.GetValue(name);
    value = text == "true";
    return text.Size() != 0;
}

bool ElementAttributes::GetIntegerValue(const AttributeList &attributes, const char *name,
                                        std::int32_t &value) {
    const KV_String text = attributes.GetValue(name);
    value = 0;
    if (!isNumber(text, "")) return false;
    using Limits = std::numeric_limits<std::int32_t>;
    const auto parsed = std::from_chars(text.Ptr(), text.Ptr() + text.Size(), value);
    if (parsed.ec == std::errc::result_out_of_range)
        value = *text.Ptr() == '-' ? Limits::min() : Limits::max();
    return true;
}

bool ElementAttributes::GetDoubleValue(const AttributeList &attributes, const char *name, double &value) {
    const KV_String text = attributes.GetValue(name);
    value = 0;
    if (!isNumber(text, ".")) return false;
    value = kv_strtod(text.Ptr(), nullptr);
    return true;
}

int ElementAttributes::GetValueChoice(const AttributeList &attributes, const char *name,
                                      const char *const *choices) {
    const KV_String text = attributes.GetValue(name);
    for (int i = 0; text.Size() != 0 && choices[i] != nullptr; ++i)
        if (text == choices[i]) return i;
    return -1;
}

// ---- dispatch --------------------------------------------------------------------------------------------

ElementHandler::~ElementHandler() = default;
void ElementHandler::Reset() {}

Dispatcher::~Dispatcher() {
    std::set<ElementHandler *> handlers;
    for (const auto &[name, handler] : m_handlers)
        handlers.insert(handler);
    for (ElementHandler *handler : handlers)
        delete handler;
}

void Dispatcher::AddHandler(const char *name, ElementHandler *handler) {
    if (handler == nullptr) return;
    handler->Reset();
    m_handlers.insert_or_assign(name, handler);
}

ElementHandler *Dispatcher::handlerOf(const KV_String &name) const {
    const auto at = m_handlers.find(name);
    return at != m_handlers.end() ? at->second : nullptr;
}

void Dispatcher::StartElement(const KV_String &name, const AttributeList &attributes) {
    if (m_redirect == nullptr)
        if (ElementHandler *handler = handlerOf(name)) handler->HandleStart(attributes);
    if (m_redirect != nullptr) m_redirect->StartElement(name, attributes);
}

void Dispatcher::EndElement(const KV_String &name) {
    const bool isRedirected = m_redirect != nullptr;
    if (isRedirected) {
        m_redirect->EndElement(name);
        if (!(name == m_redirectEnd)) return;
    }
    if (ElementHandler *handler = handlerOf(name)) {
        handler->HandleEnd();
        handler->Reset();
    }
    if (isRedirected) m_redirect = nullptr;
}

void Dispatcher::StartRedirection(const KV_String &endElement, DocumentHandler *handler) {
    m_redirectEnd = endElement;
    m_redirect = handler;
}

}  // namespace KalSAX

// ---- reader ----------------------------------------------------------------------------------------------

XMLSchemaHandler::~XMLSchemaHandler() = default;

void XMLSchemaHandler::StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) {
    m_dispatcher.StartElement(name, attributes);
}
void XMLSchemaHandler::EndElement(const KV_String &name) { m_dispatcher.EndElement(name); }

void XMLSchemaHandler::Warning(const KV_String & /*message*/) {}
void XMLSchemaHandler::Error(const KV_String & /*message*/) {}
void XMLSchemaHandler::FatalError(const KV_String & /*message*/) {}

void XMLSchemaHandler::AddElementHandler(const char *name, KalSAX::ElementHandler *handler) {
    m_dispatcher.AddHandler(name, handler);
}
