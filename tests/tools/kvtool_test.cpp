// The commands of kvtool for value files and the cipher.
#include <kvbase/kvbase.h>

#include "run_tool.h"

namespace {

class KvTool : public ToolTest {
protected:
    void SetUp() override {
        ToolTest::SetUp();
        fs::copy_file(pathFromUtf8(KVBASE_SAMPLES) / "press.krg", file("press.krg"));
    }
};

TEST_F(KvTool, AnswersQueriesInAnyType) {
    const Row rows[] = {
        {"values get press.krg press:inks", 0, "5\n", ""},
        {"values get press.krg press:gamma", 0, "2.2\n", ""},
        {"values get press.krg press:gamma --as long", 0, "2\n", ""},
        {"values get press.krg press:gamma --as string", 0, "2.200000\n", ""},
        {"values get press.krg press:serial", 0, "4026531855\n", ""},
        {"values get press.krg press:serial --as long", 0, "-268435441\n", ""},
        {"values get press.krg press:shift --as uchar", 0, "255\n", ""},
        {"values get press.krg press:site", 0, "M\xC3\xBCnchen, Halle 2\n", ""},
        {"values get press.krg press:name", 0, "Bogenoffset (5 Farben)\n", ""},
        {"values get press.krg inks:solid:Cyan", 0, "55\n-37\n-50\n", ""},
        {"values get press.krg inks:names --index 4", 0, "Orange\n", ""},
        {"values get press.krg inks:names --index 5", 1, "",
         "press.krg: 'inks:names' has no element 5: they are counted from 0 to 4"},
        {"values get press.krg inks:names --as long", 1, "", "is a string and has no long"},
        {"values get press.krg press:paper", 1, "", "press.krg: has no entry 'press:paper'"},
        {"values get press.krg press:inks:deeper", 1, "", "has no entry 'press:inks:deeper'"},
        {"values get press.krg press:inks --as integer", 2, "", "is no type"},
        {"values get press.krg", 2, "", "PATH"},
        {"values show press.krg", 0, "    |    |- gamma => (Double)2.2", ""},
        {"values get press.krg press --as long", 1, "", "'press' is a dictionary and has no long"},
        {"values get press.krg press --index 3", 1, "", "'press' is a dictionary and has no element 3"},
        {"values check press.krg", 0,
         "press.krg: 47 entries in 3 levels\n  a rewrite drops 6 comments\n"
         "  its values are written and read back unchanged\n",
         ""},
        {"values show nowhere.krg", 1, "", "nowhere.krg: doesn't exist"},
        {"values show .", 1, "", ".: is a folder"},
        {"values", 2, "", "subcommand"},
        {"values frobnicate", 2, "", ""},
        {"--help", 0, "encipher", ""},
        {"values set --help", 0, "--force", ""},
    };
    expectOutcomes(rows);
}

TEST_F(KvTool, ChangesFilesAndRefusesWhatWouldBeLost) {
    write("small.krg", "<< /a 1 /b << /c (text) >> /p 0 satptr >>");
    write("other.krg", "<< /b << /d 2.5 >> /a (new) >>");
    write("twice.krg", "<< /a 1 /a 2 >>");
    write("colon.krg", "<< /a:b 1 >>");
    write("pointer.krg", "<< /a 12 satptr >>");
    write("p.krg", "<< /p 0 satptr >>");
    write("lossy.krg", "<< /a 1 /b\n3000000000 >>");
    const Row rows[] = {
        {"values set small.krg a 7", 0, "", ""},
        {"values get small.krg a", 0, "7\n", ""},
        {"values set small.krg a 70000 --type short", 1, "", "'70000' is out of the range of short"},
        {"values set small.krg a seven", 1, "", "small.krg: 'a': 'seven' is not a long"},
        {"values set small.krg b:n -- -2.5", 0, "", ""},
        {"values get small.krg b:n", 0, "-2.5\n", ""},
        {"values set small.krg list 1 2 3", 0, "", ""},
        {"values set small.krg words a [b,c] --type string", 0, "", ""},
        {"values get small.krg words", 0, "a\n[b,c]\n", ""},
        {"values set small.krg list 1 --frob", 2, "", "--frob"},
        {"values set small.krg list 1 -t 5", 2, "", "-t"},
        {"values set small.krg dashes 1 -2 -.5", 0, "", ""},
        {"values get small.krg dashes", 0, "1\n-2\n-0.5\n", ""},
        {"values set small.krg dashed x -- --y -- -z", 0, "", ""},
        {"values get small.krg dashed", 0, "x\n--y\n--\n-z\n", ""},
        {"values set small.krg list 9 --index 2", 0, "", ""},
        {"values set small.krg list 9 --index 3", 1, "", "counted from 0 to 2"},
        {"values get small.krg list", 0, "1\n2\n9\n", ""},
        {"values set small.krg b 1", 1, "", "is a dictionary"},
        {"values set small.krg a:deeper 1", 1, "", "leads through an entry that is no dictionary"},
        {"values set small.krg a 1.2345678 --type double", 1, "", "a: has more than the six decimals"},
        {"values get small.krg a", 0, "7\n", ""},
        {"values set small.krg a 1.2345678 --type double --force", 0, "", ""},
        {"values get small.krg a", 0, "1.234568\n", ""},
        {"values merge small.krg other.krg", 0, "", ""},
        {"values get small.krg b:d", 0, "2.5\n", ""},
        {"values get small.krg b:c", 0, "text\n", ""},
        {"values get small.krg a", 0, "new\n", ""},
        {"values remove small.krg b:d", 0, "", ""},
        {"values remove small.krg b:d", 1, "", "has no entry 'b:d'"},
        {"values copy small.krg b made.krg", 0, "", ""},
        {"values get made.krg b:n", 0, "-2.5\n", ""},
        {"values set made.krg wide 1.1e300 0.1 123456.789", 0, "", ""},
        {"values set made.krg narrow 1.1e30 0.1 123.456 --type float", 0, "", ""},
        {"values check made.krg", 0, "read back unchanged", ""},
        {"values set press.krg press:inks 6", 1, "", "6 comments"},
        {"values set press.krg press:inks 6 --output changed.krg", 0, "", ""},
        {"values get changed.krg press:inks", 0, "6\n", ""},
        {"values set twice.krg b 1", 1, "", "the key 'a' comes twice"},
        {"values set colon.krg c 1", 1, "", "the key 'a:b' holds the path separator"},
        {"values set pointer.krg c 1", 1, "", "a: pointers are not stored"},
        {"values check pointer.krg", 1, "a: pointers are not stored", "pointer.krg"},
        {"values set pointer.krg c 1 --force", 0, "", ""},
        {"values check pointer.krg", 0, "2 entries", ""},
        {"values set small.krg text [x,y]", 0, "", ""},
        {"values get small.krg text", 0, "[x,y]\n", ""},
        {"values set p.krg \"\\050\" 1 --force", 1, "", "p.krg: "},
        {"values set lossy.krg z 1", 1, "",
         "lossy.krg: holds what is not read as it is written:\n  line 2: "},
        {"values set lossy.krg z 1 -o new.krg", 1, "", "lossy.krg: holds what is not read"},
        {"values merge small.krg lossy.krg", 1, "", "lossy.krg: holds what is not read"},
        {"values copy lossy.krg a new.krg", 1, "", "lossy.krg: holds what is not read"},
        {"values show new.krg", 1, "", "new.krg: doesn't exist"},
        {"values copy lossy.krg b new.krg --force", 0, "", ""},
        {"values get new.krg b", 0, "2147483647\n", ""},
        {"values set small.krg \"\" 1", 1, "", "an empty path"},
        {"values set p.krg p 1", 1, "", "a ptr can't be set"},
        {"values set small.krg a 1 -o nowhere/x.krg", 1, "", "its folder doesn't exist"},
        {"values set small.krg", 2, "", "PATH"},
        {"values set small.krg a 1 --index 0 --type long", 2, "", "--index"},
    };
    expectOutcomes(rows);
    EXPECT_EQ(contents(file("press.krg")), contents(pathFromUtf8(KVBASE_SAMPLES) / "press.krg"));
    expectNoTemporaryFile();
}

TEST_F(KvTool, TakesEitherFormByItsContent) {
    const std::string goldens = KVBASE_TEST_DATA "/values/";
    for (const char *name : {"all_types.bin", "long_42.bin", "swapped.bin"})
        fs::copy_file(goldens + name, file(name));
    const std::string binary = contents(file("long_42.bin")), all = contents(file("all_types.bin"));
    write("behind.bin", binary + "more");
    write("cut.bin", binary.substr(0, 40));
    std::string twice = binary + binary.substr(27);
    twice[25] = 2;  // entries
    write("twice.bin", twice);
    std::string version = binary;
    version[20] = '3';
    write("version.bin", version);
    std::string damaged = binary;
    damaged[40] = 3;  // the tag of the dimension
    write("damaged.bin", damaged);
    write("head.bin", binary.substr(0, 12));
    write("named.krg", "%       UVALBINDUMP_2.0\n<< /a 1 >>");
    KV_UValDict wide(0);
    for (int i = 0; i < 65535; ++i)
        wide.SetUVal(("a:" + std::to_string(i)).c_str(), nullptr);
    (*wide.GetValuePtr())["a:x"] = nullptr;  // a level of 65536 when it is read
    KV_FileSpec wideFile("wide.bin");
    wide.WriteBinFile(wideFile);
    write("number.krg", "<< /a 42 >>");
    write("null.krg", "<< /p 1 satptr /deep << /text (x) >> >>");
    write("long.krg", "<< /deep << /text (" + std::string(40000, 'x') + ") >> >>");
    const Row rows[] = {
        {"values show long_42.bin", 0, "    |- a => (Long)42\n", ""},
        {"values get all_types.bin doubles --index 1", 0, "-0.25\n", ""},
        {"values get swapped.bin s", 0, "1\n2\n-2\n", ""},
        {"values check all_types.bin", 0, "written and read back unchanged", ""},
        {"values check swapped.bin", 0, "a rewrite drops another byte order", ""},
        {"values check behind.bin", 1, "4 bytes behind the values are not read", "are not all read"},
        {"values check twice.bin", 1, "a key that comes twice", "are not all read"},
        {"values convert swapped.bin same_order.bin --to binary", 0, "", ""},
        {"values convert behind.bin x.krg --to text", 1, "", "4 bytes behind the values are not read"},
        {"values convert twice.bin x.krg --to text", 1, "", "a key that comes twice"},
        {"values convert number.krg made.bin --to binary", 0, "", ""},
        {"values convert press.krg press.bin --to binary", 0, "", ""},
        {"values get press.bin press:gamma", 0, "2.2\n", ""},
        {"values convert press.bin press_again.krg --to text", 0, "", ""},
        {"values convert press_again.krg press_again.bin --to binary", 0, "", ""},
        {"values convert long_42.bin long_42.krg --to text", 0, "", ""},
        {"values set long_42.bin b 1.23456789", 0, "", ""},
        {"values get long_42.bin b", 0, "1.23456789\n", ""},
        {"values copy long_42.bin b copied.bin", 0, "", ""},
        {"values convert long_42.bin x.krg --to text", 1, "", "x.krg: is left as it was, for the text form"},
        {"values convert all_types.bin x.krg --to text", 1, "", "dict:none: has no value"},
        {"values convert all_types.bin x.krg --to text", 1, "", "shorts: has a number of items to print"},
        {"values convert null.krg x.bin --to binary", 1, "",
         "for the binary form can't hold:\n  p: pointers are not stored"},
        {"values convert null.krg x.bin --to binary --force", 0, "", ""},
        {"values convert long.krg y.bin --to binary", 1, "",
         "y.bin: File exception: WriteError;   Detail: AppendBinToStream failed because deep:text has a text "
         "of more"},
        {"values convert number.krg z.bin --to xml", 2, "", "--to"},
        {"values convert number.krg z.bin", 2, "", "--to"},
        {"values set swapped.bin z 1", 1, "",
         "swapped.bin: is left as it was, for it holds what would be lost"},
        {"values set behind.bin z 1", 1, "", "4 bytes behind the values"},
        {"values set behind.bin z 1 -o x.krg", 1, "", "4 bytes behind the values"},
        {"values set behind.bin z 1 --force", 0, "", ""},
        {"values show cut.bin", 1, "", "cut.bin: File exception: ReadError"},
        {"values show version.bin", 1, "",
         "version.bin: File exception: InvalidFile;   Detail: ReadBinFromStream failed"},
        {"values show damaged.bin", 1, "",
         "damaged.bin: File exception: InvalidFile;   Detail: Caught exception KV_BinPackException"},
        {"values show head.bin", 1, "", "head.bin: File exception: ReadError"},
        {"values get named.krg a", 0, "1\n", ""},
        {"values get wide.bin a:x --as long", 1, "", "has no entry 'a:x'"},
        {"values check wide.bin", 1, "has the path separator", "a has more than 65535 entries"},
    };
    expectOutcomes(rows);
    EXPECT_EQ(contents(file("made.bin")), binary);
    EXPECT_EQ(contents(file("long_42.krg")), "<<\n/a 42\n>>\n");
    EXPECT_EQ(contents(file("press_again.bin")), contents(file("press.bin")));
    EXPECT_EQ(contents(file("copied.bin")).substr(0, 24), binary.substr(0, 24))
        << "a new file takes the form";
    EXPECT_EQ(contents(file("all_types.bin")), all);
    EXPECT_FALSE(fs::exists(file("y.bin")) || fs::exists(file("x.krg")));
}

TEST_F(KvTool, TellsWhatIsNotReadAsItIsWritten) {
    const struct {
        const char *text;
        const char *line;
    } rows[] = {
        {"/v [ 1 2 ] satstring", "1 is read as ()"},
        {"/v [ 300 ] satuchar", "300 is read as 44"},
        {"/v [ 1 2.5 ]", "2.5 is read as 2"},
        {"/v [ (x) ] satlong", "(x) is read as 0"},
        {"/v [ 1 /x ]", "/x is read as 0"},
        {"/v [ 1 satshort ]", "satshort stands within an array, where it has no effect"},
        {"/v [ [ 1 ] 2 ] satlong", "an array that holds more than numbers and texts"},
        {"/v [ 1 << ]", "an array that holds more than numbers and texts"},
        {"/v 70000 satshort", "70000 is read as 4464"},
        {"/v 4026531855 satulong", "4026531855 is read as 2147483647"},
        {"/v 2.5 satlong", "2.5 is read as 2"},
        {"/v 16777217 satfloat", "16777217 is read as 16777216"},
        {"/v 9007199254740993.0", "9007199254740993.0 is read as 9007199254740992"},
        {"/v 1e400", "1e400 is read as 1.7976931348623157e+308"},
        {"/v 12abc", "12abc is read as 12"},
        {"/v 1-2", "1-2 is read as 1"},
        {"/v (x) satptr", "(x) is read as 0x00000000"},
        {"/v 5 satstring", "5 is read as ()"},
        {"/v (Gr\\374n) satutfstring", "(Gr\\374n) is read as (Gr#n)"},
        {"satlong /v 1", "satlong has no value before it, and no effect"},
        {"/v 1 satshort satlong", "satlong has no value before it, and no effect"},
        {"/v b\\051 5", "an escape that ends a word and is read as a bracket"},
        {"/v 1 (v) 2", "the key 'v' comes twice, and the later one counts"},
        {"/v << / 1 >>", "the key '' is empty, and its entry is not kept"},
        {"(v\\000w) 1", "the key 'v\\000w' ends at its zero byte"},
        {"[ (v) (w) ] 1", "an array in the place of a key"},
    };
    for (const auto &row : rows) {
        write("v.krg", std::string("<< ") + row.text + " >>");
        const Outcome outcome = run("values check v.krg");
        EXPECT_EQ(outcome.exitCode, 1) << row.text;
        EXPECT_NE(outcome.out.find(std::string("\n  line 1: ") + row.line + "\n"), std::string::npos)
            << row.text << '\n'
            << outcome.out;
    }
    write(
        "v.krg",
        "<< /a 0.1 /b 1e+5 /c -0.50 satfloat /d 1.45 satfloat /e .5 /f 3. /g (12) satlong /h -5 satulong /i "
        "3000000000.0 satulong /j [ 1 2 ] satdouble (k) word /l [ (M\\303\\274) ] satutfstring /m -0 >>");
    expectOutcome({"values check v.krg", 0,
                   "v.krg: 13 entries in 1 levels\n  its values are written and read back unchanged\n", ""},
                  run("values check v.krg"));
}

TEST_F(KvTool, DoesNotLetAFileSteerTheTerminal) {
    // An escape sequence; a control character in UTF-8 and one of its bytes alone; characters of 4 and 2
    // bytes.
    write("steer.krg", "<< (\x1B[2J) 1 (\x1B[2J) (\xC2\x9B\x9B\xF0\x9F\x98\x80\xC3\xBC) >>");
    const Row rows[] = {
        {"values show steer.krg", 0, "    |- \\033[2J => (String)\\302\\233\\233\xF0\x9F\x98\x80\xC3\xBC\n",
         ""},
        {"values check steer.krg", 1, "the key '\\033[2J' comes twice", "steer.krg: "},
        {"values set steer.krg a 1", 1, "", "the key '\\033[2J' comes twice"},
    };
    expectOutcomes(rows);
}

TEST_F(KvTool, NamesTheFileAndTheLineOfBadInput) {
    std::string opening;
    std::string closing;
    for (int i = 0; i < 100000; ++i) {
        opening += "<< /k ";
        closing += " >>";
    }
    write("empty.krg", "");
    write("comment.krg", "% nothing");
    write("odd.krg", "<<\n/a 1\n/b\n>>\n");
    write("unclosed.krg", "<< /a (text");
    write("number.krg", "42");
    write("deep.krg", opening + "1" + closing);
    const Row rows[] = {
        {"values show empty.krg", 1, "", "empty.krg: is empty"},
        {"values show comment.krg", 1, "",
         "comment.krg: at its end: File exception: InvalidFile;   Detail: Error in object hierarchy"},
        {"values show odd.krg", 1, "", "odd.krg: line 4: "},
        {"values check unclosed.krg", 1, "", "unclosed.krg: "},
        {"values show number.krg", 1, "", "number.krg: holds a single long, not a dictionary"},
        {"values show deep.krg", 1, "", "deeper than the 256 levels"},
        {"values check deep.krg", 1, "100000 levels", "deeper than the 256 levels"},
        {"values set deep.krg a 1 --force", 1, "", "writes no more than 256 levels"},
    };
    expectOutcomes(rows);
}

#if !defined(_WIN32)
// The limit on the size of files stands for a disk that is full: writing fails in the middle.
TEST_F(KvTool, KeepsTheOldFileWhenTheDiskIsFull) {
    std::string text = "<<\n";
    for (int i = 0; i < 5000; ++i)
        text += "/key" + std::to_string(i) + " " + std::to_string(i) + "\n";
    text += ">>\n";
    write("large.krg", text);
    const Outcome outcome = run("values set large.krg key1 2", "trap '' XFSZ && ulimit -f 8");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find("large.krg: can't be written"), std::string::npos) << outcome.err;
    EXPECT_EQ(contents(file("large.krg")), text);
    expectNoTemporaryFile();
}

