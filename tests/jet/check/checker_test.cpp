// What the checker says about whole files: good ones, foreign ones, randomly damaged ones.
#include "jet/check/checker.h"

#include <gmock/gmock.h>

#include "jet/check/damaged_database.h"
#include "jet/jet_samples.h"

namespace tav::jet {

// How a failing test prints a finding.
void PrintTo(const Finding& finding, std::ostream* out) {
    *out << (finding.error ? "E" : "N") << finding.invariant << " " << ToUtf8(finding.text);
}

namespace {

using tav::test::TempFolder;
using testing::Each;
using testing::Field;
using testing::IsEmpty;

TEST(Checker, SamplesHaveNoErrors) {
    const std::vector<Text> samples = tav::test::SampleDatabases();
    ASSERT_FALSE(samples.empty());
    for (const Text& sample : samples) {
        EXPECT_THAT(CheckDatabase(sample), Each(Field(&Finding::error, false))) << ToUtf8(sample);
    }
}

TEST(Checker, HasNothingToSayAboutNewFiles) {
    const TempFolder folder;
    EXPECT_THAT(CheckDatabase(folder.Write(u"new.mdb", EmptyDatabase({}))), IsEmpty());
    Things things;
    EXPECT_THAT(CheckDatabase(folder.Write(u"things.mdb", things.file.bytes())), IsEmpty());
}

// The findings of one kind are cut short, so that a ruined file can still be read about.
TEST(Checker, ListsAFewOfEachKind) {
    Things things;
    for (const RowId row : things.rows) {
        if (row != things.moved && row != things.deleted) things.file.Record(row)[0] = 99;
    }
    const TempFolder folder;
    const std::vector<Finding> findings = CheckDatabase(folder.Write(u"ruin.mdb", things.file.bytes()));
    EXPECT_EQ(std::ranges::count(findings, 16, &Finding::invariant), 51);
    EXPECT_EQ(findings.back().text, u"648 more of this kind");
}

}  // namespace
}  // namespace tav::jet
