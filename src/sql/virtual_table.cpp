#include "sql/virtual_table.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/table/column_conversion.h"
#include "sql/default_value.h"
#include "sql/sql_collation.h"
#include "sql/sql_value.h"
#include "sql/stored_key.h"

namespace tav::jet {
namespace {

struct Handle : sqlite3_vtab {
    VirtualTable* table = nullptr;
};

struct Met {};

// Walks all rows, or the candidates a search found.
struct Cursor : sqlite3_vtab_cursor {
    VirtualTable* table = nullptr;
    std::optional<Table::Scan> scan;
    std::optional<std::size_t> null;     // a column that the scan's rows have no value of
    std::optional<StoredKeys<Met>> met;  // where the scan passes over rows that repeat another
    std::vector<RowId> found;
    std::size_t next = 0;
    std::optional<Table::Row> row;  // nothing after the last one
    std::uint64_t trims = 0;        // of the file, when the row was read

    // The present row's bytes, wherever they are by now.
    const Table::Row& Present() {
        if (trims != table->table().Trims()) {
            trims = table->table().Trims();
            row = scan ? scan->row() : table->table().Find(found[next]);
        }
        return *row;
    }

    bool IsWanted() {
        if (null && row->Stored(*null)) return false;
        if (!met) return true;
        if (met->Find(*row) != nullptr) return false;
        met->Add({});
        return true;
    }