TEST_F(KvTool, WritesThroughALinkAndKeepsThePermissions) {
    write("real.krg", "<< /a 1 >>");
    fs::permissions(file("real.krg"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.krg", file("link.krg"));
    EXPECT_EQ(run("values set link.krg a 2").exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(file("link.krg")));
    EXPECT_NE(contents(file("real.krg")).find("/a 2"), std::string::npos);
    EXPECT_EQ(fs::status(file("real.krg")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

// The temporary file of such a target would stand in the folder "we", or under a third name.
TEST_F(KvTool, RefusesPathsThatTheLibraryWouldChange) {
    write("small.krg", "<< /a 1 >>");
    write("we\\ird.krg", "<< /a 1 >>");
    fs::create_directory(file("we"));
    fs::create_directory(file("x\\y"));
    fs::create_symlink("we\\ird.krg", file("link.krg"));
    const Row rows[] = {
        {"values show 'we\\ird.krg'", 1, "", "we\\ird.krg: can't be reached"},
        {"values set link.krg a 2", 1, "", "we\\ird.krg: can't be reached"},
        {"values set small.krg a 2 -o \xFF.krg", 1, "", "\\377.krg: can't be reached"},
        {"values set small.krg a 2 -o /dev/null", 1, "", "no regular file"},
    };
    expectOutcomes(rows);
    expectNoTemporaryFile();
    EXPECT_EQ(contents(file("we\\ird.krg")), "<< /a 1 >>");
    EXPECT_EQ(run("values set ../small.krg a 2 -o new.krg", "cd 'x\\y'").exitCode, 0);
    EXPECT_NE(contents(file("x\\y/new.krg")).find("/a 2"), std::string::npos);
}

TEST_F(KvTool, RefusesWordsThatAreNoUtf8) {
    write("u.krg", "<< /u () satutfstring >>");
    const Row rows[] = {
        {"values set u.krg u \x9F", 1, "", "'\\237' is not valid UTF-8"},
        {"values set u.krg u \xED\xA0\x80", 1, "", "is not valid UTF-8"},
    };
    expectOutcomes(rows);
}
#endif

TEST_F(KvTool, TakesUtf8FromTheCommandLine) {
    write("u.krg", "<< /u () satutfstring >>");
    const Row rows[] = {
        {"values set u.krg u M\xC3\xBCnchen", 0, "", ""},
        {"values get u.krg u", 0, "M\xC3\xBCnchen\n", ""},
        {"values set u.krg u \xF0\x9F\x98\x80", 1, "", "has a character that a utfstring can't hold"},
        {"values copy u.krg u \xE6\x97\xA5\xC3\xBC.krg", 0, "", ""},
        {"values set \xE6\x97\xA5\xC3\xBC.krg v 1", 0, "", ""},
        {"values get \xE6\x97\xA5\xC3\xBC.krg v", 0, "1\n", ""},
    };
    expectOutcomes(rows);
    EXPECT_TRUE(fs::exists(file("\xE6\x97\xA5\xC3\xBC.krg")));
}

TEST_F(KvTool, EnciphersAndDeciphers) {
    using namespace std::string_literals;
    const std::string plain = "Offset, 60 lines/cm: embedded zero \0 and bytes \xFF above 127."s;
    write("plain.txt", plain);
    write("blanks.txt", "ends in a blank ");
    write("odd.enc", "123456789");
    write("empty.txt", "");
    write("zero.txt", "7 bytes"s + '\0');
    const Row rows[] = {
        {"encipher plain.txt plain.enc", 0, "", ""},
        {"decipher plain.enc back.txt", 0, "", ""},
        {"encipher empty.txt empty.enc", 0, "", ""},
        {"decipher empty.enc empty.out", 0, "", ""},
        {"encipher blanks.txt blanks.enc", 1, "", "blanks.txt: ends in blanks"},
        {"encipher blanks.txt blanks.enc --force", 0, "", ""},
        {"encipher zero.txt zero.enc", 0, "", ""},
        {"decipher zero.enc zero.out", 0, "", ""},
        {"decipher odd.enc odd.txt", 1, "", "odd.enc: is not enciphered"},
        {"decipher nowhere.enc x.txt", 1, "", "nowhere.enc: doesn't exist"},
        {"decipher plain.enc", 2, "", "TO"},
        {"encipher plain.txt nowhere/plain.enc", 1, "", "nowhere/plain.enc: can't be written"},
    };
    expectOutcomes(rows);
    EXPECT_EQ(contents(file("back.txt")), plain);
    EXPECT_EQ(contents(file("zero.out")), "7 bytes"s + '\0');
    EXPECT_EQ(fs::file_size(file("plain.enc")) % 8, 0U);
    EXPECT_EQ(contents(file("empty.out")), "");
}

}  // namespace
