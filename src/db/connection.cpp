#include "db/connection.h"

#include <algorithm>

#include "common/guard.h"
#include "jet/executor.h"
#include "jet/usage_map.h"

namespace tav {
namespace {

constexpr TextView kProvider = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=";

// Beyond this size nothing is known of how the file's own engine lays out its pages.
constexpr std::uint64_t kLargestFile = 120ULL << 20;

Text DataSource(TextView connection_string) {
    if (!EqualNoCase(connection_string.substr(0, kProvider.size()), kProvider)) {
        throw Failure(u"Provider cannot be found. It may not be properly installed.");
    }
    return Text(connection_string.substr(kProvider.size()));
}

}  // namespace

struct Connection::State {
    std::unique_ptr<jet::Executor> executor;

    void Open(TextView connection_string, jet::Database::Access access) {
        if (executor != nullptr) throw Failure(u"Operation is not allowed when the object is open.");
        executor = std::make_unique<jet::Executor>(DataSource(connection_string), access);
    }
    jet::Executor& Opened() const {
        if (executor == nullptr) throw Failure(u"Operation is not allowed when the object is closed.");
        return *executor;
    }
};

Connection::Connection() : state_(std::make_unique<State>()) {}

Connection::~Connection() {
    if (state_->executor != nullptr) Guarded(u"Ошибка в функции Close", [&] { Close(); });
}

void Connection::Open(TextView connection_string) {
    state_->Open(connection_string, jet::Database::Access::Write);
}

void Connection::OpenForReading(TextView connection_string) {
    state_->Open(connection_string, jet::Database::Access::Read);
}

Recordset Connection::Execute(const SqlText& sql) {
    return state_->Opened().Execute(sql);
}

void Connection::EndUnit() {
    state_->Opened().Commit();
}

std::uint64_t Connection::RoomLeft() const {
    jet::PageFile& file = state_->Opened().database().file();
    const std::uint64_t used = std::uint64_t{file.PageCount() - jet::CountFreePages(file)} * jet::kPageSize;
    return kLargestFile - std::min(used, kLargestFile);
}

// The executor goes also when the disk refuses what was executed: the file is then as it was before.
void Connection::Close() {
    state_->Opened();
    const std::unique_ptr<jet::Executor> executor = std::move(state_->executor);
    executor->Commit();
}

Text ConnectionString(TextView database_path) {
    return Text(kProvider).append(database_path);
}

}  // namespace tav