    void Show() {
        trims = table->table().Trims();
        row.reset();
        if (scan) {
            for (; !scan->AtEnd(); scan->Next()) {
                row = scan->row();
                if (IsWanted()) return;
                row.reset();
                table->table().Trim();
                trims = table->table().Trims();
            }
        } else if (next < found.size()) {
            row = table->table().Find(found[next]);
        }
    }
};

VirtualTable& TableOf(sqlite3_vtab* handle) {
    return *static_cast<Handle*>(handle)->table;
}
Cursor& CursorOf(sqlite3_vtab_cursor* cursor) {
    return *static_cast<Cursor*>(cursor);
}

// Runs the body of a callback; nothing it throws goes through SQLite.
template <class Body>
int Guarded(Callbacks& callbacks, Body body) noexcept {
    try {
        body();
        return SQLITE_OK;
    } catch (...) {
        callbacks.Keep();
        return SQLITE_ERROR;
    }
}

int Connect(sqlite3* database, void* table, int, const char* const*, sqlite3_vtab** handle, char**) {
    auto& virtual_table = *static_cast<VirtualTable*>(table);
    return Guarded(virtual_table.callbacks(), [&] {
        const std::string declaration = virtual_table.Declaration();
        bool& declares = virtual_table.callbacks().declares_table;
        declares = true;
        const int declared = sqlite3_declare_vtab(database, declaration.c_str());
        declares = false;
        if (declared != SQLITE_OK) {
            throw Failure(Concat(u"Table '", virtual_table.table().definition().name,
                                 u"' cannot be used in a statement: ", FromUtf8(sqlite3_errmsg(database))));
        }
        auto made = std::make_unique<Handle>();
        made->table = &virtual_table;
        *handle = made.release();
    });
}

int Disconnect(sqlite3_vtab* handle) {
    delete static_cast<Handle*>(handle);
    return SQLITE_OK;
}

int BestIndex(sqlite3_vtab* handle, sqlite3_index_info* question) {
    VirtualTable& table = TableOf(handle);
    return Guarded(table.callbacks(),
                   [&] { table.search().Plan(*question, table.callbacks().ignores_repeats); });
}

int Open(sqlite3_vtab* handle, sqlite3_vtab_cursor** cursor) {
    return Guarded(TableOf(handle).callbacks(), [&] {
        auto made = std::make_unique<Cursor>();
        made->table = &TableOf(handle);
        *cursor = made.release();
    });
}

int Close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<Cursor*>(cursor);
    return SQLITE_OK;
}

// The rows that a search finds, for each value of a list where one is among the arguments.
std::optional<std::vector<RowId>> FoundRows(TableSearch& search, int plan, int count,
                                            sqlite3_value** arguments) {
    std::vector<Value> values;
    for (int i = 0; i < count; ++i) values.push_back(FromSqlite(arguments[i]));
    const std::optional<std::size_t> list = search.ListArgument(plan);
    if (!list) return search.Find(plan, values);
    std::vector<RowId> rows;
    sqlite3_value* value = nullptr;
    for (int result = sqlite3_vtab_in_first(arguments[*list], &value);
         result == SQLITE_OK && value != nullptr; result = sqlite3_vtab_in_next(arguments[*list], &value)) {
        values[*list] = FromSqlite(value);
        const std::optional<std::vector<RowId>> some = search.Find(plan, values);
        if (!some) return std::nullopt;
        rows.insert(rows.end(), some->begin(), some->end());
    }
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

int Filter(sqlite3_vtab_cursor* handle, int plan, const char*, int count, sqlite3_value** arguments) {
    Cursor& cursor = CursorOf(handle);
    return Guarded(cursor.table->callbacks(), [&] {
        std::optional<std::vector<RowId>> found = FoundRows(cursor.table->search(), plan, count, arguments);
        cursor.scan.reset();
        cursor.next = 0;
        if (found) {
            cursor.found = *std::move(found);
        } else {
            cursor.scan = cursor.table->table().Rows();
            cursor.null = cursor.table->search().NullColumn(plan);
            const auto repeats = cursor.table->search().RepeatColumns(plan);
            cursor.met.reset();
            if (!repeats.empty()) {
                cursor.met.emplace(cursor.table->table().definition(),
                                   std::vector(repeats.begin(), repeats.end()));
            }
        }
        cursor.Show();
    });
}

int Next(sqlite3_vtab_cursor* handle) {
    Cursor& cursor = CursorOf(handle);
    return Guarded(cursor.table->callbacks(), [&] {
        cursor.table->table().Trim();
        if (cursor.scan) {
            cursor.scan->Next();
        } else {
            ++cursor.next;
        }
        cursor.Show();
    });
}

int Eof(sqlite3_vtab_cursor* cursor) {
    return CursorOf(cursor).row ? 0 : 1;
}

int ColumnValue(sqlite3_vtab_cursor* handle, sqlite3_context* context, int column) {
    // A column that an update does not touch is not needed; its new value reads as "no change".
    if (sqlite3_vtab_nochange(context) != 0) return SQLITE_OK;
    Cursor& cursor = CursorOf(handle);
    return Guarded(cursor.table->callbacks(),
                   [&] { SetResult(context, cursor.Present().Get(static_cast<std::size_t>(column))); });
}

int Rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* id) {
    *id = CursorOf(cursor).row->id().Word();
    return SQLITE_OK;
}

int Change(sqlite3_vtab* handle, int count, sqlite3_value** arguments, sqlite3_int64* id) {
    VirtualTable& table = TableOf(handle);
    const auto row = [&] {
        return RowId::FromWord(static_cast<std::uint32_t>(sqlite3_value_int64(arguments[0])));
    };
    return Guarded(table.callbacks(), [&] {
        table.table().Trim();
        if (count == 1) {
            const RowId deleted = row();
            table.Delete(std::span(&deleted, 1));
        } else if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) {
            *id = table.Insert(arguments + 2).Word();
        } else {
            table.Update(row(), arguments + 2);
        }
    });
}

const sqlite3_module kModule = [] {
    sqlite3_module module{};
    module.iVersion = 1;
    module.xConnect = &Connect;  // no xCreate: the table is there by its name, without a "create"
    module.xBestIndex = &BestIndex;
    module.xDisconnect = &Disconnect;
    module.xOpen = &Open;
    module.xClose = &Close;
    module.xFilter = &Filter;
    module.xNext = &Next;
    module.xEof = &Eof;
    module.xColumn = &ColumnValue;
    module.xRowid = &Rowid;
    module.xUpdate = &Change;
    return module;
}();

