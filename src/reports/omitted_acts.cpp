#include "reports/omitted_acts.h"

#include <algorithm>

#include "common/concat.h"
#include "common/message_box.h"
#include "db/literals.h"
#include "reports/summary_heading.h"

namespace tav {

std::vector<Text> OmittedActs(Connection& connection, const Summary& summary, const SummaryChoice& choice) {
    const bool consolidated = IsConsolidated(summary.kpp);
    // Only an act has no h6.
    SqlText sql(u"select h2,h7,h10,perb,pere from tav_operations_header where h1='");
    sql.Value(summary.inn)
        .Fixed(consolidated ? u"' and h7='" : u"' and h2='")
        .Value(consolidated ? summary.code : summary.kpp)
        .Fixed(u"' group by h2,h7,h10,perb,pere having count(h6)>0 and count(*)>count(h6) order by h7, perb");
    std::vector<Text> lines;
    for (Recordset acts = connection.Execute(sql); !acts.Eof(); acts.MoveNext()) {
        const auto text = [&](TextView field) { return isns(acts.Field(field)); };
        if (!IsChosen(choice, {acts.Field(u"perb"), acts.Field(u"pere"), text(u"h7"), {}})) continue;
        lines.push_back(Concat(u"КПП ", text(u"h2"), u", КБК ", text(u"h7"), u", ОКАТО ", text(u"h10"),
                               u", период ", text(u"perb"), u"-", text(u"pere")));
    }
    return lines;
}

void ShowOmittedActs(const std::vector<Text>& lines) {
    constexpr std::size_t kShown = 20;  // what a message box has room for
    if (lines.empty()) return;
    Text text =
        u"В сводную справку не вошли акты сверки, так как за тот же период в базе данных есть выписки "
        u"операций:";
    const std::size_t shown = std::min(lines.size(), kShown);
    for (std::size_t i = 0; i < shown; ++i) text.append(u"\r\n").append(lines[i]);
    if (lines.size() > shown) {
        text += Concat(u"\r\nи ещё ", Digits(static_cast<long long>(lines.size() - shown)));
    }
    ShowMessage(u"Сводная справка", text, MessageIcon::Information);
}

}  // namespace tav
