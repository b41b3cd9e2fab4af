#include <gtest/gtest.h>
#include <kvbase/runtime/kv_checksum.h>

#include <cmath>
#include <iomanip>
#include <sstream>

#include "runtime/tables/md5_tables.h"

namespace {

const std::string kText = "0123456789ABCDEFFEDCBA9876543210";
const std::string kZero(32, '0');

std::string md5(std::string text) {
    unsigned char digest[16];
    MD5String(reinterpret_cast<unsigned char *>(text.data()), static_cast<unsigned int>(text.size()), digest);
    return KV_CheckSum(digest, sizeof digest).GetSum();
}

TEST(CheckSum, ReadsTextAndBytes) {
    const std::string texts[][2] = {
        {kText, kText},
        {"", kZero},
        {kText.substr(1), kZero},
        {kText + '0', kZero},
        {"ABCDEFabcdef/:@GgF-F+F 012345678", "ABCDEF00000000000F0F0F0012345678"},
    };
    KV_CheckSum sum;
    EXPECT_EQ(sum.GetSum(), kZero);
    for (const auto &text : texts) {
        sum.SetSum(text[0]);
        EXPECT_EQ(sum.GetSum(), text[1]) << text[0];
    }
    unsigned char bytes[17] = {};
    KV_CheckSum(kText).GetSum(bytes);
    EXPECT_EQ(bytes[1], 0x23);
    EXPECT_EQ(bytes[16], 0) << "one past the end";
    sum.SetSum(bytes, 3);
    sum.SetSize(3);
    EXPECT_EQ(sum.GetSum(), kText) << "16 bytes, whatever the length says";
    sum.SetSum(nullptr, 16);
    EXPECT_EQ(sum, KV_CheckSum());
}

TEST(CheckSum, OrderIsThatOfBigEndianNumbers) {
    const std::string ascending[] = {kZero, kZero.substr(2) + "FF", "01" + kZero.substr(2),
                                     "7F" + kZero.substr(2), "80" + kZero.substr(2)};
    for (const std::string &a : ascending)
        for (const std::string &b : ascending) {
            EXPECT_EQ(KV_CheckSum(a) < KV_CheckSum(b), &a < &b);
            EXPECT_EQ(KV_CheckSum(a) == KV_CheckSum(b), &a == &b);
            EXPECT_EQ(KV_CheckSum(a) != KV_CheckSum(b), &a != &b);
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
    EXPECT_EQ(read.GetSum(), "FF" + kZero.substr(2));
}

TEST(Md5, MeetsPublishedDigests) {
    const char *published[][2] = {
        // RFC 1321, A.5
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
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(kv::detail::kMd5Sines[i], static_cast<std::uint32_t>(0x1p32 * std::abs(std::sin(i + 1))));
}

// Every place where the data can end in its last block, at odd addresses, and the digest written over it.
TEST(Md5, EveryLengthIsPaddedRight) {
    std::string digests;
    for (unsigned length = 0; length < 200; ++length) {
        unsigned char bytes[1 + 200 + 16];
        for (unsigned i = 0; i < length; ++i)
            bytes[1 + i] = static_cast<unsigned char>(7 * i + length);
        MD5String(bytes + 1, length, bytes + 1);
        digests.append(bytes + 1, bytes + 17);
    }
    EXPECT_EQ(md5(digests), "0E31983FB09E7F80B96E5EC823D6BB1A");  // by Python's hashlib
}

}  // namespace
