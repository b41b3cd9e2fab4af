#include <cstdlib>
#include <vector>

#include "binary_streams.h"

namespace {

using namespace std::string_literals;

struct AtomCase {
    const char *name;
    int type, count;
    std::string data;  // as it lies in the memory of a little-endian machine
    std::string bytes;
};
const AtomCase kAtoms[] = {
    {"one number of 16 bits", 3, 1, "\x01\x02"s, "\x03\x01\x02"s},
    {"three of them", 3, 3, "\1\0\2\0\3\0"s, "\x13\0\0\0\3\1\0\2\0\3\0"s},
    {"text of one byte", 2, 1, "\0"s, "\2\0"s},
    {"text", 2, 4, "abc\0"s, "\x12\0\0\0\4abc\0"s},
    {"number of 64 bits", 5, 1, "\1\2\3\4\5\6\7\x08"s, "\5\1\2\3\4\5\6\7\x08"s},
    {"double 1.5", 7, 1, "\0\0\0\0\0\0\xF8\x3F"s, "\7\0\0\0\0\0\0\xF8\x3F"s},
    {"swapped double 1.5", 0x47, 1, "\0\0\0\0\0\0\xF8\x3F"s, "\x47\x3F\xF8\0\0\0\0\0\0"s},
    {"swapped numbers", 0x44, 2, "\1\2\3\4\5\6\7\x08"s, "\x54\0\0\0\2\4\3\2\1\x08\7\6\5"s},
    {"swapped bytes stay", 0x41, 3, "\1\2\3"s, "\x51\0\0\0\3\1\2\3"s},
    {"300 bytes", 1, 300, std::string(300, 'x'), "\x11\0\0\x01\x2C"s + std::string(300, 'x')},
    {"none", 4, 0, ""s, "\x14\0\0\0\0"s},
    {"below none", 4, -7, ""s, "\x14\0\0\0\0"s},
    {"no data by type", 8, 1, ""s, "\x08"s},
    {"no data by type, counted", 15, 3, ""s, "\x1F\0\0\0\3"s},
};

TEST(BinaryAtom, IsTheSameInBlocksOfAnySize) {
    for (const AtomCase &c : kAtoms) {
        for (const std::size_t size : kBlockSizes) {
            std::string data = c.data;
            KV_BinPackAtom atom;
            atom.Specify(c.type, data.data(), c.count);
            EXPECT_EQ(putInBlocks(atom, size), c.bytes) << c.name << ", block of " << size;
            std::string back(c.data.size(), '?');
            atom.Specify(c.type, back.data(), 77);
            EXPECT_EQ(getInBlocks(atom, c.bytes, size), c.bytes.size()) << c.name;
            EXPECT_EQ(back, c.data) << c.name << ", block of " << size;
            atom.Expect(c.type, back.data(), c.count);
            EXPECT_EQ(getInBlocks(atom, c.bytes, size), c.bytes.size()) << c.name;
            unsigned char none = 0, *cursor = &none;
            EXPECT_EQ(atom.Get(&cursor, &none + 1), 0);
            EXPECT_EQ(cursor, &none) << "there was nothing more to get";
        }
    }
}

TEST(BinaryAtom, RefusesAnotherTypeAndAnUnexpectedCount) {
    struct {
        const char *name;
        std::string bytes;
        bool isExpected, isSpecified;  // what the two ways of arming take
    } const cases[] = {
        {"as it should be", "\x13\0\0\0\2\1\0\2\0"s, true, true},
        {"other bits of the tag don't matter", "\xB3\0\0\0\2\1\0\2\0"s, true, true},
        {"one less", "\3\1\0"s, false, true},
        {"one more", "\x13\0\0\0\3\1\0\2\0\3\0"s, false, true},
        {"of another size", "\x14\0\0\0\2\1\0\0\0\2\0\0\0"s, false, false},
    };
    for (const auto &c : cases) {
        for (const std::size_t size : kBlockSizes) {
            unsigned char data[6] = {};
            KV_BinPackAtom atom;
            atom.Expect(3, data, 2);
            EXPECT_EQ(failure([&] { getInBlocks(atom, c.bytes, size); }) == "none", c.isExpected) << c.name;
            EXPECT_EQ(data[0], c.isExpected ? 1 : 0) << c.name;
            atom.Specify(3, data, 0);
            EXPECT_EQ(failure([&] { getInBlocks(atom, c.bytes, size); }) == "none", c.isSpecified) << c.name;
        }
    }
}

TEST(BinaryAtom, BuffersReverseElementsOfAnySize) {
    for (const std::size_t size : kBlockSizes) {
        unsigned char data[] = {1, 2, 3, 4, 5, 6};
        KV_BinPackBuffer buffer;
        buffer.Specify(data, 2, 3, true);
        EXPECT_EQ(putInBlocks(buffer, size), "\3\2\1\6\5\4");
        buffer.Specify(data, 2, 3, true);
        EXPECT_EQ(getInBlocks(buffer, "abcdefgh", size), 6U);
        EXPECT_EQ(std::string(data, data + 6), "cbafed");
        buffer.Specify(data, 6, 1, true);
        EXPECT_EQ(putInBlocks(buffer, size), "cbafed");
    }
    KV_BinPackBuffer buffer;
    EXPECT_EQ(failure([&] { buffer.Specify(nullptr, 0x40000000, 4, false); }), "Binary Packing Error");
    EXPECT_EQ(putInBlocks(buffer, 1), "") << "nothing to move";
    buffer.Specify(nullptr, -1, 4, false);
    EXPECT_EQ(putInBlocks(buffer, 1), "");
}

// Longer than the run of elements for which an atom arms its buffer.
TEST(BinaryAtom, MovesLongArraysWhole) {
    constexpr std::int32_t kCount = (1 << 28) + 3;
    struct Free {
        void operator()(void *p) const { std::free(p); }
    };
    const std::unique_ptr<char, Free> data(static_cast<char *>(std::calloc(kCount, 1)));
    std::string("abcde").copy(data.get() + kCount - 5, 5);
    KV_BinPackAtom atom;
    atom.Specify(1, data.get(), kCount);
    std::vector<unsigned char> block(1 << 20);
    std::size_t total = 0;
    unsigned char *cursor = nullptr;
    for (int more = 1; more != 0; total += static_cast<std::size_t>(cursor - block.data())) {
        cursor = block.data();
        more = atom.Put(&cursor, block.data() + block.size());
    }
    EXPECT_EQ(total, std::size_t{kCount} + 5);
    EXPECT_EQ(std::string(cursor - 5, cursor), "abcde");

    // And back: the tag, the count, all but the last bytes as they are there already, and these.
    atom.Expect(1, data.get(), kCount);
    unsigned char header[] = {0x11, 0x10, 0, 0, 3};
    cursor = header;
    int more = atom.Get(&cursor, header + sizeof header);
    block.assign(block.size(), 0);
    for (std::size_t left = kCount - 5; left > 0; left -= static_cast<std::size_t>(cursor - block.data())) {
        cursor = block.data();
        more = atom.Get(&cursor, block.data() + std::min(left, block.size()));
    }
    EXPECT_NE(more, 0);
    unsigned char last[] = {'v', 'w', 'x', 'y', 'z', '!'};
    cursor = last;
    EXPECT_EQ(atom.Get(&cursor, last + sizeof last), 0);
    EXPECT_EQ(cursor, last + 5);
    EXPECT_EQ(std::string(data.get() + kCount - 6, 6), std::string("\0vwxyz", 6));
}

}  // namespace
