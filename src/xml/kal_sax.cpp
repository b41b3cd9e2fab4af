#include "kvbase/xml/kal_sax.h"

namespace KalSAX {

Locator::~Locator() = default;
AttributeList::~AttributeList() = default;

DocumentHandler::~DocumentHandler() = default;
void DocumentHandler::SetDocumentLocator(const Locator & /*locator*/) {}
void DocumentHandler::StartDocument() {}
void DocumentHandler::EndDocument() {}
void DocumentHandler::IgnorableWhitespace(const KV_String & /*text*/) {}
void DocumentHandler::ProcessingInstruction(const KV_String & /*target*/, const KV_String & /*data*/) {}

ErrorHandler::~ErrorHandler() = default;
Parser::~Parser() = default;
ParserInstances::~ParserInstances() { delete m_parser; }

}  // namespace KalSAX
