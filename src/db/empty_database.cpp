#include "db/empty_database.h"

#include "common/concat.h"
#include "common/failure.h"
#include "jet/create/create.h"
#include "jet/file/rollback_journal.h"
#include "platform/files.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

using jet::ColumnType;

// The values of an act in the order in which its reader gives them. The first digit is the section: 1 the
// balance at the beginning, 2 the movements, 3 the balance at the end, 4 the money on the special account.
constexpr TextView kActValues[] = {
    u"p11",   u"p1111", u"p1112", u"p1113", u"p1114", u"p112",  u"p1121", u"p1122", u"p1123", u"p1124",
    u"p113",  u"p1131", u"p1132", u"p1133", u"p1134", u"p114",  u"p1141", u"p1142", u"p115",  u"p121",
    u"p122",  u"p123",  u"p124",  u"p125",  u"p211",  u"p212",  u"p213",  u"p214",  u"p215",  u"p221",
    u"p222",  u"p223",  u"p224",  u"p225",  u"p231",  u"p232",  u"p233",  u"p24",   u"p2411", u"p2412",
    u"p2413", u"p2414", u"p242",  u"p2421", u"p2422", u"p2423", u"p2424", u"p243",  u"p2431", u"p2432",
    u"p2433", u"p2434", u"p244",  u"p2441", u"p2442", u"p2443", u"p251",  u"p252",  u"p253",  u"p254",
    u"p255",  u"p26",   u"p27",   u"p281",  u"p282",  u"p283",  u"p284",  u"p291",  u"p292",  u"p293",
    u"p294",  u"p295",  u"p31",   u"p3111", u"p3112", u"p3113", u"p3114", u"p312",  u"p3121", u"p3122",
    u"p3123", u"p3124", u"p313",  u"p3131", u"p3132", u"p3133", u"p3134", u"p314",  u"p3141", u"p3142",
    u"p32",   u"p321",  u"p322",  u"p323",  u"p324",  u"p325",  u"p41",   u"p42",   u"p43",   u"p44",
    u"p45"};

constexpr std::uint16_t kLongest = 255;

jet::TablePlan Headers() {
    return {u"tav_operations_header",
            {{u"id", ColumnType::Long},
             {u"filename", ColumnType::Text, kLongest},
             {u"h1", ColumnType::Text, kLongest},
             {u"h2", ColumnType::Text, kLongest},
             {u"h3", ColumnType::Text, kLongest},
             {u"h4", ColumnType::Text, kLongest},
             {u"h5", ColumnType::Text, kLongest},
             {u"h6", ColumnType::Text, kLongest},
             {u"h7", ColumnType::Text, kLongest},
             {u"h8", ColumnType::Text, kLongest},
             {u"h9", ColumnType::Text, kLongest},
             {u"h10", ColumnType::Text, kLongest},
             {u"h11", ColumnType::Text, 16},
             {u"h12", ColumnType::Text, kLongest},
             {u"h13", ColumnType::Text, kLongest},
             {u"perb", ColumnType::Date},
             {u"pere", ColumnType::Date},
             {u"vid", ColumnType::Long}},
            {{u"PrimaryKey", {u"id"}, true}}};
}

jet::TablePlan Operations() {
    return {u"tav_operations",
            {{u"id", ColumnType::Long},
             {u"p1", ColumnType::Date},
             {u"p2", ColumnType::Text, kLongest},
             {u"p3", ColumnType::Text, kLongest},
             {u"p4", ColumnType::Text, kLongest},
             {u"p5", ColumnType::Text, kLongest},
             {u"p6", ColumnType::Text, kLongest},
             {u"p7", ColumnType::Text, kLongest},
             {u"p8", ColumnType::Text, kLongest},
             {u"p9", ColumnType::Text, 50},
             {u"p10", ColumnType::Double},
             {u"p11", ColumnType::Double},
             {u"p12", ColumnType::Double},
             {u"p13", ColumnType::Double},
             {u"p14", ColumnType::Double},
             {u"tid", ColumnType::Long}},
            {{u"id", {u"id"}}}};
}

jet::TablePlan Acts() {
    jet::TablePlan plan{u"tav_acts", {{u"id", ColumnType::Long}}, {{u"id", {u"id"}}}};
    for (const TextView value : kActValues) plan.columns.push_back({value, ColumnType::Double});
    return plan;
}

jet::TablePlan OperationTypes() {
    return {u"tav_operations_type",
            {{u"tid", ColumnType::Long},
             {u"tname", ColumnType::Text, kLongest},
             {u"tpayment", ColumnType::Text, kLongest},
             {u"add_date", ColumnType::Date}},
            {{u"PrimaryKey", {u"tid"}, true}}};
}

}  // namespace

std::string NewOperationsDatabase() {
    const jet::TablePlan tables[] = {Headers(), Operations(), Acts(), OperationTypes()};
    return jet::EmptyDatabase(tables);
}

void CreateDatabase(TextView path) {
    if (FileExists(path)) throw Failure(Concat(u"Файл уже существует: ", path));
    const Text journal = jet::RollbackJournal::PathFor(RealPath(path));
    if (FileExists(journal)) {
        throw Failure(
            Concat(u"Рядом лежит журнал отката прежней базы данных, сначала уберите его: ", journal));
    }
    WriteFileWhole(path, NewOperationsDatabase());
    RemoveLeftovers(FolderOf(path));
}

}  // namespace tav
