#include "load/held_rows.h"

#include <algorithm>
#include <variant>

#include "common/get_next.h"
#include "common/regional.h"
#include "db/literals.h"

namespace tav {
namespace {

constexpr TextView kHeaders = u"tav_operations_header";

// Whether the text is what was stored as that value.
bool IsStored(TextView text, const Value& value) {
    if (const Date* day = std::get_if<Date>(&value)) return ParseDate(text) == *day;
    const bool number = std::holds_alternative<double>(value) || std::holds_alternative<std::int64_t>(value);
    return number ? ParseMoney(text) == ParseMoney(ValueText(value)) : text == ValueText(value);
}

}  // namespace

HeldRows::HeldRows(Connection& connection, const Text& file) {
    SqlText headers(u"select * from tav_operations_header where filename='");
    Recordset held = connection.Execute(headers.Value(file).Fixed(u"' order by id"));
    std::vector<Value> ids;
    for (Recordset rows = held; !rows.Eof(); rows.MoveNext()) ids.push_back(rows.Field(u"id"));
    tables_[Text(kHeaders)].documents.push_back(held);
    for (const TextView table : {u"tav_operations", u"tav_acts"}) {
        for (const Value& id : ids) {
            SqlText rows(u"select * from ");
            rows.Fixed(table).Fixed(u" where id=").Fixed(ValueText(id));
            tables_[Text(table)].documents.push_back(connection.Execute(rows));
        }
    }
}

bool HeldRows::Rows::AtEnd() {
    while (at < documents.size() && documents[at].Eof()) ++at;
    return at == documents.size();
}

void HeldRows::Compare(const SqlText& insert) {
    TextView words = insert.text();
    GetNext(words, u"insert into ");
    Rows& rows = tables_[Text(GetNext(words, u" ("))];
    TextView columns = GetNext(words, u")");
    if (rows.AtEnd()) {
        same_ = false;
        return;
    }
    Recordset& row = rows.documents[rows.at];
    for (const SqlText::Span& value : insert.values()) {
        const TextView column = GetNext(columns, u",");
        if (column == u"id" || column == u"filename") continue;
        same_ =
            same_ && IsStored(TextView(insert.text()).substr(value.begin, value.length), row.Field(column));
    }
    row.MoveNext();
}

bool HeldRows::AreTheSame() {
    return same_ && std::ranges::all_of(tables_, [](auto& table) { return table.second.AtEnd(); });
}

}  // namespace tav
