#include <gtest/gtest.h>
#include <kvbase/stream/kv_cipher.h>
#include <kvbase/stream/kv_sstream.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "utf8_path.h"

namespace {

using Bytes = std::vector<unsigned char>;

CBlowFish keyed(Bytes key) {
    CBlowFish cipher;
    cipher.Initialize(key.data(), static_cast<std::uint32_t>(key.size()));
    return cipher;
}

Bytes bytesOf(const std::string &text) { return {text.begin(), text.end()}; }

Bytes encoded(CBlowFish cipher, Bytes text) {
    const auto n = static_cast<std::uint32_t>(text.size());
    Bytes out(cipher.GetOutputLength(n) + 1, '#');
    EXPECT_EQ(cipher.Encode(text.data(), out.data(), n), out.size() - 1);
    EXPECT_EQ(out.back(), '#') << n;
    out.pop_back();
    return out;
}

Bytes fromHex(const std::string &hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// A published block, whose halves are most significant byte first, in this cipher's order.
Bytes blockFromHex(const std::string &hex) {
    Bytes bytes = fromHex(hex);
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.end());
    return bytes;
}

// Any single wrong word in the tables changes at least one of them.
TEST(Blowfish, MeetsThePublishedVectors) {
    std::ifstream file(pathFromUtf8(KVBASE_TEST_DATA "/blowfish_reference.csv"));
    std::string line;
    std::getline(file, line);
    int rows = 0;
    for (; std::getline(file, line); ++rows) {
        const std::size_t comma = line.find(',');
        CBlowFish cipher = keyed(fromHex(line.substr(0, comma)));
        const Bytes plain = blockFromHex(line.substr(comma + 1, 16));
        Bytes block = encoded(cipher, plain);
        EXPECT_EQ(block, blockFromHex(line.substr(comma + 18, 16))) << line;
        cipher.Decode(block.data(), block.data(), 8);
        EXPECT_EQ(block, plain) << line;
    }
    EXPECT_EQ(rows, 58);
}

TEST(Blowfish, ManyBlocksTogetherAreAsOneByOne) {
    CBlowFish cipher = keyed({1, 2, 3});
    std::mt19937 random(8);
    for (std::uint32_t n = 0; n <= 300; ++n) {
        Bytes text(n);
        std::generate(text.begin(), text.end(), [&] { return static_cast<unsigned char>(random()); });
        Bytes padded = text, oneByOne;
        padded.resize((n + 7) / 8 * 8, ' ');
        for (auto block = padded.begin(); block != padded.end(); block += 8) {
            const Bytes one = encoded(cipher, Bytes(block, block + 8));
            oneByOne.insert(oneByOne.end(), one.begin(), one.end());
        }
        ASSERT_EQ(encoded(cipher, text), oneByOne) << n;
        text.resize(padded.size());
        cipher.Encode(text.data(), text.data(), n);
        ASSERT_EQ(text, oneByOne) << n << " in place";
        cipher.Decode(text.data(), text.data(), n);
        ASSERT_EQ(text, padded) << n << " back";
    }
}

TEST(Blowfish, OutputLengthIsInWholeBlocks) {
    const std::uint32_t kPairs[][2] = {{0, 0},         {1, 8}, {8, 8}, {9, 16}, {0xFFFFFFF8, 0xFFFFFFF8},
                                       {0xFFFFFFF9, 0}};
    for (const auto &[n, length] : kPairs)
        EXPECT_EQ(CBlowFish().GetOutputLength(n), length);
    EXPECT_EQ(CBlowFish().Encode(nullptr, nullptr, 0xFFFFFFF9), 0U);
    std::uint32_t length = 0xFFFFFFF9;
    EXPECT_EQ(Crypto(1).encryptbuffer(nullptr, &length), nullptr);
    EXPECT_EQ(length, 0xFFFFFFF9);
}

TEST(Blowfish, CopiesShareTheKey) {
    const Bytes text(8, 'x');
    CBlowFish copy;
    {
        CBlowFish cipher = keyed({1});
        copy = cipher;
        cipher.Initialize(nullptr, 0);  // counts as one zero byte
    }
    EXPECT_EQ(encoded(copy, text), encoded(keyed({0}), text));
    EXPECT_NE(encoded(copy, text), encoded(keyed({1}), text));
}

TEST(SeededCipher, KeyIsTheSeedInTwelveCharacters) {
    const std::pair<std::uint32_t, const char *> kCases[] = {
        {7, "           7"}, {4294967295U, "          -1"}, {2147483648U, " -2147483648"}};
    for (const auto &[seed, key] : kCases) {
        Bytes text = bytesOf("1234567890");
        std::uint32_t length = 10;
        const std::unique_ptr<unsigned char[]> block(Crypto(seed).encryptbuffer(text.data(), &length));
        ASSERT_EQ(length, 16U);
        Bytes bytes(block.get(), block.get() + 16);
        EXPECT_EQ(bytes, encoded(keyed(bytesOf(key)), text)) << key;
        bytes.push_back('#');  // no whole block, stays
        EXPECT_TRUE(Crypto(seed).decryptbuffer(bytes.data(), 17));
        EXPECT_EQ(bytes, bytesOf("1234567890      #")) << key;
    }
}

// Files that exist are read with this key for ever. Bytes from another implementation.
TEST(SeededCipher, StreamsKeepTheirKey) {
    const std::string text = "colour and paper";
    KV_SStream stream;
    stream.WriteEncrypted(text.data(), 16);
    const Bytes stored = bytesOf(std::string(stream.GetMemPtr(), stream.Length()));
    EXPECT_EQ(stored, fromHex("7864f65427d546e70195c2eb0fabd89a"));
    EXPECT_EQ(stored, encoded(keyed(bytesOf("  1903164827")), bytesOf(text)));
}

}  // namespace
