#include "reports/get_files.h"

#include "db/literals.h"
#include "platform/files.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/money.h"
#include "reports/page.h"
#include "reports/page_names.h"
#include "reports/statement_page.h"
#include "reports/summary_documents.h"
#include "reports/summary_heading.h"

namespace tav {
namespace {

// The consolidated select gives other columns the names that the ordinary one has: `kpp` and `h8` are the
// code there, `h7` is the name of its tax.
Recordset Groups(Connection& connection, TextView inn, TextView kpp) {
    if (!IsConsolidated(kpp)) {
        SqlText sql(
            u"select h10, vid, min(perb), max(pere), max(h1) as inn, max(h2) as kpp, max(h3) as name , "
            u"max(h7) as h7, h8 from tav_operations_header where h1='");
        return connection.Execute(sql.Value(inn)
                                      .Fixed(u"' and h2='")
                                      .Value(kpp)
                                      .Fixed(u"' and not(isnull(vid)) group by h8,h10, vid order by h8, "
                                             u"min(perb)"));
    }
    SqlText codes(u"select distinct h7 from tav_operations_header where h1='");
    codes.Value(inn).Fixed(u"'  and not(isnull(vid))");
    SqlText sql(
        u"select h10, vid, min(perb), max(pere), max(h1) as inn, h7 as kpp, max(h3) as name , h7 as h8, "
        u"max(h8) as h7 from tav_operations_header where h1='");
    return connection.Execute(sql.Value(inn)
                                  .Fixed(u"' and h7='")
                                  .Value(ConsolidatedCode(connection, codes, kpp))
                                  .Fixed(u"' and not(isnull(vid)) group by h7,h10, vid order by h7, "
                                         u"min(perb)"));
}
constexpr std::size_t kBegin = 2;  // of the two columns without a name
constexpr std::size_t kEnd = 3;

Text Heading(const Recordset& group, bool consolidated) {
    const auto text = [&](TextView field) { return isns(group.Field(field)); };
    const Text title = Text(u"<h3>Сводная справка по выпискам операций, импортированным из ТАВ")
                           .append(consolidated ? u" по консолидированному налогоплательщику" : u"")
                           .append(u"</h3>");
    std::optional<CodeAndTax> code;
    if (consolidated) code = {text(u"kpp"), text(u"h7")};
    return SummaryHeading(title, {text(u"inn"), text(u"kpp"), text(u"name")}, code);
}

Text ColumnHeadings(bool consolidated) {
    const Text first = GetHS(
        u"td", {consolidated ? u"КПП подразделения" : u"Наименование налога, сбора, взноса", u"#w25%", u"#r2",
                u"ОКАТО", u"#w8%", u"#r2", u"За период", u"#w7%", u"#r2", u"Сальдо на начало", u"Начислено",
                u"#l2", u"#c4", u"Уплачено (уменьшено)", u"#l2", u"#c4", u"Сальдо на конец", u"#l2", u"#ac"});
    const Text second = GetHS(u"td", {u"Переплата (+)/ Недоимка(-)",
                                      u"#w7%",
                                      u"Налог",
                                      u"#l2",
                                      u"#w6%",
                                      u"Пеня",
                                      u"#w6%",
                                      u"Штраф",
                                      u"#w5%",
                                      u"Итого",
                                      u"#w6%",
                                      u"Налог",
                                      u"#l2",
                                      u"#w6%",
                                      u"Пеня",
                                      u"#w6%",
                                      u"Штраф",
                                      u"#w5%",
                                      u"Итого",
                                      u"#w6%",
                                      u"Переплата (+)/ Недоимка(-)",
                                      u"#l2",
                                      u"#w7%",
                                      u"#ac"});
    return GetHS(u"tr", {first, second});
}

// One statement series on its way into the summary.
struct Group {
    Text label;  // the tax, or the subdivision's KPP in the consolidated variant
    Text okato;
    Text begin;  // "01.01.2011"
    Text end;
};

// "201101" of "01.01.2011".
Text YearAndMonth(TextView date) {
    constexpr std::size_t kDateLength = 10;
    return date.size() < kDateLength ? Text() : Text(date.substr(6, 4)).append(date.substr(3, 2));
}

// The totals are those of the page built last.
Text SummaryRow(const Group& group, TextView file, bool first) {
    const auto total = [](TextView column, int mode) { return GetMoney(nullptr, column, mode); };
    const Text link = Text(u"<a href=\"")
                          .append(HtmlText(NameOf(file)))
                          .append(u"\">")
                          .append(HtmlText(group.label))
                          .append(u"</a>");
    const Text period = Text(group.begin).append(u"-").append(group.end);
    const Text cells = GetHS(u"td", {link,
                                     u"#al",
                                     HtmlText(group.okato),
                                     period,
                                     u"#ac",
                                     total(u"9", kOpening),
                                     total(u"1", kTurnover),
                                     u"#l2",
                                     total(u"2", kTurnover),
                                     total(u"3", kTurnover),
                                     total(u"4", kTurnover),
                                     total(u"5", kTurnover),
                                     u"#l2",
                                     total(u"6", kTurnover),
                                     total(u"7", kTurnover),
                                     total(u"8", kTurnover),
                                     total(u"9", kClosing),
                                     u"#l2",
                                     u"#ar",
                                     first ? u"#u2" : u"#u0"});
    return GetHS(u"tr", {cells, u"#u0"});
}

// Writes the pages of all groups beside each other, and returns the summary's page. `file` is the path of the
// page being written.
Text SummaryPage(Connection& connection, Recordset& groups, bool consolidated, TextView folder, Text& file,
                 std::vector<SummaryDocument>& documents) {
    const Text heading = Heading(groups, consolidated);
    Text rows = ColumnHeadings(consolidated);
    PageNames names;
    for (; !groups.Eof(); groups.MoveNext()) {
        SqlText sql(u"select * from tav_operations_header where vid=");
        Recordset headers =
            connection.Execute(sql.Number(WholeNumber(groups, u"vid")).Fixed(u" order by perb"));
        const Recordset header = headers;
        const auto text = [](const Recordset& row, TextView field) { return isns(row.Field(field)); };
        const Text page = StatementPage(connection, headers);

        const Text name = text(groups, u"h8");
        const Text kpp = text(header, u"h2");
        const Text code = text(header, u"h7");
        // An underscore ends a label, which would cut the name of a tax short.
        const Group group = {ReplaceAll(consolidated ? kpp : name, u"_", u" "), text(groups, u"h10"),
                             isns(groups.Field(kBegin)), isns(groups.Field(kEnd))};
        const Text months = YearAndMonth(group.begin).append(u"-").append(YearAndMonth(group.end));
        file = ReportPath(folder, names.Take({name, consolidated ? kpp : code, group.okato, months}));
        WriteReport(file, page);
        rows += SummaryRow(group, file, documents.empty());
        documents.push_back({groups.Field(kBegin), groups.Field(kEnd), code, file});
    }
    return Page(heading, rows);
}

}  // namespace

Text GetFiles(TextView database, TextView inn, TextView kpp, TextView export_folder) {
    const SummaryPlan plan{SummaryKind::Statements, u"Ошибка в функции GetFiles", u"index.doc"};
    return WriteSummary(plan, database, export_folder,
                        [&](Connection& connection, Text& file, std::vector<SummaryDocument>& documents) {
                            Recordset groups = Groups(connection, inn, kpp);
                            return groups.Eof() ? Text()
                                                : SummaryPage(connection, groups, IsConsolidated(kpp),
                                                              export_folder, file, documents);
                        });
}

}  // namespace tav
