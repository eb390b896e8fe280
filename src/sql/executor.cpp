#include "sql/executor.h"

#include <algorithm>
#include <map>
#include <utility>

#include "jet/table/column_conversion.h"
#include "sql/sql_value.h"
#include "sql/statement_cache.h"
#include "sql/virtual_table.h"

namespace tav::jet {
namespace {

// Rows whose index entries and pages go together; each may have a page of its own.
constexpr std::size_t kDeletedTogether = 4096;

// Brings a statement back to its beginning, whatever ended it.
class Reset {
 public:
    explicit Reset(sqlite3_stmt* statement) : statement_(statement) {}
    ~Reset() { sqlite3_reset(statement_); }
    Reset(const Reset&) = delete;
    Reset& operator=(const Reset&) = delete;

 private:
    sqlite3_stmt* statement_;
};

// A result column's name: its alias or column; the place of one that has neither.
Text ResultName(sqlite3_stmt* statement, int column) {
    Text name = FromUtf8(sqlite3_column_name(statement, column));
    const bool expression = name.find_first_of(u"( ?") != name.npos;
    return expression ? Text(u"Expr").append(Digits(1000 + column)) : name;
}

}  // namespace

struct Executor::State {
    State(TextView path, Database::Access access, std::span<const TextView> group)
        : database(path, access), together(group.begin(), group.end()), sqlite(OpenSqlite(callbacks)) {}

    const TableDefinition* FindTable(TextView name);
    StatementHandle PrepareOne(const Rewritten& rewritten, const std::string& sql);
    StatementHandle PrepareFinding(const Rewritten& rewritten);
    Prepared& Prepare(const SqlText& sql);
    void Bind(Prepared& prepared, const SqlText& sql);
    void Delete(Prepared& prepared);
    ResultTable Run(Prepared& prepared);
    void List(const Rewritten& rewritten, const TakeRow& take);
    void InsertPlain(const Prepared& prepared, const SqlText& sql);
    PlainUpdate ReadUpdate(const Prepared& prepared, const SqlText& sql);
    template <class Change>
    void ChangeBy(Prepared& prepared, Change change);
    Recordset Execute(const SqlText& sql);
    std::size_t UpdateTogether(std::span<const SqlText> statements);
    void DropHashes();
    void RequireChangeable();
    void EndLogs();

