#include "reports/get_files_act.h"

#include "db/literals.h"
#include "reports/act_amounts.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/omitted_acts.h"
#include "reports/page.h"
#include "reports/summary_documents.h"
#include "reports/summary_heading.h"

namespace tav {
namespace {

// The consolidated select gives other columns the names that the ordinary one has: `h8` is the KPP there and
// `h2` the name of the tax.
Recordset Acts(Connection& connection, Summary& summary) {
    if (!IsConsolidated(summary.kpp)) {
        SqlText sql(
            u"select * from (select h1, h2,max(h3) as h3,max(h4) as h4,h7,max(h6) as h6, max(h8) as h8,h10,"
            u"perb,pere,max(id) as id from tav_operations_header where h1='");
        return connection.Execute(
            sql.Value(summary.inn)
                .Fixed(u"' and h2='")
                .Value(summary.kpp)
                .Fixed(u"' group by h1, h2,h7,h10,perb,pere) th,tav_acts ta where th.id=ta.id and "
                       u"isnull(th.h6) order by h8, perb"));
    }
    SqlText codes(u"select distinct h7 from tav_operations_header where h1='");
    codes.Value(summary.inn).Fixed(u"'  and isnull(vid) and isnull(h6)");
    ChooseCode(connection, codes, summary);
    SqlText sql(
        u"select * from (select h1, h2 as h8,max(h3) as h3,max(h4) as h4,h7 as h7,max(h6) as h6, max(h8) as "
        u"h2,h10,perb,pere,max(id) as id from tav_operations_header where h1='");
    return connection.Execute(
        sql.Value(summary.inn)
            .Fixed(u"' and h7='")
            .Value(summary.code)
            .Fixed(u"' group by h1, h7,h2,h10,perb,pere) th,tav_acts ta where th.id=ta.id and "
                   u"isnull(th.h6) order by h7, perb"));
}

Text Heading(const Recordset& act, bool consolidated) {
    const auto text = [&](TextView field) { return isns(act.Field(field)); };
    const Text title =
        Text(u"<h3>Сводная справка по актам совместной сверки")
            .append(consolidated ? u", импортированным из ТАВ по консолидированному налогоплательщику"
                                 : u" по налогам, пеням и штрафам, импортированным из ТАВ")
            .append(u"</h3>");
    std::optional<CodeAndTax> code;
    if (consolidated) code = {text(u"h7"), text(u"h2")};
    return SummaryHeading(title, {text(u"h1"), text(u"h2"), text(u"h3")}, code);
}

Text ColumnHeadings(bool consolidated) {
    const Text first =
        GetHS(u"td", {consolidated ? u"КПП подразделения" : u"Наименование налога, сбора, взноса", u"#w22%",
                      u"#r3", u"ОКАТО", u"#w6%", u"#r3", u"За период", u"#w5%", u"#r3", u"Сальдо на начало",
                      u"За проверяемый период", u"#l2", u"#c9", u"Сальдо на конец", u"#l2", u"#ac"});
    const Text second = GetHS(u"td", {u"Переплата (+)/ Задолженность(-)",
                                      u"#r2",
                                      u"#w9%",
                                      u"принята задолженность (переплата)",
                                      u"#r2",
                                      u"#l2",
                                      u"#w5%",
                                      u"начислено (доначислено)",
                                      u"#r2",
                                      u"#w5%",
                                      u"уменьшено",
                                      u"#r2",
                                      u"#w5%",
                                      u"уплачено",
                                      u"#r2",
                                      u"#w5%",
                                      u"переданы обязательства",
                                      u"#r2",
                                      u"#w5%",
                                      u"списана задолженность",
                                      u"#c3",
                                      u"Возвращено из бюджета",
                                      u"#r2",
                                      u"#w6%",
                                      u"Переплата (+)/ Задолженность(-)",
                                      u"#r2",
                                      u"#l2",
                                      u"#w9%",
                                      u"#ac"});
    const Text third =
        GetHS(u"td", {u"по налогу", u"#w5%", u"по пеням", u"#w5%", u"по штрафам", u"#w5%", u"#ac"});
    return GetHS(u"tr", {first, second, third});
}

Text ActRow(const Recordset& act, bool first) {
    const ActAmounts amounts = ReadActAmounts(act);
    // The movements of the period are the third amount to the eleventh.
    const auto amount = [&](std::size_t number) { return ActAmountText(amounts[number - 1]); };
    const Text period = FieldText(act, u"perb").append(u"-").append(FieldText(act, u"pere"));
    const Text cells = GetHS(u"td", {FieldText(act, u"h8"),
                                     u"#al",
                                     FieldText(act, u"h10"),
                                     period,
                                     u"#ac",
                                     OpeningText(amounts),
                                     amount(3),
                                     u"#l2",
                                     amount(4),
                                     amount(5),
                                     amount(6),
                                     amount(7),
                                     amount(8),
                                     amount(9),
                                     amount(10),
                                     amount(11),
                                     ClosingText(amounts),
                                     u"#l2",
                                     u"#ar",
                                     first ? u"#u2" : u"#u0"});
    return GetHS(u"tr", {cells, u"#u0"});
}

// The page of the chosen acts; empty when there are none.
Text SummaryPage(Connection& connection, const SummaryChoice& choice, Summary& summary) {
    const bool consolidated = IsConsolidated(summary.kpp);
    Text heading;
    Text rows;
    for (Recordset acts = Acts(connection, summary); !acts.Eof(); acts.MoveNext()) {
        summary.documents.push_back({acts.Field(u"perb"), acts.Field(u"pere"), isns(acts.Field(u"h7")), {}});
        if (!IsChosen(choice, summary.documents.back())) continue;
        const bool first = rows.empty();
        if (first) {
            heading = Heading(acts, consolidated);
            rows = ColumnHeadings(consolidated);
        }
        rows += ActRow(acts, first);
    }
    return rows.empty() ? rows : Page(heading, rows);
}

}  // namespace

Text GetFilesAct(TextView database, TextView inn, TextView kpp, TextView export_folder,
                 const SummaryChoice& choice) {
    const SummaryPlan plan{SummaryKind::Acts, u"Ошибка в функции GetFilesAct", u"acts.doc"};
    const SummaryRequest request{database, inn, kpp, export_folder, choice};
    std::vector<Text> omitted;
    Text path = WriteSummary(plan, request, [&](Connection& connection, Summary& summary, Text&) {
        Text page = SummaryPage(connection, choice, summary);
        omitted = OmittedActs(connection, summary, choice);
        return page;
    });
    if (!LastSummary().failed) ShowOmittedActs(omitted);
    return path;
}

void ListActs(TextView database, TextView inn, TextView kpp) {
    GetFilesAct(database, inn, kpp, {}, {kNever, false, {}});
}

}  // namespace tav
