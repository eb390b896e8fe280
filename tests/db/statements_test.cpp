// Every SQL text of the system over a small database: tests/db/statements.txt. Which texts those are is seen
// by tests/ui/recorded_statements_qt_test.cpp.
#include <gtest/gtest.h>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "db/connection.h"
#include "db/empty_database.h"
#include "db/qualified_columns.h"
#include "support/support.h"

namespace tav {
namespace {

// A value so that its kind shows: text 'x', date 01.02.2011, number 1,5, null.
Text Shown(const Value& value) {
    if (IsNull(value)) return u"null";
    if (std::holds_alternative<Text>(value)) return Text(u"'").append(ValueText(value)).append(u"'");
    return ValueText(value);
}

Text Answer(Connection& connection, TextView sql) {
    Text out;
    try {
        for (Recordset rows = connection.Execute(sql); !rows.Eof(); rows.MoveNext()) {
            for (std::size_t i = 0; i < rows.FieldCount(); ++i)
                out.append(i == 0 ? u"" : u" | ").append(Shown(rows.Field(i)));
            out += u'\n';
        }
    } catch (const Failure& failure) {
        out.append(u"! ").append(failure.description()).append(u"\n");
    }
    return out;
}

// What a provider is asked instead of a text that only reads returns the same.
Text Answers(Connection& connection, TextView statements) {
    Text out;
    while (!statements.empty()) {
        const TextView sql = GetNext(statements, u"\n");
        const Text answer = Answer(connection, sql);
        if (sql.starts_with(u"select")) {
            EXPECT_EQ(Answer(connection, QualifiedColumns(Text(sql))), answer);
        }
        out += answer;
    }
    return out;
}

// On an empty database.
class Statements : public testing::Test {
 protected:
    Statements() {
        const Text path = folder_ / u"base.mdb";
        CreateDatabase(path);
        connection.Open(ConnectionString(path));
    }

 private:
    const test::TempFolder folder_;

 protected:
    Connection connection;
};

// More pages than are kept in memory, a row on each; every row has two partners. More rows are deleted than go at once,
// most of them found a second time.
TEST_F(Statements, RowsStayWholeWhilePagesAreLetGo) {
    const Text wide(255, u'\u4E2D');
    constexpr int kRows = 4300;
    for (int i = 1; i <= kRows; ++i) {
        SqlText sql(u"insert into tav_operations_header (id,h1,h2,h3,h5,h8,filename) values (");
        sql.Number(i).Fixed(i > 300 ? u",'k','late'" : u",'k','early'");
        for (int column = 0; column < 4; ++column) sql.Fixed(u",'").Value(wide).Fixed(u"'");
        connection.Execute(sql.Fixed(u");"));
    }
    for (const TextView id : {u"1", u"2"})
        connection.Execute(Text(u"insert into tav_operations (id,p3) values (").append(id).append(u",'k');"));
    int rows = 0;
    connection.ForEachRow(SqlText(u"select distinct a.id, b.id from tav_operations_header as a left join "
                                  u"tav_operations as b on a.h1=b.p3"),
                          [&](std::span<const Value> row) { rows += !IsNull(row[1]); });
    EXPECT_EQ(rows, 2 * kRows);
    connection.Execute(u"delete from tav_operations_header where h2='late' or h1='k';");
    EXPECT_TRUE(connection.Execute(u"select id from tav_operations_header").Eof());
}

TEST_F(Statements, EverySqlTextOfTheSystem) {
    test::ExpectTranscript("db/statements.txt",
                           [&](TextView statements) { return Answers(connection, statements); });
}

}  // namespace
}  // namespace tav
