#include "exports/export_sqlite.h"

#include <sqlite3.h>

#include <memory>

#include "common/concat.h"
#include "common/failure.h"
#include "exports/export_target.h"
#include "exports/value_text.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

using jet::Column;
using jet::ColumnType;

std::string DeclaredType(const Column& column) {
    switch (column.type) {
        case ColumnType::Boolean:
            return "BOOLEAN";
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
            return "INTEGER";
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Numeric:
            return "REAL";
        case ColumnType::Date:
            return "DATETIME";
        case ColumnType::Text:
            return "VARCHAR(" + std::to_string(column.length / 2) + ")";
        case ColumnType::Memo:
            return "TEXT";
        default:
            return "BLOB";
    }
}

std::string Name(TextView name) {
    return "\"" + WholeUtf8(ReplaceAll(name, u"\"", u"\"\"")) + "\"";
}

std::string PrimaryKey(const jet::TableDefinition& table) {
    for (const jet::RealIndex& index : table.indexes) {
        if (!index.primary) continue;
        std::string names;
        for (const jet::IndexColumn& part : index.columns)
            names += (names.empty() ? "" : ", ") + Name(table.columns[part.column].name);
        return ", PRIMARY KEY (" + names + ")";
    }
    return {};
}

std::string CreateTable(const jet::TableDefinition& table) {
    std::string columns;
    for (const Column& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + Name(column.name) + " " + DeclaredType(column) +
                   (column.required ? " NOT NULL" : "");
    }
    return "CREATE TABLE " + Name(table.name) + " (" + columns + PrimaryKey(table) + ")";
}

std::string Insert(const jet::TableDefinition& table) {
    std::string places;
    for (std::size_t i = 0; i < table.columns.size(); ++i) places += i == 0 ? "?" : ", ?";
    return "INSERT INTO " + Name(table.name) + " VALUES (" + places + ")";
}

struct Binder {
    sqlite3_stmt* statement;
    int place;

    int operator()(const Null&) const { return sqlite3_bind_null(statement, place); }
    int operator()(bool flag) const { return sqlite3_bind_int(statement, place, flag ? 1 : 0); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, place, number); }
    int operator()(double number) const { return sqlite3_bind_double(statement, place, number); }
    int operator()(const Money& money) const {
        return sqlite3_bind_double(statement, place, static_cast<double>(money.ten_thousandths) / 10000);
    }
    int operator()(const Date& date) const { return BindText(IsoDate(date)); }
    int operator()(const Text& text) const { return BindText(WholeUtf8(text)); }
    int operator()(const Binary& binary) const {
        return sqlite3_bind_blob64(statement, place, binary.bytes.data(), binary.bytes.size(),
                                   SQLITE_TRANSIENT);
    }
    int BindText(const std::string& text) const {
        return sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
};

// A new SQLite database, in a transaction.
class Output {
 public:
    // `target` is what failures name.
    Output(const Text& path, TextView target) : target_(target) {
        sqlite3* raw = nullptr;
        const int opened =
            sqlite3_open_v2(ToUtf8(path).c_str(), &raw,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        database_.reset(raw);
        Check(opened);
        // A failure takes the whole file away, so that it needs no journal.
        Run("PRAGMA encoding = 'UTF-8'; PRAGMA journal_mode = OFF; PRAGMA synchronous = FULL; BEGIN");
    }

    void Add(jet::Table& table) {
        Run(CreateTable(table.definition()));
        sqlite3_stmt* raw = nullptr;
        const int prepared =
            sqlite3_prepare_v2(database_.get(), Insert(table.definition()).c_str(), -1, &raw, nullptr);
        const std::unique_ptr<sqlite3_stmt, Closer> insert(raw);
        Check(prepared);
        for (auto rows = table.Rows(); !rows.AtEnd(); rows.Next()) {
            StopIfInterrupted();
            int place = 0;
            for (const Value& value : rows.row().All()) Check(std::visit(Binder{raw, ++place}, value));
            sqlite3_step(raw);
            Check(sqlite3_reset(raw));
        }
    }

    void Finish() {
        Run("COMMIT");
        Check(sqlite3_close(database_.release()));
    }

 private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void Run(const std::string& sql) const {
        Check(sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr));
    }
    void Check(int code) const {
        if (code == SQLITE_OK) return;
        if (code == SQLITE_FULL) throw Failure(RunTimeError::DiskFull, target_);
        const Text words = FromUtf8(database_ ? sqlite3_errmsg(database_.get()) : sqlite3_errstr(code));
        throw Failure(RunTimeError::PathFileAccess, Concat(target_, u" (", words, u")"));
    }

    Text target_;
    std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace

void ExportToSqlite(jet::Database& database, TextView file) {
    const Text target = NewTarget(file);
    WorkFolder work(target);
    constexpr TextView kName = u"export.sqlite";
    Output output(work.path() + Text(kName), target);
    for (const jet::TableEntry& entry : database.Tables()) output.Add(*database.FindTable(entry.name));
    output.Finish();
    work.Publish(kName, target);
}

}  // namespace tav