    Database database;
    std::vector<Text> together;  // tables that are still to be looked at before the first change
    Callbacks callbacks;
    std::map<Table*, std::unique_ptr<VirtualTable>> tables;
    SqliteHandle sqlite;
    StatementCache cache;
    bool savepoint = false;
};

// The table's definition; SQLite knows the table from now on.
const TableDefinition* Executor::State::FindTable(TextView name) {
    Table* table = database.FindTable(name);
    if (table == nullptr) return nullptr;
    if (!tables.contains(table)) {
        auto made = std::make_unique<VirtualTable>(*table, callbacks);
        if (savepoint) made->log().Begin();
        const auto known = tables.emplace(table, std::move(made)).first;
        try {
            known->second->Register(sqlite.get());
        } catch (...) {
            tables.erase(known);
            throw;
        }
    }
    return &table->definition();
}

StatementHandle Executor::State::PrepareOne(const Rewritten& rewritten, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    callbacks.ignores_repeats = rewritten.ignores_repeats;
    const int result = sqlite3_prepare_v3(sqlite.get(), sql.data(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &statement, &tail);
    callbacks.ignores_repeats = false;
    StatementHandle handle(statement);
    callbacks.Rethrow();
    if (result != SQLITE_OK) throw SqliteFailure(sqlite.get(), rewritten.kind);
    if (handle == nullptr || tail != sql.data() + sql.size()) {
        throw Failure(u"Characters found after end of SQL statement.");
    }
    return handle;
}

// For a delete, the select of the rows it deletes, so that they can go some at a time: SQLite itself would list them
// all first. None for one whose selects look at the table while it changes or that may meet a row again that is gone,
// or whose table has a column of that name.
StatementHandle Executor::State::PrepareFinding(const Rewritten& rewritten) {
    const bool one_by_one = rewritten.kind == StatementKind::Delete && !rewritten.reads_changed &&
                            !rewritten.may_meet_twice && !rewritten.changed->FindColumn(u"rowid");
    if (!one_by_one) return nullptr;
    constexpr std::size_t kVerb = 6;  // "delete"
    return PrepareOne(rewritten, "select rowid" + rewritten.sql.substr(kVerb));
}

Prepared& Executor::State::Prepare(const SqlText& sql) {
    if (Prepared* known = cache.Find(sql)) return *known;
    Rewritten rewritten = Rewrite(sql, [this](TextView name) { return FindTable(name); });
    StatementHandle statement = PrepareOne(rewritten, rewritten.sql);
    const int columns = sqlite3_column_count(statement.get());
    if (rewritten.sorts_by_columns) {
        std::string sorted = rewritten.sql + "order by ";
        for (int i = 1; i <= columns; ++i) sorted.append(i > 1 ? "," : "").append(std::to_string(i));
        statement = PrepareOne(rewritten, sorted);
    }
    StatementHandle finding = PrepareFinding(rewritten);
    const bool finds_rows = finding != nullptr;
    if (finds_rows) statement = std::move(finding);
    std::vector<Text> names;
    names.reserve(static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) names.push_back(ResultName(statement.get(), i));
    for (std::size_t i = 0; i < rewritten.parameters.size(); ++i) {
        const Parameter& parameter = rewritten.parameters[i];
        if (parameter.IsConstant()) jet::Bind(statement.get(), static_cast<int>(i) + 1, parameter.constant);
    }
    VirtualTable* changed = nullptr;
    if (rewritten.changed != nullptr) changed = tables.at(database.FindTable(rewritten.changed->name)).get();
    return cache.Add(
        sql,
        {Shape(sql), std::move(rewritten), changed, std::move(statement), finds_rows, std::move(names), {}});
}

void Executor::State::Bind(Prepared& prepared, const SqlText& sql) {
    sqlite3_stmt* statement = prepared.statement.get();
    prepared.written.resize(prepared.rewritten.parameters.size());
    for (std::size_t i = 0; i < prepared.rewritten.parameters.size(); ++i) {
        const Parameter& parameter = prepared.rewritten.parameters[i];
        if (parameter.IsConstant()) continue;
        const int number = static_cast<int>(i) + 1;
        if (parameter.kind == TokenKind::String &&
            (parameter.column == nullptr || parameter.column->IsText())) {
            if (const auto whole = parameter.WholeValue(sql)) {
                const int bytes = static_cast<int>(whole->size() * sizeof(char16_t));
                if (sqlite3_bind_text16(statement, number, whole->data(), bytes, SQLITE_STATIC) !=
                    SQLITE_OK) {
                    throw Failure(RunTimeError::OutOfMemory);
                }
                continue;
            }
        }
        prepared.written[i] = parameter.Read(sql);
        jet::Bind(statement, number, prepared.written[i]);
    }
}

// The columns of all rows, as they lie in the file.
void Executor::State::List(const Rewritten& rewritten, const TakeRow& take) {
    Table& table = *database.FindTable(rewritten.listed->name);
    std::vector<Value> row(rewritten.listed_columns.size());
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const Table::Row read = scan.row();
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = AsResult(read.Get(rewritten.listed_columns[i]));
        table.Trim();
        take(row);
    }
}

// Deletes the rows that the statement finds, many at a time.
void Executor::State::Delete(Prepared& prepared) {
    sqlite3_stmt* statement = prepared.statement.get();
    std::vector<RowId> rows;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        rows.push_back(RowId::FromWord(static_cast<std::uint32_t>(sqlite3_column_int64(statement, 0))));
        if (rows.size() < kDeletedTogether) continue;
        prepared.changed->Delete(rows);
        rows.clear();
    }
    callbacks.Rethrow();
    if (result != SQLITE_DONE) throw SqliteFailure(sqlite.get(), prepared.rewritten.kind);
    if (!rows.empty()) prepared.changed->Delete(rows);
}

ResultTable Executor::State::Run(Prepared& prepared) {
    sqlite3_stmt* statement = prepared.statement.get();
    const Reset reset(statement);
    ResultTable table;
    table.names = prepared.names;
    if (prepared.rewritten.listed != nullptr) {
        List(prepared.rewritten, [&](auto row) { table.rows.emplace_back(row.begin(), row.end()); });
        return table;
    }
    if (prepared.finds_rows) {
        Delete(prepared);
        return table;
    }
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        std::vector<Value>& row = table.rows.emplace_back();
        row.reserve(table.names.size());
        // The connection belongs to this thread alone, so a column's value may be read where it lies.
        for (std::size_t i = 0; i < table.names.size(); ++i) {
            row.push_back(FromSqlite(sqlite3_column_value(statement, static_cast<int>(i))));
        }
    }
    callbacks.Rethrow();
    if (result != SQLITE_DONE) throw SqliteFailure(sqlite.get(), prepared.rewritten.kind);
    return table;
}

// What the tables hold is not what the hashes were told: a statement or unit was taken back.
void Executor::State::DropHashes() {
    for (auto& [table, virtual_table] : tables) virtual_table->search().DropHashes();
}

void Executor::State::RequireChangeable() {
    for (const Text& name : together) {
        if (Table* table = database.FindTable(name)) table->RequireChangeable();
    }
    together.clear();
}

void Executor::State::EndLogs() {
    savepoint = false;
    for (auto& [table, virtual_table] : tables) virtual_table->log().End();
}

