#include <new>

#include "kvbase/runtime/kv_tracer.h"

namespace {

// What the put area leaves free of the block; the zero byte behind the text takes one of them.
constexpr int kReserve = 3;

// Marks that the callback is running, also when it ends by an exception.
class HandingOn {
public:
    explicit HandingOn(bool &mark) : m_mark(mark) { m_mark = true; }
    HandingOn(const HandingOn &) = delete;
    HandingOn &operator=(const HandingOn &) = delete;
    ~HandingOn() { m_mark = false; }

private:
    bool &m_mark;
};

}  // namespace

satstreambuf::satstreambuf(int blockSize) : m_blockSize(blockSize) {}

satstreambuf::~satstreambuf() = default;

char *satstreambuf::allocBlock() {
    if (m_block == nullptr && m_blockSize > 0)
        m_block.reset(new (std::nothrow) char[static_cast<std::size_t>(m_blockSize)]);
    return m_block.get();
}

KV_FuncStrmbuf::KV_FuncStrmbuf(Callback callback, void *user, int blockSize)
    : satstreambuf(blockSize), m_callback(callback), m_user(user) {}

KV_FuncStrmbuf::~KV_FuncStrmbuf() = default;

KV_FuncStrmbuf::int_type KV_FuncStrmbuf::overflow(int_type c) {
    if (m_isHandingOn) return 0;  // the callback's own output
    char *const block = allocBlock();
    if (block == nullptr || blockSize() <= kReserve) return traits_type::eof();
    if (pptr() != pbase()) passOn();
    setp(block, block + blockSize() - kReserve);
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return 0;
}

int KV_FuncStrmbuf::sync() {
    if (pptr() != pbase()) passOn();
    return 0;
}

KV_FuncStrmbuf::int_type KV_FuncStrmbuf::underflow() { return traits_type::eof(); }

// There is pending text, so there is a block, with room for the zero byte behind the put area. The put area
// is empty from here to the next overflow: what the callback writes to this buffer cannot touch its text.
void KV_FuncStrmbuf::passOn() {
    const char *const text = pbase();
    const int count = static_cast<int>(pptr() - pbase());
    *pptr() = '\0';
    setp(nullptr, nullptr);
    if (m_callback == nullptr) return;
    const HandingOn mark(m_isHandingOn);
    m_callback(m_user, text, count);
}
