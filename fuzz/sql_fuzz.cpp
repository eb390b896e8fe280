// Any text as a statement, with values between bytes 1: no crash, no access outside, nothing slow.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/failure.h"
#include "common/get_next.h"
#include "sql/sql_rewrite.h"
#include "sql/statement_cache.h"

namespace {

const tav::jet::TableDefinition* FindTable(tav::TextView name) {
    static const tav::jet::TableDefinition kTable = [] {
        tav::jet::TableDefinition table;
        table.name = u"t";
        table.columns.resize(3);
        table.columns[0].name = u"id";
        table.columns[1].name = u"name";
        table.columns[1].type = tav::jet::ColumnType::Text;
        table.columns[2].name = u"day";
        table.columns[2].type = tav::jet::ColumnType::Date;
        return table;
    }();
    return tav::EqualNoCase(name, kTable.name) ? &kTable : nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) try {
    const tav::Text text(data, data + size);
    tav::TextView rest = text;
    tav::SqlText sql;
    while (!rest.empty()) sql.Fixed(tav::GetNext(rest, u"\u0001")).Value(tav::GetNext(rest, u"\u0001"));
    for (const tav::jet::Parameter& parameter : tav::jet::Rewrite(sql, &FindTable).parameters)
        parameter.Read(sql);
    tav::jet::WithValues(tav::SqlText(text));
    return 0;
} catch (const tav::Failure&) {
    return 0;
}
