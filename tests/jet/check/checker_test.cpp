// What the checker says about whole files: good ones, foreign ones, randomly damaged ones.
#include "jet/check/checker.h"

#include <gmock/gmock.h>

#include <random>

#include "jet/check/damaged_database.h"
#include "jet/file/header_mask.h"
#include "jet/jet_samples.h"

namespace tav::jet {

// How a failing test prints a finding.
void PrintTo(const Finding& finding, std::ostream* out) {
    *out << (finding.error ? "E" : "N") << finding.invariant << " " << ToUtf8(finding.text);
}

namespace {

using tav::test::TempFolder;
using test::FileBytes;
using test::Things;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

TEST(Checker, FilesOfTheDatabaseEngineHaveNoErrors) {
    TAV_NEEDS_SAMPLES();
    const std::vector<Text> samples = tav::test::SampleDatabases();
    ASSERT_FALSE(samples.empty());
    for (const Text& sample : samples) {
        EXPECT_THAT(CheckDatabase(tav::test::SamplePath(ToUtf8(sample))), Each(Field(&Finding::error, false)))
            << ToUtf8(sample);
    }
}

TEST(Checker, HasNothingToSayAboutNewFiles) {
    const TempFolder folder;
    EXPECT_THAT(CheckDatabase(folder.Write(u"new.mdb", EmptyDatabase({}))), IsEmpty());
    Things things;
    EXPECT_THAT(CheckDatabase(folder.Write(u"things.mdb", things.file.bytes())), IsEmpty());
}

// A file that is no database that can be opened gives one finding that says why.
TEST(Checker, RefusesWhatIsNoDatabase) {
    struct Case {
        const char* what;
        TextView words;
        void (*change)(std::string& bytes);
    };
    const Case cases[] = {
        {"text", u"Unrecognized database format", [](std::string& bytes) { bytes.replace(0, 20, 20, 'x'); }},
        {"nothing", u"Unrecognized database format", [](std::string& bytes) { bytes.clear(); }},
        {"two pages", u"size is wrong", [](std::string& bytes) { bytes.resize(2 * kPageSize); }},
        {"part of a page", u"size is wrong", [](std::string& bytes) { bytes += "more"; }},
        {"older", u"older version", [](std::string& bytes) { bytes[0x14] = 0; }},
        {"newer", u"newer version", [](std::string& bytes) { bytes[0x14] = 2; }},
        {"encrypted", u"encrypted", [](std::string& bytes) { bytes[0x3E] ^= 1; }},
        {"with password", u"Not a valid password", [](std::string& bytes) { bytes[0x42] ^= 'p'; }},
        {"without date", u"creation date", [](std::string& bytes) { bytes[0x79] ^= 0x3F; }},
    };
    const std::string whole = EmptyDatabase({});
    const TempFolder folder;
    for (const Case& one : cases) {
        std::string bytes = whole;
        one.change(bytes);
        const Text path = folder.Write(u"foreign.mdb", bytes);
        const std::vector<Finding> findings = CheckDatabase(path);
        ASSERT_EQ(findings.size(), 1u) << one.what;
        EXPECT_TRUE(findings[0].error) << one.what;
        EXPECT_EQ(findings[0].invariant, 1) << one.what;
        EXPECT_NE(findings[0].text.find(one.words), Text::npos) << ToUtf8(findings[0].text);
        EXPECT_NE(findings[0].text.find(path), Text::npos) << ToUtf8(findings[0].text);
    }
}

TEST(Checker, RefusesMissingAndLockedFiles) {
    const TempFolder folder;
    std::vector<Finding> findings = CheckDatabase(folder / u"missing.mdb");
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_NE(findings[0].text.find(u"Could not find file"), Text::npos);

    const Text path = folder.Write(u"locked.mdb", EmptyDatabase({}));
    const PageFile holder(path, PageFile::Access::Write);
    findings = CheckDatabase(path);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_NE(findings[0].text.find(u"file already in use"), Text::npos);
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

// Whatever the bytes are, there are only findings.
TEST(Checker, SurvivesRandomDamage) {
    Things things;
    const TempFolder folder;
    std::mt19937 random(20110201);
    const std::string whole = things.file.bytes();
    int damaged = 0;
    for (int round = 0; round < 100; ++round) {
        std::string bytes = whole;
        const int flips = 1 << random() % 8;
        for (int flip = 0; flip < flips; ++flip) {
            // Half of them in the beginning of a page, where the structure is.
            const std::size_t page = 1 + random() % (bytes.size() / kPageSize - 1);
            const std::size_t offset = random() % (flip % 2 == 0 ? 64 : kPageSize);
            bytes[page * kPageSize + offset] = static_cast<char>(random());
        }
        const std::vector<Finding> findings = CheckDatabase(folder.Write(u"damaged.mdb", bytes));
        damaged += std::ranges::any_of(findings, &Finding::error);
    }
    EXPECT_GT(damaged, 80);
}

}  // namespace
}  // namespace tav::jet
