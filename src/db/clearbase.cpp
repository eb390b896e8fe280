#include "db/clearbase.h"

#include <array>

#include "common/guard.h"
#include "db/connection.h"

namespace tav {
namespace {

using Statements = std::array<SqlText, 3>;

// The full clear reports under the same name as the clear of one taxpayer.
void Clear(TextView database, const Statements& statements) {
    Guarded(u"Ошибка в функции clearbase", [&] {
        Connection connection;
        connection.Open(ConnectionString(database));
        for (const SqlText& statement : statements) connection.Execute(statement);
        connection.Close();
    });
}

}  // namespace

void clearbase(TextView database, TextView inn, TextView kpp) {
    SqlText headers(u"delete from tav_operations_header where h1='");
    headers.Value(inn).Fixed(u"' and h2='").Value(kpp).Fixed(u"';");
    Clear(database,
          {headers,
           SqlText(u"delete from tav_operations where id not in (select id from tav_operations_header);"),
           SqlText(u"delete from tav_acts where id not in (select id from tav_operations_header);")});
}

void clearbaseAll(TextView database) {
    Clear(database, {SqlText(u"delete from tav_operations_header;"), SqlText(u"delete from tav_operations;"),
                     SqlText(u"delete from tav_acts;")});
}

}  // namespace tav
