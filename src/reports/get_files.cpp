#include "reports/get_files.h"

#include <vector>

#include "common/concat.h"
#include "db/literals.h"
#include "platform/files.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/money.h"
#include "reports/page.h"
#include "reports/page_names.h"
#include "reports/page_progress.h"
#include "reports/paper.h"
#include "reports/report_page.h"
#include "reports/statement_page.h"
#include "reports/summary_documents.h"
#include "reports/summary_heading.h"

namespace tav {
namespace {

// The consolidated select gives other columns the names that the ordinary one has: `kpp` and `h8` are the
// code there, `h7` is the name of its tax.
Recordset Groups(Connection& connection, Summary& summary, SummaryChoice& choice) {
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
    ChooseCode(connection, codes, summary, choice);
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

void AddGroupsHeading(ReportPage& page, const Recordset& group, bool consolidated) {
    const auto text = [&](TextView field) { return isns(group.Field(field)); };
    const Text title = Concat(u"<h3>Сводная справка по выпискам операций, импортированным из ТАВ",
                              consolidated ? u" по консолидированному налогоплательщику" : u"", u"</h3>");
    std::optional<CodeAndTax> code;
    if (consolidated) code = {text(u"kpp"), text(u"h7")};
    AddSummaryHeading(page, title, {text(u"inn"), text(u"kpp"), text(u"name")}, code);
}

void AddGroupColumns(ReportPage& page, bool consolidated) {
    page.AddColumnHeadings({consolidated ? u"КПП подразделения" : u"Наименование налога, сбора, взноса",
                            u"#w25%", u"#r2", u"ОКАТО", u"#w8%", u"#r2", u"За период", u"#w7%", u"#r2",
                            u"Сальдо на начало", u"Начислено", u"#l2", u"#c4", u"Уплачено (уменьшено)",
                            u"#l2", u"#c4", u"Сальдо на конец", u"#l2", u"#ac"});
    constexpr TextView kBalance = u"Переплата (+)/ Недоимка(-)";
    constexpr TextView kAmounts[] = {u"Налог", u"#l2",  u"#w6%",  u"Пеня", u"#w6%",
                                     u"Штраф", u"#w5%", u"Итого", u"#w6%"};
    std::vector<TextView> items = {kBalance, u"#w7%"};
    for (int part = 0; part < 2; ++part) items.insert(items.end(), std::begin(kAmounts), std::end(kAmounts));
    items.insert(items.end(), {kBalance, u"#l2", u"#w7%", u"#ac"});
    page.AddColumnHeadings(items);
}

// One statement series on its way into the summary.
struct Group {
    Text label;  // the tax, or the subdivision's KPP in the consolidated variant
    Text okato;
    Text begin;  // "01.01.2011"
    Text end;
};

// The totals are those of the page built last.
void AddSummaryRow(ReportPage& page, const Group& group, TextView file, bool first, int sheet) {
    const auto total = [](TextView column, int mode) { return GetMoney(nullptr, column, mode); };
    const Text link = Concat(u"<a href=\"", HtmlText(NameOf(file)), u"\">", HtmlText(group.label), u"</a>");
    const Text okato = HtmlText(group.okato);
    const Text period = Concat(group.begin, u"-", group.end);
    const Text opening = total(u"9", kOpening);
    const Text closing = total(u"9", kClosing);
    Text turnovers[8];
    for (char16_t column = u'1'; column <= u'8'; ++column) {
        turnovers[column - u'1'] = total(TextView(&column, 1), kTurnover);
    }
    const Text* t = turnovers;
    const TextView items[] = {
        link, u"#al", okato,  period, u"#ac", opening, t[0],    u"#l2", t[1],   t[2],
        t[3], t[4],   u"#l2", t[5],   t[6],   t[7],    closing, u"#l2", u"#ar", first ? u"#u2" : u"#u0"};
    page.AddRow(items, {u"#u0"}, sheet);
}

// The summary on its way, and the pages that go with it.
class StatementsSummary {
 public:
    StatementsSummary(Connection& connection, const SummaryRequest& request, Text& file, SummaryCopy& copy)
        : connection_(connection), request_(request), file_(file), copy_(copy), page_(copy.sheet) {}

    // The page of the chosen groups, their own pages written beside it; empty when there are none.
    Text Write(Summary& summary) {
        SummaryChoice choice = request_.choice;
        Recordset groups = Groups(connection_, summary, choice);
        int chosen = 0;
        for (Recordset each = groups; !each.Eof(); each.MoveNext()) {
            const Text code = isns(each.Field(consolidated_ ? u"kpp" : u"h7"));
            summary.documents.push_back({each.Field(kBegin), each.Field(kEnd), code, {}});
            if (IsChosen(choice, summary.documents.back())) ++chosen;
        }
        PageProgress progress(chosen);
        for (auto document = summary.documents.begin(); !groups.Eof(); groups.MoveNext(), ++document) {
            if (!IsChosen(choice, *document)) continue;
            if (!progress.Next(isns(groups.Field(u"h8")))) throw CancelledSummary{progress.done(), chosen};
            WriteGroup(groups, *document);
        }
        return page_.empty() ? Text() : page_.Html();
    }

 private:
    // The file is the document's, and in `file_` too while it is written.
    void WriteGroup(const Recordset& groups, SummaryDocument& document) {
        const bool first = page_.empty();
        if (first) {
            AddGroupsHeading(page_, groups, consolidated_);
            AddGroupColumns(page_, consolidated_);
        }
        SqlText sql(u"select * from tav_operations_header where vid=");
        sql.Number(WholeNumber(groups, u"vid")).Fixed(u" order by perb");
        Recordset headers = connection_.Execute(sql);
        const Text kpp = isns(headers.Field(u"h2"));
        Sheet sheet;
        sheet.leads_home = true;
        const Text page = StatementPage(connection_, headers, copy_.paper.Wanted(sheet));

        const Text name = isns(groups.Field(u"h8"));
        // An underscore ends a label, which would cut the name of a tax short.
        const Group group = {ReplaceAll(consolidated_ ? kpp : name, u"_", u" "), isns(groups.Field(u"h10")),
                             isns(document.begin), isns(document.end)};
        const Text months = YearAndMonth(document.begin).append(u"-").append(YearAndMonth(document.end));
        file_ = ReportPath(request_.export_folder,
                           names_.Take({name, consolidated_ ? kpp : document.code, group.okato, months}));
        WriteReport(file_, page);
        document.file = file_;
        AddSummaryRow(page_, group, file_, first, copy_.paper.Add(sheet));
        copy_.bars.Take(group.label, group.okato, document.end, ClosingBalance());
    }

    Connection& connection_;
    const SummaryRequest& request_;
    const bool consolidated_ = IsConsolidated(request_.kpp);
    Text& file_;
    SummaryCopy& copy_;
    ReportPage page_;
    PageNames names_;
};

}  // namespace

Text GetFiles(TextView database, TextView inn, TextView kpp, TextView export_folder,
              const SummaryChoice& choice) {
    const SummaryPlan plan{SummaryKind::Statements, u"Ошибка в функции GetFiles", u"index.doc"};
    const SummaryRequest asked{Text(database), Text(inn), Text(kpp), Text(export_folder), choice};
    return WriteSummary(
        plan, asked,
        [](Connection& connection, const SummaryRequest& request, Summary& summary, Text& file,
           SummaryCopy& copy) { return StatementsSummary(connection, request, file, copy).Write(summary); });
}

void ListStatements(TextView database, TextView inn, TextView kpp, TextView code) {
    GetFiles(database, inn, kpp, {}, {kNever, false, Text(code)});
}

}  // namespace tav