std::string Quoted(TextView name) {
    return '"' + ToUtf8(ReplaceAll(name, u"\"", u"\"\"")) + '"';
}

}  // namespace

VirtualTable::VirtualTable(Table& table, Callbacks& callbacks)
    : table_(table), callbacks_(callbacks), search_(table), row_(table.definition().columns.size()) {}

void VirtualTable::Register(sqlite3* database) {
    const std::string name = ToUtf8(table_.definition().name);
    if (sqlite3_create_module(database, name.c_str(), &kModule, this) != SQLITE_OK) {
        throw Failure(RunTimeError::OutOfMemory);
    }
}

// Without types, so that SQLite converts nothing on its own; texts with their collation. SQLite drops the
// defaults of a virtual table's columns, so Insert puts them in.
std::string VirtualTable::Declaration() const {
    std::string sql = "create table t(";
    for (const Column& column : table_.definition().columns) {
        if (sql.back() != '(') sql += ',';
        sql += Quoted(column.name);
        if (column.IsText()) sql.append(" collate ").append(kCollation);
    }
    return sql + ')';
}

// Puts a value into row_ as the column stores it.
void VirtualTable::Take(std::size_t column_at, sqlite3_value* value) {
    const Column& column = table_.definition().columns[column_at];
    Value& place = row_[column_at];
    const bool text = sqlite3_value_type(value) == SQLITE_TEXT;
    Value& taken = column.IsText() && text ? place : literal_;
    if (!text) {
        taken = FromSqlite(value);
    } else {
        if (!std::holds_alternative<Text>(taken)) taken = Text();
        TakeText(value, std::get<Text>(taken));
    }
    if (&taken != &place) place = ConvertForColumn(column, literal_);
}

void VirtualTable::Put(std::size_t column_at, TextView text) {
    const Column& column = table_.definition().columns[column_at];
    Value& place = row_[column_at];
    Value& taken = column.IsText() ? place : literal_;
    if (!std::holds_alternative<Text>(taken)) taken = Text();
    std::get<Text>(taken).assign(text);
    if (&taken != &place) place = ConvertForColumn(column, literal_);
}

void VirtualTable::Put(std::size_t column, const Value& value) {
    row_[column] = ConvertForColumn(table_.definition().columns[column], value);
}

RowId VirtualTable::Insert(sqlite3_value** values) {
    for (std::size_t i = 0; i < row_.size(); ++i) Take(i, values[i]);
    return InsertRow();
}

RowId VirtualTable::InsertRow() {
    for (const std::size_t i : unnamed_) {
        const Column& column = table_.definition().columns[i];
        if (!column.default_value.empty()) row_[i] = DefaultOf(table_.definition(), column);
    }
    const RowId id = table_.Insert(row_);
    log_.Inserted(id);
    // Read again: the table gives autonumber columns their values.
    if (search_.HasHashes()) search_.Inserted(table_.Find(id).All(), id);
    return id;
}

void VirtualTable::Update(RowId id, sqlite3_value** values) {
    std::vector<Value> old = table_.Find(id).All();
    row_ = old;
    for (std::size_t i = 0; i < row_.size(); ++i) {
        if (sqlite3_value_nochange(values[i]) == 0) Take(i, values[i]);
    }
    if (row_ == old) return;
    table_.Update(id, row_);
    // Read again: a Null in a boolean column is stored as false.
    if (search_.HasHashes()) search_.Updated(old, table_.Find(id).All(), id);
    log_.Updated(id, std::move(old));
}

void VirtualTable::Update(const PlainStatement& statement, std::span<const PlainUpdate> updates) {
    log_.Lose();
    search_.DropHashes();
    UpdateRows(table_, statement, updates);
}

void VirtualTable::Delete(std::span<const RowId> rows) {
    log_.Lose();
    for (std::size_t i = 0; search_.HasHashes() && i < rows.size(); ++i) {
        table_.Trim();
        search_.Deleted(table_.Find(rows[i]).All(), rows[i]);
    }
    table_.Delete(rows);
}

}  // namespace tav::jet
