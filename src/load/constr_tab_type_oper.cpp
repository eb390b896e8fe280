#include "load/constr_tab_type_oper.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "common/concat.h"
#include "common/guard.h"
#include "common/progress.h"
#include "common/regional.h"
#include "db/connection.h"
#include "db/engine.h"
#include "db/literals.h"
#include "load/counter.h"
#include "platform/environment.h"

namespace tav {
namespace {

constexpr std::size_t kKeyCharacters = 10;

// The first ten characters of a balance line's upper-cased text, then the kind of payment. 402 is no slip.
constexpr std::array<std::pair<TextView, std::int16_t>, 6> kBalanceTypes = {{
    {u"САЛЬДО НА налог", 1},
    {u"САЛЬДО НА пеня", 101},
    {u"САЛЬДО НА штраф", 201},
    {u"САЛЬДО НА АктНалог", 301},
    {u"САЛЬДО НА АктПени", 402},
    {u"САЛЬДО НА АктШтраф", 501},
}};

// 0 when the row is no balance line.
std::int16_t BalanceType(TextView operation, TextView payment) {
    const Text key = Concat(operation.substr(0, kKeyCharacters), payment);
    for (const auto& [balance, type] : kBalanceTypes) {
        if (key == balance) return type;
    }
    return 0;
}

SqlText AssignType(std::int16_t type, TextView operation, TextView payment) {
    SqlText update(u"update tav_operations set tid=");
    update.Number(type).Fixed(u" where p3='").Value(operation).Fixed(u"' and p9='").Value(payment);
    return std::move(update.Fixed(u"';"));
}

void AddType(Connection& connection, std::int16_t type, TextView operation, TextView payment) {
    SqlText insert(u"insert into tav_operations_type (tid,tname,tpayment,add_date) values (");
    insert.Number(type).Fixed(u",'").Value(operation).Fixed(u"', '").Value(payment).Fixed(u"', '");
    connection.Execute(insert.Value(FormatDate(Today())).Fixed(u"');"));
}

bool Fits(const std::vector<TextSize>& sizes, TextView column, const Text& text) {
    return std::ranges::none_of(sizes, [&](const TextSize& size) {
        return EqualNoCase(size.column, column) && text.size() > size.characters;
    });
}

// Gives every pair without a type its type, and gathers the updates that write it into the rows.
void ChooseTypes(Connection& connection, std::vector<SqlText>& updates) {
    Recordset highest = connection.Execute(u"select max(tid) as tid from tav_operations_type");
    Counter number(highest.Field(u"tid"));
    const std::vector<TextSize> sizes = connection.TextSizes(u"tav_operations_type");
    Recordset rows = connection.Execute(
        u"select distinct ucase(t1.p3) as p3, t1.p9, t2.tid from tav_operations t1 left join "
        u"tav_operations_type t2"
        u" on ucase(t1.p3)=t2.tname and t1.p9=t2.tpayment where isnull(t1.tid)");
    for (; !rows.Eof(); rows.MoveNext()) {
        CurrentProgress().ProcessEvents();
        if (IsNull(rows.Field(u"p3")) || IsNull(rows.Field(u"p9"))) continue;
        const Text operation = isns(rows.Field(u"p3"));
        const Text payment = isns(rows.Field(u"p9"));
        std::int16_t type = BalanceType(operation, payment);
        if (type == 0) type = Counter(rows.Field(u"tid")).value();
        if (type == 0) {
            // One that is cut could never be found again: it is passed over as one without a text is.
            if (!Fits(sizes, u"tname", operation) || !Fits(sizes, u"tpayment", payment)) continue;
            type = number.Next();
            AddType(connection, type, operation, payment);
        }
        updates.push_back(AssignType(type, operation, payment));
    }
}

void AssignTypes(TextView database) {
    Connection connection;
    connection.CursorLocation = 3;
    connection.Open(ConnectionString(database));
    std::vector<SqlText> updates;
    try {
        ChooseTypes(connection, updates);
    } catch (...) {
        connection.ExecuteAll(updates);  // the types chosen before the failure
        throw;
    }
    connection.ExecuteAll(updates);
    connection.Close();
}

}  // namespace

void ConstrTabTypeOper(TextView database) {
    Guarded(u"Ошибка в функции ConstrTabTypeOper", [&] { AssignTypes(database); });
}

}  // namespace tav
