#include "sql/sql_rewrite.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "sql/statement_cache.h"
#include "support/support.h"

namespace tav::jet {
namespace {

Column Named(TextView name, ColumnType type) {
    Column column;
    column.name = name;
    column.type = type;
    return column;
}

TableDefinition Table(TextView name, std::vector<Column> columns) {
    TableDefinition table;
    table.name = name;
    table.columns = std::move(columns);
    return table;
}

// Documents and their lines.
const TableDefinition* FindTable(TextView name) {
    static const TableDefinition kDocuments =
        Table(u"Docs", {Named(u"id", ColumnType::Long), Named(u"h1", ColumnType::Text),
                        Named(u"h2", ColumnType::Text), Named(u"perb", ColumnType::Date)});
    static const TableDefinition kLines =
        Table(u"Lines", {Named(u"id", ColumnType::Long), Named(u"sum", ColumnType::Double),
                         Named(u"p3", ColumnType::Text), Named(u"flag", ColumnType::Boolean)});
    if (EqualNoCase(name, u"docs")) return &kDocuments;
    return EqualNoCase(name, u"lines") ? &kLines : nullptr;
}

std::string Description(const Value& value) {
    if (std::holds_alternative<Text>(value)) return "'" + ToUtf8(std::get<Text>(value)) + "'";
    if (const Date* date = std::get_if<Date>(&value))
        return "#" + std::to_string(static_cast<int>(date->serial));
    if (const double* number = std::get_if<double>(&value)) return std::to_string(*number);
    return std::to_string(std::get<std::int64_t>(value));
}

// The statement for SQLite, then its parameters; or the failure.
std::string Rewritten(const SqlText& sql) {
    try {
        const jet::Rewritten rewritten = Rewrite(sql, &FindTable);
        std::string out = rewritten.sql;
        for (const Parameter& parameter : rewritten.parameters) {
            out += "| " + Description(parameter.Read(sql)) + ' ';
        }
        out.pop_back();
        return out;
    } catch (const Failure& failure) {
        return failure.what();
    }
}
std::string Rewritten(TextView sql) {
    return Rewritten(SqlText(sql));
}

TEST(SqlRewrite, MakesStatementsForTheLibrary) {
    test::ExpectTranscript("sql/rewrite.txt", [](TextView sql) { return FromUtf8(Rewritten(sql)); });
}

TEST(SqlRewrite, ValuesAreWholeOrPartsOfLiterals) {
    SqlText sql(u"select id from docs where h1='от ");
    sql.Value(u"x''y")
        .Fixed(u" г.' and id=")
        .Number(-7)
        .Fixed(u" and perb=#01/01/")
        .Value(u"2011")
        .Fixed(u"#");
    EXPECT_EQ(
        Rewritten(sql),
        R"(select "id" from "Docs" where "h1" = ?1 and "id" = ?2 and "perb" = ?3 | 'от x''y г.' | -7 | #40544)");
}

TEST(SqlRewrite, AValueStandsOnlyWhereALiteralIs) {
    SqlText bare(u"delete from docs where h1=");
    bare.Value(u"h1");
    EXPECT_EQ(Rewritten(bare), "Syntax error in query expression 'h1'.");
    SqlText name(u"select h");
    name.Number(1).Fixed(u" from docs");
    EXPECT_EQ(Rewritten(name), "Syntax error in query expression 'h1 from docs'.");
}

TEST(SqlShape, FixedPiecesAndKindsOfValuesDecide) {
    const auto text = [](TextView one, TextView two, TextView tail) {
        SqlText sql(u"where a='");
        return sql.Value(one).Fixed(u"' and b='").Value(two).Fixed(tail);
    };
    const SqlText base = text(u"x", u"y", u"'");
    const Shape shape(base);
    EXPECT_TRUE(shape.Fits(text(u"", u"longer", u"'")));
    EXPECT_EQ(Shape::Hash(base), Shape::Hash(text(u"", u"longer", u"'")));
    EXPECT_FALSE(shape.Fits(text(u"x", u"y", u"';")));
    EXPECT_FALSE(shape.Fits(SqlText(base.text())));
}

TEST(SqlShape, LiteralsOfAPlainTextBecomeValues) {
    const SqlText sql = WithValues(SqlText(u"select 1 from t where a='x''y' and b=5 and c<>2 order by 1"));
    EXPECT_EQ(sql.text(), u"select 1 from t where a='x'y' and b=5 and c<>2 order by 1");
    ASSERT_EQ(sql.values().size(), 2U);
    EXPECT_EQ(sql.text().substr(sql.values()[0].begin, sql.values()[0].length), u"x'y");
    EXPECT_EQ(sql.text().substr(sql.values()[1].begin, sql.values()[1].length), u"5");
}

}  // namespace
}  // namespace tav::jet
