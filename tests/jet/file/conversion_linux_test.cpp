// Files that outgrow the inline map of free pages. They are long, but sparse: what is not a database's own
// page is a hole, in use by nobody.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "common/database_failure.h"
#include "jet/file/bitmap.h"
#include "jet/file/global_map.h"
#include "jet/file/page_allocation.h"
#include "jet/file/rollback_journal.h"
#include "jet/file/usage_map.h"
#include "jet/jet_fixtures.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

using test::FailureOf;
using test::NewDatabase;
using test::PageOfText;
using test::TempFolder;

class Conversion : public testing::Test {
 protected:
    Page ReadPage(PageNumber page) {
        Page bytes{};
        std::ifstream file(native_, std::ios::binary);
        file.seekg(static_cast<std::streamoff>(Offset(page)));
        file.read(reinterpret_cast<char*>(bytes.data()), kPageSize);
        return bytes;
    }
    void WritePage(PageNumber page, const Page& bytes, std::size_t size = kPageSize) {
        std::fstream file(native_, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(Offset(page)));
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(size));
    }
    void Resize(PageNumber pages) {
        std::filesystem::resize_file(native_, std::uintmax_t{pages} * kPageSize);
    }

    // The bitmap page of a range of a file of so many pages that are all in use.
    static Page Bitmap(PageNumber range, PageNumber pages) {
        Page page{5, 1};
        for (PageNumber i = 0; i < kPagesPerBitmap; ++i) {
            SetBit(page.data() + kBitmapHead, i, range * kPagesPerBitmap + i >= pages);
        }
        return page;
    }
    // An inline map, of the longest kind if nothing else is said, in a file of so many pages.
    void ExtendInline(PageNumber pages, PageNumber first = 0, std::size_t size = 4005) {
        std::vector<std::uint8_t> record(size);
        PutU32(record.data() + 1, first);
        for (PageNumber page = pages; page < first + (size - kInlineHead) * 8; ++page) {
            SetBit(record.data() + kInlineHead, page - first, true);
        }
        Page one;
        InitializeDataPage(one, kGlobalPage);
        AddRecord(one, record, 0);
        AddRecord(one, std::vector<std::uint8_t>(69), 0);
        WritePage(1, one);
        Resize(pages);
    }
    // The same by references: `bitmaps` are there already, further ones come first in their ranges.
    void ExtendReferences(std::vector<PageNumber> bitmaps, PageNumber pages) {
        for (PageNumber range = 0; range * kPagesPerBitmap < pages; ++range) {
            if (range == bitmaps.size()) bitmaps.push_back(range * kPagesPerBitmap);
            WritePage(bitmaps[range], Bitmap(range, pages));
        }
        Page one = ReadPage(1);
        for (std::size_t i = 0; i < bitmaps.size(); ++i) PutU32(&one[4027 + 1 + 4 * i], bitmaps[i]);
        WritePage(1, one);
        Resize(pages);
    }

    // Adds rows of a page each; where the global map's bitmaps are then.
    std::vector<PageNumber> AddRows(int rows) {
        Database database(path_, Database::Access::Write);
        for (int i = 0; i < rows; ++i) database.FindTable(u"plain")->Insert(PageOfText());
        database.file().Commit();
        rows_ += rows;
        return GlobalMap(database.file()).BitmapPages();
    }
    void ExpectSound() {
        for (const Finding& finding : CheckDatabase(path_))
            EXPECT_FALSE(finding.error) << ToUtf8(finding.text);
        Database database(path_, Database::Access::Read);
        int rows = 0;
        for (Table::Scan scan = database.FindTable(u"plain")->Rows(); !scan.AtEnd(); scan.Next()) ++rows;
        EXPECT_EQ(rows, rows_);
    }

    TempFolder folder_;
    Text path_ = NewDatabase(folder_);
    std::filesystem::path native_ = test::NativePath(path_);
    int rows_ = 0;
};

TEST_F(Conversion, PutsBitmapsWhereTheyBelong) {
    ExtendInline(31990);
    EXPECT_EQ(AddRows(9), std::vector<PageNumber>());
    EXPECT_EQ(AddRows(6), std::vector<PageNumber>{32000});
    const Page one = ReadPage(1);
    EXPECT_EQ(U16(&one[14]), 4027);
    EXPECT_EQ(U16(&one[2]), 4027 - 69 - 18);
    EXPECT_EQ(std::filesystem::file_size(native_), 32006u * kPageSize);
    Page expected = Bitmap(0, 32006);
    EXPECT_EQ(ReadPage(32000), expected);
    ExpectSound();

    ExtendReferences({32000}, 32730);
    EXPECT_EQ(AddRows(10), (std::vector<PageNumber>{32000, 32736}));
    EXPECT_EQ(ReadPage(32736), Bitmap(1, 32745));  // the maps of the table have become references too
    ExpectSound();
}

