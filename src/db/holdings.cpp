#include "db/holdings.h"

#include <algorithm>
#include <limits>
#include <map>
#include <tuple>

#include "common/regional.h"
#include "db/connection.h"
#include "db/literals.h"
#include "settings/session.h"

namespace tav {
namespace {

// A missing end leaves the period open on that side.
double SerialOr(const Value& value, double missing) {
    const Date* date = std::get_if<Date>(&value);
    return date == nullptr ? missing : date->serial;
}

struct Period {
    double begin = 0;
    double end = 0;
};

// Periods sorted by begin: one is alone when it begins after every end before it and ends before the next
// begin.
int CountAlone(std::vector<Period> periods) {
    std::sort(periods.begin(), periods.end(),
              [](const Period& a, const Period& b) { return a.begin < b.begin; });
    int alone = 0;
    double latest_end = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < periods.size(); ++i) {
        const bool after = i == 0 || periods[i].begin > latest_end;
        const bool before = i + 1 == periods.size() || periods[i].end < periods[i + 1].begin;
        if (after && before) ++alone;
        latest_end = std::max(latest_end, periods[i].end);
    }
    return alone;
}

}  // namespace

HeldDocument HeldDocumentOf(const Recordset& row) {
    const auto text = [&](TextView field) { return ValueText(row.Field(field)); };
    HeldDocument document;
    document.file_name = text(u"filename");
    document.kpp = text(u"h2");
    document.name = text(u"h3");
    document.code = text(u"h7");
    document.tax = text(u"h8");
    document.okato = text(u"h10");
    document.begin = row.Field(u"perb");
    document.end = row.Field(u"pere");
    document.current = !IsNull(row.Field(u"vid"));
    document.act = IsNull(row.Field(u"h6")) && !document.current;
    return document;
}

std::vector<HeldDocument> HeldDocuments(TextView database, TextView inn, TextView kpp) {
    SqlText sql(
        u"select id, filename, vid, perb, pere, h1, h2, h3, h6, h7, h8, h10 from tav_operations_header");
    TextView next = u" where ";
    if (!inn.empty()) {
        sql.Fixed(next).Fixed(u"h1 in (");
        const std::vector<Text> inns = InnsOf(inn);
        if (inns.empty()) sql.Fixed(u"null");
        for (std::size_t i = 0; i < inns.size(); ++i) {
            sql.Fixed(i == 0 ? u"'" : u",'").Value(inns[i]).Fixed(u"'");
        }
        sql.Fixed(u")");
        next = u" and ";
    }
    if (!kpp.empty() && !TakesEveryKpp(inn, kpp)) {
        sql.Fixed(next).Fixed(u"h2='").Value(kpp).Fixed(u"'");
    }
    sql.Fixed(u" order by h7, h10, perb");

    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    std::vector<HeldDocument> documents;
    for (Recordset rows = connection.Execute(sql); !rows.Eof(); rows.MoveNext()) {
        HeldDocument document = HeldDocumentOf(rows);
        document.id = WholeNumberOf(rows.Field(u"id")).value_or(0);
        document.inn = ValueText(rows.Field(u"h1"));
        documents.push_back(std::move(document));
    }
    return documents;
}

HoldingCounts CountHoldings(const std::vector<HeldDocument>& documents) {
    HoldingCounts counts;
    std::map<std::tuple<bool, TextView, TextView, TextView, TextView>, std::vector<Period>> series;
    for (const HeldDocument& document : documents) {
        if (document.Superseded()) continue;
        ++(document.act ? counts.acts : counts.statements);
        constexpr double kEver = std::numeric_limits<double>::infinity();
        series[{document.act, document.inn, document.kpp, document.code, document.okato}].push_back(
            {SerialOr(document.begin, -kEver), SerialOr(document.end, kEver)});
    }
    for (const auto& [key, periods] : series) counts.alone += CountAlone(periods);
    return counts;
}

}  // namespace tav
