// The engine against plain SQLite tables: the statements of the system by chance, on files whose maps have every form.
// After each statement both say the same; after each run the file is sound.
//
// TAV_MODEL_STATEMENTS says how many statements are made in all; without it as many as a few seconds allow.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <regex>

#include "common/failure.h"
#include "common/regional.h"
#include "db/empty_database.h"
#include "jet/check/checker.h"
#include "jet/file/map_forms.h"
#include "sql/executor.h"
#include "sql/sql_collation.h"
#include "sql/sql_value.h"
#include "sql/sqlite_handles.h"
#include "support/support.h"

namespace tav::jet {
namespace {

// Values in braces: n a number of a document, v one of a series or a type, i a name, t a code, o an operation, p a kind of
// payment, l a long text, a an amount, d a date; a capital letter may be Null as well; # a date as it is compared.
struct Template {
    int weight;
    const char* text;
};
constexpr Template kTemplates[] = {
    {60,
     "insert into tav_operations (id,p1,p2,p3,p4,p5,p9,p10,p11,p13) values ({n},{D},{L},{o},{L},{t},{p},{A},{a},{a})"},
    {25, "insert into tav_operations (id,p3,p9,p10) values ({n},{o},{p},{A})"},
    {25,
     "insert into tav_operations_header (id,filename,h1,h2,h3,h6,h7,h8,h10,perb,pere,vid) "
     "values ({n},{i},{t},{t},{L},{T},{t},{O},{t},{d},{d},{V})"},
    {8, "insert into tav_acts (id,p11,p112,p31,p45) values ({n},{a},{A},{a},{A})"},
    {4, "insert into tav_operations_type (tid,tname,tpayment,add_date) values ({v},{o}, {p}, {d});"},
    {6, "update tav_operations set tid={v} where p3={o} and p9={p};"},
    {3, "update tav_operations set tid=Null where p3={o}"},
    {2, "update tav_operations set p4={L}, tid={v}, p10={A} where p3={o} and p9={p}"},
    {4, "update tav_operations set p4={l} where id={n}"},
    {4, "update tav_operations_header set vid=Null where vid={v}"},
    {4, "update tav_operations_header set vid={v}, h3={L} where id={n}"},
    {2, "update tav_operations_header set id={n} where id={n}"},
    {5, "delete from tav_operations where id={n}"},
    {1, "delete from tav_operations where id not in (select id from tav_operations_header);"},
    {2, "delete from tav_acts where id not in (select id from tav_operations_header);"},
    {1, "delete from tav_operations where p9={p} and p10>{a}"},
    {3, "delete * from tav_operations_header where isnull(vid) and not(isnull(h6)) and id={n}"},
    {2, "delete from tav_operations_header where h1={t} and h2={t};"},
    {1, "delete from tav_operations_type where tid={v}"},
    {4, "select max(id), max(vid) from tav_operations_header"},
    {2, "select max(tid) as tid from tav_operations_type"},
    {3, "select distinct filename from tav_operations_header"},
    {3, "select id, p1, p3, p4, p9, p10, p11, p13, tid from tav_operations where id={n}"},
    {3,
     "select vid, pere, h3 from tav_operations_header where not(isnull(vid)) and h1={t} and h2={t} and perb= {#}"},
    {3,
     "select distinct ucase(t1.p3) as p3, t1.p9, t2.tid from tav_operations t1 left join tav_operations_type t2 on "
     "ucase(t1.p3)=t2.tname and t1.p9=t2.tpayment where isnull(t1.tid)"},
    {3,
     "select sum(m1) as m1, sum(m5) as m5, sum(p13) as m9 from (select iif(p9={p},m4,Null) as m1, iif(p9={p},m8,Null) "
     "as m5, p13 from (select p9, p13, iif(p13<0,abs(p13),Null) as m4, iif(p13>0,p13,Null) as m8 from tav_operations "
     "where isnull(p1) and p3={o} and id={n}))"},
    {3,
     "select h10, vid, min(perb), max(pere), max(h1) as inn, max(h3) as name, h7 from tav_operations_header where h1={t} "
     "and not(isnull(vid)) group by h7,h10, vid order by h7, min(perb)"},
    {3,
     "select filename, vid, perb, pere, h2, h3, h6, h7, h8, h10  from tav_operations_header where h1={t} order by h7, "
     "h10, perb"},
    {3,
     "select id, h1, h2, h7, perb from tav_operations_header where h1 in ({t},{t}) and h2={t} order by h7, h10, perb"},
    {3,
     "select h2,h7,h10,perb,pere from tav_operations_header where h1={t} group by h2,h7,h10,perb,pere having "
     "count(h6)>0 and count(*)>count(h6) order by h7, perb"},
    {3,
     "select h7, perb, th.id, p11, p112, p31 from (select h1, h2,max(h3) as h3,h7,max(h6) as h6,h10,perb,pere,max(id) "
     "as id from tav_operations_header where h1={t} group by h1, h2,h7,h10,perb,pere) th,tav_acts ta where th.id=ta.id "
     "and isnull(th.h6) order by h7, perb"},
    {2, "select id, p3, p10 from tav_operations where p10>={a} and p10<{a} order by p10 desc"},
    {2, "select * from tav_operations_type order by tid"},
    {1, "select count(*), min(p1), max(p3), sum(p10) from tav_operations"},
};
constexpr const char* kTables[] = {
    "tav_operations_header (id integer primary key, filename T, h1 T, h2 T, h3 T, h6 T, h7 T, h8 T, h10 T, perb real, pere "
    "real, vid integer)",
    "tav_operations (id integer, p1 real, p2 T, p3 T, p4 T, p5 T, p9 T, p10 real, p11 real, p13 real, tid integer)",
    "tav_acts (id integer, p11 real, p112 real, p31 real, p45 real)",
    "tav_operations_type (tid integer primary key, tname T, tpayment T, add_date real)"};
constexpr TextView kOperations[] = {u"Уплата налога",        u"УПЛАТА НАЛОГА", u"начисление ПЕНИ",
                                    u"Сальдо на 01.01.2011", u"О'Генри",       u"ёлочный сбор",
                                    u"Елочный сбор"};
constexpr TextView kPayments[] = {u"налог", u"пеня", u"штраф"};

// A statement for both, with the values that SQLite is given.
struct Statement {
    SqlText jet;
    std::string plain;
    std::vector<Value> values;
};

using Rows = std::vector<std::vector<Value>>;

class Maker {
 public:
    explicit Maker(unsigned seed) : random_(seed) {}

