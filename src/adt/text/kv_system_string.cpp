#include "kvbase/text/kv_system_string.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>

namespace {

// A buffer of 4 bytes for each of count elements and a terminator: no stateless encoding takes more.
struct Buffer {
    explicit Buffer(std::size_t count) : bytes(std::make_unique<char[]>(4 * count + 1)) {
        constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
        size = static_cast<std::int32_t>(std::min(4 * count + 1, most));
    }

    std::unique_ptr<char[]> bytes;
    std::int32_t size;
};

}  // namespace

constinit KV_TextEncodingConverter KV_SystemString::mSystemTEC;

KV_SystemString &KV_SystemString::operator=(const KV_SystemString &other) {
    if (this != &other) Set(other.m_text);
    return *this;
}

int KV_SystemString::Set(KV_SystemString &other) { return Set(other.m_text); }

int KV_SystemString::Set(const KV_String &text) {
    m_text = text;
    m_utf.reset();
    return 0;
}

int KV_SystemString::Set(const KV_UTFString &text) {
    const Buffer buffer(text.Length());
    const int result = mSystemTEC.Utf2Text(text.Ptr(), buffer.bytes.get(), buffer.size);
    m_text = buffer.bytes.get();
    m_utf.reset();
    return result;
}

int KV_SystemString::Set(const char *text, bool isUtf) {
    if (isUtf) return Set(KV_UTFString(text));
    m_text = text;
    m_utf.reset();
    return 0;
}

const KV_UTFString &KV_SystemString::GetUtfString() const {
    if (m_utf == nullptr) m_utf = std::make_unique<KV_UTFString>();
    if (m_utf->IsEmpty() && !m_text.IsEmpty()) {  // new, or failed before
        const Buffer buffer(m_text.Length());
        mSystemTEC.Text2Utf(m_text.Ptr(), buffer.bytes.get(), buffer.size);
        *m_utf = buffer.bytes.get();
    }
    return *m_utf;
}

void KV_SystemString::PrintOn(std::ostream &stream) const { m_text.PrintOn(stream); }

int KV_SystemString::Initialize(const char *locale) { return mSystemTEC.Initialize(locale); }

void KV_SystemString::Cleanup() { mSystemTEC.Cleanup(); }
