#include "load/column_values.h"

#include <gmock/gmock.h>

#include "support/support.h"

namespace tav {
namespace {

TEST(ColumnValues, NameColumnsByElements) {
    for (const auto& [element, column] :
         std::initializer_list<std::pair<TextView, TextView>>{{u"h01", u"h1"},
                                                              {u"p0211", u"p211"},
                                                              {u"p10", u"p10"},
                                                              {u"p00", u"p0"},
                                                              {u"perb", u"perb"},
                                                              {u"pere", u"pere"},
                                                              {u"p", u"p"},
                                                              {u"p-5", u"p-5"},
                                                              {u"p1.5", u"p1.5"}}) {
        EXPECT_EQ(ColumnName(element), column);
    }
}

TEST(ColumnValues, JoinWhatOccursTwice) {
    ColumnValues row(CatalogueTable::Operations);
    for (int round = 0; round < 2; ++round) {
        row.Clear();
        const std::pair<std::string_view, TextView> elements[] = {
            {"p04", u"Платежное"}, {"p10", u"5.00"},       {"p01", u"01.02.2011"}, {"p04", u"поручение"},
            {"p10", u"итого"},     {"p01", u"02.02.2011"}, {"p13", u"x"},          {"p13", u"y"},
        };
        for (const auto& [element, text] : elements) row.Add(element, Text(text));
        std::vector<std::pair<Text, Text>> values;
        for (const auto& item : row.items()) values.emplace_back(item.column->column, item.text);
        EXPECT_THAT(values, testing::ElementsAre(
                                testing::Pair(u"p4", u"Платежное поручение"), testing::Pair(u"p10", u"5.00"),
                                testing::Pair(u"p1", u"02.02.2011"), testing::Pair(u"p13", u"y")));
    }
}

}  // namespace
}  // namespace tav
