#include "db/native_engine.h"

#include "common/failure.h"
#include "jet/file/page_allocation.h"
#include "sql/executor.h"

namespace tav {
namespace {

// So much room is enough for whoever asks; more is not counted.
constexpr jet::PageNumber kMostRoom = 16384;

constexpr TextView kTables[] = {u"tav_operations_header", u"tav_operations", u"tav_acts",
                                u"tav_operations_type"};

Text DataSource(TextView connection_string) {
    if (!EqualNoCase(connection_string.substr(0, kConnectionOpening.size()), kConnectionOpening)) {
        throw Failure(u"Provider cannot be found. It may not be properly installed.");
    }
    return Text(connection_string.substr(kConnectionOpening.size()));
}

class NativeEngine : public Engine {
 public:
    explicit NativeEngine(const OpenRequest& request)
        : executor_(DataSource(request.connection_string),
                    request.for_reading ? jet::Database::Access::Read : jet::Database::Access::Write,
                    kTables) {}

    Recordset Execute(const SqlText& sql) override { return executor_.Execute(sql); }
    void ExecuteAll(std::span<const SqlText> statements) override { executor_.ExecuteAll(statements); }
    void ForEachRow(const SqlText& sql, const TakeRow& take) override { executor_.ForEachRow(sql, take); }
    void EndUnit() override { executor_.Commit(); }
    void SetSavepoint() override { executor_.SetSavepoint(); }
    void ReleaseSavepoint() override { executor_.ReleaseSavepoint(); }
    void RollBackToSavepoint() override { executor_.RollBackToSavepoint(); }
    std::vector<TextSize> TextSizes(TextView table) override {
        std::vector<TextSize> sizes;
        const jet::Table* found = executor_.database().FindTable(table);
        if (found == nullptr) return sizes;
        for (const jet::Column& column : found->definition().columns) {
            if (column.type != jet::ColumnType::Text) continue;
            sizes.push_back({column.name, column.length / sizeof(char16_t)});
        }
        return sizes;
    }
    std::uint64_t RoomLeft() const override {
        jet::Database& database = executor_.database();
        const jet::PageNumber pages = jet::PagesLeft(database.file(), database.LastPageOfRows(), kMostRoom);
        return std::uint64_t{pages} * jet::kPageSize;
    }
    void Close() override { executor_.Commit(); }

 private:
    mutable jet::Executor executor_;
};

}  // namespace

std::unique_ptr<Engine> OpenNativeEngine(const OpenRequest& request) {
    return std::make_unique<NativeEngine>(request);
}

}  // namespace tav
