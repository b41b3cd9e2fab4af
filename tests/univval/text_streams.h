#pragma once

#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/univval/kv_uval.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>

#include "comma.h"
#include "piece_buffer.h"
#include "utf8_path.h"

// Hands a text out, and then throws what tear throws. Throws when it is written to, too.
class TornBuffer : public std::streambuf {
public:
    TornBuffer(std::string text, void (*tear)()) : m_text(std::move(text)), m_tear(tear) {
        setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
    }

protected:
    int_type underflow() override {
        m_tear();
        return traits_type::eof();
    }
    int_type overflow(int_type) override { return underflow(); }

private:
    std::string m_text;
    void (*m_tear)();
};

// What the exception of an action says, "none" without one.
template <class Action>
std::string failure(const Action &action) {
    try {
        action();
    } catch (const KV_Exception &e) {
        KV_String text;
        return e.ToString(text).Ptr();
    }
    return "none";
}

// The value in the form for people, which shows type, dimension and content.
inline std::string printed(KV_UVal &value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

inline std::string sampleText() {
    std::ifstream file(pathFromUtf8(KVBASE_TEST_DATA "/values/sample.txt"), std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(text.empty());
    return text;
}
