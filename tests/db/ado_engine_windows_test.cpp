// The engine of an ADO provider, against a double of the provider's objects.

#include <thread>

#include "common/concat.h"
#include "db/ado_double_windows.h"
#include "db/database_fixture.h"
#include "db/holdings.h"
#include "db/literals.h"
#include "db/native_engine.h"
#include "db/patience.h"
#include "platform/win32_windows.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/get_vipis.h"
#include "settings/session.h"

namespace tav {
namespace {

using namespace test;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Ado : public OperationsDatabase {
 protected:
    // The tables' rows, as the native engine sees them.
    std::vector<std::string> Everything() const {
        std::vector<std::string> all;
        for (const TextView table : {u"tav_operations_header", u"tav_operations", u"tav_acts"}) {
            const Text text = ConnectionString(database_);
            const auto engine = OpenNativeEngine({text, 2, true});
            for (Recordset set = engine->Execute(SqlText(u"select * from " + Text(table))); !set.Eof();
                 set.MoveNext()) {
                Text row(table);
                for (std::size_t i = 0; i < set.FieldCount(); ++i) row += u"|" + ValueText(set.Field(i));
                all.push_back(ToUtf8(row));
            }
        }
        return all;
    }
    // Name and bytes of every file that the reports write.
    std::vector<std::string> Reports(TextView name) const {
        std::vector<std::string> all;
        for (const TextView kpp : {TextView(u"770101001"), kAllSubdivisions}) {
            const Text out = folder_ / Concat(name, kpp, u"/");
            MakeFolders(out);
            GetVipis(database_, 1, out);
            GetFiles(database_, u"7701234567", kpp, out);
            GetFilesAct(database_, u"7701234567", kpp, out);
            for (const Text& file : ListFiles(out, u".doc"))
                all.push_back(ToUtf8(file) + ReadFile(out + file));
        }
        return all;
    }
    void LoadBoth() const {
        Load({{u"a.rtf", StatementPart({}, {u"p01=01.02.2011|p03=Уплата|p09=налог|p11=123.45"})},
              {u"b.rtf", ActPart({.code = u"18210602"}, u"p0011=1.00|p1111=-2.50")}});
    }
};

TEST_F(Ado, ClearingAsksForNoCursorsAndClosesInOrder) {
    const AdoDouble ado;
    EXPECT_EQ(EngineInUse(), u"Microsoft.Jet.OLEDB.4.0");
    clearbaseAll(database_);
    const auto& calls = AdoDouble::Calls();
    ASSERT_GE(calls.size(), 3U);
    EXPECT_THAT(calls, testing::Contains(u"Open Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + database_ +
                                         u"|||-1|"));
    EXPECT_EQ(calls.back(), u"Close");
    EXPECT_EQ(std::ranges::count(calls, u"Close"), 1);
}

TEST_F(Ado, ReadingSetsTheCursorsFirstAndGivesTheValuesTheirKinds) {
    LoadBoth();
    const AdoDouble ado;
    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database_));
    Recordset set =
        connection.Execute(u"select id, perb, vid, h1, h6 from tav_operations_header order by id");
    EXPECT_EQ(set.RecordCount(), 2);
    EXPECT_EQ(set.Field(u"ID"), Value(std::int64_t{1}));
    EXPECT_EQ(ValueText(set.Field(u"perb")), u"01.01.2011");
    EXPECT_TRUE(std::holds_alternative<Date>(set.Field(1)));
    EXPECT_EQ(set.Field(u"h1"), Value(Text(u"7701234567")));
    set.MoveNext();
    EXPECT_TRUE(IsNull(set.Field(u"vid")));
    EXPECT_TRUE(IsNull(set.Field(u"h6")));
    ASSERT_FALSE(AdoDouble::Calls().empty());
    EXPECT_EQ(AdoDouble::Calls().front(), u"CursorLocation=3");
}

