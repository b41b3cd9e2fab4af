#include <gtest/gtest.h>
#include <kvbase/base/version.h>
#include <kvbase/runtime/kv_platform_facts.h>

#include "runtime/trace_capture.h"

namespace {

TEST(PlatformFacts, HoldBeforeAndAfterTheSystemWasAsked) {
    const auto onlyNewestHolds = [] {
        return KV_WinNT5() && !KV_WinNT4() && !KV_Win98() && !KV_Win95() && !KV_Win32s();
    };
    EXPECT_TRUE(onlyNewestHolds());
    TraceCapture trace(0x080);
    SetRuntimeOSVersion();
    EXPECT_TRUE(onlyNewestHolds());
    EXPECT_EQ(trace.Take(),
              "module KvBaseTrac : OS version information\n"
              "module KvBaseTrac : ----------------------\n"
              "module KvBaseTrac : Platform Id:          2\n"
              "module KvBaseTrac : Major version number: 5\n"
              "module KvBaseTrac : Minor version number: 0\n"
              "module KvBaseTrac : Build number:         0\n"
              "module KvBaseTrac : CSD version:          \n"
              "module KvBaseTrac : SAT OS settings:      Win64\n");
}

TEST(PlatformFacts, VersionIsThatOfTheHeaders) { EXPECT_STREQ(KV_KalvorVersion(), KV_VERSION_TEXT); }

}  // namespace
