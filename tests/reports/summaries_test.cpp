#include <functional>

#include "common/failure.h"
#include "common/progress.h"
#include "common/regional.h"
#include "db/holdings.h"
#include "reports/act_amounts.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/get_vipis.h"
#include "reports/page_names.h"
#include "reports/report_database.h"
#include "reports/summary_documents.h"
#include "settings/session.h"

namespace tav {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr TextView kInn = u"7701234567";
constexpr TextView kKpp = u"770101001";
constexpr TextView kCode = u"18210101011011000110";
constexpr TextView kFirstCode = u"00000000000000000000";

class Summaries : public test::ReportDatabase {
 protected:
    Summaries() : ReportDatabase("summaries.sql") {}

    const Text out_ = folder_ / u"out/";
};

TEST_F(Summaries, OfStatementsIsTheGoldenOne) {
    EXPECT_EQ(GetFiles(database_, kInn, kKpp, out_), out_ + u"index.doc");
    ExpectReport(out_ + u"index.doc", "statements.html");
    EXPECT_THAT(
        ListFiles(out_, u""),
        ElementsAre(u"index.doc", u"Налог на _прибыль__ФБ_18210101011011000110_45286552000_201101-201103.doc",
                    u"Налог на _прибыль__ФБ_18210101011011000110_45286552000_201101-201103_2.doc",
                    u"НДС_18210301000011000110_45286552000_201001-201012.doc"));
    ASSERT_EQ(LastSummary().documents.size(), 3U);
    const SummaryDocument& last = LastSummary().documents[2];
    EXPECT_EQ(last.begin, Value(*DateFromCivil({2010, 1, 1})));
    EXPECT_EQ(last.code, u"18210301000011000110");
    // The page of a series is the report of its statement.
    const std::string page = ReadFile(LastSummary().documents[0].file);
    EXPECT_EQ(page, ReadFile(GetVipis(database_, 1, folder_.path())));
}

TEST_F(Summaries, OfStatementsConsolidated) {
    EXPECT_EQ(GetFiles(database_, kInn, kFirstCode, out_), out_ + u"index.doc");
    ExpectReport(out_ + u"index.doc", "statements_consolidated.txt", "statements.html");
    EXPECT_EQ(ReadFile(GetFiles(database_, kInn, kCode, folder_ / u"other")).size(),
              ReadFile(out_ + u"index.doc").size());
}

TEST_F(Summaries, OfACodeOfAnyLength) {
    constexpr TextView kOther = u"5001007322";
    GetFiles(database_, kOther, kAllSubdivisions, out_, {std::nullopt, false, u"короткий"});
    EXPECT_EQ(LastSummary().code, u"короткий");
    ASSERT_EQ(LastSummary().documents.size(), 1U);
    EXPECT_EQ(LastSummary().documents[0].begin, Value(*DateFromCivil({2012, 1, 1})));
    // What has a series is a statement, whatever else it lacks.
    for (const HeldDocument& document : HeldDocuments(database_, kOther, {})) EXPECT_FALSE(document.act);
}

TEST_F(Summaries, OfActsIsTheGoldenOne) {
    ExpectReport(GetFilesAct(database_, kInn, kKpp, out_), "acts.html");
    EXPECT_THAT(ListFiles(out_, u""), ElementsAre(u"acts.doc"));
    EXPECT_EQ(LastSummary().kind, SummaryKind::Acts);
    EXPECT_EQ(LastSummary().documents.size(), 3U);
}

TEST_F(Summaries, OfActsConsolidated) {
    ExpectReport(GetFilesAct(database_, kInn, kFirstCode, out_), "acts_consolidated.txt", "acts.html");
}

TEST_F(Summaries, LinkToTheFilesThatWereWritten) {
    GetFiles(database_, kInn, kKpp, out_);
    const Text second = GetFiles(database_, kInn, kKpp, out_);
    EXPECT_EQ(second, out_ + u"index07.doc");
    const Text page = FromWindows1251(ReadFile(second));
    std::vector<Text> linked;
    TextView rest = page;
    for (GetNext(rest, u"<a href=\""); !rest.empty(); GetNext(rest, u"<a href=\"")) {
        linked.push_back(out_ + Text(GetNext(rest, u"\">")));
        EXPECT_TRUE(linked.back().ends_with(u"07.doc"));
        EXPECT_TRUE(FileExists(linked.back()));
    }
    std::vector<Text> recorded;
    for (const SummaryDocument& document : LastSummary().documents) recorded.push_back(document.file);
    EXPECT_EQ(linked, recorded);
    EXPECT_EQ(linked.size(), 3U);
}

DayRange Period(const CivilDate& begin, const CivilDate& end) {
    return *DaysOf(*DateFromCivil(begin), *DateFromCivil(end));
}

std::size_t Occurrences(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1)) ++count;
    return count;
}

