#pragma once

#include <kvbase/runtime/kv_tracer.h>

#include <cstdint>
#include <sstream>
#include <string>

// Catches the lines of the library's own tracer while it lives.
struct TraceCapture {
    explicit TraceCapture(std::uint32_t mask) {
        KV_Tracer::SetStreamP("KvBaseTrace", &stream);
        KV_Tracer::SetMask("KvBaseTrace", mask);
    }
    TraceCapture(const TraceCapture &) = delete;
    TraceCapture &operator=(const TraceCapture &) = delete;
    ~TraceCapture() {
        KV_Tracer::SetMask("KvBaseTrace", 0);
        KV_Tracer::SetStreamP("KvBaseTrace", nullptr);
    }
    // What came since the last call.
    std::string Take() {
        std::string text = stream.str();
        stream.str("");
        return text;
    }

    std::ostringstream stream;
};
