#include "jet/index/index_page.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "jet/index/index_probe.h"
#include "jet/index/index_split.h"

namespace tav::jet {
namespace {

constexpr PageNumber kTable = 77;
constexpr PageNumber kNumber = 5;

Page Leaf() {
    Page page;
    IndexPageEditor::FormatLeaf(page, kTable);
    return page;
}

// Entries that share more or fewer of their first bytes, all of different lengths.
std::string RandomEntry(std::mt19937& random, std::size_t shared) {
    std::string entry(shared, 'k');
    for (auto i = random() % 12 + 1; i > 0; --i) entry += static_cast<char>(random() % 3);
    return entry + std::string("\x7F\0\0\1", 4);
}

std::vector<std::string> Listed(const std::set<std::string>& entries) {
    return {entries.begin(), entries.end()};
}

TEST(IndexPage, LooksAsTheDatabaseProgramWritesIt) {
    Page page = Leaf();
    IndexPageEditor editor(page, kNumber, u"a.mdb");
    ASSERT_TRUE(editor.Insert(0, std::string("\x7f\x80\0\0\2\0\0\x11\1", 9)));
    ASSERT_TRUE(editor.Insert(0, std::string("\x7f\x80\0\0\1\0\0\x11\0", 9)));
    EXPECT_EQ(U16(&page[2]), 3616 - 18);
    EXPECT_EQ(U16(&page[24]), 0);
    EXPECT_EQ(page[27 + 1], 0x02);
    EXPECT_EQ(page[27 + 2], 0x04);
    EXPECT_EQ(page[480 + 4], 1);
    EXPECT_EQ(page[480 + 17], 1);
}

TEST(IndexPage, ReadsAPrefixThatReachesIntoTheRowId) {
    Page page = Leaf();
    const std::string stored("\x7f\x80\0\0\1\0\0\x23\0\x23\1\x23\6", 13);
    std::copy(stored.begin(), stored.end(), page.begin() + 480);
    page[24] = 7;
    PutU16(&page[2], static_cast<std::uint16_t>(3616 - stored.size()));
    page[27 + 1] = 0x02 | 0x08 | 0x20;  // ends at 9, 11 and 13
    IndexPage view(page, kNumber, u"a.mdb");
    EXPECT_EQ(view.Entry(11), std::string("\x7f\x80\0\0\1\0\0\x23\6", 9));
    EXPECT_EQ(view.Find(std::string("\x7f\x80\0\0\1\0\0\x23\2", 9)), 11u);
    EXPECT_EQ(view.Find(std::string("\x7f\x80\0\0\1", 5)), 0u);
    EXPECT_EQ(view.Find(std::string("\x7f\x80\0\0\2", 5)), view.Used());

    IndexPageEditor editor(page, kNumber, u"a.mdb");
    editor.Erase(0);
    EXPECT_EQ(ProbeIndexPage(page).entries.front(), std::string("\x7f\x80\0\0\1\0\0\x23\1", 9));
    ASSERT_TRUE(editor.Insert(0, std::string("\x7f\x80\0\0\1\0\0\x23\0", 9)));
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), page.begin() + 480,
                           [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }));
    EXPECT_FALSE(editor.Insert(0, std::string("\x7f\x80\0\0\0\0\0\x23\0", 9))) << "the prefix is another";
}

TEST(IndexPage, KeepsAnyEntriesInOrderWhateverIsAddedAndErased) {
    std::mt19937 random(1);
    int packed = 0;
    for (int round = 0; round < 30; ++round) {
        Page page = Leaf();
        IndexPageEditor editor(page, kNumber, u"a.mdb");
        std::set<std::string> expected;
        const std::size_t shared = random() % 30;
        for (int step = 0; step < 500; ++step) {
            const std::string entry = RandomEntry(random, random() % 50 == 0 ? shared / 2 : shared);
            const std::size_t place = editor.Find(entry);
            EXPECT_EQ(editor.Equals(place, entry), expected.contains(entry));
            if (expected.contains(entry)) {
                editor.Erase(place);
                expected.erase(entry);
            } else if (editor.Insert(place, entry)) {
                expected.insert(entry);
            } else {
                const auto all = editor.With(place, entry);
                ASSERT_EQ(all.entries[all.added], entry);
                if (!editor.Pack(all.entries)) continue;
                ++packed;
                expected.insert(entry);
            }
            if (step % 20 == 0) {
                ASSERT_EQ(ProbeIndexPage(page).entries, Listed(expected));
            }
        }
        ASSERT_EQ(ProbeIndexPage(page).entries, Listed(expected));
    }
    EXPECT_GT(packed, 15);
}

TEST(IndexPage, SplitsInTheMiddleOrBehindTheLast) {
    std::vector<std::string> entries;
    for (char c = 'a'; c <= 'j'; ++c) entries.push_back(std::string(c == 'a' ? 900 : 100, c));
    EXPECT_EQ(CutLeaf(entries, true), 8u);
    EXPECT_EQ(CutNode(entries, true), 8u);
    EXPECT_EQ(CutLeaf(entries, false), 0u);
    EXPECT_EQ(CutNode(entries, false), 1u);
}

}  // namespace
}  // namespace tav::jet
