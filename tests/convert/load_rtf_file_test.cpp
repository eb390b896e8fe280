#include "convert/load_rtf_file.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "common/progress.h"
#include "settings/session.h"
#include "support/support.h"

namespace tav {
namespace {

// Remembers the bar's values; "presses" the cancel button when events are processed for the n-th time.
class TestProgress : public Progress {
 public:
    explicit TestProgress(int cancel_at = 0) : scope_(*this), cancel_at_(cancel_at) {}
    ~TestProgress() override { CancelStamp() = 0; }
    void SetFraction(double fraction) override { fractions.push_back(fraction); }
    void ProcessEvents() override {
        if (++events == cancel_at_) CancelStamp() = 143005;
    }

    std::vector<double> fractions;
    int events = 0;

 private:
    ScopedProgress scope_;
    int cancel_at_;
};

class LoadRtfFileTest : public testing::Test {
 protected:
    std::string Load(std::string_view document) {
        folder_.Write(u"form.rtf", document);
        return LoadRtfFile(folder_.path(), u"form.rtf").entry;
    }
    std::string Parts(std::string_view document) {
        std::string entry = Load(document);
        const std::string head = "<file>\r\n\t<name>form.rtf</name>\r\n";
        const std::string tail = "</file>\r\n";
        if (!entry.starts_with(head) || !entry.ends_with(tail)) return "not an entry: " + entry;
        return entry.substr(head.size(), entry.size() - head.size() - tail.size());
    }

