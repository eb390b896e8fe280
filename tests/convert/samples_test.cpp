// The sample documents themselves: what tests and measurements elsewhere take for granted about them.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "common/windows1251.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "support/support.h"

namespace tav::samples {
namespace {

const Text* Find(const Fields& fields, std::string_view name) {
    const auto at =
        std::find_if(fields.begin(), fields.end(), [&](const auto& field) { return field.first == name; });
    return at == fields.end() ? nullptr : &at->second;
}

// "-1 234.50" with U+00A0 is -123450.
long long Kopecks(const Text& text) {
    std::string digits;
    for (char16_t c : text)
        if (c == u'-' || (c >= u'0' && c <= u'9')) digits += static_cast<char>(c);
    return std::stoll(digits);
}

std::size_t KindOf(const Text& payment) {
    return payment == u"налог" ? 0 : payment == u"пеня" ? 1 : 2;
}

TEST(Samples, StatementAddsUp) {
    const Part part = MakeStatement({.rows = 200, .seed = 5}).parts.at(0);
    const Text begin = u"Сальдо на 01.01.2010";
    const Text end = u"Сальдо на 31.12.2010";
    Sums sums;
    for (const Fields& row : part.rows) {
        if (row.empty()) continue;  // the numbering line
        const std::size_t kind = KindOf(*Find(row, "p09"));
        const long long balance = Kopecks(*Find(row, "p13"));
        if (*Find(row, "p03") == begin) sums.opening[kind] += balance;
        if (*Find(row, "p03") == end) sums.closing[kind] += balance;
        if (!Find(row, "p01")) continue;
        sums.charged[kind] += Kopecks(*Find(row, "p10"));
        sums.paid[kind] += Kopecks(*Find(row, "p11"));
        EXPECT_EQ(balance, sums.opening[kind] + sums.paid[kind] - sums.charged[kind]);
    }
    EXPECT_EQ(sums.opening, part.sums.opening);
    EXPECT_EQ(sums.charged, part.sums.charged);
    EXPECT_EQ(sums.paid, part.sums.paid);
    EXPECT_EQ(sums.closing, part.sums.closing);
    for (std::size_t kind = 0; kind < 3; ++kind) {
        EXPECT_NE(sums.charged[kind], 0);
        EXPECT_EQ(sums.closing[kind], sums.opening[kind] + sums.paid[kind] - sums.charged[kind]);
    }
}

TEST(Samples, PeriodOverTheYearEndHasItsBalances) {
    const Part part = MakeStatement({.period = {{2010, 10, 1}, {2011, 3, 31}}}).parts.at(0);
    std::multiset<Text> balances;
    for (const Fields& row : part.rows)
        if (!row.empty() && !Find(row, "p01")) balances.insert(*Find(row, "p03"));
    EXPECT_EQ(balances.count(u"Сальдо на 01.10.2010"), 3u);
    EXPECT_EQ(balances.count(u"Сальдо на 01.01.2011"), 3u);
    EXPECT_EQ(balances.count(u"Сальдо на 31.03.2011"), 3u);
}

TEST(Samples, StandardSetIsFitForAFolder) {
    const std::vector<Document> documents = SampleSet();
    std::set<Text> names;
    for (const Document& document : documents) {
        EXPECT_TRUE(IsWindows1251(document.name));
        EXPECT_TRUE(names.insert(document.name).second);
    }
}

TEST(Samples, BadOptionsAreRefused) {
    EXPECT_THROW(MakeStatement({.rows = -1}), std::invalid_argument);
    EXPECT_THROW(MakeStatement({.layout = 3}), std::invalid_argument);
    EXPECT_THROW(MakeStatement({.period = {{2011, 1, 1}, {2010, 12, 31}}}), std::invalid_argument);
    EXPECT_THROW(MakeActRtf({.drawn_up = {2011, 2, 30}}), std::invalid_argument);
    EXPECT_THROW(MakeActXml({.parts = 0}), std::invalid_argument);
}

}  // namespace
}  // namespace tav::samples
