#include "stream/file_streambuf.h"

#include <algorithm>
#include <cstddef>

#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "kvbase/stream/kv_stream.h"

namespace kv::detail {

namespace {

constexpr std::size_t kPutBack = 8;
constexpr std::size_t kBlock = 64 * 1024;

}  // namespace

FileStreambuf::FileStreambuf(KV_Stream &stream)
    : m_stream(stream), m_block(std::make_unique_for_overwrite<char[]>(kPutBack + kBlock)) {}

FileStreambuf::~FileStreambuf() { writeBlock(); }

FileStreambuf::int_type FileStreambuf::underflow() {
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    const auto kept = std::min<std::ptrdiff_t>(gptr() - eback(), kPutBack);
    char *begin = m_block.get() + kPutBack;
    std::copy_n(gptr() - kept, kept, begin - kept);
    const auto got = static_cast<std::ptrdiff_t>(m_stream.Read(begin, 1, kBlock));
    setg(begin - kept, begin, begin + got);
    if (got > 0) return traits_type::to_int_type(*begin);
    if (m_stream.GetLastError() == 0) return traits_type::eof();
    const KV_FileSpec *file = m_stream.GetFileSpec();
    throw KV_FileException(file != nullptr ? file->GetFileName() : KV_String(), KV_FileException::ReadError,
                           0, KV_HERE);
}

FileStreambuf::int_type FileStreambuf::overflow(int_type c) {
    if (!writeBlock()) return traits_type::eof();
    setp(m_block.get(), m_block.get() + kBlock);
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
}

int FileStreambuf::sync() { return writeBlock() && m_stream.Flush() == 0 ? 0 : -1; }

// Takes the block away also when it could not be written, so that nothing goes out twice.
bool FileStreambuf::writeBlock() {
    const auto size = static_cast<std::size_t>(pptr() - pbase());
    if (size == 0) return true;
    setp(nullptr, nullptr);
    return m_stream.Write(m_block.get(), 1, size) == size;
}

}  // namespace kv::detail