// Also with a provider that takes an alias for its column, and gives whole numbers as doubles.
TEST_F(Ado, AnImportAndItsReportsEndAsWithTheNativeEngine) {
    LoadBoth();
    ConstrTabTypeOper(database_);
    const auto native = Everything();
    const auto reports = Reports(u"native");
    EXPECT_THAT(reports, SizeIs(8));
    const auto held = HeldDocuments(database_, {}, {}).size();
    clearbaseAll(database_);
    {
        const AdoDouble ado({.circular = true, .whole_doubles = true, .with_pictures = true});
        LoadBoth();
        ConstrTabTypeOper(database_);
        EXPECT_EQ(HeldDocuments(database_, {}, {}).at(held - 1).id, static_cast<std::int64_t>(held));
        EXPECT_EQ(Reports(u"ado"), reports);
        EXPECT_THAT(AdoDouble::Calls(),
                    testing::Contains(
                        u"Execute select max(tav_operations_type.tid) as tid from tav_operations_type"));
    }
    EXPECT_EQ(Everything(), native);
    EXPECT_THAT(Shown(), IsEmpty());
}

// One that cannot be used for the file leaves it to the native engine, if nobody else has it.
TEST_F(Ado, AProviderThatIsNoUseForTheFileIsReplaced) {
    WriteSetting(u"DataBasePath", folder_.path());
    LoadBoth();
    const ProviderHabits habits[] = {{.month_first = true}, {.refusal = u"Unrecognized database format."}};
    for (const ProviderHabits& habit : habits) {
        const AdoDouble ado(habit);
        EXPECT_EQ(HeldDocuments(database_, {}, {}).size(), 2U);
        const std::string reason = habit.month_first ? "Провайдер читает даты" : "Unrecognized";
        EXPECT_THAT(ToUtf8(EngineInUse()), testing::StartsWith("native (Microsoft.Jet.OLEDB.4.0: " + reason));
        const Text text = ConnectionString(database_);
        const auto user = OpenNativeEngine({text, 2, false});
        clearbaseAll(database_);
    }
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("already in use"), HasSubstr("Unrecognized database format")));
    const AdoDouble ado({.refusal = u"Could not use it; file already in use.", .refusal_state = u"3045"});
    clearbaseAll(database_);
    EXPECT_THAT(Shown(), SizeIs(3));
}

TEST_F(Ado, AHeldFileIsWaitedForWhateverNumberTheProviderHasForIt) {
    const DatabasePatience wait;
    for (const TextView state : {u"3051", u"4711"}) {
        const AdoDouble ado({.refusal_state = Text(state)});
        win32::Handle holder = win32::OpenFile(database_, GENERIC_READ, 0);
        std::thread lets_go([&] {
            ::Sleep(700);
            holder.Close();
        });
        clearbaseAll(database_);
        lets_go.join();
    }
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Ado, WholeNumbersOfAnyKindAreTakenAndBytesPassedOver) {
    win32::Variant bytes;
    bytes.parray = ::SafeArrayCreateVector(VT_UI1, 0, 3);
    bytes.vt = VT_ARRAY | VT_UI1;
    EXPECT_TRUE(IsNull(win32::ValueOf(bytes)));
    for (const VARTYPE type :
         {VT_R4, VT_R8, VT_CY, VT_DECIMAL, VT_UI1, VT_UI2, VT_UI4, VT_UI8, VT_I8, VT_UINT, VT_BSTR}) {
        win32::Variant number(5L);
        ASSERT_EQ(::VariantChangeType(&number, &number, 0, type), S_OK) << type;
        const std::optional<std::int64_t> five = type == VT_BSTR ? std::nullopt : std::optional(5);
        EXPECT_EQ(WholeNumberOf(win32::ValueOf(number)), five) << type;
    }
}

TEST_F(Ado, TheNativeEngineIsUsedWhereItIsAskedFor) {
    const AdoDouble ado;
    ::SetEnvironmentVariableW(L"TAV_ENGINE", L"native");
    EXPECT_EQ(EngineInUse(), u"native");
    clearbaseAll(database_);
    ::SetEnvironmentVariableW(L"TAV_ENGINE", nullptr);
    EXPECT_THAT(AdoDouble::Calls(), IsEmpty());
    EXPECT_EQ(EngineInUse(), u"Microsoft.Jet.OLEDB.4.0");
}

TEST_F(Ado, FailuresAreTheProvidersAndNameIt) {
    const AdoDouble ado;
    DeleteFile(database_);
    clearbaseAll(database_);
    EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("clearbase: Could not find file"),
                                           HasSubstr("(Microsoft.Jet.OLEDB.4.0)"))));
}