// The documents' begins, of all and of those with a page.
std::pair<std::string, std::string> Recorded() {
    std::pair<std::string, std::string> begins;
    for (const SummaryDocument& document : LastSummary().documents) {
        const std::string begin = ToUtf8(ValueText(document.begin)) + " ";
        begins.first += begin;
        if (!document.file.empty()) begins.second += begin;
    }
    return begins;
}

TEST_F(Summaries, OfAChoiceHaveTheChosenRowsOnly) {
    constexpr std::string_view kAll = "01.01.2011 01.01.2011 01.01.2010 ";
    const DayRange march = Period({2011, 3, 1}, {2011, 3, 31});
    const struct {
        SummaryChoice choice;
        std::string_view pages;
    } cases[] = {
        {{}, kAll},
        {{Period({2011, 1, 1}, {2011, 3, 31}), false, {}}, "01.01.2011 01.01.2011 "},
        {{Period({2010, 12, 31}, {2011, 3, 31}), true, {}}, kAll},
        {{Period({2010, 12, 31}, {2011, 3, 30}), false, {}}, ""},
        {{march, true, {}}, "01.01.2011 01.01.2011 "},
        {{march, false, {}}, ""},
        {{march, true, u"18210301000011000110"}, ""},
        {{std::nullopt, false, u"18210301000011000110"}, "01.01.2010 "},
    };
    Text number = u"0";
    for (const auto& [choice, pages] : cases) {
        ++number[0];
        const Text folder = folder_ / number + u"/";
        EXPECT_EQ(GetFiles(database_, kInn, kKpp, folder, choice),
                  pages.empty() ? Text() : folder + u"index.doc");
        EXPECT_EQ(Recorded(), std::pair(std::string(kAll), std::string(pages)));
        const std::size_t rows = pages.size() / std::string_view("01.01.2011 ").size();
        EXPECT_EQ(ListFiles(folder, u".doc").size(), pages.empty() ? 0 : rows + 1);
        if (pages.empty()) continue;
        const std::string page = ReadFile(folder + u"index.doc");
        EXPECT_EQ(Occurrences(page, "<a href="), rows);
        EXPECT_EQ(Occurrences(page, "border-top"), 13U);  // the cells of the first row
    }
    EXPECT_TRUE(shown_.messages.empty());
    ListStatements(database_, kInn, kKpp);
    EXPECT_EQ(Recorded(), std::pair(std::string(kAll), std::string()));
    ShowNothingToSumUp();
    ASSERT_EQ(shown_.messages.size(), 1U);
    EXPECT_EQ(shown_.messages[0].text,
              u"Выбранным периоду и КБК не соответствует ни одна выписка операций."
              u"\r\nСводная справка не может быть сформирована.");
}

