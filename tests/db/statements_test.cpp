// Every SQL text of the system over a small database: tests/db/statements.txt.
#include <gtest/gtest.h>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "db/connection.h"
#include "db/empty_database.h"
#include "support/support.h"

namespace tav {
namespace {

// A value so that its kind shows: text 'x', date 01.02.2011, number 1,5, null.
Text Shown(const Value& value) {
    if (IsNull(value)) return u"null";
    if (std::holds_alternative<Text>(value)) return Text(u"'").append(ValueText(value)).append(u"'");
    return ValueText(value);
}

Text Rows(Recordset rows, std::size_t columns) {
    Text out;
    for (; !rows.Eof(); rows.MoveNext()) {
        for (std::size_t i = 0; i < columns; ++i)
            out.append(i == 0 ? u"" : u" | ").append(Shown(rows.Field(i)));
        out += u'\n';
    }
    return out;
}

std::size_t CountColumns(const Recordset& rows) {
    std::size_t count = 0;
    try {
        for (; !rows.Eof(); ++count) rows.Field(count);
    } catch (const Failure&) {
    }
    return count;
}

Text Answer(Connection& connection, TextView sql) {
    try {
        const Recordset rows = connection.Execute(sql);
        return Rows(rows, CountColumns(rows));
    } catch (const Failure& failure) {
        return Text(u"! ").append(failure.description()).append(u"\n");
    }
}

TEST(Statements, EverySqlTextOfTheSystem) {
    const test::TempFolder folder;
    const Text path = folder / u"base.mdb";
    CreateDatabase(path);
    Connection connection;
    connection.Open(ConnectionString(path));
    const Text script = FromUtf8(test::TestFile("db/statements.txt"));
    Text answers;
    TextView rest = script;
    bool rows = false;  // the expected rows of a statement are made anew
    while (!rest.empty()) {
        const TextView line = GetNext(rest, u"\n");
        if (line.starts_with(u"> ")) {
            answers.append(line).append(u"\n").append(Answer(connection, line.substr(2)));
            rows = true;
        } else if (line.empty() || !rows) {
            answers.append(line).append(u"\n");
            rows = false;
        }
    }
    test::ExpectGolden("db/statements.txt", ToUtf8(answers));
}

}  // namespace
}  // namespace tav
