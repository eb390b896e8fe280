#include "db/connection.h"

#include "common/concat.h"
#include "common/guard.h"
#include "db/engine.h"
#include "db/patience.h"

namespace tav {

Connection::Connection() = default;

Connection::~Connection() {
    if (engine_ != nullptr) Guarded(u"Ошибка в функции Close", [&] { Close(); });
}

void Connection::Open(TextView connection_string) {
    Open({connection_string, CursorLocation, false});
}

void Connection::OpenForReading(TextView connection_string) {
    Open({connection_string, CursorLocation, true});
}

void Connection::Open(const OpenRequest& request) {
    if (engine_ != nullptr) throw Failure(u"Operation is not allowed when the object is open.");
    for (Attempts attempts; engine_ == nullptr;) {
        try {
            engine_ = OpenEngine(request);
        } catch (const Failure& failure) {
            if (failure.error() != RunTimeError::FileInUse || !attempts.Again()) throw;
        }
    }
}

Engine& Connection::Opened() const {
    if (engine_ == nullptr) throw Failure(u"Operation is not allowed when the object is closed.");
    return *engine_;
}

Recordset Connection::Execute(const SqlText& sql) {
    return Opened().Execute(sql);
}

void Connection::ExecuteAll(std::span<const SqlText> statements) {
    Opened().ExecuteAll(statements);
}

void Connection::ForEachRow(const SqlText& sql, const TakeRow& take) {
    Opened().ForEachRow(sql, take);
}

void Connection::EndUnit() {
    Opened().EndUnit();
}

void Connection::SetSavepoint() {
    Opened().SetSavepoint();
}

void Connection::ReleaseSavepoint() {
    Opened().ReleaseSavepoint();
}

void Connection::RollBackToSavepoint() {
    Opened().RollBackToSavepoint();
}

std::vector<TextSize> Connection::TextSizes(TextView table) {
    return Opened().TextSizes(table);
}

std::uint64_t Connection::RoomLeft() const {
    return Opened().RoomLeft();
}

// The engine goes also when the disk refuses what was executed: the file is then as it was before.
void Connection::Close() {
    Opened();
    const std::unique_ptr<Engine> engine = std::move(engine_);
    engine->Close();
}

Text ConnectionString(TextView database_path) {
    return Concat(kConnectionOpening, database_path);
}

}  // namespace tav
