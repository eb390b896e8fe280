#include "jet/index/index_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "common/failure.h"
#include "jet/create/create.h"
#include "jet/index/index_key.h"
#include "jet/index/index_probe.h"
#include "support/support.h"

namespace tav::jet {
namespace {

using Entries = std::set<std::string>;

// A table without rows, and one of its indexes: a tree does not care what its keys mean.
class IndexTreeTest : public testing::Test {
 protected:
    static constexpr PageNumber kFirstTable = 16;  // behind the system's pages

    IndexTreeTest() {
        const ColumnPlan columns[] = {{u"id", ColumnType::Long}};
        const IndexPlan indexes[] = {{u"byid", {u"id"}}};
        const TablePlan plan{
            u"t", {std::begin(columns), std::end(columns)}, {std::begin(indexes), std::end(indexes)}};
        const Text path = folder_.Write(u"a.mdb", EmptyDatabase({&plan, 1}));
        file_ = std::make_unique<PageFile>(path, PageFile::Access::Write);
        table_ = ReadTableDefinition(*file_, kFirstTable, u"t");
        tree_ = std::make_unique<IndexTree>(*file_, table_, table_.indexes.at(0));
    }

    static PageNumber PageIn(std::mt19937& random) { return static_cast<PageNumber>(random() % 300 + 20); }
    static std::string Entry(const std::string& key, RowId row) { return key + BigEndian(row.Word()); }
    void Add(const std::string& entry) { tree_->Add(KeyOf(entry), RowOf(entry)); }
    void Remove(const std::string& entry) { tree_->Remove(KeyOf(entry), RowOf(entry)); }
    static std::string_view KeyOf(const std::string& entry) {
        return std::string_view(entry).substr(0, entry.size() - 4);
    }
    static RowId RowOf(const std::string& entry) {
        return RowId::FromWord(
            BigU32(reinterpret_cast<const std::uint8_t*>(entry.data()) + entry.size() - 4));
    }
    ProbedTree Probe() { return ProbeIndexTree(*file_, table_.page, table_.indexes[0]); }

    std::vector<std::string> Walk(IndexTree::Cursor cursor) {
        std::vector<std::string> entries;
        for (; !cursor.AtEnd(); cursor.Next())
            entries.push_back(Entry(std::string(cursor.key()), cursor.row()));
        return entries;
    }

    // Grows and shrinks the tree by random entries, and empties it at the end. The most levels it had.
    std::size_t Churn(std::uint32_t seed, int steps,
                      const std::function<std::string(std::mt19937&)>& make_key) {
        std::mt19937 random(seed);
        Entries entries;
        std::size_t levels = 0;
        const auto verify = [&] {
            const ProbedTree probed = Probe();
            ASSERT_TRUE(
                std::equal(probed.entries.begin(), probed.entries.end(), entries.begin(), entries.end()));
            levels = std::max(levels, probed.levels);
        };
        const auto any = [&] {
            const auto at = entries.lower_bound(Entry(make_key(random), {}));
            return at == entries.end() ? entries.begin() : at;
        };
        for (int step = 0; step < steps; ++step) {
            const bool grow = random() % 10 < (step / (steps / 4) % 2 == 0 ? 8 : 3);
            if (grow || entries.empty()) {
                const std::string entry =
                    Entry(make_key(random), {PageIn(random), static_cast<std::uint8_t>(random())});
                if (!entries.insert(entry).second) continue;
                EXPECT_EQ(tree_->HasKey(KeyOf(entry)), [&] {
                    const auto at = entries.lower_bound(Entry(std::string(KeyOf(entry)), {}));
                    return *at != entry ||
                           (std::next(at) != entries.end() && KeyOf(*std::next(at)) == KeyOf(entry));
                }());
                Add(entry);
            } else {
                const auto at = any();
                Remove(*at);
                entries.erase(at);
            }
            if (step % (steps / 20) == 0) verify();
            if (HasFatalFailure()) return levels;
        }
        verify();
        for (int i = 0; i < 50; ++i) {
            const std::string key = make_key(random);
            const auto cursor = tree_->Seek(key);
            const auto at = entries.lower_bound(key);
            EXPECT_EQ(cursor.AtEnd(), at == entries.end());
            if (at != entries.end()) {
                EXPECT_EQ(Entry(std::string(cursor.key()), cursor.row()), *at);
            }
        }
        EXPECT_EQ(Walk(tree_->First()), std::vector<std::string>(entries.begin(), entries.end()));
        while (!entries.empty()) {
            const auto at = any();
            Remove(*at);
            entries.erase(at);
            if (entries.size() % 997 == 0) verify();
        }
        const ProbedTree empty = Probe();
        EXPECT_EQ(empty.pages, std::set<PageNumber>{table_.indexes[0].root});
        return levels;
    }

