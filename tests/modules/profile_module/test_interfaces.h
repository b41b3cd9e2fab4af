#pragma once

// What the objects of the test profile module have beyond the library's interfaces, for tests to cast to.

#include <kvbase/com/kv_cached_interfaces.h>

#include <cstddef>
#include <string>
#include <vector>

// What a profile file holds, and what a link is made of.
struct TestProfileData {
    std::string text;  // empty: no text tag
    KV_CheckSum sum;
    std::vector<float> values;
};

class ITestProfile : public KV_IProfile {
public:
    virtual TestProfileData &Data() = 0;
    // Save fails once it has written that many bytes.
    virtual void FailAt(std::size_t bytes) = 0;
};

class ITestLink : public KV_ILinkCore {
public:
    virtual std::vector<float> &Values() = 0;
};

// Builds the link of a checksum by itself, unless a file is given in the request; setting2 of the request
// tells how long that takes.
class ITestMatcher : public KV_IColorMatcher {
public:
    // The profile that it gives next; it stays the matcher's.
    virtual ITestProfile &SavedProfile() = 0;
};

// One value of the link that a matcher builds for a checksum, as a plain function of both.
inline float testLinkValue(const KV_CheckSum &sum, std::size_t index) {
    unsigned char bytes[16];
    sum.GetSum(bytes);
    return static_cast<float>(bytes[index % 16]) + static_cast<float>(index) / 1024.0f;
}
constexpr std::size_t kTestLinkValues = 1000;
