#include "reports/summary_heading.h"

#include <utility>

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

void ChooseCode(Connection& connection, const SqlText& codes, Summary& summary, SummaryChoice& choice) {
    for (Recordset rows = connection.Execute(codes); !rows.Eof(); rows.MoveNext()) {
        if (Text code = isns(rows.Field(0)); !code.empty()) summary.codes.push_back(std::move(code));
    }
    if (summary.kpp != kAllSubdivisions) {
        summary.code = summary.kpp;
    } else if (!choice.code.empty()) {
        summary.code = std::exchange(choice.code, {});
    } else if (!summary.codes.empty()) {
        summary.code = summary.codes.front();
    }
}

void AddSummaryHeading(ReportPage& page, TextView title, const ShownTaxpayer& of_documents,
                       const std::optional<CodeAndTax>& consolidated) {
    const ShownTaxpayer taxpayer = ChosenTaxpayer().value_or(of_documents);
    page.AddHeading({title, u"#c2", u"#ac"});
    page.AddHeading({u"Наименование организации:", u"#w15%", HtmlText(taxpayer.name), u"#al"});
    page.AddHeading({u"ИНН:", HtmlText(taxpayer.inn), u"#al"});
    page.AddHeading({u"КПП:", HtmlText(taxpayer.kpp), u"#al"});
    if (!consolidated) return;
    page.AddHeading({u"КБК:", HtmlText(consolidated->code), u"Наименование налога:",
                     HtmlText(consolidated->tax), u"#al"});
}

}  // namespace tav
