// Files with maps of every form take rows and lose none, or are refused by name and stay as they are: map_forms.h.
#include <gmock/gmock.h>

#include "jet/file/map_forms.h"
#include "jet/jet_fixtures.h"

namespace tav::jet {
namespace {

using tav::test::ExpectSound;
using tav::test::FailureOf;
using tav::test::NewDatabase;
using tav::test::PageOfText;
using tav::test::TempFolder;
using tav::test::Thing;
using tav::test::Values;

class MapForms : public testing::Test {
 protected:
    MapForms() {
        const Text path = NewDatabase(folder_);
        Database database(path, Database::Access::Write);
        Table& plain = *database.FindTable(u"plain");
        std::vector<RowId> rows;
        for (int i = 0; i < 300; ++i) rows.push_back(plain.Insert(PageOfText()));
        for (int i = 200; i < 300; i += 2) plain.Delete(rows[static_cast<std::size_t>(i)]);
        Table& things = *database.FindTable(u"things");
        Values thing = Thing(-1, u"x");
        thing[6] = Binary{std::string(9000, 'x')};
        good_.row = things.Insert(thing);
        good_.chain = things.Find(good_.row).LongRecords(6);
        good_.owned = plain.definition().owned_map;
        good_.things = things.definition();
        good_.count = database.file().PageCount();
        database.file().Commit();
        good_.file = FileBytes(ReadFile(path));
    }
    int Count(Database& database) {
        int rows = 0;
        for (Table::Scan scan = database.FindTable(u"plain")->Rows(); !scan.AtEnd(); scan.Next()) {
            rows += scan.row().Get(4) == Value(Text(255, u'ж')) ? 1 : 1000;
        }
        return rows;
    }

    TempFolder folder_;
    Forms good_;
};

// Rows are added and deleted; no row is lost, no page of the released map is taken.
void Use(Database& database, RowId long_row) {
    Table& plain = *database.FindTable(u"plain");
    Table& things = *database.FindTable(u"things");
    std::vector<RowId> rows;
    for (int i = 0; i < 400; ++i) {
        rows.push_back(plain.Insert(PageOfText()));
        things.Insert(Thing(i, Text(200, u'ы')));
    }
    for (std::size_t i = 0; i < rows.size(); i += 2) plain.Delete(rows[i]);
    things.Delete(long_row);
    database.file().Commit();
}

TEST_F(MapForms, TakeRowsOrAreRefusedAsTheyAre) {
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.what);
        Forms forms = good_;
        form.make(forms);
        const Text path = folder_.Write(u"form.mdb", forms.file.bytes());
        std::vector<int> errors;
        for (const Finding& finding : CheckDatabase(path)) {
            if (finding.error) errors.push_back(finding.invariant);
            if (finding.error && form.error == 0) ADD_FAILURE() << ToUtf8(finding.text);
        }
        EXPECT_EQ(std::ranges::count(errors, form.error) > 0, form.error != 0);
        const std::string failure = FailureOf([&] {
            Database database(path, Database::Access::Write);
            Use(database, forms.row);
        });
        if (form.refusal != nullptr) {
            EXPECT_THAT(failure, testing::HasSubstr(form.refusal));
            EXPECT_THAT(failure, testing::HasSubstr("form.mdb"));
            EXPECT_EQ(ReadFile(path), forms.file.bytes());
            continue;
        }
        EXPECT_EQ(failure, "");
        Database database(path, Database::Access::Write);
        EXPECT_EQ(Count(database), 250 + 200);
        if (form.error == 0) ExpectSound(path);
    }
}

}  // namespace
}  // namespace tav::jet
