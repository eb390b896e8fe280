#include "convert/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/support.h"

namespace tav {
namespace {

using test::Bytes;
using testing::ElementsAre;

std::string Entry(TextView name, TextView inside) {
    return Bytes(u"<file>\r\n\t<name>" + Text(name) + u"</name>\r\n" + Text(inside) + u"</file>\r\n");
}
std::string Whole(const std::string& entries) {
    return std::string(kCatalogueOpening) +
           Bytes(u"<actual>\r\n\t<item>б.rtf</item>\r\n\t<item>a.rtf</item>\r\n</actual>\r\n") + entries +
           "</all>\r\n";
}

const std::string kTwo = Entry(u"б.rtf", u"\t<part type=\"акт\"><head/><body/></part>\r\n") +
                         Entry(u"a.rtf", u"\t<part type=\"выписка\"/><part type=\"акт\"/>\r\n");

class Catalogues : public testing::Test {
 protected:
    Text Write(const std::string& bytes) const { return folder_.Write(kCatalogueName, bytes); }
    Text FailureOf(const std::string& bytes) const {
        try {
            Catalogue::Load(Write(bytes));
        } catch (const XmlFailure& failure) {
            EXPECT_TRUE(failure.description().starts_with(folder_ / kCatalogueName + u": "));
            return failure.description().substr((folder_ / kCatalogueName).size() + 2);
        }
        return u"accepted";
    }
    static std::string Carried(const Catalogue& catalogue, std::vector<std::size_t> without = {}) {
        std::vector<bool> departed(catalogue.EntryCount());
        for (const std::size_t entry : without) departed[entry] = true;
        std::string text;
        catalogue.AppendEntries(text, departed);
        return text;
    }