// As on every 64-bit Windows: the name is for both widths, the class for 32-bit processes alone.
TEST_F(Ado, AProviderForTheOtherWidthIsNone) {
    constexpr wchar_t kId[] = L"{6B0D2C47-5F7A-4C55-9E0B-0C8A6C1D7E22}";
    constexpr const wchar_t* kKeys[] = {
        L"Software\\Classes\\Microsoft.Jet.OLEDB.4.0\\CLSID",
        L"Software\\Classes\\Wow6432Node\\CLSID\\{6B0D2C47-5F7A-4C55-9E0B-0C8A6C1D7E22}\\InprocServer32"};
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKeys[0], nullptr, REG_SZ, kId, sizeof kId);
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKeys[1], nullptr, REG_SZ, L"x.dll", 6 * sizeof(wchar_t));
    CLSID found{};
    EXPECT_EQ(::CLSIDFromProgID(L"Microsoft.Jet.OLEDB.4.0", &found), S_OK);
    EXPECT_EQ(EngineInUse(), u"native");
    clearbaseAll(database_);
    EXPECT_THAT(Shown(), IsEmpty());
    for (const std::wstring key : kKeys) {
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.substr(0, key.find_last_of(L'\\')).c_str());
    }
}

TEST_F(Ado, AMachineWithoutWorkingAdoHasTheNativeEngine) {
    WriteSetting(u"DataBasePath", folder_.path());
    const AdoDouble ado;
    constexpr wchar_t kNobody[] = L"{6B0D2C47-5F7A-4C55-9E0B-0C8A6C1D7E23}";
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\ADODB.Connection\\CLSID", nullptr, REG_SZ,
                      kNobody, sizeof kNobody);
    clearbaseAll(database_);
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(ToUtf8(EngineInUse()), AllOf(testing::StartsWith("native (Microsoft.Jet.OLEDB.4.0: "),
                                             HasSubstr("can't create object: ADODB.Connection: ")));
}

TEST_F(Ado, AValueWithAnApostropheIsData) {
    const AdoDouble ado;
    clearbase(database_, u"1' or '1'='1", u"2");
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(AdoDouble::Calls(), testing::Contains(u"Execute delete from tav_operations_header where "
                                                      u"h1='1'' or ''1''=''1' and h2='2';"));
}

TEST_F(Ado, AFaultyDocumentIsUndoneAlone) {
    const AdoDouble ado;
    Load({{u"a.rtf", StatementPart({}, {u"p10=1.00"})},
          {u"bad.rtf", StatementPart({.end = u"30.06.2011"}, {u"p10=1.00", u"p01=вчера|p10=2.00"})},
          {u"c.rtf", ActPart({}, u"p0011=1.00")}});
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("bad.rtf: ")));
    EXPECT_THAT(AdoDouble::Calls(), testing::Contains(u"RollbackTrans").Times(1));
    EXPECT_THAT(Rows(u"select filename, vid from tav_operations_header order by id"),
                ElementsAre("a.rtf|1", "c.rtf|-"));
}

TEST_F(Ado, AProviderThatCannotCommitEndsTheImport) {
    const AdoDouble ado({.full = true});
    Load({{u"a.rtf", StatementPart({}, {u"p10=1.00"})}, {u"c.rtf", ActPart({}, u"p0011=1.00")}});
    EXPECT_THAT(Shown(), ElementsAre(AllOf(HasSubstr("isn't enough disk space"), HasSubstr("a.rtf"))));
    EXPECT_THAT(Rows(u"select filename from tav_operations_header"), testing::IsEmpty());
}

// One that cannot even go back says so once, by the failure that ends the import.
TEST_F(Ado, AProviderThatCannotUndoEndsTheImportInOneBox) {
    const AdoDouble ado({.stuck = true});
    Load({{u"bad.rtf", StatementPart({}, {u"p01=вчера|p10=2.00"})}, {u"c.rtf", ActPart({}, u"p0011=1.00")}});
    EXPECT_THAT(Shown(), ElementsAre(HasSubstr("Disk or network error.")));
}

TEST_F(Ado, AClearHasAsManyLocksAsItNeeds) {
    Load({{u"a.rtf", StatementPart({}, std::vector<Text>(60, u"p10=1.00"))}});
    {
        const AdoDouble ado({.fixed_locks = true});
        clearbaseAll(database_);
        EXPECT_THAT(Shown(), ElementsAre(HasSubstr("lock count exceeded")));
    }
    const AdoDouble ado;
    clearbaseAll(database_);
    EXPECT_THAT(Shown(), SizeIs(1));
    EXPECT_THAT(Rows(u"select id from tav_operations"), IsEmpty());
}

}  // namespace
}  // namespace tav
