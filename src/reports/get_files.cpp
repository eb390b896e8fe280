#include "reports/get_files.h"

#include "db/literals.h"
#include "platform/files.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/money.h"
#include "reports/page.h"
#include "reports/page_names.h"
#include "reports/page_progress.h"
#include "reports/statement_page.h"
#include "reports/summary_documents.h"
#include "reports/summary_heading.h"

namespace tav {
namespace {

// The consolidated select gives other columns the names that the ordinary one has: `kpp` and `h8` are the
// code there, `h7` is the name of its tax.
Recordset Groups(Connection& connection, Summary& summary) {
    if (!IsConsolidated(summary.kpp)) {
        SqlText sql(
            u"select h10, vid, min(perb), max(pere), max(h1) as inn, max(h2) as kpp, max(h3) as name , "
            u"max(h7) as h7, h8 from tav_operations_header where h1='");
        return connection.Execute(sql.Value(summary.inn)
                                      .Fixed(u"' and h2='")
                                      .Value(summary.kpp)
                                      .Fixed(u"' and not(isnull(vid)) group by h8,h10, vid order by h8, "
                                             u"min(perb)"));
    }
    SqlText codes(u"select distinct h7 from tav_operations_header where h1='");
    codes.Value(summary.inn).Fixed(u"'  and not(isnull(vid))");
    ChooseCode(connection, codes, summary);
    SqlText sql(
        u"select h10, vid, min(perb), max(pere), max(h1) as inn, h7 as kpp, max(h3) as name , h7 as h8, "
        u"max(h8) as h7 from tav_operations_header where h1='");
    return connection.Execute(sql.Value(summary.inn)
                                  .Fixed(u"' and h7='")
                                  .Value(summary.code)
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

// Writes the page of a group and returns its row; the file is the document's, and in `file` too while it is
// written.
Text WriteGroup(Connection& connection, const Recordset& groups, const SummaryRequest& request,
                PageNames& names, bool first, SummaryDocument& document, Text& file) {
    SqlText sql(u"select * from tav_operations_header where vid=");
    Recordset headers = connection.Execute(sql.Number(WholeNumber(groups, u"vid")).Fixed(u" order by perb"));
    const Text kpp = isns(headers.Field(u"h2"));
    const Text page = StatementPage(connection, headers);

    const bool consolidated = IsConsolidated(request.kpp);
    const Text name = isns(groups.Field(u"h8"));
    // An underscore ends a label, which would cut the name of a tax short.
    const Group group = {ReplaceAll(consolidated ? kpp : name, u"_", u" "), isns(groups.Field(u"h10")),
                         isns(document.begin), isns(document.end)};
    const Text months = YearAndMonth(document.begin).append(u"-").append(YearAndMonth(document.end));
    file = ReportPath(request.export_folder,
                      names.Take({name, consolidated ? kpp : document.code, group.okato, months}));
    WriteReport(file, page);
    document.file = file;
    return SummaryRow(group, file, first);
}

// The page of the chosen groups, their own pages written beside it; empty when there are none.
Text SummaryPage(Connection& connection, const SummaryRequest& request, Summary& summary, Text& file) {
    const bool consolidated = IsConsolidated(request.kpp);
    Text heading;
    Text rows;
    PageNames names;
    Recordset groups = Groups(connection, summary);
    int chosen = 0;
    for (Recordset each = groups; !each.Eof(); each.MoveNext()) {
        summary.documents.push_back(
            {each.Field(kBegin), each.Field(kEnd), isns(each.Field(consolidated ? u"kpp" : u"h7")), {}});
        if (IsChosen(request.choice, summary.documents.back())) ++chosen;
    }
    PageProgress progress(chosen);
    for (auto document = summary.documents.begin(); !groups.Eof(); groups.MoveNext(), ++document) {
        if (!IsChosen(request.choice, *document)) continue;
        if (!progress.Next(isns(groups.Field(u"h8")))) throw CancelledSummary{progress.done(), chosen};
        const bool first = rows.empty();
        if (first) {
            heading = Heading(groups, consolidated);
            rows = ColumnHeadings(consolidated);
        }
        rows += WriteGroup(connection, groups, request, names, first, *document, file);
    }
    return rows.empty() ? rows : Page(heading, rows);
}

}  // namespace

Text GetFiles(TextView database, TextView inn, TextView kpp, TextView export_folder,
              const SummaryChoice& choice) {
    const SummaryPlan plan{SummaryKind::Statements, u"Ошибка в функции GetFiles", u"index.doc"};
    const SummaryRequest request{database, inn, kpp, export_folder, choice};
    return WriteSummary(plan, request, [&](Connection& connection, Summary& summary, Text& file) {
        return SummaryPage(connection, request, summary, file);
    });
}

void ListStatements(TextView database, TextView inn, TextView kpp) {
    GetFiles(database, inn, kpp, {}, {kNever, false, {}});
}

}  // namespace tav
