#pragma once

#include <exception>
#include <istream>
#include <streambuf>

#include "kvbase/runtime/kv_exception.h"
#include "kvbase/text/kv_string.h"

namespace kv::detail {

/// Sets a stream's bad state, also where the stream answers that with an exception.
inline void setBad(std::ios &stream) noexcept {
    try {
        stream.setstate(std::ios_base::badbit);
    } catch (...) {  // the state is set
        return;
    }
}

/// What the exception says that is being handled.
inline KV_String currentReason() {
    try {
        throw;
    } catch (const KV_Exception &e) {
        KV_String reason;
        return e.ToString(reason);
    } catch (const std::exception &e) {
        return e.what();
    } catch (...) {
        return "unknown";
    }
}

/// Calls an operation of a stream's buffer. Where that throws, the stream becomes bad, and a KV_FileException
/// goes out: the buffer's own, or "ReadError" with what another exception says.
template <class Operation>
auto callBuffer(std::istream &stream, const Operation &operation) {
    try {
        return operation(*stream.rdbuf());
    } catch (const KV_FileException &) {
        setBad(stream);
        throw;
    } catch (...) {
        setBad(stream);
        throw KV_FileException(currentReason(), KV_FileException::ReadError, 0, KV_HERE);
    }
}

}  // namespace kv::detail