    test::TempFolder folder_;
};

TEST_F(Catalogues, AnswerByName) {
    const Catalogue catalogue = Catalogue::Load(Write(Whole(kTwo + Entry(u"a.rtf", u"<part type=\"x\"/>"))));
    EXPECT_THAT(catalogue.CurrentFiles(), ElementsAre(u"б.rtf", u"a.rtf"));
    EXPECT_THAT(catalogue.EntriesNamed(u"a.rtf"), ElementsAre(1, 2));
    EXPECT_THAT(catalogue.EntriesNamed(u"A.rtf"), ElementsAre());
    const CatalogueParts parts = catalogue.PartsOf(u"a.rtf");
    ASSERT_EQ(parts.parts.size(), 3u);
    EXPECT_EQ(parts.parts[0].FirstAttribute().Content(), u"выписка");
    EXPECT_EQ(parts.parts[2].FirstAttribute().Content(), u"x");
    EXPECT_TRUE(catalogue.PartsOf(u"none.rtf").parts.empty());
}

TEST_F(Catalogues, CarryEntriesByteForByte) {
    const std::string odd =
        "<!-- <file> --><file a='>'><name>c</name><file><name>d</name></file><![CDATA[</file>]]></file "
        ">\r\n<file/>";
    const Catalogue catalogue = Catalogue::Load(Write(Whole(kTwo + odd)));
    EXPECT_EQ(Carried(catalogue), kTwo + odd);
    ASSERT_EQ(catalogue.EntryCount(), 4u);
    EXPECT_EQ(Carried(catalogue, {0}), kTwo.substr(kTwo.find("<file>", 1)) + odd);
    EXPECT_EQ(Carried(catalogue, {0, 1, 2}), "<!-- <file> --><file/>");
    EXPECT_EQ(Carried(catalogue, {0, 1, 2, 3}), "<!-- <file> -->");
    EXPECT_THAT(catalogue.EntriesNamed(u"c"), ElementsAre(2));
    EXPECT_THAT(catalogue.EntriesNamed(u"d"), ElementsAre());
}

TEST_F(Catalogues, EditedByHandAreBroughtToForm) {
    const std::string whole = Whole(kTwo);
    const std::string utf8 =
        "\xEF\xBB\xBF" +
        ToUtf8(u"<all>\n<actual>\n\t<item>б.rtf</item>\n</actual>\n<file><name>б.rtf</name></file>\n</all>");
    EXPECT_EQ(Carried(Catalogue::Load(Write(utf8))), Bytes(u"<file><name>б.rtf</name></file>\r\n"));
    EXPECT_EQ(Carried(Catalogue::Load(Write(whole.substr(0, whole.size() - 2)))), kTwo);
    // Without "</actual>" and a line end nothing is carried over.
    EXPECT_EQ(Carried(Catalogue::Load(Write("<all><actual></actual><file/></all>"))), "");
    EXPECT_EQ(Catalogue::Load(Write("<other><file/></other>")).EntryCount(), 0u);
}

TEST_F(Catalogues, NameTheDocumentThatBreaksThem) {
    const std::string good = Entry(u"good.rtf", u"\t<part/>\r\n");
    const std::pair<Text, Text> cases[] = {
        {u"\t<h03>ООО \"A & B\"</h03>\r\n", u"документ плохой.rtf, строка 12: "},
        {u"\t<h03>a<5</h03>\r\n", u"документ плохой.rtf, строка 12: "},
        {u"\t<part type=\"акт\">\r\n\t<head>\r\n",
         u"документ плохой.rtf, строка 14: Opening and ending tag mismatch: head line 13 and file"},
        {u"\t<h03><!-- </h03>\r\n", u"документ плохой.rtf, строка "},
        {u"\t<h03><![CDATA[ </h03>\r\n", u"документ плохой.rtf, строка "},
    };
    for (const auto& [inside, expected] : cases) {
        const Text failure = FailureOf(Whole(good + Entry(u"плохой.rtf", inside) + good + good));
        EXPECT_TRUE(failure.starts_with(expected)) << ToUtf8(failure);
    }
    EXPECT_TRUE(FailureOf(Whole(good).substr(0, 150)).starts_with(u"документ good.rtf, строка "));
    EXPECT_TRUE(FailureOf("<!DOCTYPE all><all></all>\r\n").starts_with(u"строка 1: "));
    EXPECT_THROW(Catalogue::Load(folder_ / u"none.xml"), Failure);
}

TEST_F(Catalogues, HeadIsTrustedWhenTheFileIsWhole) {
    const std::vector<Text> listed = {u"б.rtf", u"a.rtf"};
    const std::string whole = Whole(kTwo);
    EXPECT_EQ(CurrentFilesOfHead(Write(whole)), listed);
    EXPECT_EQ(CurrentFilesOfHead(Write(Whole("not & read <<"))), listed);
    for (const std::string& bytes :
         {std::string(), std::string("</all>\r\n"), whole.substr(0, whole.size() - 1), whole + " ",
          " " + whole, std::string(kCatalogueOpening) + "</all>\r\n",
          std::string(kCatalogueOpening) + "<actual>\r\n<item>&</item></actual>\r\n</all>\r\n"}) {
        EXPECT_EQ(CurrentFilesOfHead(Write(bytes)), std::nullopt) << bytes;
    }
    // A head longer than one piece, its end at every place around the border of two.
    std::string long_head(kCatalogueOpening);
    long_head += kActualOpening;
    std::vector<Text> names;
    for (int i = 0; i < 12000; ++i) {
        names.push_back(Digits(i, 8) + u".rtf");
        long_head += "\t<item>" + ToUtf8(names.back()) + "</item>\r\n";
    }
    for (std::size_t end = 256 * 1024 - 12; end < 256 * 1024 + 12; ++end) {
        // As many items as fit, the rest filled up with blanks.
        const std::size_t cut = long_head.rfind("\t<item>", end - kActualClosing.size());
        std::string bytes = long_head.substr(0, cut);
        const std::size_t count = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\t'));
        bytes += std::string(end - kActualClosing.size() - cut, ' ');
        bytes.append(kActualClosing).append(kTwo).append("</all>\r\n");
        const auto files = CurrentFilesOfHead(Write(bytes));
        ASSERT_TRUE(files);
        ASSERT_EQ(files->size(), count);
        ASSERT_EQ(files->back(), names[count - 1]);
    }
}

}  // namespace
}  // namespace tav