// Two rows below fill one page; once one of them is gone, the table's map of pages with room cannot take that page
// without a page of its own.
TEST_F(Conversion, EndsAtTheLargestFileWhoseRowsCanBeDeleted) {
    std::vector<RowId> low;
    {
        Database database(path_, Database::Access::Write);
        test::Values row = PageOfText();
        low.push_back(database.FindTable(u"plain")->Insert(row));
        row[2] = Text(180, u'ж');
        row[3] = row[4] = Null();
        low.push_back(database.FindTable(u"plain")->Insert(row));
        ASSERT_EQ(low[0].page, low[1].page);
        database.file().Commit();
        rows_ = 2;
    }
    ExtendInline(31999);
    {
        Database database(path_, Database::Access::Write);
        for (int i = 0; i < 3; ++i) AllocatePage(database.file());
        database.file().Commit();
    }
    ExtendReferences({32000}, kMaximumPages - 11);
    {
        Database database(path_, Database::Access::Write);
        EXPECT_EQ(PagesLeft(database.file(), 0, 1000), 11u);
    }
    AddRows(9);  // and two bitmaps of the map of the table's pages
    {
        Database database(path_, Database::Access::Write);
        EXPECT_EQ(PagesLeft(database.file(), 0, 1000), 0u);
        EXPECT_THROW(AllocatePage(database.file()), DatabaseFailure);  // no fault of a single document
        EXPECT_THAT(FailureOf([&] { AllocatePage(database.file()); }),
                    testing::AllOf(testing::HasSubstr(ToUtf8(path_)),
                                   testing::HasSubstr("has reached its maximum size")));
        database.FindTable(u"plain")->Delete(low[0]);
        EXPECT_EQ(PagesLeft(database.file(), 0, 1000), 0u);
        database.FindTable(u"plain")->Delete(low[1]);
        EXPECT_EQ(PagesLeft(database.file(), 0, 1000), 1u);
        database.file().Commit();
        rows_ -= 2;
    }
    ExpectSound();

    // Another program's map of free pages, which does not cover the page of the row and cannot grow.
    ExtendInline(kMaximumPages, 512, 69);
    {
        Database database(path_, Database::Access::Write);
        Table& plain = *database.FindTable(u"plain");
        plain.Delete(plain.Rows().row().id());
        database.file().Commit();
        --rows_;
    }
    ExpectSound();
}

// Each changed page in turn is the last that was written, to the half.
TEST_F(Conversion, KillAtAnyPageLeavesTheOldMap) {
    ExtendInline(31995);
    const PageNumber before_count = 31995;
    std::vector<Page> first;
    for (PageNumber page = 0; page < 100; ++page) first.push_back(ReadPage(page));
    const auto before = [&](PageNumber page) { return page < 100 ? first[page] : Page{}; };  // else a hole
    AddRows(12);
    const auto after_count = static_cast<PageNumber>(std::filesystem::file_size(native_) / kPageSize);
    std::vector<std::pair<PageNumber, Page>> changes;
    for (PageNumber page = 0; page < after_count; page = page == 99 ? 31900 : page + 1) {
        const Page changed = ReadPage(page);
        if (page >= before_count || changed != before(page)) changes.emplace_back(page, changed);
    }
    ASSERT_GT(changes.size(), 12u);
    const auto images = std::ranges::count_if(changes, [&](const auto& c) { return c.first < before_count; });
    for (std::size_t written = 1; written <= changes.size(); ++written) {
        Resize(before_count);
        for (const auto& [page, bytes] : changes) {
            if (page < before_count) WritePage(page, before(page));
        }
        RollbackJournal journal(path_, first[0].data(), before_count, after_count,
                                static_cast<std::size_t>(images));
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const auto& [page, bytes] = changes[i];
            if (page < before_count) journal.Add(page, before(page), bytes);
            if (i < written) WritePage(page, bytes, i + 1 == written ? kPageSize / 2 : kPageSize);
        }
        journal.Finish();
        {
            const Database database(path_,
                                    written % 2 == 0 ? Database::Access::Read : Database::Access::Write);
        }
        EXPECT_EQ(std::filesystem::file_size(native_), std::uintmax_t{before_count} * kPageSize);
        for (const auto& [page, bytes] : changes) {
            const bool is_old = page >= before_count || ReadPage(page) == before(page);
            EXPECT_TRUE(is_old) << written;
        }
    }
    rows_ = 0;
    ExpectSound();
}

}  // namespace
}  // namespace tav::jet
