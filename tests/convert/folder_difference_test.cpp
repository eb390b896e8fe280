#include "convert/folder_difference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "common/get_next.h"

namespace tav {

bool operator==(const FolderDifference& a, const FolderDifference& b) {
    return a.remaining == b.remaining && a.departed == b.departed && a.new_files == b.new_files;
}

void PrintTo(const FolderDifference& difference, std::ostream* out) {
    *out << difference.new_files << " new; remaining";
    for (const Text& name : difference.remaining) *out << " [" << ToUtf8(name) << "]";
    *out << "; departed";
    for (const Text& name : difference.departed) *out << " [" << ToUtf8(name) << "]";
}

namespace {

using Names = std::vector<Text>;

// Plain replacement, text by text.
FolderDifference Literally(const Names& listed, const Names& catalogued) {
    FolderDifference difference;
    Text text = u"\r\n";
    for (const Text& name : listed) {
        text += name + u"\r\n";
        ++difference.new_files;
    }
    for (const Text& name : catalogued) {
        if (UpperCase(text).find(UpperCase(u"\r\n" + name + u"\r\n")) != Text::npos) {
            text = ReplaceAll(text, name + u"\r\n", u"");
            --difference.new_files;
        } else {
            difference.departed.push_back(name);
        }
    }
    TextView rest = text;
    rest.remove_prefix(2);
    while (!rest.empty()) difference.remaining.emplace_back(GetNext(rest, u"\r\n"));
    return difference;
}

TEST(FolderDifference, KeepsWhatReplacementEntails) {
    struct Case {
        const char* what;
        Names listed;
        Names catalogued;
        FolderDifference expected;
    };
    const Case cases[] = {
        {"all new", {u"a.rtf", u"b.rtf"}, {}, {{u"a.rtf", u"b.rtf"}, {}, 2}},
        {"all known", {u"a.rtf", u"b.rtf"}, {u"b.rtf", u"a.rtf"}, {{}, {}, 0}},
        {"one departed", {u"a.rtf", u"b.rtf"}, {u"c.rtf", u"a.rtf"}, {{u"b.rtf"}, {u"c.rtf"}, 1}},
        {"a known tail cuts the last name short", {u"a.rtf", u"xa.rtf"}, {u"a.rtf"}, {{u"x"}, {}, 1}},
        {"and runs another into the next", {u"a.rtf", u"xa.rtf", u"z.rtf"}, {u"a.rtf"}, {{u"xz.rtf"}, {}, 2}},
        {"which may make it known",
         {u"a.rtf", u"xa.rtf", u"z.rtf"},
         {u"a.rtf", u"XZ.RTF"},
         {{u"xz.rtf"}, {}, 1}},
        {"another letter case is found, not removed", {u"A.rtf"}, {u"a.RTF"}, {{u"A.rtf"}, {}, 0}},
        {"Cyrillic as well", {u"Выписка.rtf"}, {u"ВЫПИСКА.rtf"}, {{u"Выписка.rtf"}, {}, 0}},
        {"twice in the catalogue", {u"a.rtf"}, {u"a.rtf", u"a.rtf"}, {{}, {u"a.rtf"}, 0}},
        {"both cases in the catalogue", {u"A.rtf"}, {u"a.rtf", u"A.rtf"}, {{}, {}, -1}},
        {"an empty name", {u"a.rtf"}, {u""}, {{u"a.rtf"}, {u""}, 1}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(Literally(one.listed, one.catalogued), one.expected) << one.what;
        EXPECT_EQ(CompareFolder(one.listed, one.catalogued), one.expected) << one.what;
    }
}

// Names over few letters are tails of each other again and again, also after they ran together.
TEST(FolderDifference, EqualsPlainReplacementForAdversarialNames) {
    std::mt19937 random(20110401);
    const auto below = [&](unsigned limit) { return random() % limit; };
    int cut_short = 0;
    for (int round = 0; round < 20000; ++round) {
        const Text letters = Text(u"aAbBяЯ").substr(0, 1 + below(6));
        const unsigned longest = 1 + below(6);
        const auto name = [&] {
            Text text;
            for (unsigned i = 1 + below(longest); i > 0; --i)
                text += letters[below(static_cast<unsigned>(letters.size()))];
            return text;
        };
        Names listed(below(12));
        for (Text& one : listed) one = name();
        Names catalogued(below(16));
        for (Text& one : catalogued) {
            switch (below(4)) {
                case 0:
                    one = listed.empty() ? Text() : listed[below(static_cast<unsigned>(listed.size()))];
                    break;
                case 1:
                    one = name() + name();
                    break;
                default:
                    one = name();
            }
        }
        const FolderDifference expected = Literally(listed, catalogued);
        ASSERT_EQ(CompareFolder(listed, catalogued), expected) << "round " << round;
        for (const Text& left : expected.remaining) {
            cut_short += std::find(listed.begin(), listed.end(), left) == listed.end() ? 1 : 0;
        }
    }
    EXPECT_GT(cut_short, 1000);
}

// 10,000 names, each the tail of another: minutes when every name walks the whole text.
TEST(FolderDifference, ManyNamesThatCutEachOther) {
    constexpr int kNames = 10000;
    Names listed;
    Names catalogued;
    for (int i = 0; i < kNames; ++i) {
        const Text number = Digits(i, 6);
        listed.push_back(u"x" + number + u".rtf");
        catalogued.push_back(number + u".rtf");
    }
    for (const Text& name : catalogued) listed.push_back(name);
    const FolderDifference difference = CompareFolder(listed, catalogued);
    EXPECT_EQ(difference.new_files, kNames);
    EXPECT_THAT(difference.remaining, testing::ElementsAre(Text(kNames, u'x')));
    EXPECT_THAT(difference.departed, testing::IsEmpty());
}

}  // namespace
}  // namespace tav
