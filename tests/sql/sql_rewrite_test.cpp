#include "sql/sql_rewrite.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "sql/statement_cache.h"

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

struct Case {
    TextView sql;
    const char* expected;
};

TEST(SqlRewrite, Dialect) {
    const Case cases[] = {
        {u"delete * from docs;", R"(delete from "Docs")"},
        {u"select id from docs where isnull(h1) and not(isnull(h2))",
         R"(select "id" from "Docs" where (("h1" ) is null) and not ((("h2" ) is null) ))"},
        {u"Select Max(perb), iif(isnull(h1),Null,h2) as h2 From DOCS",
         R"(select max("perb" ) collate jet , iif((("h1" ) is null) , null , "h2" ) collate jet as "h2" from "Docs")"},
        {u"select [id] from docs where perb = #02/01/2011#",
         R"(select "id" from "Docs" where "perb" = ?1 | #40575)"},
        {u"select sum/2 from lines", R"(select "sum" * 1.0 / ?1 from "Lines" | 2)"},
        {u"select sum(sum), abs(h1) from lines, docs",
         R"(select sum("sum" ) , abs(number("h1" )) from "Lines" , "Docs")"},
        {u"select h1 from docs order by 1, h2", R"(select "h1" from "Docs" order by 1 , "h2")"},
        {u"insert into docs (id,h1) values (5,'it''s')",
         R"(insert into "Docs" ("id" , "h1" ) values (?1 , ?2 ) | 5 | 'it's')"},
    };
    for (const Case& test : cases) EXPECT_EQ(Rewritten(test.sql), test.expected) << ToUtf8(test.sql);
}

TEST(SqlRewrite, AnOrderMeansTheColumnAnAliasHides) {
    const Case cases[] = {
        {u"select max(h2) as h1 from docs group by h1 order by h1, min(perb)",
         R"(select max("h2" ) collate jet as "h1" from "Docs" group by "h1" order by "docs" . "h1" , min("perb" ) collate jet)"},
        {u"select h2 as other from docs d order by other desc",
         R"(select "h2" as "other" from "Docs" "d" order by "other" desc)"},
        {u"select h2 as h1 from docs d order by h1",
         R"(select "h2" as "h1" from "Docs" "d" order by "d" . "h1")"},
        {u"select * from (select h2 as h1 from docs) t order by h1",
         R"(select * from (select "h2" as "h1" from "Docs" ) "t" order by "h1")"},
    };
    for (const Case& test : cases) EXPECT_EQ(Rewritten(test.sql), test.expected) << ToUtf8(test.sql);
}

