#pragma once

#include <kvbase/xml/expat_xml_parser.h>
#include <kvbase/xml/xml_schema_handler.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

// What a document causes: elements as "<name value value" and ">", character data as it comes.
class Events : public XMLSchemaHandler {
public:
    void StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) override {
        if (name == "raise") throw std::runtime_error("raised");
        text += std::string("<") + name.Ptr();
        for (int i = 0; i < attributes.GetLength(); ++i)
            text += std::string(" ") + attributes.GetValue(i).Ptr();
    }
    void EndElement(const KV_String & /*name*/) override { text += '>'; }
    void Characters(const KV_String &piece) override {
        text.append(piece.Ptr(), piece.Size());
        longest = std::max<std::size_t>(longest, piece.Size());
    }
    void FatalError(const KV_String &reason) override { message += reason.Ptr(); }

    std::string text, message;
    std::size_t longest = 0;
};

inline bool parseText(KalSAX::DocumentHandler &handler, KalSAX::ErrorHandler &errors, std::string document) {
    ExpatXMLParser parser;
    parser.SetDocumentHandler(handler);
    parser.SetErrorHandler(errors);
    return parser.Parse(document.data(), static_cast<std::uint32_t>(document.size()));
}
