#include "sql/sqlite_handles.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "sql/sql_collation.h"

namespace tav::jet {
namespace {

constexpr std::array<std::pair<int, int>, 11> kLimits = {{{SQLITE_LIMIT_LENGTH, 64 << 20},
                                                          {SQLITE_LIMIT_SQL_LENGTH, 8 << 20},
                                                          {SQLITE_LIMIT_COLUMN, 512},
                                                          {SQLITE_LIMIT_EXPR_DEPTH, 200},
                                                          {SQLITE_LIMIT_COMPOUND_SELECT, 16},
                                                          {SQLITE_LIMIT_VDBE_OP, 250'000},
                                                          {SQLITE_LIMIT_FUNCTION_ARG, 16},
                                                          {SQLITE_LIMIT_ATTACHED, 0},
                                                          {SQLITE_LIMIT_TRIGGER_DEPTH, 1},
                                                          {SQLITE_LIMIT_VARIABLE_NUMBER, 4000},
                                                          {SQLITE_LIMIT_WORKER_THREADS, 0}}};

constexpr std::array<std::string_view, 9> kFunctionNames = {"abs", "avg",    "count", "iif",  "max",
                                                            "min", "number", "sum",   "ucase"};

bool IsOwn(const char* name) {
    return std::string_view(name == nullptr ? "" : name).substr(0, 7) == "sqlite_";
}

// What a statement may do.
int Authorize(void* callbacks, int action, const char* first, const char* second, const char*, const char*) {
    const auto allowed = [&] {
        switch (action) {
            case SQLITE_SELECT:
                return true;
            case SQLITE_INSERT:
            case SQLITE_UPDATE:
            case SQLITE_DELETE:
            case SQLITE_READ:
                return !IsOwn(first);
            case SQLITE_FUNCTION:
                return std::find(kFunctionNames.begin(), kFunctionNames.end(), second) !=
                       kFunctionNames.end();
            default:
                return false;
        }
    };
    return static_cast<Callbacks*>(callbacks)->declares_table || allowed() ? SQLITE_OK : SQLITE_DENY;
}

// What SQLite's message begins or ends with, and what is said instead.
struct Words {
    std::string_view begin;
    std::string_view end;
    TextView said;  // empty: a syntax error
    bool names_culprit;
};
constexpr std::array<Words, 11> kWords = {
    {{"no such column: \"", "\" - should this be a string literal in single-quotes?",  // newer versions
      u"No value given for one or more required parameters.", true},
     {"no such column: ", "", u"No value given for one or more required parameters.", true},
     {"ambiguous column name: ", "",
      u"The specified field could refer to more than one table listed in the FROM clause of your SQL "
      u"statement.",
      true},
     {"access to ", "", u"No value given for one or more required parameters.", false},
     {"wrong number of arguments", "", u"Wrong number of arguments used with function in query expression.",
      false},
     {"misuse of aggregate", "", u"Cannot have aggregate function in WHERE clause.", false},
     {"integer overflow", "", u"Overflow", false},
     {"", " values were supplied", u"Number of query values and destination fields are not the same.", false},
     {"", " columns", u"Number of query values and destination fields are not the same.", false},
     {"Expression tree is too large", "", u"Query is too complex.", false},
     {"too many ", "", u"Query is too complex.", false}}};

constexpr std::array<TextView, 4> kSyntaxErrors = {
    u"Syntax error in SELECT statement.", u"Syntax error in INSERT INTO statement.",
    u"Syntax error in UPDATE statement.", u"Syntax error in DELETE statement."};

}  // namespace

SqliteHandle OpenSqlite(Callbacks& callbacks) {
    sqlite3* raw = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX;
    const int opened = sqlite3_open_v2(":memory:", &raw, flags, nullptr);
    SqliteHandle database(raw);
    if (opened != SQLITE_OK) throw Failure(RunTimeError::OutOfMemory);
    for (const auto& [limit, value] : kLimits) sqlite3_limit(raw, limit, value);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    // What a sort or a distinct of many rows needs goes to temporary files, not into memory. SQLite has no
    // tables of its own: its transaction is opened once, so that no statement has to end one.
    const char* const setup = "pragma encoding='UTF-16le'; pragma temp_store=file; begin";
    if (sqlite3_exec(raw, setup, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw Failure(RunTimeError::OutOfMemory);
    }
    AddDialect(raw, callbacks);
    sqlite3_set_authorizer(raw, &Authorize, &callbacks);
    return database;
}

Failure SqliteFailure(sqlite3* database, StatementKind kind) {
    const int code = sqlite3_errcode(database) & 0xFF;
    if (code == SQLITE_NOMEM || code == SQLITE_TOOBIG) return Failure(RunTimeError::OutOfMemory);
    const std::string_view message = sqlite3_errmsg(database);
    if (code != SQLITE_ERROR && code != SQLITE_AUTH) return Failure(FromUtf8(message));
    for (const Words& words : kWords) {
        if (!message.starts_with(words.begin) || !message.ends_with(words.end)) continue;
        const Failure failure(words.said);
        if (!words.names_culprit) return failure;
        const std::size_t around = words.begin.size() + words.end.size();
        return failure.In(FromUtf8(message.substr(words.begin.size(), message.size() - around)));
    }
    return Failure(kSyntaxErrors[static_cast<std::size_t>(kind)]);
}

}  // namespace tav::jet
