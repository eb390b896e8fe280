#include "reports/summary_heading.h"

#include <utility>
#include <vector>

#include "db/literals.h"
#include "reports/cells.h"
#include "settings/session.h"

namespace tav {
namespace {

constexpr std::size_t kLongestKpp = 15;

}  // namespace

bool IsConsolidated(TextView kpp) {
    return kpp.size() > kLongestKpp;
}

void ChooseCode(Connection& connection, const SqlText& codes, Summary& summary) {
    for (Recordset rows = connection.Execute(codes); !rows.Eof(); rows.MoveNext()) {
        if (Text code = isns(rows.Field(0)); !code.empty()) summary.codes.push_back(std::move(code));
    }
    if (summary.kpp != kAllSubdivisions) {
        summary.code = summary.kpp;
    } else if (!summary.codes.empty()) {
        summary.code = summary.codes.front();
    }
}

Text SummaryHeading(TextView title, const ShownTaxpayer& of_documents,
                    const std::optional<CodeAndTax>& consolidated) {
    const ShownTaxpayer taxpayer = ChosenTaxpayer().value_or(of_documents);
    std::vector<Text> rows = {
        GetHS(u"td", {title, u"#c2", u"#ac"}),
        GetHS(u"td", {u"Наименование организации:", u"#w15%", HtmlText(taxpayer.name), u"#al"}),
        GetHS(u"td", {u"ИНН:", HtmlText(taxpayer.inn), u"#al"}),
        GetHS(u"td", {u"КПП:", HtmlText(taxpayer.kpp), u"#al"})};
    if (consolidated) {
        rows.push_back(GetHS(u"td", {u"КБК:", HtmlText(consolidated->code), u"#al"}) +
                       GetHS(u"td", {u"Наименование налога:", HtmlText(consolidated->tax), u"#al"}));
    }
    return GetHS(u"tr", std::vector<TextView>(rows.begin(), rows.end()));
}

}  // namespace tav