    std::size_t Below(std::size_t limit) { return random_() % limit; }
    Statement Make() {
        int weight = 0;
        for (const Template& each : kTemplates) weight += each.weight;
        weight = static_cast<int>(Below(static_cast<std::size_t>(weight)));
        const Template* chosen = kTemplates;
        while ((weight -= chosen->weight) >= 0) ++chosen;
        Statement made;
        for (const char* at = chosen->text; *at != '\0'; ++at) {
            if (*at != '{') {
                made.jet.Fixed(FromUtf8(std::string_view(at, 1)));
                made.plain += *at;
                continue;
            }
            Add(made, at[1]);
            made.plain += '?';
            at += 2;
        }
        made.plain = std::regex_replace(made.plain, std::regex(R"(isnull\(([\w.]+)\))"), "($1 is null)");
        made.plain =
            std::regex_replace(made.plain, std::regex(R"(ucase\(([\w.]+)\))"), "(ucase($1) collate jet)");
        made.plain = std::regex_replace(made.plain, std::regex(R"(delete \*)"), "delete");
        return made;
    }

 private:
    void Add(Statement& made, char kind) {
        if (kind >= 'A' && kind <= 'Z') {
            if (Below(4) == 0) {
                made.jet.Fixed(u"Null");
                made.values.emplace_back(Null());
                return;
            }
            kind = static_cast<char>(kind - 'A' + 'a');
        }
        if (kind == 'n' || kind == 'v') {
            const auto number = static_cast<std::int64_t>(Below(kind == 'n' ? 150 : 20));
            made.jet.Number(number);
            made.values.emplace_back(number);
        } else if (kind == 'a') {
            const double amount = (static_cast<double>(Below(4000)) - 1000) / 4;
            Quote(made, FormatNumber(amount), amount);
        } else if (kind == 'd' || kind == '#') {
            const Date date{40179.0 + 31 * static_cast<double>(Below(20))};
            const CivilDate day = CivilFromDate(date);
            if (kind == 'd') {
                Quote(made, FormatDate(date), date);
            } else {
                made.jet.Fixed(u"#").Value(Digits(day.month, 2)).Fixed(u"/").Value(Digits(day.day, 2));
                made.jet.Fixed(u"/").Value(Digits(day.year, 4)).Fixed(u"#");
                made.values.emplace_back(date);
            }
        } else {
            const Text text = TextOf(kind);
            Quote(made, text, text);
        }
    }
    static void Quote(Statement& made, const Text& text, Value value) {
        made.jet.Fixed(u"'").Value(text).Fixed(u"'");
        made.values.push_back(std::move(value));
    }
    Text TextOf(char kind) {
        switch (kind) {
            case 'o':
                return Text(kOperations[Below(std::size(kOperations))]);
            case 'p':
                return Text(kPayments[Below(std::size(kPayments))]);
            case 'i':
                return Text(u"выписка ").append(Digits(static_cast<long long>(Below(60)))).append(u".rtf");
            case 't':
                return Digits(static_cast<long long>(7700 + Below(4)));
            default:
                return Text(Below(256), static_cast<char16_t>(u'а' + Below(32)));
        }
    }

