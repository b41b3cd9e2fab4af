#pragma once

#include <gtest/gtest.h>
#include <kvbase/runtime/kv_exception.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/stream/kv_fstream.h>

#include <fstream>
#include <iterator>
#include <string>

#include "temp_folder.h"

// Tests with files, in a folder of their own.
class StreamFiles : public ::testing::Test {
protected:
    KV_FileSpec spec(const char *name) const {
        KV_FileSpec file = KV_FileSpecFromNative(KV_String(m_folder.native().c_str()));
        return file += name;
    }
    void fill(const char *name, const std::string &bytes) const {
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
    }
    std::string bytes(const char *name) const {
        std::ifstream in(m_folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    KV_FStream opened(const char *name, const char *mode) const {
        KV_FStream stream(spec(name));
        EXPECT_TRUE(stream.Open(mode, false));
        return stream;
    }

private:
    TempFolder m_folder;
};

template <class Call>
void expectFileError(Call call, const std::string &text) {
    try {
        call();
        ADD_FAILURE() << "nothing raised, expected " << text;
    } catch (const KV_FileException &failure) {
        KV_String target;
        EXPECT_EQ(std::string(failure.ToString(target)), "File exception: " + text);
    }
}
