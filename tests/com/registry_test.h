#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include "kvbase/runtime/kv_exception.h"
#include "kvbase/runtime/kv_file_spec.h"
#include "temp_folder.h"

// Registries in a folder of their own; on POSIX that of the user's data is there, too.
class RegistryTest : public ::testing::Test {
protected:
    RegistryTest() {
#if !defined(_WIN32)  // Windows asks its own registry
        setenv("APPDATA", m_folder.native().c_str(), 1);
#endif
    }
    KV_FileSpec spec(const std::string &name) const {
        return KV_FileSpecFromNative(m_folder.native(pathFromUtf8(name)).c_str());
    }
    KV_FileSpec write(const std::string &text) const {
        std::ofstream(m_folder / "r.krg", std::ios::binary) << text;
        return spec("r.krg");
    }

    TempFolder m_folder;
};

// What call raises: the code of a component failure, 1000 and more for one of a file, -1 for nothing. The
// detail is the message of the exception's error line alone, so the code has to do.
inline int codeOf(const std::function<void()> &call) {
    try {
        call();
    } catch (const KV_COMException &e) {
        return e.GetComponentError();
    } catch (const KV_FileException &e) {
        return 1000 + e.GetFileErrorId();
    }
    return -1;
}
