#include "kvbase/text/kv_string.h"

#include <cctype>
#include <istream>

bool KV_Str::getChar(std::istream &stream, char &c) {
    std::streambuf *buffer = stream.rdbuf();
    if (buffer != nullptr && buffer->sgetn(&c, 1) == 1) return true;
    stream.setstate(std::ios_base::eofbit);
    return false;
}

bool KV_Str::getCharSw(std::istream &stream, char &c) {
    do {
        if (!getChar(stream, c)) return false;
    } while (std::isspace(static_cast<unsigned char>(c)) != 0);
    return true;
}

// Terminates at once: the stream may throw at its end.
void KV_Str::putChar(char c) {
    if (m_length == m_capacity) ReSize(toLength(std::uint64_t{m_length} + 16));
    m_data[m_length] = c;
    setLength(m_length + 1);
}

std::istream &KV_Str::readToDelim(std::istream &stream, char delim, bool skipWhite) {
    char c = 0;
    bool got = skipWhite ? getCharSw(stream, c) : getChar(stream, c);
    while (got && c != delim) {
        putChar(c);
        got = getChar(stream, c);
    }
    return stream;
}

std::istream &KV_String::ReadLine(std::istream &stream, bool skipWhite) {
    char c = 0;
    bool got = skipWhite ? getCharSw(stream, c) : getChar(stream, c);
    while (got && c != '\n' && c != '\r') {
        putChar(c);
        got = getChar(stream, c);
    }
    if (got && c == '\r' && stream.rdbuf()->sgetc() == '\n') getChar(stream, c);
    return stream;
}

std::istream &KV_String::ReadToDelim(std::istream &stream, char delim) {
    return readToDelim(stream, delim, false);
}

std::istream &KV_String::ReadString(std::istream &stream) { return readToDelim(stream, 0, false); }