TEST_F(Summaries, TellWhatTheySummedUp) {
    const std::vector<Text> codes = {Text(kCode), u"18210301000011000110"};
    const Text path = GetFiles(database_, kInn, kKpp, out_);
    EXPECT_EQ(LastSummary().path, path);
    EXPECT_EQ(LastSummary().code, u"");
    EXPECT_EQ(LastSummary().codes, codes);
    ListActs(database_, kInn, codes[1]);
    EXPECT_EQ(LastSummary().kind, SummaryKind::Acts);
    EXPECT_EQ(LastSummary().inn, kInn);
    EXPECT_EQ(LastSummary().kpp, codes[1]);
    EXPECT_EQ(LastSummary().code, codes[1]);
    EXPECT_EQ(LastSummary().codes, codes);
    EXPECT_EQ(LastSummary().documents.size(), 2U);
    EXPECT_EQ(LastSummary().path, u"");
    ListStatements(database_, kInn, kFirstCode);
    EXPECT_EQ(LastSummary().kpp, kFirstCode);
    EXPECT_EQ(LastSummary().code, kCode);
    EXPECT_EQ(LastSummary().codes, codes);
    // A failure leaves what was known.
    ListActs(folder_ / u"none.mdb", kInn, kKpp);
    EXPECT_TRUE(LastSummary().failed);
    EXPECT_EQ(LastSummary().kind, SummaryKind::Statements);
    EXPECT_EQ(LastSummary().documents.size(), 3U);
    ASSERT_EQ(shown_.messages.size(), 1U);
    EXPECT_EQ(shown_.messages[0].title, u"Ошибка в функции GetFilesAct");
}

TEST_F(Summaries, NameTheActsTheyHaveNoRowFor) {
    {
        Connection connection;
        connection.Open(ConnectionString(database_));
        connection.Execute(TextView(u"update tav_operations_header set h6='1' where id=2"));
        connection.Execute(
            TextView(u"update tav_operations_header set perb='01.01.2008',pere='31.12.2008' where id=2"));
    }
    const SummaryChoice later = {Period({2009, 1, 1}, {2011, 12, 31}), true, {}};
    GetFilesAct(database_, kInn, kKpp, out_, later);
    ListActs(database_, kInn, kKpp);
    EXPECT_TRUE(shown_.messages.empty());
    EXPECT_EQ(LastSummary().documents.size(), 2U);
    GetFilesAct(database_, kInn, kKpp, out_);
    GetFilesAct(database_, kInn, u"18210301000011000110", out_);
    const Message expected = {
        u"Сводная справка",
        u"В сводную справку не вошли акты сверки, так как за тот же период в базе данных "
        u"есть выписки операций:\r\nКПП 770101001, КБК 18210301000011000110, ОКАТО "
        u"45286552000, период 01.01.2008-31.12.2008",
        MessageIcon::Information};
    EXPECT_THAT(shown_.messages, ElementsAre(expected, expected));
}

// While pages are written, the user asks for another report, then cancels.
class Impatient : public Progress {
 public:
    explicit Impatient(std::function<void(int)> act) : act_(std::move(act)) {}
    void ProcessEvents() override { act_(++times_); }

 private:
    std::function<void(int)> act_;
    int times_ = 0;
};

TEST_F(Summaries, AreCancelledBetweenTwoPages) {
    CancelStamp() = 1;  // of an import before
    Impatient progress([&](int times) {
        if (times == 2) {
            EXPECT_EQ(GetVipis(database_, 1, out_), u"");
        }
        if (times == 3) RequestCancel();
    });
    const ScopedProgress scope(progress);
    EXPECT_EQ(GetFiles(database_, kInn, kKpp, out_), u"");
    EXPECT_EQ(ListFiles(out_, u"").size(), 2U);
    ShowNothingToSumUp();
    ASSERT_EQ(shown_.messages.size(), 2U);
    EXPECT_EQ(shown_.messages[0].title, u"Ошибка в функции GetVipis");
    EXPECT_EQ(shown_.messages[1].text,
              Text(u"Прервано пользователем. Готовы страницы выписок: 2 из 3; они остаются "
                   u"в папке ")
                  .append(out_)
                  .append(u". Сводная справка не записана."));
    CancelStamp() = 0;
    EXPECT_NE(GetVipis(database_, 1, out_), u"");
}

TEST(SummaryChoice, LeavesDocumentsWithoutAPeriodToAllPeriods) {
    const Value day = *DateFromCivil({2011, 1, 1});
    for (const Value& none : {Value(Null{}), Value(Date{1e300}), Value(Date{-1e300}), Value(Date{2958466})}) {
        for (const SummaryDocument& document :
             {SummaryDocument{none, day, {}, {}}, SummaryDocument{day, none, {}, {}},
              SummaryDocument{day, *DateFromCivil({2010, 12, 31}), {}, {}}}) {
            EXPECT_TRUE(IsChosen({}, document));
            EXPECT_FALSE(IsChosen({DayRange{INT32_MIN, INT32_MAX}, true, {}}, document));
        }
    }
}

