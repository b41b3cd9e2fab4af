// The spelling in which Windows gets a path: beyond its limit the absolute one with a prefix.
#include <gtest/gtest.h>

#include "platform/platform.h"

namespace kv::detail {
// Of platform/windows/system.h, which would bring the system's own header along.
bool systemPath(const KV_WString &path, KV_WString &out);
}  // namespace kv::detail

namespace {

TEST(SystemPath, GetsThePrefixBeyondTheLimit) {
    const KV_WString name(250, L'x'), here = kv::platform::currentFolder(), drive = here.substr(0, 2);
    const KV_WString limit = L"C:\\" + KV_WString(244, L'y');  // 247 units: a name of 12 still fits behind it
    const struct {
        const char *name;
        KV_WString path, spelled;
    } kCases[] = {
        {"empty", L"", L""},
        {"relative", L"a\\..\\b", L"a\\..\\b"},
        {"drive", L"C:\\a", L"C:\\a"},
        {"device", L"NUL", L"NUL"},
        {"at the limit", limit, limit},
        {"beyond it", limit + L"y", L"\\\\?\\" + limit + L"y"},
        {"long, slashes and dots", L"C:/a/./" + name + L"/../b/" + name, L"\\\\?\\C:\\a\\b\\" + name},
        {"long by what lies between", L"C:\\" + name + L"\\..\\b", L"\\\\?\\C:\\b"},
        {"long, separator at the end", L"C:\\" + name + L"\\", L"\\\\?\\C:\\" + name + L"\\"},
        {"long, wild cards", L"C:\\" + name + L"\\*.?", L"\\\\?\\C:\\" + name + L"\\*.?"},
        {"long, server", L"\\\\server\\share\\" + name, L"\\\\?\\UNC\\server\\share\\" + name},
        {"long, prefix", L"\\\\?\\C:\\" + name + L"\\.", L"\\\\?\\C:\\" + name + L"\\."},
        {"long, device", L"\\\\.\\" + name, L"\\\\.\\" + name},
        {"long, relative", name, L"\\\\?\\" + here + L"\\" + name},
        {"long, relative to the drive", drive + name, L"\\\\?\\" + here + L"\\" + name},
        {"long, of the drive's root", L"\\" + name, L"\\\\?\\" + drive + L"\\" + name},
    };
    for (const auto &c : kCases) {
        KV_WString spelled = L"old";
        EXPECT_TRUE(kv::detail::systemPath(c.path, spelled)) << c.name;
        EXPECT_EQ(spelled, c.spelled) << c.name;
    }
}

TEST(SystemPath, TakesNoZeroUnit) {
    KV_WString spelled;
    EXPECT_FALSE(kv::detail::systemPath(KV_WString(L"a\0b", 3), spelled));
    EXPECT_FALSE(kv::detail::systemPath(KV_WString(L"\\\\?\\C:\\a\0", 9), spelled));
}

}  // namespace