// Gives the values of a plain insert to the table.
void Executor::State::InsertPlain(const Prepared& prepared, const SqlText& sql) {
    VirtualTable& table = *prepared.changed;
    table.BeginRow();
    for (const PlainValue& value : prepared.rewritten.plain->stored) {
        if (!value.parameter) continue;
        const Parameter& parameter = prepared.rewritten.parameters[*value.parameter];
        if (const auto whole = parameter.WholeValue(sql)) {
            table.Put(value.column, *whole);
        } else {
            table.Put(value.column, parameter.Read(sql));
        }
    }
    table.InsertRow();
}

PlainUpdate Executor::State::ReadUpdate(const Prepared& prepared, const SqlText& sql) {
    const std::vector<Parameter>& parameters = prepared.rewritten.parameters;
    PlainUpdate update;
    for (const PlainValue& value : prepared.rewritten.plain->stored) {
        const Column& column = prepared.rewritten.changed->columns[value.column];
        const Value literal = value.parameter ? parameters[*value.parameter].Read(sql) : Value();
        update.stored.push_back(ConvertForColumn(column, literal));
    }
    for (const PlainValue& condition : prepared.rewritten.plain->conditions) {
        update.conditions.push_back(std::get<Text>(parameters[*condition.parameter].Read(sql)));
    }
    return update;
}

// A change that fails leaves the file as it was.
template <class Change>
void Executor::State::ChangeBy(Prepared& prepared, Change change) {
    if (!database.file().writable()) {
        throw Failure(u"Operation must use an updateable query.").In(database.file().path());
    }
    RequireChangeable();
    ChangeLog& log = prepared.changed->log();
    const std::size_t changes = log.Length();
    prepared.changed->SetUnnamed(prepared.rewritten.unnamed);
    database.file().BeginStatement();
    try {
        change();
    } catch (...) {
        if (savepoint) {
            log.TakeBack(changes);
        } else {
            DropHashes();
        }
        database.file().RollBackStatement();
        throw;
    }
    database.file().KeepStatement();
}

Recordset Executor::State::Execute(const SqlText& sql) {
    Prepared& prepared = Prepare(sql);
    database.file().Trim();
    if (prepared.rewritten.kind == StatementKind::Insert && prepared.rewritten.plain) {
        ChangeBy(prepared, [&] { InsertPlain(prepared, sql); });
        return Recordset();
    }
    Bind(prepared, sql);
    if (prepared.changed == nullptr) return Recordset(Run(prepared));
    ChangeBy(prepared, [&] { Run(prepared); });
    return Recordset();
}

// How many of the statements, from the first one on, are done: those that one walk through a table can carry out.
std::size_t Executor::State::UpdateTogether(std::span<const SqlText> statements) {
    Prepared& prepared = Prepare(statements.front());
    if (prepared.rewritten.kind != StatementKind::Update || !prepared.rewritten.plain) return 0;
    std::vector<PlainUpdate> updates;
    try {
        for (const SqlText& sql : statements) {
            if (!prepared.shape.Fits(sql)) break;
            updates.push_back(ReadUpdate(prepared, sql));
        }
    } catch (const Failure&) {
        // A value that its column cannot hold: whether a row would take it is the statement's own affair.
    }
    if (updates.empty()) return 0;
    ChangeBy(prepared, [&] { prepared.changed->Update(*prepared.rewritten.plain, updates); });
    return updates.size();
}

Executor::Executor(TextView path, Database::Access access, std::span<const TextView> together)
    : state_(std::make_unique<State>(path, access, together)) {}

Executor::~Executor() = default;

Recordset Executor::Execute(const SqlText& sql) {
    if (!sql.values().empty()) return state_->Execute(sql);
    return state_->Execute(WithValues(sql));
}

void Executor::ExecuteAll(std::span<const SqlText> statements) {
    const bool has_values = !statements.empty() && !statements.front().values().empty();
    const std::size_t done = has_values ? state_->UpdateTogether(statements) : 0;
    for (const SqlText& sql : statements.subspan(done)) Execute(sql);
}

void Executor::ForEachRow(const SqlText& sql, const TakeRow& take) {
    const Rewritten& rewritten = state_->Prepare(sql).rewritten;
    if (rewritten.listed != nullptr) return state_->List(rewritten, take);
    for (Recordset rows = Execute(sql); !rows.Eof(); rows.MoveNext()) take(rows.Row());
}

void Executor::SetSavepoint() {
    state_->EndLogs();
    state_->savepoint = true;
    for (auto& [table, virtual_table] : state_->tables) virtual_table->log().Begin();
    state_->database.file().SetSavepoint();
}

void Executor::ReleaseSavepoint() {
    state_->EndLogs();
    state_->database.file().ReleaseSavepoint();
}

void Executor::RollBackToSavepoint() {
    if (!state_->savepoint) return;
    for (auto& [table, virtual_table] : state_->tables) virtual_table->log().TakeBack(0);
    state_->EndLogs();
    state_->database.file().RollBackToSavepoint();
}

void Executor::Commit() {
    state_->EndLogs();
    try {
        state_->database.file().Commit();
    } catch (...) {
        state_->DropHashes();
        throw;
    }
}

Database& Executor::database() {
    return state_->database;
}

}  // namespace tav::jet
