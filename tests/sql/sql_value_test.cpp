#include "sql/sql_value.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "sql/sql_collation.h"

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

TEST(SqlCollation, Order) {
    const TextView ascending[] = {u"", u"  a", u"A1", u"a2", u"b", u"Де", u"ЕЖ", u"еж1", u"ёж", u"Ж", u"я"};
    for (std::size_t i = 1; i < std::size(ascending); ++i) {
        EXPECT_LT(Collate(ascending[i - 1], ascending[i]), 0) << ToUtf8(ascending[i]);
        EXPECT_GT(Collate(ascending[i], ascending[i - 1]), 0) << ToUtf8(ascending[i]);
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
