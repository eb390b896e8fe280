#include "convert/check_xml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/progress.h"
#include "convert/catalogue.h"
#include "platform/files.h"
#include "settings/session.h"
#include "support/support.h"

namespace tav {
namespace {

using test::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

// Writes down what a progress window would show; cancels at a file when told to.
class ProgressRecord : public Progress {
 public:
    ProgressRecord() : scope_(*this) { CancelStamp() = 0; }
    ~ProgressRecord() override { CancelStamp() = 0; }

    void Show(int files) override { steps += u"show " + Digits(files) + u"\n"; }
    void SetLabel(TextView file) override { steps += Text(file) + u"\n"; }
    void SetFilesDone(int files) override { steps += u"done " + Digits(files) + u"\n"; }
    void ProcessEvents() override {
        if (!cancel_at.empty() && steps.ends_with(cancel_at + u"\n")) CancelStamp() = 143005;
    }
    void Close() override { steps += u"close\n"; }

    Text steps;
    Text cancel_at;

 private:
    ScopedProgress scope_;
};

// The entry of a document in which the reader finds nothing.
std::string Entry(TextView name) {
    return Bytes(u"<file>\r\n\t<name>" + Text(name) + u"</name>\r\n</file>\r\n");
}
std::string CatalogueOf(const std::vector<Text>& items, const std::string& entries) {
    std::string bytes = "<?xml version=\"1.0\" encoding=\"windows-1251\" ?><all>\r\n<actual>\r\n";
    for (const Text& item : items) bytes += Bytes(u"\t<item>" + item + u"</item>\r\n");
    return bytes + "</actual>\r\n" + entries + "</all>\r\n";
}

class FolderScan : public testing::Test {
 protected:
    void Add(TextView name) { folder_.Write(name, "{\\rtf1 }"); }
    void Remove(TextView name) { DeleteFile(folder_ / name); }
    void Put(const std::string& catalogue) { folder_.Write(kCatalogueName, catalogue); }
    std::string Catalogue() const { return ReadFile(folder_ / kCatalogueName); }
    // Scans and gives the catalogue.
    std::string Scan() {
        progress_.steps.clear();
        EXPECT_EQ(CheckXml(folder_.path()), folder_ / kCatalogueName);
        return Catalogue();
    }

