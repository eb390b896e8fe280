#include "reports/get_files_act.h"

#include <array>
#include <memory>
#include <vector>

#include "common/concat.h"
#include "common/progress.h"
#include "db/literals.h"
#include "reports/act_amounts.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/omitted_acts.h"
#include "reports/report_page.h"
#include "reports/summary_documents.h"
#include "reports/summary_heading.h"

namespace tav {
namespace {

// The consolidated select gives other columns the names that the ordinary one has: `h8` is the KPP there and
// `h2` the name of the tax.
Recordset Acts(Connection& connection, Summary& summary, SummaryChoice& choice) {
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
    ChooseCode(connection, codes, summary, choice);
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

void AddActHeading(ReportPage& page, const Recordset& act, bool consolidated) {
    const auto text = [&](TextView field) { return isns(act.Field(field)); };
    const Text title =
        Concat(u"<h3>Сводная справка по актам совместной сверки",
               consolidated ? u", импортированным из ТАВ по консолидированному налогоплательщику"
                            : u" по налогам, пеням и штрафам, импортированным из ТАВ",
               u"</h3>");
    std::optional<CodeAndTax> code;
    if (consolidated) code = {text(u"h7"), text(u"h2")};
    AddSummaryHeading(page, title, {text(u"h1"), text(u"h2"), text(u"h3")}, code);
}

void AddActColumns(ReportPage& page, bool consolidated) {
    page.AddColumnHeadings({consolidated ? u"КПП подразделения" : u"Наименование налога, сбора, взноса",
                            u"#w22%", u"#r3", u"ОКАТО", u"#w6%", u"#r3", u"За период", u"#w5%", u"#r3",
                            u"Сальдо на начало", u"За проверяемый период", u"#l2", u"#c9", u"Сальдо на конец",
                            u"#l2", u"#ac"});
    page.AddColumnHeadings({u"Переплата (+)/ Задолженность(-)",
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
    page.AddColumnHeadings({u"по налогу", u"#w5%", u"по пеням", u"#w5%", u"по штрафам", u"#w5%", u"#ac"});
}

void AddActRow(ReportPage& page, const Recordset& act, const ActAmounts& amounts, bool first) {
    const Text name = FieldText(act, u"h8");
    const Text okato = FieldText(act, u"h10");
    const Text period = FieldText(act, u"perb").append(u"-").append(FieldText(act, u"pere"));
    const Text opening = OpeningText(amounts);
    const Text closing = ClosingText(amounts);
    // The movements of the period are the third amount to the eleventh.
    std::array<Text, 9> movements;
    for (std::size_t i = 0; i < movements.size(); ++i) movements[i] = ActAmountText(amounts[i + 2]);
    std::vector<TextView> items = {name, u"#al", okato, period, u"#ac", opening};
    for (const Text& movement : movements) {
        items.push_back(movement);
        if (&movement == &movements.front()) items.push_back(u"#l2");
    }
    items.insert(items.end(), {closing, u"#l2", u"#ar", first ? u"#u2" : u"#u0"});
    page.AddRow(items, {u"#u0"});
}

// The page of the chosen acts; empty when there are none.
Text SummaryPage(Connection& connection, SummaryChoice& choice, Summary& summary, SummaryCopy& copy) {
    const bool consolidated = IsConsolidated(summary.kpp);
    ReportPage page(copy.sheet);
    for (Recordset acts = Acts(connection, summary, choice); !acts.Eof(); acts.MoveNext()) {
        CurrentProgress().ProcessEvents();
        summary.documents.push_back({acts.Field(u"perb"), acts.Field(u"pere"), isns(acts.Field(u"h7")), {}});
        if (!IsChosen(choice, summary.documents.back())) continue;
        const bool first = page.empty();
        if (first) {
            AddActHeading(page, acts, consolidated);
            AddActColumns(page, consolidated);
        }
        const ActAmounts amounts = ReadActAmounts(acts);
        AddActRow(page, acts, amounts, first);
        copy.bars.Take(isns(acts.Field(u"h8")), isns(acts.Field(u"h10")), acts.Field(u"pere"),
                       ClosingBalance(amounts));
    }
    return page.empty() ? Text() : page.Html();
}

}  // namespace

Text GetFilesAct(TextView database, TextView inn, TextView kpp, TextView export_folder,
                 const SummaryChoice& choice) {
    const SummaryPlan plan{SummaryKind::Acts, u"Ошибка в функции GetFilesAct", u"acts.doc"};
    const SummaryRequest asked{Text(database), Text(inn), Text(kpp), Text(export_folder), choice};
    const auto omitted = std::make_shared<std::vector<Text>>();
    Text path = WriteSummary(plan, asked,
                             [omitted](Connection& connection, const SummaryRequest& request,
                                       Summary& summary, Text&, SummaryCopy& copy) {
                                 SummaryChoice left = request.choice;
                                 Text page = SummaryPage(connection, left, summary, copy);
                                 *omitted = OmittedActs(connection, summary, left);
                                 return page;
                             });
    if (!LastSummary().failed) ShowOmittedActs(*omitted);
    return path;
}

void ListActs(TextView database, TextView inn, TextView kpp, TextView code) {
    GetFilesAct(database, inn, kpp, {}, {kNever, false, Text(code)});
}

}  // namespace tav
