// The dictionary of operation types, and clearing.

#include "common/regional.h"
#include "db/database_fixture.h"
#include "platform/environment.h"

namespace tav {
namespace {

using test::ActPart;
using test::Head;
using test::StatementPart;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class OperationTypes : public test::OperationsDatabase {
 protected:
    OperationTypes() {
        SetClock([] { return LocalTime{{2011, 5, 9}, {14, 30, 7}}; });
        Load({{u"a.rtf", StatementPart({}, {u"p03=Уплата|p09=налог|p10=1.00", u"p03=УПЛАТА|p09=налог",
                                            u"p03=Уплата|p09=пеня", u"p03=Сальдо на 01.01.2011|p09=пеня",
                                            u"p03=Сальдо на 01.01.2011|p09=АктПени", u"p09=налог",
                                            u"p03=Сальдо на 01.01.2011|p09=прочее"})}});
    }
    ~OperationTypes() override { SetClock(nullptr); }

    std::vector<std::string> Types() const { return Rows(u"select p3, p9, tid from tav_operations"); }
    std::vector<std::string> Dictionary() const {
        return Rows(u"select tid, tname, tpayment, add_date from tav_operations_type order by tid");
    }
};

TEST_F(OperationTypes, NumberWhatIsNew) {
    ConstrTabTypeOper(database_);
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(Dictionary(), ElementsAre("1|САЛЬДО НА 01.01.2011|прочее|09.05.2011",
                                          "2|УПЛАТА|налог|09.05.2011", "3|УПЛАТА|пеня|09.05.2011"));
    EXPECT_THAT(Types(), ElementsAre("Уплата|налог|2", "УПЛАТА|налог|2", "Уплата|пеня|3",
                                     "Сальдо на 01.01.2011|пеня|101", "Сальдо на 01.01.2011|АктПени|402",
                                     "-|налог|-", "Сальдо на 01.01.2011|прочее|1"));
    const auto before = Types();
    ConstrTabTypeOper(database_);
    EXPECT_EQ(Types(), before);
    EXPECT_EQ(Dictionary().size(), 3U);
}

TEST_F(OperationTypes, AreFoundAgain) {
    Execute(u"insert into tav_operations_type (tid,tname,tpayment) values (41,'УПЛАТА','налог')");
    ConstrTabTypeOper(database_);
    EXPECT_THAT(Types(), testing::Contains("Уплата|налог|41"));
    EXPECT_THAT(Dictionary(), testing::Contains("43|УПЛАТА|пеня|09.05.2011"));
}

TEST_F(OperationTypes, OverflowPast32767) {
    Execute(u"insert into tav_operations_type (tid,tname,tpayment) values (32767,'X','налог')");
    ConstrTabTypeOper(database_);
    EXPECT_THAT(Shown(), ElementsAre("Ошибка в функции ConstrTabTypeOper: Overflow\r\n"));
}

class Clearing : public test::OperationsDatabase {
 protected:
    Clearing() {
        Write({{u"a", StatementPart({.inn = u"1", .kpp = u"1"}, {u"p10=1.00"})},
               {u"b", StatementPart({.inn = u"1", .kpp = u"2"}, {u"p10=1.00"})},
               {u"c", ActPart({.inn = u"1", .kpp = u"1"}, u"p0011=1.00")},
               {u"d", ActPart({.inn = u"1", .kpp = u"2"}, u"p0011=1.00")}});
        Load(u"1|", u"");
        Execute(u"insert into tav_operations (id,p3) values (99,'orphan')");
        Execute(u"insert into tav_operations_type (tid,tname) values (1,'X')");
    }

    std::vector<std::string> Ids() const {
        std::vector<std::string> ids;
        for (const TextView table : {u"tav_operations_header", u"tav_operations", u"tav_acts"}) {
            std::string line;
            for (const std::string& id :
                 Rows(Text(u"select id from ").append(table).append(u" order by id"))) {
                line += id + " ";
            }
            ids.push_back(line);
        }
        return ids;
    }
};

TEST_F(Clearing, RemovesOneTaxpayersDocumentsAndAllOrphans) {
    EXPECT_THAT(Ids(), ElementsAre("1 2 3 4 ", "1 2 99 ", "3 4 "));
    clearbase(database_, u"1", u"nobody");
    EXPECT_THAT(Ids(), ElementsAre("1 2 3 4 ", "1 2 ", "3 4 "));
    clearbase(database_, u"1", u"1");
    EXPECT_THAT(Ids(), ElementsAre("2 4 ", "2 ", "4 "));
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Clearing, RemovesEverythingButTheDictionary) {
    clearbaseAll(database_);
    EXPECT_THAT(Ids(), ElementsAre("", "", ""));
    EXPECT_THAT(Rows(u"select tid from tav_operations_type"), ElementsAre("1"));
    Load(u"1", u"1");
    EXPECT_THAT(Rows(u"select id, vid from tav_operations_header order by id"), ElementsAre("1|1", "2|-"));
}

TEST_F(Clearing, SaysWhatWentWrongUnderOneName) {
    {
        Connection holder;
        holder.Open(ConnectionString(database_));
        clearbaseAll(database_);
    }
    clearbaseAll(folder_ / u"none.mdb");
    clearbase(database_, u"O'Neill", u"1");
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("already in use"), HasSubstr("none.mdb")));
    EXPECT_THAT(Shown(), Each(StartsWith("Ошибка в функции clearbase: ")));
    EXPECT_THAT(Ids()[0], "1 2 3 4 ");
}

}  // namespace
}  // namespace tav
