#include "jet/index/index_key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "common/windows1251.h"
#include "jet/index/text_codes.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav::jet {
namespace {

std::string Hex(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        hex += kDigits[static_cast<unsigned char>(byte) >> 4];
        hex += kDigits[byte & 0xF];
    }
    return hex;
}

Column ColumnOf(ColumnType type) {
    Column column;
    column.name = u"c";
    column.type = type;
    column.sort_order = 0x0409;
    return column;
}

// "TYPE VALUE" or "TYPE desc VALUE".
Text Key(TextView line) {
    using enum ColumnType;
    const std::pair<TextView, ColumnType> types[] = {{u"Long", Long},        {u"Integer", Integer},
                                                     {u"Byte", Byte},        {u"Currency", Currency},
                                                     {u"Double", Double},    {u"Date", ColumnType::Date},
                                                     {u"Boolean", Boolean},  {u"Text", ColumnType::Text},
                                                     {u"Memo", Memo},        {u"Binary", ColumnType::Binary},
                                                     {u"Single", Single},    {u"Guid", Guid},
                                                     {u"Numeric", Numeric},  {u"Ole", Ole},
                                                     {u"Internal", Internal}};
    const TextView name = GetNext(line, u" ");
    const ColumnType type =
        std::ranges::find(types, name, [](const auto& known) { return known.first; })->second;
    const bool descends = line.starts_with(u"desc ");
    if (descends) line.remove_prefix(5);
    const std::string bytes = test::Unpictured(line);
    Value value = FromWindows1251(bytes);
    if (line == u"Null") value = Null{};
    if (line != u"Null" && (type == Long || type == Integer || type == Byte)) value = *ParseInteger(line);
    if (type == Currency) value = Money{*ParseInteger(line)};
    if (type == Double) value = std::stod(bytes);
    if (type == ColumnType::Date) value = tav::Date{std::stod(bytes)};
    if (type == ColumnType::Binary) value = tav::Binary{bytes};
    const auto key = EncodeKeyColumn(ColumnOf(type), !descends, value);
    return FromUtf8(key ? Hex(*key) : "none");
}

TEST(IndexKey, OfEveryKindOfValue) {
    test::ExpectTranscript("jet/index/keys.txt", Key);
    const Column text = ColumnOf(ColumnType::Text);
    EXPECT_EQ(EncodeKeyColumn(text, true, Text(300, u'a')), EncodeKeyColumn(text, true, Text(255, u'A')));
    for (const TextView unknown : {u"é", u"a\u2212b"}) {
        EXPECT_FALSE(EncodeKeyColumn(text, true, Text(unknown))) << ToUtf8(unknown);
    }
    EXPECT_FALSE(EncodeKeyColumn(ColumnOf(ColumnType::Long), true, Text(u"1")));
    Column russian = text;
    russian.sort_order = 0x0419;
    EXPECT_FALSE(EncodeKeyColumn(russian, true, Text(u"a")));
    russian.sort_order = 0x0409;
    russian.sort_version = 1;
    EXPECT_FALSE(EncodeKeyColumn(russian, true, Text(u"a")));
    int known = 0;
    for (int c = 0; c < 0x10000; ++c) known += FindTextCode(static_cast<char16_t>(c)).has_value();
    EXPECT_EQ(known, 95 + 5 + 2 * 33 + 19) << "ASCII, five controls, the letters, 19 signs";
}

class RowKey : public testing::Test {
 protected:
    RowKey() {
        table_.columns = {ColumnOf(ColumnType::Long), ColumnOf(ColumnType::Text), ColumnOf(ColumnType::Date)};
        table_.columns[1].name = u"tname";
        index_.name = u"byname";
        index_.columns = {{1, true}, {0, false}};
    }
    TableDefinition table_;
    RealIndex index_;
};

TEST_F(RowKey, PutsTheColumnsInTheIndexOrder) {
    const Value row[] = {std::int64_t{19}, Text(u"a"), Null{}};
    EXPECT_EQ(Hex(EncodeKey(table_, index_, row)), "7f4a0100807fffffec");
    EXPECT_EQ(WhyNoKeys(table_, index_), u"");
    EXPECT_FALSE(AllNull(index_, row));
    index_.columns = {{2, true}};
    const Value zero[] = {Null{}, Null{}, Date{0}};
    EXPECT_EQ(Hex(EncodeKey(table_, index_, zero)), "7f8000000000000000");
    index_.columns = {{1, true}, {0, false}};
    const Value nulls[] = {Null{}, Null{}, Date{1}};
    EXPECT_EQ(Hex(EncodeKey(table_, index_, nulls)), "00ff");
    EXPECT_TRUE(AllNull(index_, nulls));
}

TEST_F(RowKey, RefusesWithColumnAndValue) {
    const Value row[] = {std::int64_t{1}, Text(u"объeкт−"), Null{}};
    EXPECT_EQ(
        test::FailureOf([&] { EncodeKey(table_, index_, row); }),
        "The value \"объeкт−\" of column \"tname\" cannot be put into the index \"byname\": the code of "
        "the character − (U+2212) is not known.");
    table_.columns[1].sort_order = 0x0419;
    EXPECT_EQ(
        WhyNoKeys(table_, index_),
        u"the index \"byname\" cannot be kept: column \"tname\": the codes of its sort order 1049 version 0 "
        u"are not known");
    EXPECT_THROW(EncodeKey(table_, index_, row), Failure);
    index_.columns = {{2, false}};
    EXPECT_NE(WhyNoKeys(table_, index_), u"");
}

TEST_F(RowKey, RefusesAKeyThatIsTooLong) {
    index_.columns = {{1, true}, {1, true}, {1, true}};
    const Value fits[] = {Null{}, Text(198, u'Я'), Null{}};
    EXPECT_EQ(EncodeKey(table_, index_, fits).size(), kMaxKeySize);
    const Value row[] = {Null{}, Text(199, u'Я'), Null{}};
    EXPECT_THROW(EncodeKey(table_, index_, row), Failure);
}

// The order of keys is the order of values.
TEST(IndexKey, OrdersAsTheValuesDo) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto a = static_cast<std::int32_t>(random() >> (random() % 63));
        const auto b = static_cast<std::int32_t>(random() >> (random() % 63));
        const auto key = [](ColumnType type, const Value& value, bool ascending = true) {
            return *EncodeKeyColumn(ColumnOf(type), ascending, value);
        };
        const Value long_a = std::int64_t{a};
        const Value long_b = std::int64_t{b};
        EXPECT_EQ(a < b, key(ColumnType::Long, long_a) < key(ColumnType::Long, long_b));
        EXPECT_EQ(a < b, key(ColumnType::Long, long_b, false) < key(ColumnType::Long, long_a, false));
        EXPECT_EQ(a < b, key(ColumnType::Currency, Money{a * 10007LL}) <
                             key(ColumnType::Currency, Money{b * 10007LL}));
        EXPECT_EQ(a < b, key(ColumnType::Double, a / 7.0 + 1e-9) < key(ColumnType::Double, b / 7.0 + 1e-9));
    }
}

}  // namespace
}  // namespace tav::jet
