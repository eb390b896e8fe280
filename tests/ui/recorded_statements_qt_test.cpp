// The SQL that the system really builds, recorded while the samples are imported, summed up and cleared:
// tests/db/statements.txt has a statement of every shape.
#include <set>

#include "common/get_next.h"
#include "db/clearbase.h"
#include "db/engine.h"
#include "db/holdings.h"
#include "db/native_engine.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/get_vipis.h"
#include "samples/generator.h"
#include "sql/statement_cache.h"
#include "support/failure_of.h"
#include "ui/desktop.h"

namespace tav {
namespace {

// The text with "?" for every literal and without a number at its end; of an insert, what stands before its
// columns.
Text ShapeOf(TextView text) {
    const SqlText sql = jet::WithValues(SqlText(text));
    Text shape;
    std::size_t end = 0;
    for (const SqlText::Span& value : sql.values()) {
        shape.append(sql.text(), end, value.begin - end).append(u"?");
        end = value.begin + value.length;
    }
    shape.append(sql.text(), end);
    shape = shape.substr(0, shape.find_last_not_of(u"0123456789") + 1);  // "where id>5"
    return shape.starts_with(u"insert") ? shape.substr(0, shape.find(u'(')) : shape;
}

std::set<Text> recorded;

class RecordingEngine : public Engine {
 public:
    explicit RecordingEngine(const OpenRequest& request) : engine_(OpenNativeEngine(request)) {}
    Recordset Execute(const SqlText& sql) override {
        recorded.insert(ShapeOf(sql.text()));
        return engine_->Execute(sql);
    }
    void EndUnit() override { engine_->EndUnit(); }
    void SetSavepoint() override { engine_->SetSavepoint(); }
    void ReleaseSavepoint() override { engine_->ReleaseSavepoint(); }
    void RollBackToSavepoint() override { engine_->RollBackToSavepoint(); }
    std::vector<TextSize> TextSizes(TextView table) override { return engine_->TextSizes(table); }
    std::uint64_t RoomLeft() const override { return engine_->RoomLeft(); }
    void Close() override { engine_->Close(); }

 private:
    std::unique_ptr<Engine> engine_;
};

}  // namespace

// In place of the platform's choice (db/engine_linux.cpp).
std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    return std::make_unique<RecordingEngine>(request);
}
Text EngineInUse() {
    return u"recording";
}

namespace {

class RecordedStatements : public test::Desktop {};

TEST_F(RecordedStatements, HaveTheirPlaceInTheTranscript) {
    const Text database = folder_ / u"PlX_Base.mdb";
    samples::SampleFolder(folder_ / u"in");
    recorded.clear();
    Import();
    Start();
    ASSERT_TRUE(WaitCounts("lblInfoBase", "Не перекрываются интервалами"));
    Click(Main("chkKons"));
    for (const TextView kpp : {test::kKpp, kAllSubdivisions, TextView(u"18210101011011000110")}) {
        HeldDocuments(database, test::kInn, kpp);
        GetFiles(database, test::kInn, kpp, folder_ / u"out");
        GetFilesAct(database, test::kInn, kpp, folder_ / u"out");
    }
    GetVipis(database, 1, folder_ / u"out");
    clearbase(database, test::kInn, test::kKpp);
    clearbaseAll(database);

    std::set<Text> tried;
    const Text transcript = FromUtf8(test::TestFile("db/statements.txt"));
    for (TextView rest = transcript; !rest.empty();) {
        const TextView line = GetNext(rest, u"\n");
        // Some of them are no statements at all.
        if (line.starts_with(u"> ")) test::FailureOf([&] { tried.insert(ShapeOf(line.substr(2))); });
    }
    EXPECT_GT(recorded.size(), 25U);
    for (const Text& shape : recorded) EXPECT_TRUE(tried.contains(shape)) << ToUtf8(shape);
}

}  // namespace
}  // namespace tav
