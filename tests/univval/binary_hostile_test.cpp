// Binary files that someone has damaged or made up: each gives its documented failure, leaves the dictionary
// as it was, and takes memory in proportion to its size. The program counts its own memory, so it is linked
// with the library's objects.

#include "binary_streams.h"
#include "counted_memory.h"

namespace {

using namespace std::string_literals;

const std::string kHeader = golden("empty.bin").substr(0, 24);

std::string number16(unsigned value) {
    return {'\3', static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
}
std::string number32(std::uint32_t value) {
    std::string atom = "\4";
    for (int shift = 0; shift < 32; shift += 8)
        atom += static_cast<char>(value >> shift & 0xFF);
    return atom;
}
std::string atomHeader(int type, std::uint32_t count) {
    std::string header(1, static_cast<char>(type | 0x10));
    for (int shift = 24; shift >= 0; shift -= 8)
        header += static_cast<char>(count >> shift & 0xFF);
    return header;
}
std::string text(const std::string &bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size() + 1);
    return number16(size) + (size == 1 ? "\2"s : atomHeader(2, size)) + bytes + '\0';
}
// The beginning of an array, up to its data.
std::string array(int type, std::uint32_t dimension) {
    return number16(1) + text("a") + number16(static_cast<unsigned>(type)) + number32(dimension) +
           number32(0);
}

// Reads into a dictionary that has something, and sees that it still has it and is still usable after a
// failure.
std::string failureOf(const std::string &bytes) {
    KV_UValDict dict(16384);
    dict.DefineUVal("before:x", KV_UVAL_LONG, 0, nullptr)->SetLongValue(7, 0);
    std::string result = failure([&] { readBinary(dict, bytes); });
    if (result != "none") {
        EXPECT_EQ(dict.GetSize(), 1);
        readBinary(dict, golden("long_42.bin"));
        EXPECT_EQ(dict.GetValue("a", 0L, 0), 42);
    }
    EXPECT_EQ(dict.GetValue("before:x", 0L, 0), 7);
    return result;
}

TEST(BinaryHostile, SaysWhatIsWrong) {
    const std::string magic =
        "File exception: InvalidFile;   Detail: ReadBinFromStream failed ( MAGIC_STRING ) because it is an "
        "invalid file";
    const std::string name =
        "File exception: InvalidFile;   Detail: ReadBinFromStream failed ( UVAL_DICT ) because it is an "
        "invalid file";
    const std::string pointers =
        "File exception: ReadError;   Detail: ReadBinFromStream failed because of too many pointers";
    // Of the one entry "a", a KV_UValLong of 42: bytes put in the place of others at an offset.
    struct {
        const char *name;
        std::size_t at;
        std::string bytes, failure;
    } const damages[] = {
        {"as it is", 0, ""s, "none"},
        {"first tag of another type", 0, "\4"s, kInvalid},
        {"length of the magic", 1, "\x11"s, magic},
        {"count of the magic", 7, "\x0F"s, kInvalid},
        {"tag of the magic", 3, "\x11"s, kInvalid},
        {"magic", 8, "v"s, name},
        {"another version", 22, "1"s, name},
        {"magic without its zero", 23, "x"s, name},
        {"entries", 25, "\2"s, kTruncated},
        {"as many entries as can be", 25, "\xFF\xFF"s, kTruncated},
        {"length of the key", 28, "\3"s, kInvalid},
        {"no key at all", 28, "\0"s, kInvalid},
        {"length of the key beyond the end", 28, "\xFF\x7F"s, kTruncated},
        {"length of the key beyond all limits", 28, "\0\x80"s, kTruncated},
        {"count of the key", 34, "\1"s, kInvalid},
        {"count of the key beyond the end", 31, "\x7F"s, kInvalid},
        {"tag of the key", 30, "\x13"s, kInvalid},
        {"key without its zero", 36, "x"s, kInvalid},
        {"unknown type", 38, "\x0D"s, kInvalid},
        {"type of 16 bits", 39, "\1"s, kInvalid},
        {"dictionary without a body", 38, "\1"s, kInvalid},
        {"tag of the dimension", 40, "\3"s, kInvalid},
        {"dimension 2", 41, "\2"s, kTruncated},
        {"dimension 1", 41, "\1"s, "none"},
        {"dimension of 31 bits", 41, "\xFF\xFF\xFF\x7F"s, kTruncated},
        {"negative dimension", 41, "\xFF\xFF\xFF\xFF"s, "none"},
        {"tag of the data", 50, "\6"s, kInvalid},
        {"count of the data", 50, "\x14\0\0\0\2"s, kInvalid},
        {"text in the place of a number", 38, "\x0A"s, kInvalid},
    };
    for (const auto &d : damages) {
        std::string bytes = golden("long_42.bin");
        bytes.replace(d.at, d.bytes.size(), d.bytes);
        EXPECT_EQ(failureOf(bytes), d.failure) << d.name;
    }
    const std::string tail(600, '\0');
    struct {
        const char *name;
        std::string body, failure;
    } const bodies[] = {
        {"array and its atom differ", array(9, 2) + atomHeader(7, 3) + tail, kInvalid},
        {"atom counts beyond all", array(9, 2) + atomHeader(7, 0xFFFFFFFF) + tail, kInvalid},
        {"longs as floats", array(6, 2) + atomHeader(6, 2) + tail, kInvalid},
        {"array of more than comes", array(9, 80) + atomHeader(7, 80) + tail, kTruncated},
        {"strings of more than come", array(10, 200) + tail, kTruncated},
        {"length of a string and its atom differ", array(10, 0) + number16(3) + atomHeader(2, 4) + tail,
         kInvalid},
        {"string without its zero", array(10, 0) + number16(2) + atomHeader(2, 2) + "ab" + tail, kInvalid},
        {"string of no bytes", array(10, 0) + number16(0) + atomHeader(2, 0) + tail, kInvalid},
        {"string of 32768 bytes",
         array(10, 0) + number16(32768) + atomHeader(2, 32768) + std::string(40000, '\0'), kInvalid},
        {"more pointers than are taken", array(12, 1048577), pointers},
        {"pointers of 31 bits", array(12, 0x7FFFFFFF), pointers},
        {"as many pointers as are taken", array(12, 1048576), "none"},
        {"negative dimensions", array(12, 0x80000000), "none"},
    };
    for (const auto &b : bodies)
        EXPECT_EQ(failureOf(kHeader + b.body), b.failure) << b.name;
}

TEST(BinaryHostile, TruncationAtEveryByteIsAReadError) {
    for (const char *name : {"empty.bin", "long_42.bin", "all_types.bin", "swapped.bin"}) {
        const std::string bytes = golden(name);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            EXPECT_EQ(failureOf(bytes.substr(0, size)), kTruncated) << name << " cut at " << size;
            KV_UValDict dict(16384);
            PipeStream pipe(bytes.substr(0, size), 7);
            EXPECT_EQ(failure([&] { dict.ReadBinFromStream(&pipe); }), kTruncated)
                << name << " cut at " << size;
        }
    }
}

