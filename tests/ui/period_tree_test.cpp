#include "ui/period_tree.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <map>

#include "common/regional.h"
#include "support/support.h"
#include "ui/is_date_in.h"

namespace tav {
namespace {

using Days = std::vector<std::int32_t>;

Text Answer(const Days& begins, const Days& ends) {
    Text result = u"before";
    IsDateIn(10, 20, begins, ends, result);
    return result;
}

TEST(IsDateIn, CountsWholeAndOverlappingDocuments) {
    test::MessageList shown;
    EXPECT_EQ(Answer({10, 5}, {20, 10}), u"(1/2)|1,|1,2,");
    EXPECT_EQ(Answer({9, 20, 21, 1}, {20, 21, 30, 9}), u"(0/2)||1,2,");
    EXPECT_EQ(Answer({15}, {12}), u"(1/1)|1,|1,");
    EXPECT_EQ(Answer({12, 1, 13}, {12, 2, 99, 4}), u"(1/2)|1,|1,3,");
    EXPECT_EQ(Answer({21}, {30}), u"");
    EXPECT_EQ(Answer({}, {}), u"");
    EXPECT_TRUE(shown.messages.empty());
    EXPECT_EQ(Answer({12, 12}, {12}), u"");
    EXPECT_THAT(shown.messages,
                testing::ElementsAre(Message{u"Ошибка в функции IsDateIn", u"Subscript out of range\r\n"}));
}

Value Day(TextView date) {
    if (date.empty()) return Null{};
    return *ParseDate(date);
}

Summary Of(SummaryKind kind, std::initializer_list<std::array<TextView, 3>> documents) {
    Summary summary;
    summary.kind = kind;
    for (const auto& [begin, end, code] : documents) {
        summary.documents.push_back({Day(begin), Day(end), Text(code), {}});
    }
    return summary;
}

// Each node on a line, indented by its depth: text, key, picture, first and last day.
std::string Drawn(const std::vector<PeriodNode>& nodes) {
    std::string drawn;
    std::map<Text, std::size_t> depths;
    for (const PeriodNode& node : nodes) {
        const std::size_t depth = node.parent.empty() ? 0 : depths.at(node.parent) + 1;
        depths[node.key] = depth;
        drawn.append(4 * depth, ' ').append(ToUtf8(node.text));
        drawn.append(" | " + ToUtf8(node.key) + " " + ToUtf8(PictureKey(node.kind)));
        if (node.period) {
            for (const std::int32_t day : {node.period->begin, node.period->end}) {
                drawn.append(" " + ToUtf8(FormatDate({static_cast<double>(day)})));
            }
        }
        drawn += "\n";
    }
    return drawn;
}

TEST(PeriodTree, IsTheGoldenOne) {
    const Summary statements = Of(SummaryKind::Statements, {{u"01.01.2011", u"31.03.2011", u"1"},
                                                            {u"15.03.2011", u"01.07.2012", u"2"},
                                                            {u"29.02.2012", u"29.02.2012", u"1"},
                                                            {u"", u"31.12.2012", u"1"},
                                                            {u"31.12.1899", u"", u"1"}});
    const Summary acts = Of(SummaryKind::Acts, {{u"01.12.9999", u"31.12.9999", u""}});
    test::ExpectGolden("ui/golden/period_tree.txt", Drawn(PeriodTree(statements, u"")) +
                                                        Drawn(PeriodTree(statements, u"1")) +
                                                        Drawn(PeriodTree(acts, u"")));
}

TEST(PeriodTree, OfMistypedDatesStaysSmall) {
    const Summary summary = Of(SummaryKind::Statements, {{u"01.01.1900", u"31.12.9999", u""},
                                                         {u"01.10.2012", u"31.10.2011", u""},
                                                         {u"01.10.2000", u"31.12.2000", u""}});
    std::vector<std::string> years;
    for (const PeriodNode& node : PeriodTree(summary, {})) {
        if (node.kind == PeriodKind::Year) years.push_back(ToUtf8(node.text));
    }
    EXPECT_THAT(years, testing::ElementsAre("1900 (0/1)", "2000 (1/2)", "9999 (0/1)"));
    Summary damaged;
    for (const double serial : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        damaged.documents.push_back({Date{serial}, Date{serial}, {}, {}});
    }
    EXPECT_EQ(PeriodTree(damaged, {}).size(), 1U);
}

}  // namespace
}  // namespace tav