TEST_F(Summaries, ShowTheChosenTaxpayer) {
    WriteSetting(u"NameINNKPP", u"ИП <Иванов>|500100732259|0");
    for (const Text& path :
         {GetFiles(database_, kInn, kKpp, out_), GetFilesAct(database_, kInn, kKpp, out_)}) {
        const std::string page = ToUtf8(FromWindows1251(ReadFile(path)));
        EXPECT_THAT(page, HasSubstr(">ИП &lt;Иванов&gt;</td>"));
        EXPECT_THAT(page, HasSubstr(">500100732259</td>"));
    }
    // The page of a series is of the subdivision that it is about.
    GetFiles(database_, kInn, kFirstCode, out_);
    const Text page = FromWindows1251(ReadFile(LastSummary().documents.back().file));
    EXPECT_THAT(ToUtf8(page), HasSubstr(">770201001</td>"));
    EXPECT_EQ(page.find(u"500100732259"), page.npos);
}

TEST_F(Summaries, WithoutDocumentsWriteNothing) {
    for (const TextView kpp : {TextView(u"1"), kFirstCode}) {
        EXPECT_EQ(GetFiles(database_, u"1", kpp, out_), u"");
        EXPECT_EQ(GetFilesAct(database_, u"1", kpp, out_), u"");
    }
    EXPECT_FALSE(FolderExists(out_));
    ShowNothingToSumUp();
    EXPECT_THAT(shown_.messages,
                ElementsAre(Message{u"Сводная справка",
                                    u"В базе данных для выбранного налогоплательщика отсутствует информация "
                                    u"по импортированным актам сверки.\r\nСводная справка не может быть "
                                    u"сформирована.",
                                    MessageIcon::Information}));
}

TEST_F(Summaries, ShowAFailureOnce) {
    EXPECT_EQ(GetFiles(folder_ / u"none.mdb", kInn, kKpp, out_), u"");
    ShowNothingToSumUp();
    ASSERT_EQ(shown_.messages.size(), 1U);
    EXPECT_EQ(shown_.messages[0].title, u"Ошибка в функции GetFiles");
    EXPECT_EQ(GetFilesAct(folder_ / u"none.mdb", kInn, kKpp, out_), u"");
    ASSERT_EQ(shown_.messages.size(), 2U);
    EXPECT_EQ(shown_.messages[1].title, u"Ошибка в функции GetFilesAct");
}

TEST(PageNames, AreValidEverywhereAndUnique) {
    PageNames names;
    EXPECT_EQ(names.Take({u" .A/B:C*\"<>|?#%\\\t☃. ", u"", u"45"}), u"A_B_C____________45.doc");
    EXPECT_EQ(names.Take({u"НДС", u"1"}), u"НДС_1.doc");
    EXPECT_EQ(names.Take({u"НДС", u"1_2"}), u"НДС_1_2.doc");
    EXPECT_EQ(names.Take({u"ндс", u"1"}), u"ндс_1_3.doc");
    EXPECT_EQ(names.Take({u"НДС", u"1"}), u"НДС_1_4.doc");
    EXPECT_LT(ToUtf8(names.Take({Text(255, u'Ж'), Text(255, u'1'), Text(255, u'№'), Text(255, u'Ж')})).size(),
              220U);
}

TEST(ActAmounts, RefuseWhatTheCurrencyCannotHold) {
    EXPECT_EQ(ActAmountText(Money{10'000'000'049}), u"1\u00A0000\u00A0000,00&nbsp;");
    EXPECT_EQ(ActAmountText(Money{-10'000'000'050}), u"(1\u00A0000\u00A0000,01)&nbsp;");
    EXPECT_EQ(ActAmountText(Money{INT64_MAX}), u"922\u00A0337\u00A0203\u00A0685\u00A0477,58&nbsp;");
    Recordset act(ResultTable{{u"p11", u"p112"}, {{9e14, 9e14}}});
    EXPECT_THROW(ReadActAmounts(act), Failure);
}

}  // namespace
}  // namespace tav
