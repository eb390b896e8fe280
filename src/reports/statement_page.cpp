#include "reports/statement_page.h"

#include "db/literals.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/money.h"
#include "reports/page.h"
#include "reports/taxpayer_shown.h"

namespace tav {
namespace {

constexpr TextView kTitle = u"<h3>Справка по выписке операций по расчету с бюджетом</h3>";

Text Heading(const Recordset& header, TextView period) {
    const auto chosen = ChosenTaxpayer();
    const Text inn = chosen ? HtmlText(chosen->inn) : FieldText(header, u"h1");
    const Text kpp = chosen ? HtmlText(chosen->kpp) : FieldText(header, u"h2");
    const Text name = chosen ? HtmlText(chosen->name) : FieldText(header, u"h3");
    return GetHS(u"tr", {GetHS(u"td", {kTitle, u"#c2", u"#ac"}),
                         GetHS(u"td", {u"ИНН:", u"#w15%", inn, u"#al"}), GetHS(u"td", {u"КПП:", kpp, u"#al"}),
                         GetHS(u"td", {u"Наименование организации:", name, u"#al"}),
                         GetHS(u"td", {u"Наименование налога:", FieldText(header, u"h8"), u"#al"}),
                         GetHS(u"td", {u"КБК:", FieldText(header, u"h7"), u"#al"}),
                         GetHS(u"td", {u"ОКАТО:", FieldText(header, u"h10"), u"#al"}),
                         GetHS(u"td", {u"За период:", period, u"#al"}),
                         GetHS(u"td", {u"Валюта:", FieldText(header, u"h11"), u"#al"})});
}

// Two blanks before the parenthesis belong to the form.
Text ColumnHeadings() {
    const Text first = GetHS(u"td", {u"Дата записи",
                                     u"#w7%",
                                     u"#r2",
                                     u"операция/вид документа",
                                     u"#w19%",
                                     u"#r2",
                                     u"Документ",
                                     u"#c2",
                                     u"Срок уплаты",
                                     u"#w7%",
                                     u"#r2",
                                     u"Начислено",
                                     u"#l2",
                                     u"#c4",
                                     u"Уплачено  (уменьшено)",
                                     u"#l2",
                                     u"#c4",
                                     u"Переплата (+)/ Недоимка(-)",
                                     u"#l2",
                                     u"#r2",
                                     u"#w7%",
                                     u"#ac"});
    const Text second =
        GetHS(u"td", {u"номер", u"#w6%",  u"дата",  u"#w7%",  u"Налог", u"#l2",   u"#w6%", u"Пеня",
                      u"#w6%",  u"Штраф", u"#w5%",  u"Итого", u"#w6%",  u"Налог", u"#l2",  u"#w6%",
                      u"Пеня",  u"#w6%",  u"Штраф", u"#w5%",  u"Итого", u"#w6%",  u"#ac"});
    return GetHS(u"tr", {first, second});
}

// A negative balance of a kind is a debt in its charged column, a positive one a credit in its paid column.
Recordset OpeningBalance(Connection& connection, const Recordset& header, std::int64_t id) {
    SqlText sql(
        u"select sum(m1) as m1, sum(m2) as m2, sum(m3) as m3,sum(m5) as m5,sum(m6) as m6,sum(m7) as m7, "
        u"sum(p13) "
        u"as m9 from (select iif(p9='налог',m4,Null) as m1, iif(p9='пеня',m4,Null) as m2, "
        u"iif(p9='штраф',m4,Null) as m3,iif(p9='налог',m8,Null) as m5, iif(p9='пеня',m8,Null) as m6, "
        u"iif(p9='штраф',m8,Null) as m7, p13 from (select p9, p13, iif(p13<0,abs(p13),Null) as m4, "
        u"iif(p13>0,p13,Null) as m8 from tav_operations where isnull(p1) and p3='");
    sql.Value(Text(u"Сальдо на ").append(isns(header.Field(u"perb"))));
    return connection.Execute(sql.Fixed(u"' and id=").Number(id).Fixed(u"))"));
}

Text OpeningRow(const Recordset& balance) {
    const auto money = [&](TextView field) { return GetMoney(&balance, field, kOpening); };
    const Text cells = GetHS(
        u"td",
        {u"",          u"#ac", u"Сальдо на начало", u"#al",       u"",    u"",          u"",    u"#ac",
         money(u"m1"), u"#l2", money(u"m2"),        money(u"m3"), u"",    money(u"m5"), u"#l2", money(u"m6"),
         money(u"m7"), u"",    money(u"m9"),        u"#l2",       u"#ar", u"#b1",       u"#u2"});
    return GetHS(u"tr", {cells, u"#b0", u"#u0"});
}

Recordset Operations(Connection& connection, std::int64_t id) {
    SqlText sql(
        u"select p1,p3,p6,p7,p2,iif(p9='налог',p10,Null) as m1, iif(p9='пеня',p10,Null) as m2, "
        u"iif(p9='штраф',p10,Null) as m3, iif(isnull(p10),Null,p10) as m4, iif(p9='налог',p11,Null) as m5,"
        u"iif(p9='пеня',p11,Null) as m6, iif(p9='штраф',p11,Null) as m7, iif(isnull(p11),Null,p11) as m8, "
        u"p14 as m9 from tav_operations where not(isnull(p1)) and id=");
    return connection.Execute(sql.Number(id));
}

Text OperationRow(const Recordset& row) {
    const auto text = [&](TextView field) { return FieldText(row, field); };
    const auto money = [&](TextView field) { return GetMoney(&row, field, kTurnover); };
    return GetHS(u"tr", {GetHS(u"td", {text(u"p1"),  u"#ac",       text(u"p3"),  u"#al",       text(u"p6"),
                                       text(u"p7"),  text(u"p2"),  u"#ac",       money(u"m1"), u"#l2",
                                       money(u"m2"), money(u"m3"), money(u"m4"), money(u"m5"), u"#l2",
                                       money(u"m6"), money(u"m7"), money(u"m8"), money(u"m9"), u"#l2",
                                       u"#ar"})});
}

Text TurnoverRow() {
    const auto total = [](TextView column) { return GetMoney(nullptr, column, kTurnover); };
    const Text cells =
        GetHS(u"td", {u"",         u"#ac",      u"Обороты",  u"#al",      u"",         u"",
                      u"",         u"#ac",      total(u"1"), u"#l2",      total(u"2"), total(u"3"),
                      total(u"4"), total(u"5"), u"#l2",      total(u"6"), total(u"7"), total(u"8"),
                      u"",         u"#l2",      u"#ar",      u"#b1",      u"#u2"});
    return GetHS(u"tr", {cells, u"#b0", u"#u0"});
}

// Without a top rule.
Text ClosingRow() {
    const auto total = [](TextView column) { return GetMoney(nullptr, column, kClosing); };
    const Text cells =
        GetHS(u"td",
              {u"",         u"#ac", u"Сальдо на конец", u"#al",      u"",    u"",         u"",    u"#ac",
               total(u"1"), u"#l2", total(u"2"),        total(u"3"), u"",    total(u"5"), u"#l2", total(u"6"),
               total(u"7"), u"",    total(u"9"),        u"#l2",      u"#ar", u"#b1"});
    return GetHS(u"tr", {cells, u"#b0"});
}

}  // namespace

Text StatementPage(Connection& connection, Recordset& headers) {
    const Recordset first = headers;
    const std::int64_t first_id = WholeNumber(first, u"id");
    Text end;
    for (Recordset each = headers; !each.Eof(); each.MoveNext()) end = FieldText(each, u"pere");
    // The order of the calls is the order of the page, because the cells' state is sticky.
    const Text heading = Heading(first, FieldText(first, u"perb").append(u"-").append(end));
    Text rows = ColumnHeadings();
    rows += OpeningRow(OpeningBalance(connection, first, first_id));
    for (; !headers.Eof(); headers.MoveNext()) {
        Recordset operations = Operations(connection, WholeNumber(headers, u"id"));
        for (; !operations.Eof(); operations.MoveNext()) rows += OperationRow(operations);
    }
    rows += TurnoverRow();
    rows += ClosingRow();
    return Page(heading, rows);
}

}  // namespace tav
