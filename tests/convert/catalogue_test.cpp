#include "convert/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/support.h"

namespace tav {
namespace {

using test::Bytes;
using testing::ElementsAre;

TEST(CatalogueMarkup, IsItsOwnTagsAndEntities) {
    const std::pair<std::string, std::string> cases[] = {
        {"<h03>A & B</h03>", "<h03>A &amp; B</h03>"},
        {"<h03>&amp;&#1040;&#x410;&lt;</h03>", "<h03>&amp;&#1040;&#x410;&lt;</h03>"},
        {"&nbsp;&#;&#0;&#xFFFF;&#-1;&amp", "&amp;nbsp;&amp;#;&amp;#0;&amp;#xFFFF;&amp;#-1;&amp;amp"},
        {"a<5 <b> <h1> <h03 x> </ h03> <parts> <part type=акт>",
         "a&lt;5 &lt;b&gt; &lt;h1&gt; &lt;h03 x&gt; "
         "&lt;/ h03&gt; &lt;parts&gt; &lt;part type=акт&gt;"},
        {"<part type = 'акт' ><body /><p0001></p0001 ></part>",
         "<part type = 'акт' ><body /><p0001></p0001 ></part>"},
        {"]]> <!-- <![CDATA[ <?xml", "]]&gt; &lt;!-- &lt;![CDATA[ &lt;?xml"},
        {"<row\x01<", "&lt;row?&lt;"},
        {"", ""},
    };
    for (const auto& [markup, xml] : cases) EXPECT_EQ(AsXml(markup), xml);
    EXPECT_EQ(WithoutEntities("&amp;amp; &x; &#1040;&"), "&amp; &x; \xC0&");
}

// Every entry that is found readable is XML once its text is written so, whatever happens to its bytes.
TEST(CatalogueEntries, AreReadableExactlyWhenTheirTreeIs) {
    const std::string whole = Bytes(
        u"<file>\r\n\t<name>a & b.rtf</name>\r\n\t<part type=\"выписка\">\r\n\t<head>\r\n\t\t<h01>7</h01>\r\n\t</head>\r\n"
        u"\t<body>\r\n\t\t<row>\r\n\t\t\t<p01>A < B</p01>\r\n\t\t</row>\r\n\t</body>\r\n\t</part>\r\n</file>");
    const std::string pieces[] = {"<",      ">",       "&",    "</", "</body>", "<row>",
                                  "<file>", "</file>", "&lt;", "/>", "<p01>",   "\x01"};
    int readable = 0;
    for (std::size_t at = 7; at < whole.size(); ++at) {
        for (const std::string& piece : pieces) {
            for (const std::size_t cut : {std::size_t{0}, piece.size()}) {
                const std::string changed = std::string(whole).replace(at, cut, piece);
                const CatalogueEntry entry = ReadEntry(changed, TagAt(changed, 0));
                const std::string xml =
                    "<?xml version=\"1.0\" encoding=\"windows-1251\"?>" + AsXml(changed, entry);
                bool is_xml = true;
                try {
                    Document::Parse(xml);
                } catch (const XmlFailure&) {
                    is_xml = false;
                }
                ASSERT_EQ(is_xml, entry.IsReadable()) << changed << ToUtf8(entry.fault);
                readable += is_xml ? 1 : 0;
            }
        }
    }
    EXPECT_GT(readable, 1000);
    const CatalogueEntry entry = ReadEntry(whole, TagAt(whole, 0));
    EXPECT_EQ(entry.name, u"a & b.rtf");
    EXPECT_EQ(entry.end, whole.size());
    EXPECT_EQ(entry.parts, 1);
}

class Catalogues : public testing::Test {
 protected:
    Text Write(const std::string& bytes) const { return folder_.Write(kCatalogueName, bytes); }

    test::TempFolder folder_;
};

const std::string kTwo = Bytes(
    u"<file>\r\n\t<name>б.rtf</name>\r\n\t<part type=\"акт\"><head/><body/></part>\r\n</file>\r\n"
    u"<file>\r\n\t<name>a.rtf</name>\r\n\t<part type=\"выписка\"/><part type=\"A & B\"/></file>\r\n"
    u"<file><name>a.rtf</name><part type='x'/></file>\r\n"
    u"<file>\r\n\t<name>плохой.rtf</name>\r\n\t<part type=\"акт\">\r\n\t<head>\r\n</file>\r\n");
const std::string kWhole =
    std::string(kCatalogueOpening) +
    Bytes(u"<actual>\r\n\t<item>б.rtf</item>\r\n\t<item>a & b.rtf</item>\r\n</actual>\r\n") + kTwo +
    "</all>\r\n";

TEST_F(Catalogues, AnswerByName) {
    const Catalogue catalogue = Catalogue::Load(Write(kWhole));
    EXPECT_THAT(catalogue.CurrentFiles(), ElementsAre(u"б.rtf", u"a & b.rtf"));
    EXPECT_EQ(catalogue.PartsOf(u"б.rtf").parts.size(), 1u);
    const CatalogueParts parts = catalogue.PartsOf(u"A.RTF");
    ASSERT_EQ(parts.parts.size(), 2u);
    EXPECT_EQ(parts.parts[0].FirstAttribute().Content(), u"выписка");
    EXPECT_EQ(parts.parts[1].FirstAttribute().Content(), u"x");
    EXPECT_TRUE(catalogue.PartsOf(u"none.rtf").parts.empty());
    try {
        catalogue.PartsOf(u"плохой.rtf");
        ADD_FAILURE();
    } catch (const XmlFailure& failure) {
        EXPECT_EQ(failure.description(),
                  folder_ / kCatalogueName +
                      u": документ плохой.rtf, строка 18: </file> стоит там, где нужен </head>");
    }
}

TEST_F(Catalogues, EditedByHandAreBroughtToForm) {
    const std::string utf8 =
        "\xEF\xBB\xBF" +
        ToUtf8(u"<all>\n<actual>\n\t<item>б.rtf</item>\n</actual>\n<file><name>б.rtf</name></file>\n</all>");
    const Catalogue catalogue = Catalogue::Load(Write(utf8));
    EXPECT_THAT(catalogue.CurrentFiles(), ElementsAre(u"б.rtf"));
    EXPECT_EQ(catalogue.entries()[0].name, u"б.rtf");
    for (const char* const absent :
         {"", "<other><file/></other>", "<!DOCTYPE all><all></all>", "<all>&</all>"}) {
        EXPECT_THROW(Catalogue::Load(Write(absent)), XmlFailure) << absent;
    }
    EXPECT_THROW(Catalogue::Load(folder_ / u"none.xml"), Failure);
}

}  // namespace
}  // namespace tav
