// Files and usage maps that grow.
#include <gmock/gmock.h>

#include <numeric>
#include <optional>

#include "jet/file/global_map.h"
#include "jet/file/page_allocation.h"
#include "jet/file/usage_map.h"
#include "jet/jet_fixtures.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using test::ExpectSound;
using test::FailureOf;
using test::NewDatabase;
using test::PageOfText;
using test::TempFolder;

bool IsInline(PageFile& file, Pointer map) {
    return MapRecord(file, map).IsInline();
}

class Growth : public testing::Test {
 protected:
    TempFolder folder_;
    Text path_ = NewDatabase(folder_);
    std::optional<Database> database_{std::in_place, path_, Database::Access::Write};
    PageFile& file_ = database_->file();
};

TEST_F(Growth, InlineMapMovesItsWindowAndTurnsIntoReferences) {
    while (file_.PageCount() < 1200) file_.Append();
    const Pointer record = database_->FindTable(u"things")->definition().owned_map;
    UsageMap map(file_, record);
    EXPECT_EQ(map.Last(), 0u);
    std::vector<PageNumber> expected;
    const auto add = [&](PageNumber page) {
        map.Add(page);
        expected.push_back(page);
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(map.Pages(), expected);
        EXPECT_EQ(map.Last(), expected.back());
        EXPECT_TRUE(map.Contains(page));
        EXPECT_FALSE(map.Contains(page + 1));
    };
    add(700);   // empty: the window starts there
    add(1100);  // inside
    add(597);   // moves down to 592; 1100 still fits
    EXPECT_TRUE(IsInline(file_, record));
    EXPECT_TRUE(map.BitmapPages().empty());
    add(1150);  // 592 to 1150 does not fit any more
    EXPECT_FALSE(IsInline(file_, record));
    add(20);
    ASSERT_EQ(map.BitmapPages().size(), 1u);
    EXPECT_GT(GlobalMap(file_).FindFree(0), map.BitmapPages().front());
    map.Remove(700);
    map.Remove(701);  // not a member
    expected.erase(std::find(expected.begin(), expected.end(), 700u));
    EXPECT_EQ(map.Pages(), expected);
}

TEST_F(Growth, LargeTableKeepsItsRowsAndMaps) {
    Table& table = *database_->FindTable(u"plain");
    constexpr std::size_t kRows = 1500;
    for (std::size_t i = 0; i < kRows; ++i) table.Insert(PageOfText());
    file_.Commit();
    const std::vector<PageNumber> pages = UsageMap(file_, table.definition().owned_map).Pages();
    EXPECT_EQ(pages.size(), kRows);
    EXPECT_FALSE(IsInline(file_, table.definition().owned_map));
    EXPECT_EQ(MapRecord(file_, table.definition().owned_map).Size(), kReferenceSize);
    std::size_t rows = 0;
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) ++rows;
    EXPECT_EQ(rows, kRows);

    // The global map covers the file in steps of 32 pages; what moved down with it is still a map of zeros.
    const Page& global = ReadDataPage(file_, 1, 1);
    const Record map = RecordAt(file_, 1, global, 0);
    const Record second = RecordAt(file_, 1, global, 1);
    EXPECT_EQ(map.size, 5 + 4 * ((file_.PageCount() + 31) / 32));
    EXPECT_EQ(second.size, 69);
    EXPECT_EQ(std::accumulate(global.begin() + second.begin, global.begin() + map.begin, 0), 0);
    EXPECT_EQ(U16(global.data() + 2), second.begin - 14 - 4);
    EXPECT_EQ(GlobalMap(file_).FindFree(0), file_.PageCount());
    database_.reset();
    ExpectSound(path_);
}

TEST_F(Growth, FreedPagesAreTakenAgainButNotBelowTheLastOne) {
    const PageNumber first = AllocatePage(file_);
    const PageNumber second = AllocatePage(file_);
    EXPECT_EQ(second, first + 1);
    file_.Change(first).fill(7);
    FreePage(file_, first);
    EXPECT_EQ(GlobalMap(file_).FindFree(0), first);
    EXPECT_EQ(PagesLeft(file_, 0, 1 << 20), PagesLeft(file_, first, 1 << 20) + 1);
    EXPECT_EQ(AllocatePage(file_, second), second + 1);
    EXPECT_EQ(AllocatePage(file_), first);
    EXPECT_EQ(file_.Read(first), Page{});
    EXPECT_THAT(FailureOf([&] { FreePage(file_, 2); }), testing::HasSubstr("cannot be freed"));
    MapRecord(file_, {1, 0}).SetStart(800);  // after the end of the file
    AllocatePage(file_);
    EXPECT_EQ(MapRecord(file_, {1, 0}).Size(), kReferenceSize);
}

// More changed pages than memory keeps, in statements that are taken back, alone and to a savepoint, and in
// units.
TEST_F(Growth, ChangedPagesMayBeMoreThanMemoryKeeps) {
    constexpr PageNumber kPages = 5000;
    const PageNumber first = file_.PageCount();
    const auto fill = [&](std::uint8_t value) {
        for (PageNumber page = first; page < first + kPages; ++page) {
            file_.Change(page).fill(static_cast<std::uint8_t>(value + page % 7));
            file_.Trim();
        }
    };
    const auto fill_in_statement = [&](std::uint8_t value) {
        file_.BeginStatement();
        fill(value);
    };
    const auto expect = [&](std::uint8_t value) {
        int wrong = 0;
        for (PageNumber page = first; page < first + kPages; ++page) {
            wrong += file_.Read(page)[4095] != static_cast<std::uint8_t>(value + page % 7);
            file_.Trim();
        }
        EXPECT_EQ(wrong, 0) << int{value};
    };
    while (file_.PageCount() < first + kPages) file_.Append();
    fill(1);
    for (const bool committed : {false, true}) {
        file_.SetSavepoint();
        fill_in_statement(100);
        file_.RollBackStatement();
        expect(1);
        fill_in_statement(50);
        file_.KeepStatement();
        fill_in_statement(90);
        file_.Append();
        file_.RollBackStatement();
        expect(50);
        fill_in_statement(30);
        file_.RollBackToSavepoint();
        expect(1);
        EXPECT_EQ(file_.PageCount(), first + kPages);
        if (!committed) file_.Commit();
    }
    EXPECT_FALSE(file_.HasChanges());
    EXPECT_GT(file_.Trims(), 0u);
    fill_in_statement(50);
    file_.KeepStatement();
    file_.RollBack();
    expect(1);
    fill(70);
    file_.Commit();
    expect(70);
    EXPECT_EQ(ListFiles(folder_.path(), u"").size(), kLocksAreAdvisory ? 2u : 1u);  // the spill has no name
}

}  // namespace
}  // namespace tav::jet
