#include "sql/sql_value.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "common/get_next.h"
#include "jet/index/index_key.h"
#include "jet/index/text_codes.h"
#include "sql/sql_collation.h"
#include "support/support.h"

namespace tav::jet {
namespace {

TEST(SqlValue, DatesSortAsTheirBytes) {
    const double ascending[] = {-657434, -2.5, -1, 0, 0.25, 1, 40544, 40544.5, 2958465};
    for (std::size_t i = 1; i < std::size(ascending); ++i) {
        EXPECT_LT(EncodeDate({ascending[i - 1]}), EncodeDate({ascending[i]})) << ascending[i];
    }
    EXPECT_EQ(EncodeDate({0.0}), EncodeDate({-0.0}));
}

TEST(SqlValue, EqualNumbersHashAlike) {
    EXPECT_EQ(HashValue(std::int64_t{5}), HashValue(5.0));
    EXPECT_EQ(HashValue(Money{12345000}), HashValue(1234.5));
    EXPECT_EQ(HashValue(true), HashValue(std::int64_t{-1}));
    EXPECT_EQ(HashValue(0.0), HashValue(-0.0));
    EXPECT_NE(HashValue(Date{5}), HashValue(5.0));
    EXPECT_EQ(HashValue(Text(u"Пеня  ")), HashValue(Text(u"ПЕНЯ")));
}

// Line by line ascending; the keys of the index agree where there are any.
TEST(SqlCollation, OrdersAsTheIndexKeysDo) {
    Column column;
    column.type = ColumnType::Text;
    column.sort_order = kCodedSortOrder;
    const Text script = FromUtf8(test::TestFile("sql/text_order.txt"));
    TextView rest = script;
    Text last(GetNext(rest, u"\n"));
    while (!rest.empty()) {
        const Text next(GetNext(rest, u"\n"));
        EXPECT_LT(Collate(last, next), 0) << ToUtf8(last) << " < " << ToUtf8(next);
        EXPECT_GT(Collate(next, last), 0) << ToUtf8(last) << " < " << ToUtf8(next);
        const auto low = EncodeKeyColumn(column, true, last);
        const auto high = EncodeKeyColumn(column, true, next);
        EXPECT_TRUE(!low || !high || *low < *high) << ToUtf8(last) << " < " << ToUtf8(next);
        last = next;
    }
}

TEST(SqlCollation, CaseAndTrailingBlanksDoNotCount) {
    const std::pair<TextView, TextView> equal[] = {
        {u"налог", u"НАЛОГ "}, {u"ёлка", u"ЁЛКА"}, {u"", u"   "}, {u"Abc", u"aBC"}};
    for (const auto& [a, b] : equal) {
        EXPECT_EQ(Collate(a, b), 0) << ToUtf8(a);
        EXPECT_EQ(CollationHash(a), CollationHash(b)) << ToUtf8(a);
    }
    EXPECT_NE(Collate(u"все", u"всё"), 0);
    EXPECT_NE(Collate(u" a", u"a"), 0);
}

Column Typed(ColumnType type) {
    Column column;
    column.type = type;
    return column;
}

TEST(SqlValue, IndexSearchesNeedTheColumnsOwnKind) {
    const std::int64_t big = 1LL << 40;
    EXPECT_EQ(ForIndex(Typed(ColumnType::Long), std::int64_t{7}), Value(std::int64_t{7}));
    EXPECT_EQ(ForIndex(Typed(ColumnType::Long), big), std::nullopt);
    EXPECT_EQ(ForIndex(Typed(ColumnType::Byte), std::int64_t{-1}), std::nullopt);
    EXPECT_EQ(ForIndex(Typed(ColumnType::Integer), 5.5), std::nullopt);
    EXPECT_EQ(ForIndex(Typed(ColumnType::Double), std::int64_t{7}), Value(7.0));
    EXPECT_EQ(ForIndex(Typed(ColumnType::Double), 0.0), std::nullopt);
    EXPECT_EQ(ForIndex(Typed(ColumnType::Date), Text(u"01.01.2011")), std::nullopt);
}

}  // namespace
}  // namespace tav::jet