TEST(BinaryHostile, EveryDamagedByteHasADocumentedEnd) {
    for (const char *name : {"all_types.bin", "swapped.bin"}) {
        const std::string bytes = golden(name);
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (const int mask : {1, 2, 4, 8, 16, 32, 64, 128, 255}) {
                std::string damaged = bytes;
                damaged[at] = static_cast<char>(damaged[at] ^ mask);
                const std::string result = failureOf(damaged);
                EXPECT_TRUE(result == "none" || result.rfind("File exception: ReadError", 0) == 0 ||
                            result.rfind("File exception: InvalidFile", 0) == 0)
                    << name << ", byte " << at << ": " << result;
            }
        }
    }
}

std::string nestedLevels(std::size_t levels) {
    const std::string level = number16(1) + text("") + number16(1);
    std::string bytes = kHeader;
    for (std::size_t i = 0; i < levels; ++i)
        bytes += level;
    return bytes + number16(0);
}

// Neither reading nor writing nor deleting may recurse.
TEST(BinaryHostile, AMillionLevelsCostNoStack) {
    const std::string bytes = nestedLevels(1000000);
    {
        KV_UValDict dict(16384);
        readBinary(dict, bytes);
        EXPECT_TRUE(writtenBinary(dict) == bytes);
        EXPECT_EQ(dict.ByteSize(), static_cast<std::int32_t>(bytes.size()));
    }
    EXPECT_EQ(failureOf(bytes.substr(0, bytes.size() - 1)), kTruncated);
    EXPECT_EQ(failureOf(bytes + "?").substr(0, 4), "none");
}

TEST(BinaryHostile, MemoryFollowsTheSizeOfTheFile) {
    constexpr std::size_t kSize = 1 << 20;
    const std::string filler(kSize, '\0');
    std::string entries, paths;
    for (int i = 0; i < 60000; ++i)
        entries += text(std::to_string(i)) + number16(0);
    for (int i = 0; i < 60000; ++i)
        paths += text(std::to_string(i) + "::") + number16(0);
    const std::string deepPath = number16(1) + text(std::string(32000, ':')) + number16(0);
    std::string deepPaths = kHeader + number16(30);
    for (int i = 0; i < 30; ++i)
        deepPaths += text(std::to_string(i)) + number16(1) + deepPath;
    const std::string none = "none";
    const std::string tooMany =
        "File exception: ReadError;   Detail: ReadBinFromStream failed because of too many separators in "
        "keys";
    struct {
        const char *name;
        std::string bytes;
        std::size_t times;  // the size of the file
        std::string result;
        std::size_t besides = 10000;  // bytes
    } cases[] = {
        {"truncated long array", kHeader + array(6, 0x7FFFFFFF) + filler, 1, kTruncated},
        {"truncated double array", kHeader + array(9, 0x7FFFFFFF) + filler, 1, kTruncated},
        {"truncated strings", kHeader + array(10, 0x7FFFFFFF) + filler, 1, kTruncated},
        {"truncated UTF strings", kHeader + array(11, 0x7FFFFFFF) + filler, 1, kTruncated},
        {"array whose atom is another", kHeader + array(9, kSize / 8) + atomHeader(7, 3) + filler, 2,
         kInvalid},
        {"strings that don't come", kHeader + array(10, kSize / 5) + filler, 6, kInvalid},
        {"text beyond the end", kHeader + number16(1) + number16(0xFFFF), 1, kTruncated},
        {"entries without values", kHeader + number16(60000) + entries, 12, none},
        {"keys that are paths", kHeader + number16(60000) + paths, 24, none},
        {"keys that are deep paths", deepPaths, 1, tooMany, 14000000},
        {"levels", nestedLevels(100000), 24, none},
        {"levels, cut off", nestedLevels(100000).substr(0, kSize), 24, kTruncated},
        {"array", kHeader + array(2, kSize) + atomHeader(1, kSize) + filler, 2, none},
    };
    for (const auto &c : cases) {
        KV_UValDict dict(16384);
        KV_SStream stream(c.bytes.data(), static_cast<std::uint32_t>(c.bytes.size()));
        const std::size_t before = heap.taken;
        const std::string result = failure([&] { dict.ReadBinFromStream(&stream); });
        EXPECT_LE(heap.taken - before, c.times * c.bytes.size() + c.besides) << c.name;
        EXPECT_EQ(result, c.result) << c.name;
    }
}

}  // namespace