    std::mt19937 random_;
};

// The same tables in SQLite alone.
class Model {
 public:
    Model() {
        sqlite3* opened = nullptr;
        EXPECT_EQ(sqlite3_open(":memory:", &opened), SQLITE_OK);
        database_.reset(opened);
        AddDialect(opened, callbacks_);
        for (const char* table : kTables) {
            Execute(std::regex_replace(std::string("create table ") + table, std::regex(" T\\b"),
                                       " text collate jet"));
        }
        Execute("begin");
    }
    // No value when SQLite refuses the statement.
    std::optional<Rows> Execute(const std::string& sql, const std::vector<Value>& values = {}) {
        sqlite3_stmt* prepared = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &prepared, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(database_.get());
        const StatementHandle statement(prepared);
        for (std::size_t i = 0; i < values.size(); ++i) Bind(prepared, static_cast<int>(i) + 1, values[i]);
        Rows rows;
        int result = 0;
        while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
            std::vector<Value>& row = rows.emplace_back();
            for (int i = 0; i < sqlite3_column_count(prepared); ++i)
                row.push_back(FromSqlite(sqlite3_column_value(prepared, i)));
        }
        return result == SQLITE_DONE ? std::optional(std::move(rows)) : std::nullopt;
    }

 private:
    Callbacks callbacks_;
    SqliteHandle database_;
};

Rows RowsOf(Recordset set) {
    Rows rows;
    for (; !set.Eof(); set.MoveNext()) {
        std::vector<Value>& row = rows.emplace_back();
        for (std::size_t i = 0; i < set.FieldCount(); ++i) row.push_back(set.Field(i));
    }
    return rows;
}

// Nulls, then numbers, dates, texts. Of texts that compare equal either may stand for a group.
int Order(const Value& a, const Value& b) {
    const auto number = [](const Value& value) -> std::optional<double> {
        if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
        if (const auto* real = std::get_if<double>(&value)) return *real;
        return std::nullopt;
    };
    if (const auto x = number(a), y = number(b); x && y) return *x < *y ? -1 : *x > *y ? 1 : 0;
    if (a.index() != b.index()) return a.index() < b.index() ? -1 : 1;
    if (const Text* text = std::get_if<Text>(&a)) return Collate(*text, std::get<Text>(b));
    if (const Date* date = std::get_if<Date>(&a)) return Order(date->serial, std::get<Date>(b).serial);
    return 0;
}
int Order(const std::vector<Value>& a, const std::vector<Value>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (const int order = Order(a[i], b[i]); order != 0) return order;
    }
    return 0;
}
bool Same(const Rows& a, const Rows& b) {
    return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return Order(x, y) == 0; });
}
void Sort(Rows& rows) {
    std::ranges::sort(rows, [](const auto& a, const auto& b) { return Order(a, b) < 0; });
}

std::string Shown(const Rows& rows) {
    std::string text;
    for (const auto& row : rows) {
        for (const Value& value : row) text += (IsNull(value) ? "null" : ToUtf8(ValueText(value))) + " | ";
        text += '\n';
    }
    return text.substr(0, 2000);
}

// The columns that a select is ordered by, of those that it returns.
Rows Keys(const Rows& rows, const std::string& sql, const std::vector<Text>& names) {
    std::vector<std::size_t> keys;
    if (const std::size_t at = sql.rfind(" order by "); at != sql.npos) {
        const std::string list = sql.substr(at + 10);
        const std::regex word(R"(\b[a-z]\w*)");
        for (std::sregex_iterator each(list.begin(), list.end(), word), end; each != end; ++each) {
            const auto name = std::ranges::find(names, FromUtf8(each->str()));
            if (name == names.end()) break;
            keys.push_back(static_cast<std::size_t>(name - names.begin()));
        }
    }
    Rows columns;
    for (const auto& row : rows) {
        columns.emplace_back();
        for (const std::size_t key : keys) columns.back().push_back(row[key]);
    }
    return columns;
}

// A file whose rows of every table fill two hundred pages, of which many are free again.
Forms BaseFile(const test::TempFolder& folder) {
    const Text path = folder.Write(u"base.mdb", NewOperationsDatabase());
    Forms forms;
    {
        Executor executor(path, Database::Access::Write);
        const Text filler(255, u'ж');
        for (int i = 0; i < 300; ++i) {
            SqlText sql(u"insert into tav_operations (id,p2,p3,p4,p5,p6,p7) values (");
            sql.Number(i);
            for (int column = 0; column < 6; ++column) sql.Fixed(u",'").Value(filler).Fixed(u"'");
            executor.Execute(sql.Fixed(u")"));
        }
        executor.Execute(SqlText(u"delete from tav_operations where id<140 or id>160"));
        executor.Execute(SqlText(u"delete from tav_operations"));
        executor.Commit();
        forms.owned = executor.database().FindTable(u"tav_operations")->definition().owned_map;
        forms.count = executor.database().file().PageCount();
    }
    forms.file = FileBytes(ReadFile(path));
    return forms;
}