    test::TempFolder folder_;
    test::MessageList messages_;
    ProgressRecord progress_;
};

TEST_F(FolderScan, ANewFolderIsConvertedInListingOrder) {
    Add(u"б.RTF");
    Add(u"a 'x'.rtf");
    Add(u"note.txt");
    EXPECT_EQ(Scan(), CatalogueOf({u"a 'x'.rtf", u"б.RTF"}, Entry(u"a 'x'.rtf") + Entry(u"б.RTF")));
    EXPECT_EQ(progress_.steps, u"show 2\na 'x'.rtf\ndone 1\nб.RTF\ndone 2\nclose\n");
    EXPECT_THAT(messages_.messages, IsEmpty());
    const Text without_separator = folder_.path().substr(0, folder_.path().size() - 1);
    EXPECT_EQ(CheckXml(without_separator), folder_ / kCatalogueName);
}

TEST_F(FolderScan, AFolderWithoutDocumentsKeepsWhatItHas) {
    EXPECT_EQ(CheckXml(folder_.path()), u"");
    EXPECT_FALSE(FileExists(folder_ / kCatalogueName));
    EXPECT_EQ(CheckXml(folder_ / u"none"), u"");
    Put("anything");
    EXPECT_EQ(CheckXml(folder_.path()), u"");
    EXPECT_EQ(Catalogue(), "anything");
    EXPECT_THAT(messages_.messages, IsEmpty());
}

TEST_F(FolderScan, AnUnchangedFolderIsKnownByTheHeadAlone) {
    Add(u"a.rtf");
    Add(u"b.rtf");
    const std::string unread = CatalogueOf({u"a.rtf", u"b.rtf"}, "not read at all: & <<");
    Put(unread);
    EXPECT_EQ(Scan(), unread);
    EXPECT_EQ(progress_.steps, u"");
    // Not as the scan writes it, but the same list: left as it stands as well.
    const std::string edited = "<all><actual><item>a.rtf</item><item>b.rtf</item></actual></all>";
    Put(edited);
    EXPECT_EQ(Scan(), edited);
}

TEST_F(FolderScan, OnlyNewFilesAreConvertedAndTheRestIsCarriedOver) {
    Add(u"a.rtf");
    Add(u"b.rtf");
    const std::string old =
        Bytes(u"<file>\r\n<name>b.rtf</name>   <part type='акт'>&gt;>&#1040;</part></file>\r\n");
    Put(CatalogueOf({u"b.rtf"}, old));
    EXPECT_EQ(Scan(), CatalogueOf({u"a.rtf", u"b.rtf"}, old + Entry(u"a.rtf")));
    EXPECT_EQ(progress_.steps, u"show 1\na.rtf\ndone 1\nclose\n");
}

TEST_F(FolderScan, DepartedFilesGoWhenNewOnesCome) {
    for (const char16_t* const name : {u"a.rtf", u"b.rtf", u"c.rtf"}) Add(name);
    const std::string all = Scan();
    Remove(u"b.rtf");
    EXPECT_EQ(Scan(), CatalogueOf({u"a.rtf", u"c.rtf"}, Entry(u"a.rtf") + Entry(u"b.rtf") + Entry(u"c.rtf")));
    EXPECT_EQ(progress_.steps, u"");
    Add(u"d.rtf");
    EXPECT_EQ(Scan(), CatalogueOf({u"a.rtf", u"c.rtf", u"d.rtf"},
                                  Entry(u"a.rtf") + Entry(u"c.rtf") + Entry(u"d.rtf")));
}

// The name stands twice: once it is known, once departed, and the first entry goes.
TEST_F(FolderScan, OfAnEntryHeldTwiceTheFirstGoes) {
    Add(u"a.rtf");
    Add(u"n.rtf");
    Put(CatalogueOf({u"a.rtf"}, "<file><name>a.rtf</name>1</file>\r\n<file><name>a.rtf</name>2</file>\r\n"));
    EXPECT_EQ(Scan(),
              CatalogueOf({u"a.rtf", u"n.rtf"}, "<file><name>a.rtf</name>2</file>\r\n" + Entry(u"n.rtf")));
}

TEST_F(FolderScan, ANameCutShortConvertsNothing) {
    Add(u"a.rtf");
    Add(u"xa.rtf");
    Put(CatalogueOf({u"a.rtf"}, Entry(u"a.rtf")));
    EXPECT_EQ(Scan(), CatalogueOf({u"a.rtf", u"xa.rtf"}, Entry(u"a.rtf")));
    EXPECT_EQ(progress_.steps, u"show 1\nx\ndone 1\nclose\n");
}

TEST_F(FolderScan, AnotherLetterCaseIsKnownAndConvertedAgainBesideNewOnes) {
    Add(u"A.rtf");
    Put(CatalogueOf({u"a.rtf"}, Entry(u"a.rtf")));
    EXPECT_EQ(Scan(), CatalogueOf({u"A.rtf"}, Entry(u"a.rtf")));
    Add(u"n.rtf");
    EXPECT_EQ(Scan(), CatalogueOf({u"A.rtf", u"n.rtf"}, Entry(u"a.rtf") + Entry(u"A.rtf") + Entry(u"n.rtf")));
    EXPECT_EQ(progress_.steps, u"show 1\nA.rtf\ndone 1\nn.rtf\ndone 2\nclose\n");
}

TEST_F(FolderScan, ACancelChangesNothing) {
    Add(u"a.rtf");
    Add(u"b.rtf");
    Add(u"c.rtf");
    Put(CatalogueOf({u"a.rtf"}, Entry(u"a.rtf")));
    const std::string before = Catalogue();
    progress_.cancel_at = u"b.rtf";
    EXPECT_EQ(CheckXml(folder_.path()), u"");
    EXPECT_EQ(Catalogue(), before);
    EXPECT_EQ(progress_.steps, u"show 2\nb.rtf\nclose\n");
    EXPECT_THAT(messages_.messages, IsEmpty());
}

TEST_F(FolderScan, ACatalogueThatIsNoXmlCountsAsAbsent) {
    Add(u"a.rtf");
    Add(u"b.rtf");
    const std::string whole = CatalogueOf({u"a.rtf"}, Entry(u"a.rtf"));
    for (const std::string& broken : {std::string(), whole.substr(0, 100),
                                      CatalogueOf({u"a.rtf"}, "<file><name>a.rtf</name>A & B</file>\r\n"),
                                      "<!DOCTYPE all>" + whole, std::string(1000, '\xFF')}) {
        Put(broken);
        EXPECT_EQ(Scan(), CatalogueOf({u"a.rtf", u"b.rtf"}, Entry(u"a.rtf") + Entry(u"b.rtf")));
    }
    EXPECT_THAT(messages_.messages, IsEmpty());
}

TEST_F(FolderScan, NamesTheCatalogueCannotHoldArePassedOverWithOneMessage) {
    folder_.Write(u"\u4E2D.rtf", "");
    folder_.Write(u"two\nlines.rtf", "");  // no name at all on Windows
    EXPECT_EQ(CheckXml(folder_.path()), u"");
    ASSERT_EQ(messages_.messages.size(), 1u);
    Add(u"a.rtf");
    Add(u"A & B.rtf");
    const std::vector<Text> listed = {u"A & B.rtf", u"a.rtf"};
    EXPECT_EQ(Scan(), CatalogueOf(listed, Entry(u"A & B.rtf") + Entry(u"a.rtf")));
    ASSERT_EQ(messages_.messages.size(), 2u);
    EXPECT_EQ(messages_.messages[1].title, u"Импорт файлов");
    EXPECT_EQ(messages_.messages[1].icon, MessageIcon::Information);
    EXPECT_NE(messages_.messages[1].text.find(u"\u4E2D.rtf"), Text::npos);
    for (int i = 0; i < 30; ++i) folder_.Write(u"\u4E2D" + Digits(i) + u".rtf", "");
    Scan();
    ASSERT_EQ(messages_.messages.size(), 3u);
    const std::size_t left_out = ListFiles(folder_.path(), u".rtf").size() - listed.size();
    EXPECT_TRUE(
        messages_.messages[2].text.ends_with(u"... и ещё " + Digits(static_cast<int>(left_out) - 20)));
}

TEST_F(FolderScan, LongNamesAreShownShortened) {
    const Text sixty = Text(56, u'я') + u".rtf";
    const Text longer = Text(50, u'ы') + Text(7, u'э') + u".rtf";
    Add(sixty);
    Add(longer);
    Scan();
    EXPECT_EQ(progress_.steps,
              u"show 2\n" + Text(50, u'ы') + u"...ээээээ.rtf\ndone 1\n" + sixty + u"\ndone 2\nclose\n");
}

TEST_F(FolderScan, AFailureIsShownAndTheWindowClosed) {
    Add(u"a.rtf");
    MakeFolders(folder_ / kCatalogueName + kPathSeparator + u"inside" + kPathSeparator);
    EXPECT_EQ(CheckXml(folder_.path()), u"");
    ASSERT_EQ(messages_.messages.size(), 1u);
    EXPECT_EQ(messages_.messages[0].title, u"Ошибка в функции CheckXml");
    EXPECT_EQ(messages_.messages[0].icon, MessageIcon::Critical);
    EXPECT_TRUE(messages_.messages[0].text.ends_with(u"\r\n"));
    EXPECT_TRUE(progress_.steps.ends_with(u"close\n"));
}

}  // namespace
}  // namespace tav