    test::TempFolder folder_;
    std::unique_ptr<PageFile> file_;
    TableDefinition table_;
    std::unique_ptr<IndexTree> tree_;
};

std::int64_t Below(std::int64_t bound, std::mt19937& random) {
    return static_cast<std::int64_t>(random()) % bound;
}

std::string LongKey(std::int64_t value, bool ascending = true) {
    Column column;
    column.type = ColumnType::Long;
    return *EncodeKeyColumn(column, ascending, value);
}

std::string TextKey(const Text& text) {
    Column column;
    column.type = ColumnType::Text;
    column.sort_order = 0x0409;
    return *EncodeKeyColumn(column, true, text);
}

TEST_F(IndexTreeTest, KeepsNumbers) {
    EXPECT_EQ(Churn(1, 30000, [](std::mt19937& random) { return LongKey(Below(1000000, random)); }), 2u);
}

TEST_F(IndexTreeTest, KeepsDescendingNumbersAmongNulls) {
    Churn(2, 20000, [](std::mt19937& random) {
        return random() % 20 == 0 ? std::string("\xFF") : LongKey(Below(100000, random), false);
    });
}

TEST_F(IndexTreeTest, KeepsManyRowsOfFewKeys) {
    EXPECT_EQ(Churn(3, 40000, [](std::mt19937& random) { return LongKey(Below(5, random) * 1000); }), 2u);
}

TEST_F(IndexTreeTest, KeepsTextsOfAllLengths) {
    const std::size_t levels = Churn(4, 12000, [](std::mt19937& random) {
        Text text;
        for (auto i = random() % 255 + 1; i > 0; --i) text += static_cast<char16_t>(u'А' + random() % 20);
        return TextKey(text);
    });
    EXPECT_GE(levels, 3u);
}

TEST_F(IndexTreeTest, KeepsTheLongestKeys) {
    const std::size_t levels = Churn(5, 3000, [](std::mt19937& random) {
        std::string key(random() % 3 == 0 ? kMaxKeySize - 5 : random() % kMaxKeySize / 2, 'k');
        return key + LongKey(Below(1000, random));
    });
    EXPECT_GE(levels, 3u);
}

TEST_F(IndexTreeTest, FillsPagesWhenKeysComeInOrder) {
    const int kRows = 60000;
    for (int i = 0; i < kRows; ++i) {
        Add(Entry(LongKey(i), {static_cast<PageNumber>(100 + i / 50), static_cast<std::uint8_t>(i % 50)}));
    }
    const ProbedTree probed = Probe();
    EXPECT_EQ(probed.entries.size(), static_cast<std::size_t>(kRows));
    EXPECT_EQ(probed.levels, 2u);
    EXPECT_LE(probed.leaves, kRows / 500u);
}

TEST_F(IndexTreeTest, RefusesWhatCannotBe) {
    const std::string entry = Entry(LongKey(1), {30, 0});
    Add(entry);
    EXPECT_THROW(Add(entry), Failure);
    Remove(Entry(LongKey(1), {30, 1}));  // nothing is to be done
    Remove(Entry(LongKey(2), {30, 0}));
    EXPECT_THROW(Add(Entry(std::string(kMaxKeySize + 1, 'k'), {30, 1})), Failure);
    EXPECT_EQ(Probe().entries, std::vector<std::string>{entry});
}

}  // namespace
}  // namespace tav::jet
