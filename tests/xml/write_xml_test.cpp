#include <gtest/gtest.h>
#include <kvbase/xml/write_xml.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "events.h"
#include "temp_folder.h"

namespace {

std::string document() {
    std::ostringstream out;
    {
        WriteXML::Element root(out, "root", "v", "1");
        WriteXML::Element(out, "empty", false, root);
        {
            WriteXML::Element child(out, "child", true, root);
            child.Attribute("s", "&<>'\"\xC3\xA9");
            child.Attribute("i", -5);
            child.Attribute("b", true);
            child.Attribute("d", 1.0);
            child.Attribute("u", 0.25, "mm");
            const std::uint16_t words[] = {1, 65535};
            child.Attribute("w", 2, words);
            child.Attribute("next", "line");
            const float values[] = {1.5F, -2, 100000.25F, 1234567, 0, 0, 0, 0};
            child.Attribute("f", 8, values);
            child.Attribute("none", 0, values);
        }
        WriteXML::Element(out, root).Comment("note");
        WriteXML::Element text(out, "text", false, root);
        text.Text("a &amp; b");
    }
    return out.str();
}

const std::string kBytes =
    "<?xml version = \"1.0\" encoding = \"UTF-8\"?>\r\n"
    "<root v = \"1\">\r\n"
    "\t<empty>\r\n"
    "\t</empty>\r\n"
    "\t<child s = \"&amp;&lt;&gt;&apos;&quot;\xC3\xA9\" i = \"-5\" b = \"true\" d = \"1.0000\" u = \"0.2500 "
    "mm\"\r\n"
    "\t\t w = \"1 65535 \" next = \"line\" f = \"\r\n"
    "\t\t    1.5000   -2.0000100000.25001234567.0000\r\n"
    "\t\t    0.0000    0.0000    0.0000    0.0000\" none = \"\"/>\r\n"
    "\t<!-- note -->\r\n"
    "\t<text>a &amp; b</text>\r\n"
    "</root>\r\n";

TEST(WriteXml, WritesTheseBytes) { EXPECT_EQ(document(), kBytes); }

// A line is broken before the attribute that would begin more than 80 bytes behind its start.
TEST(WriteXml, BreaksLinesBehindEightyBytes) {
    for (std::size_t length = 70; length <= 82; ++length) {
        std::ostringstream out;
        {
            WriteXML::Element root(out, std::string(length - 1, 'n').c_str());
            root.Attribute("a", "1");
        }
        EXPECT_EQ(out.str().find("n\r\n\t a") != std::string::npos, length > 80) << length;
    }
    std::ostringstream out;
    {
        WriteXML::Element root(out, "root");
        WriteXML::Element comment(out, root);
        comment.Comment(std::string(80, 'c'));
        comment.Comment("d");
    }
    EXPECT_NE(out.str().find("c\r\n\t\td -->\r\n</root>"), std::string::npos) << out.str();
}

#ifndef _WIN32
TEST(WriteXml, IsReadByAnother) {
    const TempFolder folder;
    std::ofstream(folder / "in.xml", std::ios::binary) << document();
    const std::string command =
        "xmllint --c14n '" + folder.native("in.xml") + "' >'" + folder.native("out.xml") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);  // NOLINT(cert-env33-c, concurrency-mt-unsafe)
    std::stringstream canonical;
    canonical << std::ifstream(folder / "out.xml", std::ios::binary).rdbuf();
    Events ours;
    EXPECT_NE(canonical.str().find(" s=\"&amp;&lt;>'&quot;\xC3\xA9\""), std::string::npos) << canonical.str();
    EXPECT_NE(canonical.str().find(" u=\"0.2500 mm\" w=\"1 65535 \""), std::string::npos);
    EXPECT_NE(canonical.str().find("<text>a &amp; b</text>"), std::string::npos);
    EXPECT_TRUE(parseText(ours, ours, document()));
    EXPECT_NE(ours.text.find("<child &<>'\"\xC3\xA9 -5 true 1.0000 0.2500 mm 1 65535  line"),
              std::string::npos);
}
#endif

}  // namespace
