#include "db/native_engine.h"

#include <algorithm>

#include "common/failure.h"
#include "jet/file/usage_map.h"
#include "sql/executor.h"

namespace tav {
namespace {

// Beyond this size nothing is known of how the file's own engine lays out its pages.
constexpr std::uint64_t kLargestFile = 120ULL << 20;

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
                    request.for_reading ? jet::Database::Access::Read : jet::Database::Access::Write) {}

    Recordset Execute(const SqlText& sql) override { return executor_.Execute(sql); }
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
        jet::PageFile& file = executor_.database().file();
        const std::uint64_t used =
            std::uint64_t{file.PageCount() - jet::CountFreePages(file)} * jet::kPageSize;
        return kLargestFile - std::min(used, kLargestFile);
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