// The text after the last "|" is what the literal became.
TEST(SqlRewrite, LiteralsAreOfTheColumnsKind) {
    const Case cases[] = {
        {u"select id from lines where sum='123,45'", "123.450000"},
        {u"select id from lines where '5' < sum", "5"},
        {u"select id from docs where perb>='01.02.2011'", "#40575"},
        {u"select id from docs d where d.id in ('7')", "7"},
        {u"select id from docs where h1=77", "'77'"},
        {u"select id from docs where h1='77'", "'77'"},
        {u"select id from lines where flag='1'", "-1"},
        {u"select min(perb) from docs having min(perb)='01.02.2011'", "#40575"},
        {u"select * from (select max(perb) as x from docs) t where t.x='01.02.2011'", "#40575"},
        {u"select * from (select * from docs) t where perb between #1/1/2011# and '01.02.2011'", "#40575"},
        {u"select p3 from lines where id in (select id from docs where perb='01.02.2011')", "#40575"},
        {u"select p3 from lines l left join docs d on l.id=d.id and d.perb='01.02.2011'", "#40575"},
        {u"select id from docs where id not between '30' and 199 and not h1 not between 1 and '7'",
         "Data type mismatch in criteria expression. 1 (Docs.h1)"},
        {u"select id from docs where id not between 30 and '199'", "199"},
        {u"delete from docs where ((docs.id))=(('7'))", "7"},
        {u"select id from docs where '01.02.2011' between (perb) and perb", "#40575"},
        {u"select id from docs where id in (id, ('7'))", "7"},
        {u"select id from docs where '7' in (select id from lines)", "7"},
        {u"delete from docs where id in (select id from lines) and perb='01.02.2011'", "#40575"},
        {u"update lines set p3=iif(sum='5,5',Null,p3)", "5.500000"},
        {u"select * from (select iif(id=1,sum,Null) as x from lines) t where max(x)='5,5'", "5.500000"},
        {u"select id from docs where ucase(h1)='a'", "'a'"},
        {u"select id from docs where id=-5", "5"},
        {u"select id from docs where id+id*id='5'", "Data type mismatch in criteria expression. '5'"},
        {u"select id from docs where '5'=0+id", "Data type mismatch in criteria expression. '5'"},
        {u"select id from docs where iif(isnull(id),0,id) in (5,'6')",
         "Data type mismatch in criteria expression. '6'"},
        {u"select id from docs where iif(isnull(id),0,perb)=#1/1/2011#",
         "Data type mismatch in criteria expression. #1/1/2011#"},
        {u"select id from docs where id is not 'x'", "Data type mismatch in criteria expression. id = 'x'"},
        {u"select id from docs where perb>40000+1", "Data type mismatch in criteria expression. 40000"},
        {u"select id from docs where h1<5", "Data type mismatch in criteria expression. 5 (Docs.h1)"},
        {u"select sum(h1)/2 from docs where perb+1>perb", "Data type mismatch in criteria expression. perb"},
        {u"select -'5' from docs", "Data type mismatch in criteria expression. '5'"},
        {u"select id as x from docs where x='5'", "No value given for one or more required parameters. (x)"},
        {u"update lines set sum='5,5'", "'5,5'"},  // the table converts what it stores
        {u"insert into lines (sum) values ('5,5')", "'5,5'"},
        {u"select id from lines where sum='abc'", "Data type mismatch in criteria expression. sum = 'abc'"},
        {u"select id from docs where perb='31.02.2011'",
         "Data type mismatch in criteria expression. perb = '31.02.2011'"},
    };
    for (const Case& test : cases) {
        const std::string rewritten = Rewritten(test.sql);
        const std::size_t at = rewritten.rfind("| ");
        EXPECT_EQ(rewritten.substr(at == rewritten.npos ? 0 : at + 2), test.expected) << ToUtf8(test.sql);
    }
}

TEST(SqlRewrite, Refusals) {
    const Case cases[] = {
        {u"", "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'."},
        {u"drop table docs", "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'."},
        {u"pragma encoding", "Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT', or 'UPDATE'."},
        {u"delete from docs; delete from lines", "Characters found after end of SQL statement."},
        {u"select \"id\" from docs", "Syntax error in query expression '\"id\" from docs'."},
        {u"select id from docs -- more", "Syntax error in query expression '-- more'."},
        {u"select id /* no */ from docs", "Syntax error in query expression '/* no */ from docs'."},
        {u"select id from docs where h1='a", "Syntax error in string in query expression ''a'."},
        {u"select id from docs where perb=#13/01/2011#",
         "Syntax error in date in query expression '#13/01/2011#'."},
        {u"select id from docs where perb=#1/1#", "Syntax error in date in query expression '#1/1#'."},
        {u"select load_extension('x') from docs", "Undefined function 'load_extension' in expression."},
        {u"select id from docs where (id,h1)=('1','a')", "Syntax error (comma) in query expression ','."},
        {u"select id from docs2", "Could not find input table 'docs2'."},
        {u"insert into docs2 (id) values (1)", "Could not find output table 'docs2'."},
        {u"insert into docs (id,h1,ID) values (1,2,3)", "Duplicate output destination 'id'."},
        {u"insert into docs (id,h77) values (1,2)",
         "The INSERT INTO statement contains the following unknown field name: 'h77'. Make sure you have "
         "typed "
         "the name correctly, and try the operation again."},
    };
    for (const Case& test : cases) EXPECT_EQ(Rewritten(test.sql), test.expected) << ToUtf8(test.sql);
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
    EXPECT_EQ(sql.text(), u"select 1 from t where a='x''y' and b=5 and c<>2 order by 1");
    ASSERT_EQ(sql.values().size(), 2U);
    EXPECT_EQ(sql.text().substr(sql.values()[0].begin, sql.values()[0].length), u"x''y");
    EXPECT_EQ(sql.text().substr(sql.values()[1].begin, sql.values()[1].length), u"5");
}

}  // namespace
}  // namespace tav::jet
