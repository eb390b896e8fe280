#include "reports/get_vipis.h"

#include "common/concat.h"
#include "common/failure.h"
#include "reports/page.h"
#include "reports/paper.h"
#include "reports/statement_page.h"

namespace tav {
namespace {

Text StatementOf(TextView database, std::int32_t id, Sheet* copy) {
    Connection connection;
    connection.CursorLocation = 3;
    connection.OpenForReading(ConnectionString(database));
    SqlText sql(u"select * from tav_operations_header where id=");
    Recordset headers = connection.Execute(sql.Number(id).Fixed(u" order by perb"));
    // An act has a header too, without what only statements have.
    if (headers.Eof() || (IsNull(headers.Field(u"h6")) && IsNull(headers.Field(u"vid")))) {
        throw Failure(Concat(u"Выписка с номером ", Digits(id), u" в базе данных не найдена"));
    }
    return StatementPage(connection, headers, copy, ChosenTaxpayer());
}

}  // namespace

Text GetVipis(TextView database, std::int32_t id, TextView export_folder) {
    const auto write = [source = Text(database), id, folder = Text(export_folder)](Text& file) {
        PaperCopy paper;
        Sheet sheet;
        const Text page = StatementOf(source, id, paper.Wanted(sheet));
        file = ReportPath(folder, u"vipis.doc");
        WriteReport(file, page);
        paper.Add(sheet);
        paper.Write(file);
        return file;
    };
    return GuardedReport(u"Ошибка в функции GetVipis", database, write);
}

}  // namespace tav
