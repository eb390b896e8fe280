#include "sql/default_value.h"

#include <charconv>
#include <optional>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/table/column_conversion.h"
#include "platform/environment.h"
#include "sql/sql_token.h"

namespace tav::jet {
namespace {

Value MomentNow() {
    const LocalTime now = Now();
    const double seconds = now.time.hour * 3600.0 + now.time.minute * 60.0 + now.time.second;
    return Date{DateFromCivil(now.date).value().serial + seconds / 86400};
}

struct Word {
    TextView word;
    Value (*value)();
};
constexpr Word kWords[] = {
    {u"true", [] { return Value(true); }},      {u"yes", [] { return Value(true); }},
    {u"on", [] { return Value(true); }},        {u"false", [] { return Value(false); }},
    {u"no", [] { return Value(false); }},       {u"off", [] { return Value(false); }},
    {u"null", [] { return Value(); }},          {u"now()", MomentNow},
    {u"date()", [] { return Value(Today()); }},
};

TextView Trimmed(TextView text) {
    while (text.starts_with(u' ')) text.remove_prefix(1);
    while (text.ends_with(u' ')) text.remove_suffix(1);
    return text;
}

std::optional<Value> Read(TextView expression) {
    expression = Trimmed(expression);
    if (expression.starts_with(u'=')) expression = Trimmed(expression.substr(1));
    for (const Word& word : kWords) {
        if (EqualNoCase(expression, word.word)) return word.value();
    }
    const bool closed = expression.size() > 1 && expression.front() == expression.back();
    if (closed && (expression.front() == u'"' || expression.front() == u'\'')) {
        const TextView mark = expression.substr(0, 1);
        return ReplaceAll(expression.substr(1, expression.size() - 2), Text(mark).append(mark), mark);
    }
    if (closed && expression.front() == u'#') return ReadDateLiteral(expression);
    const std::string plain = ToUtf8(expression);
    double number = 0;
    const auto read = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (read.ec != std::errc() || read.ptr != plain.data() + plain.size()) return std::nullopt;
    return number;
}

}  // namespace

Value DefaultOf(const TableDefinition& table, const Column& column) {
    if (const std::optional<Value> value = Read(column.default_value))
        return ConvertForColumn(column, *value);
    throw Failure(Concat(u"The default value '", column.default_value, u"' of column '", column.name,
                         u"' of table '", table.name, u"' is not supported."));
}

}  // namespace tav::jet
