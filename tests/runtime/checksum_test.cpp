#include <gtest/gtest.h>
#include <kvbase/runtime/kv_checksum.h>

#include <cmath>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <vector>

#include "runtime/tables/md5_tables.h"

namespace {

const std::string kText = "0123456789ABCDEFFEDCBA9876543210";

std::string md5(std::string text) {
    unsigned char digest[16];
    MD5String(reinterpret_cast<unsigned char *>(text.data()), static_cast<unsigned int>(text.size()), digest);
    return KV_CheckSum(digest, sizeof digest).GetSum();
}

TEST(CheckSum, ReadsTheTextFormAlone) {
    const std::string zero(32, '0');
    const std::string texts[][2] = {
        {kText, kText},
        {"", zero},
        {kText.substr(1), zero},
        {kText + '0', zero},
        {"ABCDEFabcdef/:@GgF-F+F 012345678", "ABCDEF00000000000F0F0F0012345678"},
    };
    for (const auto &text : texts) {
        KV_CheckSum sum(kText);
        sum.SetSum(text[0]);
        EXPECT_EQ(sum.GetSum(), text[1]) << text[0];
    }
}

TEST(CheckSum, HoldsSixteenBytes) {
    unsigned char bytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                             0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
    KV_CheckSum sum(bytes, 3);
    EXPECT_EQ(sum.GetSum(), kText) << "whatever the length says";
    unsigned char out[17] = {};
    out[16] = 0x55;
    sum.GetSum(out);
    EXPECT_EQ(std::memcmp(out, bytes, sizeof bytes), 0);
    EXPECT_EQ(out[16], 0x55);
    sum.SetSize(4);
    EXPECT_EQ(sum.GetSize(), 16u);
    EXPECT_EQ(sum, KV_CheckSum(kText));
    sum.Reset();
    EXPECT_EQ(sum, KV_CheckSum());
    sum.SetSum(kText);
    sum.SetSum(nullptr, 16);
    EXPECT_EQ(sum, KV_CheckSum());
}

TEST(CheckSum, OrderIsThatOfBigEndianNumbers) {
    const char *ascending[] = {"00000000000000000000000000000000", "000000000000000000000000000000FF",
                               "01000000000000000000000000000000", "01000000000000000000000000000001",
                               "7F000000000000000000000000000000", "80000000000000000000000000000000"};
    for (std::size_t i = 0; i < std::size(ascending); ++i) {
        for (std::size_t k = 0; k < std::size(ascending); ++k) {
            const KV_CheckSum a{std::string(ascending[i])}, b{std::string(ascending[k])};
            EXPECT_EQ(a < b, i < k);
            EXPECT_EQ(a == b, i == k);
            EXPECT_EQ(a != b, i != k);
        }
    }
}

TEST(CheckSum, GoesThroughStreams) {
    KV_CheckSum sum(kText), read;
    std::ostringstream out;
    out << std::setfill('.') << std::setw(34) << sum;
    EXPECT_EQ(out.str(), ".." + kText);
    std::istringstream in(" 01\n23 456789ABCDEF\tFEDCBA98 76543210FF");
    EXPECT_TRUE(in >> read);
    EXPECT_EQ(read, sum);
    EXPECT_FALSE(in >> read) << "ends early";
    EXPECT_EQ(read.GetSum(), "FF" + std::string(30, '0'));
}

TEST(Md5, MeetsThePublishedDigests) {
    const char *published[][2] = {
        // RFC 1321, appendix A.5
        {"", "D41D8CD98F00B204E9800998ECF8427E"},
        {"a", "0CC175B9C0F1B6A831C399E269772661"},
        {"abc", "900150983CD24FB0D6963F7D28E17F72"},
        {"message digest", "F96B697D7CB7938D525A2F31AAF161D0"},
        {"abcdefghijklmnopqrstuvwxyz", "C3FCD3D76192E4007DFB496CCA67E13B"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "D174AB98D277D9F5A5611C2C9F419D9F"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57EDF4A22BE3C955AC49DA2E2107B67A"},
    };
    for (const auto &row : published)
        EXPECT_EQ(md5(row[0]), row[1]) << row[0];
    EXPECT_EQ(md5(std::string(1000000, 'a')), "7707D6AE4E027C70EEA2A935C2296F21");
}

// The constants by their formula; with the digests above they leave no room for a wrong step.
TEST(Md5, ConstantsAreThoseOfTheSine) {
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(kv::detail::kMd5Sines[i], static_cast<std::uint32_t>(0x1p32 * std::abs(std::sin(i + 1))));
}

// Every place where the data can end in its last block, data at odd addresses, and the digest written over
// it.
TEST(Md5, EveryLengthIsPaddedRight) {
    std::string digests;
    for (int length = 0; length < 200; ++length) {
        std::vector<unsigned char> bytes(static_cast<std::size_t>(length) + 1 + 16);
        for (int i = 0; i < length; ++i)
            bytes[static_cast<std::size_t>(i) + 1] = static_cast<unsigned char>(7 * i + length);
        MD5String(bytes.data() + 1, static_cast<unsigned int>(length), bytes.data() + 1);
        digests.append(bytes.begin() + 1, bytes.begin() + 17);
    }
    EXPECT_EQ(md5(digests), "0E31983FB09E7F80B96E5EC823D6BB1A");  // by Python's hashlib
    unsigned char none[16];
    MD5String(nullptr, 0, none);
    EXPECT_EQ(KV_CheckSum(none, 16).GetSum(), md5(""));
}

}  // namespace