    test::MessageList shown_;
    test::TempFolder folder_;
};

TEST_F(LoadRtfFileTest, ReadsPrintedForms) {
    for (const std::string name : {"statement", "statement_second_layout", "act", "no_part"}) {
        const std::string golden = "convert/golden/" + name;
        folder_.Write(FromUtf8(name + ".rtf"), test::TestFile(golden + ".rtf"));
        test::ExpectGolden(golden + ".xml", LoadRtfFile(folder_.path(), FromUtf8(name + ".rtf")).entry);
    }
    EXPECT_TRUE(shown_.messages.empty());
}

TEST_F(LoadRtfFileTest, CountsEveryPageTwice) {
    TestProgress one_page;
    Load("{\\rtf1 a}");
    EXPECT_EQ(one_page.fractions, (std::vector{0.25, 0.5}));
    EXPECT_EQ(one_page.events, 2);

    TestProgress three_pages;
    Load("{\\rtf1 a\\page\\par\\page\\par}");
    EXPECT_EQ(three_pages.fractions, (std::vector{0.125, 0.25, 0.375, 0.5, 0.625, 0.75}));
}

TEST_F(LoadRtfFileTest, StopsWhenCancelled) {
    for (int at = 1; at <= 4; ++at) {
        TestProgress progress(at);
        EXPECT_EQ(Load("{\\rtf1 a\\page\\par}"), "") << at;
        EXPECT_EQ(progress.events, at);
        EXPECT_EQ(progress.fractions.size(), static_cast<std::size_t>(at - 1));
    }
    TestProgress too_late(5);
    EXPECT_NE(Load("{\\rtf1 a\\page\\par}"), "");
    EXPECT_TRUE(shown_.messages.empty());
}

TEST_F(LoadRtfFileTest, TellsFailures) {
    EXPECT_TRUE(LoadRtfFile(folder_.path(), u"absent.rtf").unreadable);
    EXPECT_EQ(Load("{\\rtf1\\posx5457 12}"), "");
    const std::string far =
        "{\\rtf1\\posx627 a\\par\\posx627 b\\par\\posx627 " + std::string(40'000, 'x') + "/ c\\par}";
    EXPECT_EQ(Load(far), "");
    EXPECT_EQ(Load("{\\rtf1\\posx627 a\\par\\posx627 b\\par\\posx627 123456789/ c\\par}"), "");
    const std::vector<std::pair<Text, Text>> expected = {
        {u"File not found", u"absent.rtf\r\n"},
        {u"Subscript out of range", u"(form.rtf)\r\n"},
        {u"Overflow", u"(form.rtf)\r\n"},
        {u"Invalid procedure call or argument", u"(form.rtf)\r\n"},
    };
    ASSERT_EQ(shown_.messages.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(shown_.messages[i].title, u"Ошибка в функции LoadRtfFile");
        EXPECT_TRUE(shown_.messages[i].text.starts_with(expected[i].first)) << i;
        EXPECT_TRUE(shown_.messages[i].text.ends_with(expected[i].second)) << i;
    }
}

TEST_F(LoadRtfFileTest, SaysWhichPageHidesText) {
    folder_.Write(u"form.rtf",
                  "{\\rtf1{\\b{\\i a\\page } b} \\par}\\page {\\rtf1 whole}\\page{\\b{\\i text } b}} lost}");
    const Conversion form = LoadRtfFile(folder_.path(), u"form.rtf");
    EXPECT_EQ(form.dropped_pages, (std::vector<std::size_t>{4}));
    EXPECT_EQ(DroppedTextLine(u"form.rtf", form.dropped_pages),
              u"form.rtf, страница 4: текст за последней закрывающей скобкой не показан");
    std::vector<std::size_t> many(50);
    std::iota(many.begin(), many.end(), 1);
    EXPECT_EQ(DroppedTextLine(u"form.rtf", many),
              u"form.rtf, страницы 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 и ещё 40: "
              u"текст за последней закрывающей скобкой не показан");
}

TEST_F(LoadRtfFileTest, SaysWhetherTheTextEndsInsideAGroup) {
    const auto cut_off = [&](std::string_view document) {
        folder_.Write(u"form.rtf", document);
        return LoadRtfFile(folder_.path(), u"form.rtf").cut_off;
    };
    const std::string whole = test::TestFile("convert/golden/statement.rtf");
    EXPECT_FALSE(cut_off(whole));
    EXPECT_TRUE(cut_off(std::string_view(whole).substr(0, whole.rfind('}'))));
    for (const std::size_t percent : {10, 50, 90})
        EXPECT_TRUE(cut_off(whole.substr(0, whole.size() * percent / 100)));
    EXPECT_FALSE(cut_off("{\\rtf1 a\\page {\\b x\\page y} \\{ {\\*\\x {a\\bin1 {}} }"));
    EXPECT_TRUE(cut_off("{\\rtf1 a\\page {\\b x\\page y \\} {\\*\\x {a}}}"));
    EXPECT_FALSE(cut_off("no rich text"));
}

TEST_F(LoadRtfFileTest, StandsOddDocuments) {
    EXPECT_EQ(Parts(""), "");
    EXPECT_EQ(Parts("not rich text"), "");
    EXPECT_EQ(Parts(std::string(100'000, '{') + "\\posx627 a"), "");
    EXPECT_EQ(Parts(std::string(100'000, '\0')), "");
    EXPECT_EQ(Parts("{\\rtf1 " + std::string(1'000'000, 'x') + "}"), "");
    EXPECT_EQ(Parts("{\\rtf1\\bin99999999999999999999 }"), "");
    std::string pages;
    for (int i = 0; i < 100'000; ++i) pages += "\\page";
    EXPECT_EQ(Parts(pages), "");
    EXPECT_TRUE(shown_.messages.empty());
}

// A damaged document is refused with a message, or its entry is whole; nothing else happens.
TEST_F(LoadRtfFileTest, StandsDamagedDocuments) {
    std::mt19937 random(77);
    for (const char* const name : {"statement", "act"}) {
        const std::string document = test::TestFile("convert/golden/" + std::string(name) + ".rtf");
        for (int round = 0; round < 300; ++round) {
            std::string damaged = document;
            for (std::size_t n = 1 + random() % 20; n > 0 && !damaged.empty(); --n) {
                const std::size_t at = random() % damaged.size();
                switch (random() % 4) {
                    case 0:
                        damaged[at] = static_cast<char>(random());
                        break;
                    case 1:
                        damaged.erase(at, random() % 100);
                        break;
                    case 2:
                        damaged.insert(at, damaged, random() % damaged.size(), random() % 100);
                        break;
                    default:
                        damaged[at] = "\\{}0"[random() % 4];
                }
            }
            const std::size_t messages = shown_.messages.size();
            const std::string entry = Load(damaged);
            ASSERT_EQ(shown_.messages.size(), messages + (entry.empty() ? 1 : 0));
            ASSERT_TRUE(entry.empty() || (entry.starts_with("<file>\r\n") && entry.ends_with("</file>\r\n")));
        }
    }
}

}  // namespace
}  // namespace tav
