#include <filesystem>
#include <functional>

#include "binary_streams.h"
#include "temp_folder.h"

namespace {

using namespace std::string_literals;

constexpr std::size_t kHeader = 24;

// Numbers from the first on.
void define(KV_UValDict &dict, const char *key, KV_UValType type, std::vector<double> numbers,
            bool isScalar = false) {
    const auto count = static_cast<std::int32_t>(numbers.size());
    KV_UVal *value = dict.DefineUVal(key, type, isScalar ? 0 : count, nullptr);
    for (std::int32_t i = 0; i < count; ++i)
        value->SetDoubleValue(numbers[static_cast<std::size_t>(i)], i);
}

void fillCommon(KV_UValDict &dict) {
    define(dict, "chars", KV_UVAL_CHAR, {1, -128});
    dict.DefineUValDict("dict:empty");
    define(dict, "double", KV_UVAL_DOUBLE, {2.2}, true);
    define(dict, "doubles", KV_UVAL_DOUBLE, {1.5, -0.25});
    define(dict, "floats", KV_UVAL_FLOAT, {1, -2});
    define(dict, "longs", KV_UVAL_LONG, {-2});
    dict.DefineUVal("pointers", KV_UVAL_PTR, 2, nullptr);
    define(dict, "shorts", KV_UVAL_SHORT, {1, 2, 3});
    KV_UVal *texts = dict.DefineUVal("texts", KV_UVAL_UTFSTRING, 2, nullptr);
    texts->SetStrValue("caf\303\251", 1);
    define(dict, "ulong", KV_UVAL_ULONG, {0xDEADBEEF}, true);
    define(dict, "ushorts", KV_UVAL_USHORT, {65535, 32768});
}

void fillAllBinary(KV_UValDict &dict) {
    fillCommon(dict);
    auto &map = *dict.GetValuePtr();
    map[""] = new KV_UValChar(0, nullptr);
    map[""]->SetLongValue(-2, 0);
    define(dict, "chars", KV_UVAL_CHAR, {1, -128, -1});
    dict.SetUVal("dict:none", nullptr);
    dict.GetUVal("shorts")->SetNrItemsToPrint(2);
    dict.DefineUVal("string", KV_UVAL_STRING, 0, nullptr)->SetStrValue("abc", 0);
    int target = 0;
    dict.SetValue("pointers", &target, 1);
}

void fillAllText(KV_UValDict &dict) {
    fillCommon(dict);
    define(dict, "a b)", KV_UVAL_CHAR, {-2}, true);
    dict.DefineUVal("string", KV_UVAL_STRING, 0, nullptr)
        ->SetStrValue(KV_String("tab\t line\n zero\0 back\\", 22), 0);
}

void fillLong(KV_UValDict &dict) { define(dict, "a", KV_UVAL_LONG, {42}, true); }

const char *const kBinaryGoldens[] = {"empty.bin", "long_42.bin", "all_types.bin", "swapped.bin"};

TEST(BinaryForm, IsTheGoldenFilesByteForByte) {
    struct {
        const char *file;
        void (*fill)(KV_UValDict &);
    } const cases[] = {
        {"empty.bin", [](KV_UValDict &) {}}, {"long_42.bin", fillLong}, {"all_types.bin", fillAllBinary}};
    for (const auto &c : cases) {
        KV_UValDict dict(16384), back(16384);
        c.fill(dict);
        const std::string bytes = golden(c.file);
        EXPECT_EQ(writtenBinary(dict), bytes) << c.file;
        EXPECT_EQ(dict.ByteSize(), static_cast<std::int32_t>(bytes.size())) << c.file;
        readBinary(back, bytes);
        EXPECT_EQ(writtenBinary(back), bytes) << c.file;
    }
}

TEST(BinaryForm, TextFilesAreTheGoldenOnesByteForByte) {
    KV_UValDict dict(16384), back(16384);
    fillAllText(dict);
    std::ostringstream out, again;
    dict.WriteTextFile(out);
    EXPECT_EQ(out.str(), golden("all_types.txt"));
    std::istringstream in(golden("all_types.txt"));
    back.ReadTextFile(in);
    EXPECT_EQ(printed(back), printed(dict));
}

TEST(BinaryForm, ReadsEachTypeAndEitherByteOrder) {
    KV_UValDict all(16384), swapped(16384);
    readBinary(all, golden("all_types.bin"));
    EXPECT_EQ(
        printed(all),
        "    |-  => (Char)-2\n    |- chars => (Char#3) {1,-128,-1,}\n    |- dict\n    |    |- empty\n"
        "    |    |- none<NULL>\n    |- double => (Double)2.2\n    |- doubles => (Double#2) {1.5,-0.25,}\n"
        "    |- floats => (Float#2) {1,-2,}\n    |- longs => (Long#1) {-2,}\n"
        "    |- pointers => (Ptr#2) {0,0,}\n    |- shorts => (Short#3) {1,2,}\n"
        "    |- string => (String)abc\n    |- texts => (UTFString#2) {,caf[e9],}\n"
        "    |- ulong => (ULong)3735928559\n    |- ushorts => (UShort#2) {65535,32768,}\n");
    readBinary(swapped, golden("swapped.bin"));
    EXPECT_EQ(printed(swapped),
              "    |- c => (UChar#2) {1,}\n    |- d => (Double#2) {1.5,2.2,}\n    |- f => (Float)-2\n"
              "    |- l => (Long)16909060\n    |- s => (Short#3) {1,2,-2,}\n    |- t => (String)ab\n");
    EXPECT_EQ(swapped.GetValue("d", 0.0, 1), 2.2);
    EXPECT_EQ(swapped.GetValue("c", 0L, 1), 255);
}

TEST(BinaryForm, IsTheSameInBlocksOfAnySize) {
    for (const char *name : kBinaryGoldens) {
        const std::string bytes = golden(name), body = bytes.substr(kHeader);
        KV_UValDict whole(16384);
        readBinary(whole, bytes);
        const std::string written = writtenBinary(whole);
        for (const std::size_t size : kBlockSizes) {
            KV_UValDict parts(16384), pieces(16384), pipe(16384);
            KV_BinPackUValDict packer;
            packer.Specify(&whole);
            EXPECT_EQ(putInBlocks(packer, size), written.substr(kHeader)) << name << ", block of " << size;
            packer.Specify(&parts);
            EXPECT_EQ(getInBlocks(packer, body + "more", size), body.size()) << name;
            EXPECT_EQ(writtenBinary(parts), written) << name << ", block of " << size;
            PieceStream stream(bytes, size);
            pieces.ReadBinFromStream(&stream);
            EXPECT_EQ(writtenBinary(pieces), written) << name << ", pieces of " << size;
            PipeStream piped(bytes, size);
            pipe.ReadBinFromStream(&piped);
            EXPECT_EQ(writtenBinary(pipe), written) << name << ", pieces of " << size;
        }
    }
}

TEST(BinaryForm, SizesAreThoseOfTheBytesAtTheEdgesOfBlocks) {
    for (const int length : {452, 453, 454, 964, 965, 966, 32766}) {
        KV_UValDict dict(16384), back(16384);
        dict.DefineUVal("a", KV_UVAL_STRING, 0, nullptr)
            ->SetStrValue(std::string(static_cast<std::size_t>(length), 'x').c_str(), 0);
        const std::string bytes = writtenBinary(dict);
        EXPECT_EQ(dict.ByteSize(), static_cast<std::int32_t>(bytes.size()));
        EXPECT_EQ(bytes.size(), 59U + static_cast<std::size_t>(length));
        readBinary(back, bytes);
        EXPECT_EQ(back.GetValue("a", "", 0), dict.GetValue("a", KV_String(), 0));
    }
}

// Longer than the run of elements for which an atom arms its buffer, and more than the result can say. Memory
// that nobody has written to costs the system nothing.
TEST(BinaryForm, SizesOfLongArraysAreWholeOrTheLargest) {
    constexpr std::int32_t kCount = (1 << 28) + 3;
    KV_UValDict dict(16384);
    dict.DefineUVal("a", KV_UVAL_CHAR, kCount, new char[kCount]);
    EXPECT_EQ(dict.ByteSize(), 24 + 31 + kCount);
    dict.DefineUVal("b", KV_UVAL_DOUBLE, kCount, new double[kCount]);
    EXPECT_EQ(dict.ByteSize(), 2147483647);
}

TEST(BinaryForm, AStreamThatDropsWhatItTakesIsAFailure) {
    KV_UValDict dict(16384);
    fillLong(dict);
    struct {
        const char *name;
        void (*fail)(KV_SStream &);
    } const cases[] = {
        {"beyond the end", [](KV_SStream &s) { s.Seek(100, KV_Stream::SeekFromStart); }},
        {"read beyond the end",
         [](KV_SStream &s) {
             while (!s.EndOfFile())
                 s.Getc();
         }},
        {"read to the end",
         [](KV_SStream &s) {
             char line[9];
             s.Gets(line, 9);
         }},
    };
    for (const auto &c : cases) {
        KV_SStream stream;
        stream.Open("w", false);
        stream.Puts("line");
        c.fail(stream);
        EXPECT_EQ(failure([&] { dict.AppendBinToStream(&stream); }),
                  "File exception: WriteError;   Detail: AppendBinToStream written buffer differs from given "
                  "buffer")
            << c.name;
    }
}

TEST(BinaryForm, ReadingLeavesThePlaceOfWritingAlone) {
    KV_UValDict first(16384), back(16384);
    fillLong(first);
    KV_SStream stream;
    stream.Open("w", false);
    const std::string bytes = writtenBinary(first);
    for (int i = 0; i < 3; ++i)
        first.AppendBinToStream(&stream);
    back.ReadBinFromStream(&stream);
    EXPECT_EQ(writtenBinary(back), bytes);
    first.AppendBinToStream(&stream);
    EXPECT_EQ(std::string(stream.GetMemPtr(), stream.Length()), bytes + bytes + bytes + bytes);
}

TEST(BinaryForm, StandsBehindTheDictionaryThatItRead) {
    KV_UValDict first(16384), second(16384);
    fillAllBinary(first);
    fillLong(second);
    for (const bool inMemory : {true, false}) {
        const TempFolder folder;
        KV_FStream file(KV_FileSpecFromNative(folder.native("two").c_str()));
        KV_SStream memory;
        KV_Stream &stream = inMemory ? static_cast<KV_Stream &>(memory) : file;
        ASSERT_TRUE(stream.Open("w", false));
        stream.Puts("before");
        first.AppendBinToStream(&stream);
        second.AppendBinToStream(&stream);
        stream.Puts("behind");
        stream.Close();
        ASSERT_TRUE(stream.Open("r", false));
        stream.Seek(6, KV_Stream::SeekFromStart);
        KV_UValDict a(16384), b(16384);
        a.ReadBinFromStream(&stream);
        b.ReadBinFromStream(&stream);
        EXPECT_EQ(writtenBinary(a), golden("all_types.bin"));
        EXPECT_EQ(writtenBinary(b), golden("long_42.bin"));
        char text[7] = {};
        EXPECT_EQ(stream.Read(text, 1, 6), 6U);
        EXPECT_STREQ(text, "behind");
    }
}

// A stream that still writes tells where it writes, not where it reads.
TEST(BinaryForm, ReadsFromAStreamThatWrites) {
    KV_UValDict dict(16384), back(16384);
    dict.DefineUVal("a", KV_UVAL_DOUBLE, 1000, nullptr)->SetDoubleValue(1.5, 999);
    KV_SStream stream;
    dict.AppendBinToStream(&stream);
    back.ReadBinFromStream(&stream);
    EXPECT_EQ(back.GetValue("a", 0.0, 999), 1.5);
}

TEST(BinaryForm, ReplacesEntriesAndDictionariesAsAWhole) {
    KV_UValDict target(16384), source(16384);
    define(target, "a:x", KV_UVAL_LONG, {1}, true);
    define(target, "b", KV_UVAL_LONG, {2}, true);
    define(target, "c", KV_UVAL_LONG, {3}, true);
    define(source, "a:y", KV_UVAL_LONG, {4}, true);
    source.SetUVal("b", nullptr);
    define(source, "d", KV_UVAL_DOUBLE, {5}, true);
    readBinary(target, writtenBinary(source));
    EXPECT_EQ(
        printed(target),
        "    |- a\n    |    |- y => (Long)4\n    |- b<NULL>\n    |- c => (Long)3\n    |- d => (Double)5\n");
}

TEST(BinaryForm, KeysWithTheSeparatorArePaths) {
    KV_UValDict source(16384), target(16384);
    KV_UValDict *below = source.DefineUValDict("m");
    for (KV_UValDict *dict : {&source, below}) {
        auto &map = *dict->GetValuePtr();
        define(*dict, "a", KV_UVAL_LONG, {1}, true);
        map["a:b"] = new KV_UValDict(0);  // has no place: a is a number
        define(*static_cast<KV_UValDict *>(map["a:b"]), "lost", KV_UVAL_LONG, {1}, true);
        map["a:c"] = new KV_UValLong(0, nullptr);
        define(*dict, "d:x", KV_UVAL_LONG, {2}, true);
        map["d:e:f"] = new KV_UValLong(0, nullptr);
        map["g:h"] = nullptr;
        map["i:"] = new KV_UValDict(0);
        map["z\0k"s] = new KV_UValLong(0, nullptr);  // no separator, so the zero byte ends nothing
    }
    readBinary(target, writtenBinary(source));
    const std::string expected =
        "    |- a => (Long)1\n    |- d\n    |    |- e\n    |    |    |- f => (Long)0\n"
        "    |    |- x => (Long)2\n    |- g\n    |    |- h<NULL>\n    |- i\n    |- z\0k => (Long)0\n"s;
    EXPECT_EQ(printed(*target.DefineUValDict("m")), expected);
    target.RemoveUVal("m");
    EXPECT_EQ(printed(target), expected);
}

TEST(BinaryForm, TextsKeepTheirBytesAndUtfTextsAreSanitised) {
    KV_UValDict dict(16384), back(16384);
    KV_UVal *plain = dict.DefineUVal("p", KV_UVAL_STRING, 2, nullptr);
    KV_UVal *utf = dict.DefineUVal("u", KV_UVAL_UTFSTRING, 2, nullptr);
    KV_String bytes("a\0\xFF\x80", 4), good("\303\251\0b", 4);
    plain->SetStrValue(bytes, 1);
    utf->SetPtrValue(&bytes, 0);  // nobody looks whether it is UTF-8
    utf->SetPtrValue(&good, 1);
    readBinary(back, writtenBinary(dict));
    KV_String text;
    back.GetUVal("p")->GetStrValue(text, 1);
    EXPECT_TRUE(text == bytes);
    back.GetUVal("u")->GetStrValue(text, 1);
    EXPECT_TRUE(text == good);
    bytes = KV_String("\xFF", 1);
    utf->SetPtrValue(&bytes, 0);
    readBinary(back, writtenBinary(dict));
    EXPECT_STREQ(back.GetValue("u", "", 0), "#");
}

void fillLevel(KV_UValDict &dict, std::size_t entries) {
    for (std::size_t i = 0; i < entries; ++i)
        dict.SetUVal(std::to_string(i).c_str(), nullptr);
}

// Each fills a dictionary to its limit, and beyond it by what is asked for.
TEST(BinaryForm, RefusesWhatItCannotHoldBeforeTheFirstByte) {
    const auto text = [](std::size_t beyond) {
        return KV_String('k', static_cast<std::uint32_t>(32766 + beyond));
    };
    struct {
        std::function<void(KV_UValDict &, std::size_t)> fill;
        std::string failure;
    } const cases[] = {
        {[](KV_UValDict &d, std::size_t beyond) { fillLevel(d, 65535 + beyond); },
         "the dictionary has more than 65535 entries"},
        {[](KV_UValDict &d, std::size_t beyond) { fillLevel(*d.DefineUValDict("a:b"), 65535 + beyond); },
         "a:b has more than 65535 entries"},
        {[&](KV_UValDict &d, std::size_t beyond) {
             d.DefineUVal("a:b", KV_UVAL_STRING, 2, nullptr)->SetStrValue(text(beyond), 1);
         },
         "a:b has a text of more than 32766 bytes"},
        {[&](KV_UValDict &d, std::size_t beyond) {
             d.DefineUVal("u", KV_UVAL_UTFSTRING, 0, nullptr)->SetStrValue(text(beyond), 0);
         },
         "u has a text of more than 32766 bytes"},
        {[&](KV_UValDict &d, std::size_t beyond) { d.DefineUValDict("a")->SetUVal(text(beyond), nullptr); },
         "the key of a:" + std::string(98, 'k') + "..." + std::string(100, 'k') +
             " is longer than 32766 bytes"},
        {[](KV_UValDict &d, std::size_t beyond) {
             auto &inner = *new KV_UValDict(16384);
             (*d.GetValuePtr())["zero\0key\n"s] = &inner;
             fillLevel(inner, 65535 + beyond);
         },
         "zero\\000key\\012 has more than 65535 entries"},
        {[](KV_UValDict &d, std::size_t beyond) {
             d.DefineUVal("p", KV_UVAL_PTR, 1 << 19, nullptr);
             d.DefineUVal("q", KV_UVAL_PTR, (1 << 19) + static_cast<std::int32_t>(beyond), nullptr);
         },
         "q is beyond the 1048576 elements of pointers"},
    };
    const TempFolder folder;
    KV_FileSpec file = KV_FileSpecFromNative(folder.native("f").c_str());
    for (const auto &c : cases) {
        KV_UValDict fits(16384), beyond(16384), back(16384);
        c.fill(fits, 0);
        const std::string bytes = writtenBinary(fits);
        readBinary(back, bytes);
        EXPECT_TRUE(writtenBinary(back) == bytes) << c.failure;

        c.fill(beyond, 1);
        KV_SStream stream;
        KV_UValDict(16384).WriteBinFile(file);
        KV_BinPackUValDict packer;
        packer.Specify(&beyond);
        const std::string expected =
            "File exception: WriteError;   Detail: AppendBinToStream failed because " + c.failure;
        EXPECT_EQ(failure([&] { beyond.AppendBinToStream(&stream); }), expected);
        EXPECT_EQ(stream.Length(), 0U) << c.failure;
        EXPECT_EQ(failure([&] { beyond.WriteBinFile(file); }), expected);
        EXPECT_EQ(fileBytes(folder / "f"), golden("empty.bin")) << "the file is as it was";
        EXPECT_EQ(failure([&] { beyond.ByteSize(); }), expected);
        EXPECT_EQ(failure([&] { putInBlocks(packer, 512); }), "Binary Packing Error") << c.failure;
    }
}

// What is too large to be held until it is known to fit.
TEST(BinaryForm, LargeDictionariesAreWrittenWholeOrNotAtAll) {
    KV_UValDict dict(16384);
    dict.DefineUVal("a", KV_UVAL_CHAR, 5 << 20, nullptr)->SetLongValue(7, (5 << 20) - 1);
    KV_UVal *text = dict.DefineUVal("b", KV_UVAL_STRING, 0, nullptr);
    KV_BinPackUValDict packer;
    packer.Specify(&dict);
    EXPECT_TRUE(writtenBinary(dict).substr(24) == putInBlocks(packer, 1 << 20));
    text->SetStrValue(KV_String('k', 40000), 0);
    KV_SStream stream;
    EXPECT_NE(failure([&] { dict.AppendBinToStream(&stream); }).find("b has a text of more"),
              std::string::npos);
    EXPECT_EQ(stream.Length(), 0U);
}

// Keys with separators come into a dictionary through its map; in a file they are paths.
TEST(BinaryForm, SeparatorsInKeysAreLimited) {
    for (const std::size_t beyond : {0U, 1U}) {
        KV_UValDict dict(16384), back(16384);
        for (const std::size_t count :
             {std::size_t{30000}, std::size_t{30000}, 65536 + 3 * 2 - 60000 + beyond})
            (*dict.GetValuePtr())[std::to_string(dict.GetSize()) + std::string(count, ':')] = nullptr;
        KV_BinPackUValDict packer;
        packer.Specify(&dict);
        if (beyond == 0) {
            readBinary(back, writtenBinary(dict));
            EXPECT_EQ(back.GetSize(), 3);
            EXPECT_NO_THROW(putInBlocks(packer, 512));
        } else {
            KV_SStream stream;
            EXPECT_NE(failure([&] { dict.AppendBinToStream(&stream); }).find("has a separator too many"),
                      std::string::npos);
            EXPECT_EQ(stream.Length(), 0U);
            EXPECT_THROW(putInBlocks(packer, 512), KV_BinPackException);
        }
    }
}

TEST(BinaryForm, RefusesAForeignTypeBeforeTheFirstByte) {
    struct Foreign : KV_UVal {
        Foreign() : KV_UVal(static_cast<KV_UValType>(13), KV_UVAL_FAMILY_NUMBER) {}
        void PrintOn(std::ostream &) override {}
    };
    KV_UValDict dict(16384);
    fillLong(dict);
    dict.SetUVal("z", new Foreign);
    KV_SStream stream;
    EXPECT_THROW(dict.AppendBinToStream(&stream), KV_BinPackException);
    EXPECT_EQ(stream.Length(), 0U);
    KV_BinPackUValDict packer;
    packer.Specify(&dict);
    EXPECT_THROW(putInBlocks(packer, 512), KV_BinPackException);
}

TEST(BinaryForm, TellsWhenTheStreamFails) {
    KV_UValDict dict(16384);
    dict.DefineUVal("a", KV_UVAL_DOUBLE, 100, nullptr);
    const std::string wrote = "File exception: WriteError;   Detail: AppendBinToStream ";
    struct {
        std::uint64_t limit;
        std::string failure;
    } const cases[] = {
        {0, wrote + "could not write the complete buffer"},
        {854, wrote + "written buffer differs from given buffer"},
        {855, "none"},
    };
    for (const auto &c : cases) {
        PieceStream stream(c.limit);
        EXPECT_EQ(failure([&] { dict.AppendBinToStream(&stream); }), c.failure) << c.limit;
    }
    KV_FStream closed;
    for (KV_Stream *stream : {static_cast<KV_Stream *>(nullptr), static_cast<KV_Stream *>(&closed)}) {
        EXPECT_EQ(failure([&] { dict.AppendBinToStream(stream); }),
                  wrote + "failed because file is not open");
        EXPECT_EQ(failure([&] { dict.ReadBinFromStream(stream); }), kTruncated);
    }
}

TEST(BinaryForm, FilesOfEitherFormAreRead) {
    const TempFolder folder;
    KV_FileSpec file = KV_FileSpecFromNative(folder.native("f").c_str());
    const auto put = [&](const std::string &bytes) {
        std::ofstream(folder / "f", std::ios::binary) << bytes;
    };
    KV_UValDict dict(16384), back(16384);
    fillAllBinary(dict);
    dict.WriteBinFile(file);
    EXPECT_EQ(fileBytes(folder / "f"), golden("all_types.bin"));
    back.ReadFile(file);
    EXPECT_EQ(writtenBinary(back), golden("all_types.bin"));
    const std::string text = "    |- a => (Long)1\n", other = golden("long_42.bin");
    std::string version = other;
    version[21] = '1';
    struct {
        const char *name;
        std::string bytes, printed, failure;
    } const cases[] = {
        {"text", "<< /a 1 >>", text, "none"},
        {"text after white space", "\n\t<< /a 1 >>", text, "none"},
        {"text after a comment", "% x\n<< /a 1 >>", text, "none"},
        {"text that names the binary form", "%       UVALBINDUMP_2.0\n<< /a 1 >>", text, "none"},
        {"binary", other, "    |- a => (Long)42\n", "none"},
        {"nothing", "", "", kTruncated},
        {"binary cut off", other.substr(0, 50), "", kTruncated},
        {"another version", version, "",
         "File exception: InvalidFile;   Detail: ReadTextFile failed wrong type (not KV_UVAL_DICT)"},
        {"no form at all", "<< /a", "", "File exception: InvalidFile;   Detail: Error in object hierarchy"},
    };
    for (const auto &c : cases) {
        KV_UValDict read(16384);
        put(c.bytes);
        EXPECT_EQ(failure([&] { read.ReadFile(file); }), c.failure) << c.name;
        EXPECT_EQ(printed(read), c.printed) << c.name;
    }
    KV_FileSpec missing("no\\such\\file");
    EXPECT_EQ(failure([&] { dict.ReadFile(missing); }),
              "File exception: OpenRdError;   Detail: ReadBinFile could not open file for read");
    EXPECT_EQ(failure([&] { dict.WriteBinFile(missing); }),
              "File exception: OpenWrError;   Detail: WriteBinFile could not open file for write");
#if !defined(_WIN32)  // which has no device that is always full
    KV_FileSpec full("\\dev\\full");
    EXPECT_EQ(failure([&] { dict.WriteBinFile(full); }),
              "File exception: WriteError;   Detail: WriteBinFile could not write the complete file");
#endif
}

TEST(BinaryForm, PackersAreUsedAnew) {
    KV_UValDict dict(16384), back(16384);
    fillAllBinary(dict);
    const std::string body = golden("all_types.bin").substr(kHeader);
    KV_BinPackUValDict packer;
    EXPECT_EQ(putInBlocks(packer, 7), "") << "without a dictionary there is nothing to put";
    packer.Specify(&dict);
    unsigned char block[7], *cursor = block;
    EXPECT_EQ(packer.Put(&cursor, block + 7), 1);
    KV_BinPackUValDict copy(packer), assigned;
    assigned = packer;
    EXPECT_EQ(putInBlocks(packer, 512), body.substr(7));
    EXPECT_EQ(putInBlocks(packer, 512), "") << "all is put";
    EXPECT_EQ(putInBlocks(copy, 512), body) << "a copy begins anew";
    EXPECT_EQ(putInBlocks(assigned, 512), body);

    KV_BinPackUValDict reader;
    reader.Specify(&back);
    getInBlocks(reader, body.substr(0, 303), 303);
    EXPECT_EQ(back.GetSize(), 0) << "entries come all at once";
    EXPECT_THROW(getInBlocks(reader, "??", 2), KV_BinPackException);
    EXPECT_EQ(back.GetSize(), 0);
    reader.Specify(&back);
    EXPECT_EQ(getInBlocks(reader, body, 512), body.size());
    EXPECT_EQ(writtenBinary(back), golden("all_types.bin"));
}

}  // namespace
