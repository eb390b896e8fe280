#include "convert/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/support.h"
#include "xml/document.h"

namespace tav {
namespace {

using test::Bytes;
using testing::ElementsAre;

TEST(CatalogueMarkup, IsItsOwnTagsAndEntities) {
    const std::pair<TextView, TextView> cases[] = {
        {u"<h03>A & B</h03> <p0001>2</p0001 ><body/>", u"A & B 2"},
        {u"&amp;&#1040;&#x410;&lt;&#x1F600;", u"&АА<\U0001F600"},
        {u"&nbsp;&#;&#0;&#xFFFF;&#-1;&amp", u"&nbsp;&#;&#0;&#xFFFF;&#-1;&amp"},
        {u"a<5 <b> <h1> <h03 x> </ h03> <parts> <part type=акт>",
         u"a<5 <b> <h1> <h03 x> </ h03> <parts> <part type=акт>"},
        {u"<part type = 'акт' ><body />]]></part>", u"]]>"},
        {u"1\r\n2\r3\x01<", u"1\n2\n3?<"},
        {u"", u""},
    };
    for (const auto& [markup, text] : cases) EXPECT_EQ(TextOf(Bytes(markup)), text);
}

int TagsBetween(std::string_view content) {
    int tags = 0;
    for (MarkupTag tag = NextTag(content, 0); !tag.name.empty(); tag = NextTag(content, tag.end)) ++tags;
    return tags;
}
int TagsOfElements(std::string_view content) {
    int tags = 0;
    for (const CatalogueElement& element : ElementsOf(content))
        tags += element.content.data() == nullptr ? 1 : 2 + TagsOfElements(element.content);
    return tags;
}

// Whatever happens to its bytes, an entry that is found readable consists of elements.
TEST(CatalogueEntries, ThatAreReadableAreElements) {
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
                if (!entry.IsReadable()) continue;
                ++readable;
                for (const CatalogueElement& part : PartsIn(changed, entry))
                    ASSERT_EQ(TagsOfElements(part.content), TagsBetween(part.content)) << changed;
                ASSERT_EQ(PartsIn(changed, entry).size(), static_cast<std::size_t>(entry.parts)) << changed;
            }
        }
    }
    EXPECT_EQ(readable, 1063);
    const CatalogueEntry entry = ReadEntry(whole, TagAt(whole, 0));
    EXPECT_EQ(entry.name, u"a & b.rtf");
    EXPECT_EQ(entry.end, whole.size());
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
    Bytes(
        u"<actual>\r\n\t<item>б.rtf</item>\r\n\t<item>a & b.rtf</item>\r\n\t<item>Б.rtf</item>\r\n</actual>\r\n") +
    kTwo + "</all>\r\n";

TEST_F(Catalogues, AnswerByName) {
    const Catalogue catalogue = Catalogue::Load(Write(kWhole));
    EXPECT_THAT(catalogue.CurrentFiles(), ElementsAre(u"б.rtf", u"a & b.rtf", u"Б.rtf"));
    std::string bytes;
    EXPECT_EQ(catalogue.PartsOf(u"б.rtf", bytes).size(), 1u);
    const std::vector<CatalogueElement> parts = catalogue.PartsOf(u"A.RTF", bytes);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].type, Bytes(u"выписка"));
    EXPECT_EQ(parts[1].type, "x");
    EXPECT_TRUE(catalogue.PartsOf(u"none.rtf", bytes).empty());
    EXPECT_TRUE(catalogue.PartsOf(u"Б.rtf", bytes).empty());
    try {
        catalogue.PartsOf(u"плохой.rtf", bytes);
        ADD_FAILURE();
    } catch (const XmlFailure& failure) {
        EXPECT_EQ(failure.description(),
                  folder_ / kCatalogueName +
                      u": документ плохой.rtf, строка 19: </file> стоит там, где нужен </head>");
    }
}

TEST_F(Catalogues, OfAnySizeAreReadPieceByPiece) {
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < 3000; ++i) {
        const std::string name = "<file>\r\n\t<name>" + std::to_string(i) + ".rtf</name>\r\n";
        const std::string value(i == 1500 ? 3'000'000 : i % 500, 'x');
        entries.push_back(name + "<part><h01>" + value + "</h01></part>\r\n</file>");
    }
    entries.push_back("<file><name>z</name><part></file>");
    std::string all =
        std::string(kCatalogueOpening) + std::string(kActualOpening) + std::string(kActualClosing);
    for (const std::string& entry : entries) all += entry + "\r\n";
    const Catalogue catalogue = Catalogue::Load(Write(all + "</all>"));
    ASSERT_EQ(catalogue.entries().size(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        ASSERT_EQ(catalogue.BytesOf(catalogue.entries()[i]), entries[i]);
    EXPECT_EQ(catalogue.entries().back().fault_line, 4 + 4 * 3000);
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
