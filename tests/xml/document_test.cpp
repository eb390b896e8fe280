#include "xml/document.h"

#include <gtest/gtest.h>

#include "common/windows1251.h"
#include "support/support.h"
#include "xml/schema.h"

namespace tav {
namespace {

using test::Bytes;

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"windows-1251\" ?>";

std::string Sample() {
    return kDeclaration +
           Bytes(
               u"<all>\r\n<file>\r\n\t<name>выписка.rtf</name>\r\n"
               u"\t<part type=\"акт\" n='2 &amp; 3'><h01>7 &amp; 8</h01><h02/></part>\r\n</file>\r\n"
               u"<file><name>b</name></file>\r\n</all>\r\n");
}

TEST(Document, FindsTheFirstAttributeAtTheEndOfAPath) {
    const Document document = Document::Parse(Sample());
    EXPECT_EQ(document.Attribute(u"//all/file/part/@type"), u"акт");
    EXPECT_EQ(document.Attribute(u"//part/@n"), u"2 & 3");
    for (const TextView path : {u"//all/part/@n", u"//file/@n", u"//file/part/@N", u"//x/all/file/part/@n"})
        EXPECT_FALSE(document.Attribute(path)) << ToUtf8(path);
    const Document nested = Document::Parse(
        "<a xmlns:s='s'><b><a><s:b n='0'/><b s:n='1'/><b n='2'/></a></b><b n='3'/><b n='4'/></a>");
    EXPECT_EQ(nested.Attribute(u"//a/b/@n"), u"2");
    EXPECT_FALSE(nested.Attribute(u"//a/b/b/@n"));
}

TEST(Document, ReadsEveryEncodingItIsGiven) {
    const Text text = u"<а б=\"№ — в\"/>";
    Text utf16 = u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + text;
    const std::string utf8 = ToUtf8(text);
    const std::string declared = kDeclaration + utf8;
    for (const std::string& bytes :
         {utf8, "\xEF\xBB\xBF" + utf8, "\xEF\xBB\xBF" + declared, kDeclaration + Bytes(text),
          "<?xml version='1.0' encoding = 'CP1251'?>" + Bytes(text),
          std::string(reinterpret_cast<const char*>(utf16.data()), utf16.size() * 2)}) {
        EXPECT_EQ(Document::Parse(bytes).Attribute(u"//а/@б"), u"№ — в");
    }
}

TEST(Document, SaveKeepsWhatStood) {
    EXPECT_EQ(
        Document::Parse(Sample()).Save(),
        kDeclaration +
            Bytes(u"<all>\r\n<file>\r\n\t<name>выписка.rtf</name>\r\n"
                  u"\t<part type=\"акт\" n=\"2 &amp; 3\"><h01>7 &amp; 8</h01><h02/></part>\r\n</file>\r\n"
                  u"<file><name>b</name></file>\r\n</all>\r\n"));
    std::string every_byte;
    for (int byte = 0x20; byte < 0x100; ++byte) {
        if (byte != '<' && byte != '&' && byte != '>') every_byte.push_back(static_cast<char>(byte));
    }
    const std::string bytes = kDeclaration + "<a>\r\n\t \r\n<![CDATA[<x>]]>" + every_byte + "</a>\r\n";
    EXPECT_EQ(Document::Parse(bytes).Save(), bytes);
    EXPECT_EQ(Document::Parse(ToUtf8(u"<a>\u4E2D\U0001F600</a>")).Save(),
              kDeclaration + "<a>&#20013;&#128512;</a>\r\n");
}

struct Broken {
    std::string bytes;
    int line;
};

TEST(Document, RefusesWithLineAndReason) {
    const std::string bomb = "<!DOCTYPE a [<!ENTITY x \"yyyy\"><!ENTITY y \"&x;&x;\">]><a>&y;</a>";
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "<a>";
    // Half a character, before the root and in it, later than what is read at first.
    std::string utf16("\xFF\xFE<\0a\0>\0", 8);
    for (int i = 0; i < 40000; ++i) utf16 += std::string("b\0", 2);
    const std::string half = "\xD8\xD8\xD8\xD8";
    const std::string end("<\0/\0a\0>\0", 8);
    const Broken cases[] = {
        {"", 1},
        {"<a>\n<b>\n</a>", 3},
        {"<a>\r\n\r\nA & B</a>", 3},
        {"<a>&nbsp;</a>", 1},
        {"<a>\xC0\xC1</a>", 1},
        {"<?xml version=\"1.0\" encoding=\"no-such\"?><a/>", 1},
        {"<a>" + std::string(1, '\0') + "</a>", 1},
        {"<a/><b/>", 1},
        {"<a><![CDATA[x</a>", 1},
        {bomb, 1},
        {"<?xml version=\"1.0\"?>\n<!DOCTYPE a SYSTEM \"http://localhost/a.dtd\"><a/>", 2},
        {deep, 1},
        {std::string("<\0?\0", 4) + half + half + utf16.substr(2), 0},
        {utf16 + half + end, 0},
        {utf16 + end + half, 0},
        {"{\\rtf1 no xml at all}", 1},
    };
    for (const Broken& broken : cases) {
        SCOPED_TRACE(broken.bytes.substr(0, 60));
        testing::internal::CaptureStderr();
        try {
            Document::Parse(broken.bytes);
            ADD_FAILURE() << "accepted";
        } catch (const XmlFailure& failure) {
            EXPECT_EQ(failure.error().line, broken.line);
            EXPECT_FALSE(failure.error().reason.empty());
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
}

TEST(Document, AnyCutAndAnyFlippedByteIsAnAnswer) {
    const std::string whole = Sample();
    int refused = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string flipped = whole;
        flipped[i] = static_cast<char>(flipped[i] ^ (1 << (i % 8)));
        for (const std::string& bytes : {whole.substr(0, i), flipped}) {
            try {
                Document::Parse(bytes);
            } catch (const XmlFailure&) {
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, static_cast<int>(whole.size()));
}

TEST(Document, ALongDocumentOfManyTextsPasses) {
    std::string bytes = kDeclaration + "<all>\r\n";
    const std::string row = Bytes(u"<row>" + Text(1000, u'я') + u"</row>\r\n");
    for (int i = 0; i < 11000; ++i) bytes += row;
    bytes += "</all>\r\n";
    ASSERT_GT(bytes.size(), 10u * 1000 * 1000);
    EXPECT_EQ(Document::Parse(bytes).Save(), bytes);
}

constexpr std::string_view kSchema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a'><xs:complexType>"
    "<xs:attribute name='n' type='xs:integer' use='required'/></xs:complexType></xs:element></xs:schema>";

TEST(Schema, TellsWhatADocumentBreaksFirst) {
    const Schema schema(u"/x/s.xsd", kSchema);
    EXPECT_FALSE(schema.Validate(Document::Parse("<a n='5'/>")));
    const auto error = schema.Validate(Document::Parse("\n<a n='five' m='1'/>"));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->line, 2);
    EXPECT_NE(error->reason.find(u"'n'"), Text::npos);
    EXPECT_FALSE(schema.Validate(Document::Parse("<a n='6'/>")));
}

TEST(Schema, AFileThatIsNoneIsNamed) {
    for (const std::string_view bytes : {"<not-a-schema/>", "", "<xs:schema"}) {
        try {
            const Schema schema(u"/x/s.xsd", bytes);
            ADD_FAILURE() << bytes;
        } catch (const XmlFailure& failure) {
            EXPECT_TRUE(failure.description().starts_with(u"/x/s.xsd: "));
        }
    }
}

}  // namespace
}  // namespace tav
