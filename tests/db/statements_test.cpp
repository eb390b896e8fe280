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

TEST(Statements, EverySqlTextOfTheSystem) {
    const test::TempFolder folder;
    const Text path = folder / u"base.mdb";
    CreateDatabase(path);
    Connection connection;
    connection.Open(ConnectionString(path));
    test::ExpectTranscript("db/statements.txt",
                           [&](TextView statements) { return Answers(connection, statements); });
}

}  // namespace
}  // namespace tav
