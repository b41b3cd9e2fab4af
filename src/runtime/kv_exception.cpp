#include "kvbase/runtime/kv_exception.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <ostream>
#include <string>

#include "runtime/error_texts.h"
#include "runtime/trace_line.h"

using namespace kv::detail;

namespace {

const char *orEmpty(const char *text) { return text != nullptr ? text : ""; }

// An id that a line shows in upper-case hexadecimal, whatever the stream's flags and locale say.
struct Hexadecimal {
    KV_ErrorId id;
};
std::ostream &operator<<(std::ostream &out, const Hexadecimal &number) {
    char digits[8];
    char *const end = std::to_chars(digits, std::end(digits), static_cast<std::uint32_t>(number.id), 16).ptr;
    std::transform(digits, end, digits,
                   [](char c) { return static_cast<char>(c >= 'a' ? c - 'a' + 'A' : c); });
    return out.write(digits, end - digits);
}

// The line that format and instrument exceptions share.
void traceHexLine(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                  std::int32_t line) {
    traceLine(kTraceError, message, " ErrorId = ", "0x", Hexadecimal{id}, "  FILE ", orEmpty(file), "  DATE ",
              orEmpty(date), "  LINE ", line);
}

}  // namespace

// ---- base ------------------------------------------------------------------------------------------------

KV_Exception::KV_Exception(const KV_String &message, KV_ErrorId id, const char *date, const char *file,
                           std::int32_t line, bool trace)
    : m_message(message), m_id(id) {
    if (!trace) return;
    traceLine(kTraceError, m_message, " ErrorId = ", m_id, "   FILE ", orEmpty(file), "  DATE ",
              orEmpty(date), "  LINE = ", line);
}

KV_Exception::KV_Exception(const KV_String &message, KV_ErrorId id, bool trace)
    : m_message(message), m_id(id) {
    if (trace) traceLine(kTraceError, m_message, " ErrorId = ", m_id);
}

KV_Exception::~KV_Exception() = default;

KV_String &KV_Exception::ToString(KV_String &target) const {
    target += m_message;
    return target;
}

void KV_Exception::PrintOn(std::ostream &out) const {
    KV_String text;
    out << ToString(text);
}

// ---- files -----------------------------------------------------------------------------------------------

KV_FileException::KV_FileException(const KV_String &message, KV_File_ErrorID error, std::int32_t osError,
                                   const char *date, const char *file, std::int32_t line)
    : KV_Exception(message, KV_ERR_FILE, false), m_fileError(error), m_osError(osError) {
    traceLine(kTraceError, message, " KV_File ErrorId = ", m_fileError, "OS ErrorId = ", m_osError,
              "   FILE ", orEmpty(file), "  DATE ", orEmpty(date), "  LINE = ", line);
}

KV_String &KV_FileException::ToString(KV_String &target) const {
    target += "File exception: ";
    target += textOf(kFileErrors, m_fileError, kFileErrorOther);
    if (!message().IsEmpty()) {
        target += ";   Detail: ";
        target += message();
    }
    if (m_osError != 0) {
        target += ";   OSError: ";
        target += std::to_string(m_osError).c_str();
    }
    return target;
}

// ---- conversion, packing, attributes ---------------------------------------------------------------------

KV_ConversionException::KV_ConversionException()
    : KV_Exception("Bitmap format conversion exception", KV_ERR_CONVERSION, true) {}

KV_BinPackException::KV_BinPackException()
    : KV_Exception("!! Untraceable Binary Packing Error because the programmer was lame !!", KV_ERR_BINPACK,
                   true) {}

KV_String &KV_BinPackException::ToString(KV_String &target) const {
    target += "Binary Packing Error";
    return target;
}

KV_AttributeException::KV_AttributeException(unsigned short reason, std::uint32_t attribute)
    : KV_Exception("!! Untraceable Attribute because the programmer was lame !!", KV_ERR_ATTRIBUTE, true),
      m_reason(reason),
      m_attribute(attribute) {}

KV_String &KV_AttributeException::ToString(KV_String &target) const { return target; }

// ---- components ------------------------------------------------------------------------------------------

KV_COMException::KV_COMException(const KV_String &message, unsigned short error, const char *date,
                                 const char *file, std::int32_t line)
    : KV_Exception(message, KV_ERR_COM, false), m_error(error) {
    if (!traceIsOn(kTraceError)) return;
    KV_String text;
    KV_COMException::ToString(text);
    traceLine(kTraceError, message, " ErrorId = ", m_error, " (", text, ") ", " FILE ", orEmpty(file),
              " DATE ", orEmpty(date), " LINE ", line);
}

KV_String &KV_COMException::ToString(KV_String &target) const {
    target += "KV_COMException:";
    target += textOf(kComponentErrors, m_error, kComponentErrorOther);
    return target;
}

// ---- formats, instruments, profiles ----------------------------------------------------------------------

KV_FormatException::KV_FormatException(const KV_String &message, KV_ErrorId id, const char *date,
                                       const char *file, std::int32_t line)
    : KV_Exception(message, id, false) {
    traceHexLine(message, id, date, file, line);
}

KV_String &KV_FormatException::ToString(KV_String &target) const {
    target += textOf(kFormatErrors, GetErrorId(), kFormatErrorOther);
    return target;
}

KV_InstrumentException::KV_InstrumentException(const KV_String &message, KV_ErrorId id, const char *date,
                                               const char *file, std::int32_t line)
    : KV_Exception(message, id, false) {
    traceHexLine(message, id, date, file, line);
}

KV_String &KV_InstrumentException::ToString(KV_String &target) const {
    target += textOf(kInstrumentErrors, GetErrorId(), kInstrumentErrorOther);
    return target;
}

KV_ErrorId KV_InstrumentException::GetKV_ErrorID() const { return GetErrorId(); }

KV_ProfileException::KV_ProfileException(const KV_String &message, KV_ErrorId id, const char *date,
                                         const char *file, std::int32_t line)
    : KV_Exception(message, id, false) {
    traceLine(kTraceError, message, " ErrorId = ", " 0x ", Hexadecimal{id}, " FILE ", orEmpty(file), " DATE ",
              orEmpty(date), " LINE ", line);
}

KV_String &KV_ProfileException::ToString(KV_String &target) const {
    target += textOf(kProfileErrors, GetErrorId(), kProfileErrorOther);
    return target;
}

KV_ErrorId KV_ProfileException::GetKV_ErrorID() const { return GetErrorId(); }
