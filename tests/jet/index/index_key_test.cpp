#include "jet/index/index_key.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "common/failure.h"
#include "jet/index/text_codes.h"

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

std::string Key(ColumnType type, const Value& value, bool ascending = true) {
    const auto key = EncodeKeyColumn(ColumnOf(type), ascending, value);
    return key ? Hex(*key) : "none";
}

std::string TextKey(TextView text) {
    return Key(ColumnType::Text, Text(text));
}

TEST(IndexKey, NumbersDatesAndBytes) {
    using enum ColumnType;
    EXPECT_EQ(Key(Long, std::int64_t{1}), "7f80000001");
    EXPECT_EQ(Key(Long, std::int64_t{-1}), "7f7fffffff");
    EXPECT_EQ(Key(Long, std::int64_t{19}, false), "807fffffec");
    EXPECT_EQ(Key(Long, std::int64_t{-2147483648}), "7f00000000");
    EXPECT_EQ(Key(Integer, std::int64_t{-2}), "7f7ffe");
    EXPECT_EQ(Key(Byte, std::int64_t{200}), "7fc8");
    EXPECT_EQ(Key(Currency, Money{-1}), "7f7fffffffffffffff");
    EXPECT_EQ(Key(Double, 1.0), "7fbff0000000000000");
    EXPECT_EQ(Key(Double, -1.0), "7f400fffffffffffff");
    EXPECT_EQ(Key(ColumnType::Date, tav::Date{40544.5}), "7fc0e3cc1000000000");
    EXPECT_EQ(Key(ColumnType::Binary, tav::Binary{"\x01\x02"}), "7f010200000000000002");
    EXPECT_EQ(Key(ColumnType::Binary, tav::Binary{"12345678"}), "7f313233343536373808");
    EXPECT_EQ(Key(ColumnType::Binary, tav::Binary{"123456789"}), "7f313233343536373809390000000000000001");
    EXPECT_EQ(Key(Long, Null{}), "00");
    EXPECT_EQ(Key(Long, Null{}, false), "ff");
}

TEST(IndexKey, TextHasTheCodesOfItsCharacters) {
    EXPECT_EQ(TextKey(u"Tables"), "7f6d4a4c5e516b0100");
    EXPECT_EQ(TextKey(u"B-6000"), "7f4c4236363601010101800b068200");
    EXPECT_EQ(TextKey(u"B's"), "7f4c6b01010101800b068000");
    EXPECT_EQ(TextKey(u"-1-"), "7f380101010180070682800b068200");
    EXPECT_EQ(TextKey(u"мир  "), "7f7943793b79480100");
    EXPECT_EQ(TextKey(u"МИР"), TextKey(u"мир"));
    EXPECT_EQ(TextKey(u"её"), "7f7936793601021300");
    EXPECT_EQ(TextKey(u"ёлка"), "7f793679417940792f011300");
    EXPECT_EQ(TextKey(Text(300, u'a')), TextKey(Text(255, u'A')));
    EXPECT_EQ(Key(ColumnType::Memo, Text(u"a")), "7f4a0100");
    EXPECT_EQ(TextKey(u"  "), "7f0100");
    EXPECT_EQ(TextKey(u"Ёж-2"),
              "7f793679383a011301010180"
              "0f068200");
    EXPECT_EQ(TextKey(u"–№—"), "7f63020101010180070689800b068b00");
    EXPECT_EQ(TextKey(u"«Эъ»"), "7f3305795a795733070100");
}

TEST(IndexKey, WhatHasNoKnownCodeIsRefused) {
    for (const TextView text : {u"é", u"a\u0001", u"a\u2212b"}) {
        EXPECT_EQ(TextKey(text), "none") << tav::ToUtf8(text);
    }
    EXPECT_EQ(TextKey(TextView(u"a\0b", 3)), "none");
    EXPECT_EQ(Key(ColumnType::Binary, tav::Binary{}), "none");
    EXPECT_EQ(Key(ColumnType::Double, std::numeric_limits<double>::quiet_NaN()), "none");
    EXPECT_EQ(Key(ColumnType::Double, -0.0), "none") << "rows with 0.0 have another key";
    EXPECT_EQ(Key(ColumnType::Date, tav::Date{0.0}), "none");
    EXPECT_EQ(Key(ColumnType::Integer, std::int64_t{32768}), "none");
    EXPECT_EQ(Key(ColumnType::Long, Text(u"1")), "none");
    for (const ColumnType type : {ColumnType::Boolean, ColumnType::Single, ColumnType::Guid,
                                  ColumnType::Numeric, ColumnType::Ole, ColumnType::Internal}) {
        EXPECT_EQ(Key(type, Null{}), "none") << static_cast<int>(type);
    }
    EXPECT_EQ(Key(ColumnType::Text, Text(u"a"), false), "none");
    EXPECT_EQ(Key(ColumnType::Double, 1.0, false), "none");
    Column russian = ColumnOf(ColumnType::Text);
    russian.sort_order = 0x0419;
    EXPECT_FALSE(EncodeKeyColumn(russian, true, Text(u"a")));
    russian.sort_order = 0x0409;
    russian.sort_version = 1;
    EXPECT_FALSE(EncodeKeyColumn(russian, true, Text(u"a")));

    int known = 0;
    for (int c = 0; c < 0x10000; ++c) known += FindTextCode(static_cast<char16_t>(c)).has_value();
    EXPECT_EQ(known, 95 + 5 + 2 * 33 + 10) << "ASCII, five controls, the letters, ten signs";
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
    try {
        EncodeKey(table_, index_, row);
        ADD_FAILURE() << "a key was made";
    } catch (const Failure& failure) {
        EXPECT_EQ(
            failure.description(),
            u"The value \"объeкт−\" of column \"tname\" cannot be put into the index \"byname\": the code "
            u"of the character − (U+2212) is not known.");
    }
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
