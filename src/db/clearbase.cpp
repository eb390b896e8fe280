#include "db/clearbase.h"

#include <memory>
#include <vector>

#include "common/aside.h"
#include "common/guard.h"
#include "db/connection.h"
#include "settings/session.h"

namespace tav {
namespace {

// The ends of the statements on headers: whose.
std::vector<SqlText> Conditions(TextView inn, TextView kpp) {
    const bool any_kpp = TakesEveryKpp(inn, kpp);
    std::vector<SqlText> conditions;
    for (const Text& one : InnsOf(inn)) {
        SqlText& condition = conditions.emplace_back(u" where h1='").Value(one);
        if (!any_kpp) condition.Fixed(u"' and h2='").Value(kpp);
        condition.Fixed(u"';");
    }
    return conditions;
}

// The full clear reports under the same name as the clear of one taxpayer.
std::optional<int> Clear(TextView database, const std::vector<SqlText>& headers,
                         const std::vector<TextView>& rows) {
    const auto removed = std::make_shared<std::optional<int>>();
    const auto clear = [removed, path = Text(database), headers, rows] {
        int documents = 0;
        Connection connection;
        connection.Open(ConnectionString(path));
        for (const SqlText& whose : headers) {
            SqlText count(u"select id from tav_operations_header");
            documents += connection.Execute(count.Append(whose)).RecordCount();
            SqlText headers_of(u"delete from tav_operations_header");
            connection.Execute(headers_of.Append(whose));
        }
        for (const TextView sql : rows) connection.Execute(sql);
        connection.Close();
        *removed = documents;
    };
    Guarded(u"Ошибка в функции clearbase", [&] { RunAside(clear); });
    return *removed;
}

}  // namespace

std::optional<int> clearbase(TextView database, TextView inn, TextView kpp) {
    return Clear(database, Conditions(inn, kpp),
                 {u"delete from tav_operations where id not in (select id from tav_operations_header);",
                  u"delete from tav_acts where id not in (select id from tav_operations_header);"});
}

std::optional<int> clearbaseAll(TextView database) {
    return Clear(database, {SqlText(u";")}, {u"delete from tav_operations;", u"delete from tav_acts;"});
}

}  // namespace tav