class Comparison {
 public:
    Comparison(Text path, unsigned seed) : path_(std::move(path)), maker_(seed) { Open(); }

    void Go(int statements) {
        for (int i = 0; i < statements && !testing::Test::HasFailure(); ++i) {
            const std::size_t chance = maker_.Below(100);
            if (chance < 6) EndUnit(chance);
            if (chance >= 6 && chance < 10) TurnSavepoint(chance < 8);
            Try(maker_.Make());
        }
        executor_->Commit();
        for (const char* table : kTables) {
            const std::string name(table, std::strcspn(table, " "));
            std::string columns = std::regex_replace(std::string(table), std::regex(R"(^\w+ \(|\)$)"), "");
            columns = std::regex_replace(columns, std::regex(R"( (T|real|integer|primary|key)\b)"), "");
            const std::string sql = "select " + columns + " from " + name;
            Try({SqlText(FromUtf8(sql)), sql, {}});
        }
        executor_.reset();
        for (const Finding& finding : CheckDatabase(path_)) {
            EXPECT_FALSE(finding.error) << finding.invariant << ": " << ToUtf8(finding.text);
        }
    }
    int refused = 0;
    std::size_t rows = 0;

 private:
    void Open() { executor_ = std::make_unique<Executor>(path_, Database::Access::Write); }

    // The unit is kept, or lost with the program.
    void EndUnit(std::size_t chance) {
        const bool lost = chance == 0;
        if (!lost) executor_->Commit();
        if (chance < 2) {
            executor_.reset();
            Open();
        }
        model_.Execute(lost ? "rollback" : "commit");
        model_.Execute("begin");
        savepoint_ = false;
    }
    void TurnSavepoint(bool keep) {
        if (!savepoint_) {
            executor_->SetSavepoint();
            model_.Execute("savepoint s");
        } else if (keep) {
            executor_->ReleaseSavepoint();
            model_.Execute("release s");
        } else {
            executor_->RollBackToSavepoint();
            model_.Execute("rollback to s");
            model_.Execute("release s");
        }
        savepoint_ = !savepoint_;
    }

    void Try(const Statement& statement) {
        SCOPED_TRACE(ToUtf8(statement.jet.text()));
        std::optional<Rows> expected = model_.Execute(statement.plain, statement.values);
        std::string failure;
        Rows found;
        std::vector<Text> names;
        try {
            Recordset set;
            if (statement.jet.text().starts_with(u"update") && maker_.Below(2) == 0) {
                executor_->ExecuteAll({&statement.jet, 1});
            } else {
                set = executor_->Execute(statement.jet);
            }
            for (std::size_t i = 0; i < set.FieldCount(); ++i) names.push_back(set.FieldName(i));
            found = RowsOf(set);
        } catch (const Failure& thrown) {
            failure = thrown.what();
        }
        ASSERT_EQ(failure.empty(), expected.has_value()) << failure;
        if (!expected) {
            ++refused;
            return;
        }
        rows += found.size();
        EXPECT_TRUE(Same(Keys(found, statement.plain, names), Keys(*expected, statement.plain, names)));
        Sort(found);
        Sort(*expected);
        EXPECT_TRUE(Same(found, *expected)) << Shown(found) << "instead of\n" << Shown(*expected);
    }

    Text path_;
    Maker maker_;
    Model model_;
    std::unique_ptr<Executor> executor_;
    bool savepoint_ = false;
};

TEST(Model, SaysWhatTheEngineSays) {
    const char* const wished = std::getenv("TAV_MODEL_STATEMENTS");
    const int statements = wished == nullptr ? 4000 : std::atoi(wished);
    const test::TempFolder folder;
    const Forms base = BaseFile(folder);
    const auto sound = [](const Form& form) { return form.refusal == nullptr && form.error == 0; };
    const auto forms = static_cast<int>(std::ranges::count_if(kForms, sound));
    unsigned seed = 0;
    for (const Form& form : kForms) {
        if (!sound(form)) continue;
        SCOPED_TRACE(form.what);
        Forms made = base;
        form.make(made);
        Comparison run(folder.Write(u"model.mdb", made.file.bytes()), ++seed);
        run.Go(statements / forms + 1);
        if (HasFailure()) return;
        EXPECT_GT(run.refused, 0);
        EXPECT_GT(run.rows, 100U);
    }
}

}  // namespace
}  // namespace tav::jet
