// The amounts of reports and their totals: each call and what it answers in money.txt.
#include "reports/money.h"

#include <gtest/gtest.h>

#include <map>

#include "common/get_next.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav {
namespace {

Value Amount(TextView words) {
    if (words == u"Null") return Null();
    const std::string text = ToUtf8(words);
    if (text.starts_with('#')) return static_cast<std::int64_t>(std::stoll(text.substr(1)));
    const bool number = text.find_first_not_of("0123456789.-e") == text.npos;
    return number ? Value(std::stod(text)) : Value(Text(words));
}

Text Asked(TextView line) {
    const TextView field = GetNext(line, u" ");
    TextView has = field;
    const TextView asked = GetNext(has, u"@");
    // The totals, then a field: everything is 0 again.
    if (field == u"new") return GetMoney(nullptr, u"1", kTurnover), Asked(u"m1 Null turnover");
    const TextView value = GetNext(line, u" ");
    const std::map<TextView, int> modes = {
        {u"turnover", kTurnover}, {u"opening", kOpening}, {u"closing", kClosing}};
    const int mode = modes.at(line);
    if (field == u"total") return GetMoney(nullptr, value, mode);
    const Recordset row(ResultTable{{Text(has.empty() ? asked : has)}, {{Amount(value)}}});
    return GetMoney(&row, asked, mode);
}

TEST(Money, IsAddedUpAsItsTableSays) {
    test::ExpectTranscript("reports/money.txt", [](TextView lines) {
        Text answers;
        while (!lines.empty()) {
            Text answer;
            const std::string failure = test::FailureOf([&] { answer = Asked(GetNext(lines, u"\n")); });
            answers.append(failure.empty() ? answer : u"! " + FromUtf8(failure)).append(u"\n");
        }
        return answers;
    });
}

}  // namespace
}  // namespace tav
