#include "reports/money.h"

#include <gmock/gmock.h>

#include "common/failure.h"

namespace tav {
namespace {

class Money9 : public testing::Test {
 protected:
    // The totals, then a field: everything is 0 again.
    Money9() {
        GetMoney(nullptr, u"1", kTurnover);
        const Recordset none = Row({{u"m1", Null()}});
        GetMoney(&none, u"m1", kTurnover);
    }

    static Recordset Row(const std::vector<std::pair<Text, Value>>& fields) {
        ResultTable table;
        table.rows.emplace_back();
        for (const auto& [name, value] : fields) {
            table.names.push_back(name);
            table.rows.back().push_back(value);
        }
        return Recordset(std::move(table));
    }

    static void Add(TextView field, double amount, int mode) {
        const Recordset row = Row({{Text(field), amount}});
        GetMoney(&row, field, mode);
    }

    static Text Total(TextView column, int mode) { return GetMoney(nullptr, column, mode); }
};

TEST_F(Money9, FormatsFields) {
    const Recordset row = Row({{u"m1", Null()},
                               {u"m2", 0.0},
                               {u"m3", -1234.5},
                               {u"m4", std::int64_t{1234567}},
                               {u"m5", Text(u"12,5")},
                               {u"m6", -0.3},
                               {u"sum", 7.0}});
    EXPECT_EQ(GetMoney(&row, u"m1", kTurnover), u"-&nbsp;");
    EXPECT_EQ(GetMoney(&row, u"m2", kTurnover), u"0,00");
    EXPECT_EQ(GetMoney(&row, u"m3", kTurnover), u"- 1\u00A0234,50");
    EXPECT_EQ(GetMoney(&row, u"m4", kTurnover), u"1\u00A0234\u00A0567,00");
    EXPECT_EQ(GetMoney(&row, u"m5", kTurnover), u"12,50");
    EXPECT_EQ(GetMoney(&row, u"m6", kTurnover), u"- 0,30");
    EXPECT_EQ(GetMoney(&row, u"sum", kTurnover), u"7,00") << "a longer name is not added anywhere";
    EXPECT_EQ(Total(u"3", kTurnover), u"- 1\u00A0234,50");
    EXPECT_EQ(Total(u"7", kTurnover), u"-&nbsp;");
}

TEST_F(Money9, RefusesWhatHasNoColumn) {
    const Recordset row = Row({{u"m0", 1.0}, {u"mx", 1.0}, {u"m1", Text(u"много")}});
    EXPECT_THROW(GetMoney(&row, u"m0", kTurnover), Failure);
    EXPECT_THROW(GetMoney(&row, u"mx", kTurnover), Failure);
    EXPECT_THROW(GetMoney(&row, u"m1", kTurnover), Failure);
    EXPECT_THROW(GetMoney(&row, u"m7", kTurnover), Failure) << "no such field";
    EXPECT_THROW(GetMoney(nullptr, u"m1", kTurnover), Failure);
    EXPECT_THROW(Total(u"10", kTurnover), Failure);
    EXPECT_THROW(Total(u"0", kTurnover), Failure);
}

TEST_F(Money9, ClosesTheBooks) {
    Add(u"m1", 100, kOpening);  // a debt of tax
    Add(u"m6", 30, kOpening);   // a credit of penalty interest
    Add(u"m6", 20, kOpening);   // the opening value is replaced, not added to
    Add(u"m9", -80, kOpening);
    Add(u"m1", 50, kTurnover);
    Add(u"m1", 25, kTurnover);
    Add(u"m5", 300, kTurnover);
    Add(u"m2", 45.5, kTurnover);
    EXPECT_EQ(Total(u"1", kTurnover), u"75,00");
    EXPECT_EQ(Total(u"1", kOpening), u"100,00");
    EXPECT_EQ(Total(u"9", kOpening), u"- 80,00");
    EXPECT_EQ(Total(u"5", kClosing), u"125,00") << "300 - 75 - 100";
    EXPECT_EQ(Total(u"1", kClosing), u"-&nbsp;");
    EXPECT_EQ(Total(u"2", kClosing), u"25,50") << "|20 - 45.5| is a debt";
    EXPECT_EQ(Total(u"6", kClosing), u"-&nbsp;");
    EXPECT_EQ(Total(u"3", kClosing), u"-&nbsp;");
    EXPECT_EQ(Total(u"9", kClosing), u"99,50");
}

TEST_F(Money9, SettlesWhatAddsUpToNothing) {
    for (int times = 0; times < 3; ++times) Add(u"m1", 0.1, kTurnover);
    Add(u"m5", 0.3, kTurnover);
    Add(u"m2", 1e12 + 0.07, kTurnover);
    Add(u"m6", 1e12 + 0.07, kTurnover);
    const Recordset row = Row({{u"m9", 0.1 + 0.2 - 0.3}, {u"m3", 1e-9 - 0.00004}});
    EXPECT_EQ(GetMoney(&row, u"m3", kTurnover), u"0,00");
    EXPECT_EQ(GetMoney(&row, u"m9", kOpening), u"0,00");
    for (const TextView column : {u"1", u"2", u"5", u"6", u"9"})
        EXPECT_EQ(Total(column, kClosing), u"-&nbsp;");
    EXPECT_EQ(Total(u"9", kOpening), u"-&nbsp;");
    EXPECT_EQ(Total(u"3", kTurnover), u"-&nbsp;");
}

TEST_F(Money9, BeginsTheNextReportWithTheFirstFieldBehindTheTotals) {
    Add(u"m1", 10, kTurnover);
    Add(u"m1", 5, kTurnover);
    EXPECT_EQ(Total(u"1", kTurnover), u"15,00");
    EXPECT_EQ(Total(u"1", kTurnover), u"15,00");
    Add(u"m2", 1, kOpening);
    EXPECT_EQ(Total(u"1", kTurnover), u"-&nbsp;");
    EXPECT_EQ(Total(u"2", kClosing), u"1,00");
}

TEST_F(Money9, LeavesTheSumsOfAReportWithoutTotalsToTheNext) {
    Add(u"m4", 10, kTurnover);
    Add(u"m4", 1, kTurnover);
    EXPECT_EQ(Total(u"4", kTurnover), u"11,00");
}

}  // namespace
}  // namespace tav
