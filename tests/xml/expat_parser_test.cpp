#include <gtest/gtest.h>
#include <kvbase/runtime/kv_file_spec.h>
#include <kvbase/stream/kv_fstream.h>

#include <fstream>
#include <string>

#include "events.h"
#include "temp_folder.h"

namespace {

using namespace std::string_literals;

std::string repeated(int count, const std::string &text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

bool parseFile(Events &events, const KV_FileSpec &file, bool encrypted) {
    ExpatXMLParser parser;
    parser.SetDocumentHandler(events);
    parser.SetErrorHandler(events);
    return parser.Parse(file, encrypted);
}

class Files : public testing::Test {
protected:
    KV_FileSpec stored(const std::string &document, bool encrypted) {
        KV_FileSpec file = KV_FileSpecFromNative(m_folder.native("document.xml").c_str());
        KV_FStream stream(file);
        EXPECT_TRUE(stream.Open("wb", false));
        const auto size = static_cast<std::uint32_t>(document.size());
        if (encrypted)
            stream.WriteEncrypted(document.data(), size);
        else
            stream.Write(document.data(), 1, size);
        EXPECT_TRUE(stream.Close());
        return file;
    }
    TempFolder m_folder;
};

struct DocumentCase {
    const char *name;
    std::string document, events, message;
};
const DocumentCase kDocuments[] = {
    {"attributes and text", "<a x='1' y=''>t&amp;<b/></a>", "<a 1 t&<b>>", ""},
    {"no events", "<!-- c --><?p i?><a xmlns:q='u'><!-- d --></a>", "<a u>", ""},
    {"Latin 1", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>", "<a\xC3\xA9>", ""},
    {"UTF-16", "\xFE\xFF\0<\0a\0/\0>"s, "<a>", ""},
    {"unknown encoding", "<?xml version='1.0' encoding='X-none'?><a/>", "", "unknown encoding at line 1"},
    {"encoding that the bytes are not", "<?xml version='1.0' encoding='UTF-16'?><a/>", "",
     "encoding specified in XML declaration is incorrect at line 1"},
    {"not UTF-8", "<a>\xE9</a>", "<a", "not well-formed (invalid token) at line 1"},
    {"bad end on line 12", "<a>" + repeated(11, "\n") + "</b>", "<a" + repeated(11, "\n"),
     "mismatched tag at line 12"},
    {"attribute twice", "<a x='1' x='2'/>", "", "duplicate attribute at line 1"},
    {"zero byte", "<a>\0</a>"s, "<a", "not well-formed (invalid token) at line 1"},
    {"empty", "", "", "no element found at line 1"},
};

TEST_F(Files, TextAndFileGiveTheSameEventsAndMessages) {
    for (const DocumentCase &row : kDocuments) {
        Events text, plain, enciphered;
        EXPECT_EQ(parseText(text, text, row.document), row.message.empty()) << row.name;
        EXPECT_EQ(text.text, row.events) << row.name;
        EXPECT_EQ(text.message, row.message) << row.name;
        parseFile(plain, stored(row.document, false), false);
        EXPECT_EQ(plain.text + plain.message, row.events + row.message) << row.name;
        if (row.document[0] == '\xFE') continue;  // the blanks that pad are no characters there
        parseFile(enciphered, stored(row.document, true), true);
        EXPECT_EQ(enciphered.text + enciphered.message, row.events + row.message) << row.name;
    }
}

// Blanks in front of every border of a block are part of the text, however they lie.
TEST_F(Files, BlocksEndAnywhere) {
    for (int size = 500; size <= 530; ++size)
        for (const int blanks : {0, 1, 8, 600}) {
            const std::string middle = std::string(static_cast<std::size_t>(size), 'x') +
                                       std::string(static_cast<std::size_t>(blanks), ' ') + "y";
            const std::string document = "<a>" + middle + "</a>";
            for (const bool encrypted : {false, true}) {
                Events events;
                EXPECT_TRUE(parseFile(events, stored(document, encrypted), encrypted))
                    << size << events.message;
                EXPECT_EQ(events.text, "<a" + middle + ">") << size << ' ' << blanks << ' ' << encrypted;
            }
        }
}

TEST_F(Files, ZeroByteAtTheEndOfABlockIsRefused) {
    const std::string document = "<a>" + std::string(508, 'x') + '\0' + "    </a>";
    Events events;
    EXPECT_FALSE(parseFile(events, stored(document, true), true));
    EXPECT_EQ(events.message, "not well-formed (invalid token) at line 1");
}

TEST_F(Files, ThatAreNotThereAreSilent) {
    Events events;
    EXPECT_FALSE(parseFile(events, KV_FileSpecFromNative(m_folder.native("none").c_str()), false));
    EXPECT_EQ(events.message, "");
}

TEST(ExpatParser, TakesHostileDocuments) {
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 '0123456789'>";
    for (int i = 1; i < 12; ++i)
        bomb +=
            "<!ENTITY e" + std::to_string(i) + " '" + repeated(10, "&e" + std::to_string(i - 1) + ";") + "'>";
    Events expanded;
    EXPECT_FALSE(parseText(expanded, expanded, bomb + "]><a>&e11;</a>"));
    EXPECT_NE(expanded.message.find("amplification"), std::string::npos) << expanded.message;
    EXPECT_LT(expanded.text.size(), 200'000'000U);

    Events nested, wide;
    EXPECT_TRUE(parseText(nested, nested, repeated(100'000, "<a>") + repeated(100'000, "</a>")));
    EXPECT_EQ(nested.text, repeated(100'000, "<a") + std::string(100'000, '>'));
    const std::string value = repeated(10'000'000, "v");
    EXPECT_TRUE(parseText(wide, wide, "<a x='" + value + "'/>"));
    EXPECT_EQ(wide.text, "<a " + value + ">");
}

TEST(ExpatParser, RefusesEveryTruncation) {
    const std::string document = "<?xml version='1.0'?><a x='&lt;'>text<b/><![CDATA[<]]></a>";
    for (std::size_t size = 0; size < document.size(); ++size) {
        Events events;
        EXPECT_FALSE(parseText(events, events, document.substr(0, size))) << size;
        EXPECT_NE(events.message, "") << size;
    }
}

TEST(ExpatParser, CutsLongTextBetweenCharacters) {
    const std::string text = "x" + repeated(30'000, "\xE2\x82\xAC");
    Events events;
    EXPECT_TRUE(parseText(events, events, "<a>" + text + "</a>"));
    EXPECT_EQ(events.text, "<a" + text + ">");
    ExpatXMLParser parser;
    Events whole;
    parser.SetDocumentHandler(whole);
    parser.CDataHandler(text.data(), static_cast<int>(text.size()));
    EXPECT_EQ(whole.text, text);
    EXPECT_EQ(whole.longest, 65'533U);  // one "x" and 21,844 characters of three bytes
}

// Reads a document within its document, by the same parser.
class Nested : public Events {
public:
    explicit Nested(ExpatXMLParser &parser) : m_parser(parser) {}
    void StartElement(const KV_String &name, const KalSAX::AttributeList &attributes) override {
        Events::StartElement(name, attributes);
        char inner[] = "<inner/>";
        EXPECT_FALSE(m_parser.Parse(inner, 8) || m_parser.Parse(KV_FileSpec(), false));
    }

private:
    ExpatXMLParser &m_parser;
};

TEST(ExpatParser, ReadsOneDocumentAtATime) {
    ExpatXMLParser parser;
    Nested events(parser);
    parser.SetDocumentHandler(events);
    parser.SetErrorHandler(events);
    std::string document = "<a>t</a>";
    for (int round = 0; round < 2; ++round)
        EXPECT_TRUE(parser.Parse(document.data(), static_cast<std::uint32_t>(document.size())));
    EXPECT_EQ(events.text, "<at><at>");
    EXPECT_EQ(events.message, repeated(4, "the parser is reading another document"));
}

TEST(ParserInstances, OwnTheirParser) {
    struct Counted : ExpatXMLParser {
        explicit Counted(int &count) : m_count(++count) {}
        ~Counted() override { --m_count; }
        int &m_count;
    };
    struct Factory : KalSAX::ParserInstances {
        explicit Factory(KalSAX::Parser *parser) : ParserInstances(parser) {}
    };
    int count = 0;
    {
        auto *const parser = new Counted(count);
        Factory factory(parser);
        EXPECT_EQ(factory.GetParser(), parser);
        EXPECT_EQ(count, 1);
    }
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Factory(nullptr).GetParser(), nullptr);
}

TEST(ExpatParser, PassesOnWhatAHandlerRaisesAndGoesOn) {
    ExpatXMLParser parser;
    Events events;
    parser.SetDocumentHandler(events);
    parser.SetErrorHandler(events);
    std::string raising = "<a><raise/><b/></a", good = "<c/>";
    for (int round = 0; round < 2; ++round) {
        EXPECT_THROW(parser.Parse(raising.data(), static_cast<std::uint32_t>(raising.size())),
                     std::runtime_error);
        EXPECT_TRUE(parser.Parse(good.data(), static_cast<std::uint32_t>(good.size())));
    }
    EXPECT_EQ(events.text, "<a<c><a<c>");
    EXPECT_EQ(events.message, "");
}

}  // namespace
