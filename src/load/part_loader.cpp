#include "load/part_loader.h"

#include <algorithm>
#include <array>

#include "common/concat.h"
#include "common/failure.h"
#include "db/literals.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr TextView kZero = u"0.00";
constexpr std::array<TextView, 5> kAmountDigits = {u"10", u"11", u"12", u"13", u"14"};
constexpr TextView kRecordDateDigits = u"01";
constexpr std::array<TextView, 5> kSeriesElements = {u"h01", u"h02", u"h06", u"h07", u"h10"};
constexpr std::size_t kCurrencyCharacters = 16;
constexpr std::size_t kYearCharacters = 4;

template <std::size_t N>
bool OneOf(TextView text, const std::array<TextView, N>& known) {
    return std::ranges::find(known, text) != known.end();
}

// One insert statement, its column list and its value list growing side by side.
class Insert {
 public:
    Insert(TextView beginning, std::int16_t part) : columns_(beginning), values_(u") values (") {
        columns_.reserve(beginning.size() + 100);
        values_.Number(part);
    }

    void Column(TextView name) { columns_.append(u",").append(name); }
    void Value(TextView text) { values_.Fixed(u",'").Value(text).Fixed(u"'"); }
    void Add(TextView column, TextView text) {
        Column(column);
        Value(text);
    }
    void Literal(const SqlText& literal) { values_.Append(literal); }

    SqlText Statement() const {
        SqlText statement(columns_);
        return statement.Append(values_).Fixed(u")");
    }

 private:
    Text columns_;
    SqlText values_;
};

Insert HeaderInsert(std::int16_t part, TextView file_name) {
    Insert header(u"insert into tav_operations_header (id,filename", part);
    header.Value(file_name);
    return header;
}

// Without its zeros, an amount's element names the section in its second place: p0211 is p211.
bool InSection2(TextView element) {
    const Text name = ReplaceAll(element, u"0", u"");
    return name.size() >= 2 && name[1] == u'2';
}

// " and perb= #01/01/2011#". The year stands bare in the statement, so it must be one.
Text FirstOfJanuary(TextView year) {
    const bool digits = std::ranges::all_of(year, [](char16_t c) { return c >= u'0' && c <= u'9'; });
    const Text condition = Concat(u" and perb= #01/01/", year, u"#");
    if (year.size() == kYearCharacters && digits) return condition;
    throw Failure(Concat(u"Syntax error in date in query expression '", condition, u"'."));
}

// The content of a part's first child of that name.
std::string_view ContentOf(const CatalogueElement& part, std::string_view name) {
    for (const CatalogueElement& child : ElementsOf(part.content, name)) return child.content;
    return {};
}

void Collect(std::string_view content, ColumnValues& values) {
    values.Clear();
    for (const CatalogueElement& child : ElementsOf(content)) values.Add(child.name, TextOf(child.content));
}

}  // namespace

LoadSwitches ReadLoadSwitches() {
    return {SettingSwitch(u"SpVupis"), SettingSwitch(u"SpAct"), SettingSwitch(u"SpVupisOb"),
            SettingSwitch(u"SpActOb")};
}

PartLoader::PartLoader(Connection& connection, const Numbers& highest, Rehearsal rehearsal)
    : connection_(connection),
      rehearsal_(std::move(rehearsal)),
      switches_(ReadLoadSwitches()),
      numbers_(highest),
      head_(CatalogueTable::Header, connection.TextSizes(u"tav_operations_header")),
      row_(CatalogueTable::Operations, connection.TextSizes(u"tav_operations")),
      amounts_(CatalogueTable::Acts) {
    // The reports tell a debt by the sign of the balance: with a column of texts all of them would fail.
    if (!rehearsal_ && row_.IsText(u"p13")) {
        throw Failure(RunTimeError::DataTypeMismatch, u"tav_operations.p13");
    }
}

void PartLoader::Execute(const SqlText& sql) {
    rehearsal_ ? rehearsal_(sql) : void(connection_.Execute(sql));
}

void PartLoader::CutToSize(ColumnValues& values, Reading& reading) {
    values.CutToSize([&](const CatalogueColumn& column, std::size_t length) {
        std::size_t& longest = reading.long_texts[column.column];
        longest = std::max(longest, length);
    });
}

PartOutcome PartLoader::LoadAct(const CatalogueElement& part, TextView file_name) {
    Reading reading;
    const std::int16_t number = numbers_.part.Next();
    Collect(ContentOf(part, "body"), amounts_);
    Insert amounts(u"insert into tav_acts (id", number);
    bool nonzero = false;
    for (const auto& [column, text] : amounts_.items()) {
        amounts.Add(column->column, ToLocalNumber(text));
        if ((switches_.section_2_only == 0 || InSection2(column->element)) && text != kZero) nonzero = true;
    }
    reading.outcome.stored = switches_.zero_acts != 0 || nonzero;
    if (!reading.outcome.stored) return Finish(reading);
    Execute(amounts.Statement());

    Collect(ContentOf(part, "head"), head_);
    CutToSize(head_, reading);
    Insert header = HeaderInsert(number, file_name);
    for (const auto& [column, text] : head_.items()) header.Add(column->column, text);
    Execute(header.Statement());
    return Finish(reading);
}

PartOutcome PartLoader::LoadStatement(const CatalogueElement& part, TextView file_name) {
    Reading reading;
    numbers_.part.Next();
    for (const CatalogueElement& body : ElementsOf(part.content, "body")) {
        for (const CatalogueElement& row : ElementsOf(body.content, "row")) LoadRow(row.content, reading);
    }
    reading.outcome.balance_fault = reading.balances.FirstFault();
    reading.outcome.stored = switches_.zero_statements != 0 || reading.nonzero;
    LoadStatementHeader(ContentOf(part, "head"), file_name, reading);
    return Finish(reading);
}

// Once an amount has counted, every later line is stored, zero or not.
void PartLoader::LoadRow(std::string_view row, Reading& reading) {
    row_.Clear();
    for (const CatalogueElement& value : ElementsOf(row)) {
        row_.Add(value.name, TextOf(value.content));
        reading.balances.Add(value.name, value.content);
    }
    reading.balances.EndLine();
    CutToSize(row_, reading);
    Insert insert(u"insert into tav_operations (id", numbers_.part.value());
    bool ignored = switches_.dated_lines_only != 0;
    bool has_amount = false;
    for (const auto& [column, text] : row_.items()) {
        const TextView digits = column->digits();
        if (OneOf(digits, kAmountDigits)) {
            insert.Add(column->column, ToLocalNumber(text));
            if (text == kZero) continue;
            has_amount = true;
            if (!ignored) reading.nonzero = true;
            continue;
        }
        insert.Add(column->column, text);
        if (digits == kRecordDateDigits) ignored = false;
    }
    if (switches_.zero_statements == 0 && !reading.nonzero) {
        if (has_amount) reading.held.push_back(insert.Statement());
        return;
    }
    for (const SqlText& held : reading.held) Execute(held);
    reading.outcome.rows += static_cast<int>(reading.held.size()) + 1;
    reading.held.clear();
    Execute(insert.Statement());
}

void PartLoader::LoadStatementHeader(std::string_view head, TextView file_name, Reading& reading) {
    Collect(head, head_);
    head_.Cut(u"h11", kCurrencyCharacters);
    CutToSize(head_, reading);
    Insert header = HeaderInsert(numbers_.part.value(), file_name);
    SqlText current(u"select vid, pere, h12 from tav_operations_header where not(isnull(vid))");
    Text period_end;
    for (const auto& [column, text] : head_.items()) {
        const TextView element = column->element;
        header.Add(column->column, text);
        if (OneOf(element, kSeriesElements)) {
            current.Fixed(u" and ").Fixed(column->column).Fixed(u"='").Value(text).Fixed(u"'");
        } else if (element == u"h12") {
            period_end = text;
        } else if (element == u"h13") {
            header.Add(u"perb", text);
            // A statement that runs over the end of a year is cut there.
            if (Right(period_end, kYearCharacters) != Right(text, kYearCharacters)) {
                period_end = Text(u"31.12.").append(Right(text, kYearCharacters));
            }
        }
    }
    header.Add(u"pere", period_end);
    current.Fixed(FirstOfJanuary(Right(period_end, kYearCharacters)));
    if (!rehearsal_) {
        header.Column(u"vid");
        header.Literal(VersionLiteral(current, period_end));
    }
    if (reading.outcome.stored) Execute(header.Statement());
}

// The value of `vid`: the series number the statement takes over, a new one, or Null when the current
// statement of its series stays the current one.
SqlText PartLoader::VersionLiteral(const SqlText& current, TextView period_end) {
    const auto quoted = [](std::int16_t number) {
        SqlText literal(u",'");
        return literal.Value(Digits(number)).Fixed(u"'");
    };
    const Recordset found = connection_.Execute(current);
    if (found.Eof()) return quoted(numbers_.series.Next());
    Text old_period_end = isns(found.Field(u"pere"));
    Text old_statement_end = isns(found.Field(u"h12"));
    // Both comparisons are always made, in this order: the first tests against the range that the previous
    // statement's second one recorded.
    const bool in_last_range = datebetween(old_statement_end, u"");
    const bool later = datebetween(old_period_end, period_end);
    if (!in_last_range && !later) return SqlText(u",Null");
    const std::int16_t series = Counter(found.Field(u"vid")).value();
    SqlText supersede(u"update tav_operations_header set vid=Null where vid=");
    connection_.Execute(supersede.Number(series));
    return quoted(series);
}

PartOutcome PartLoader::Finish(Reading& reading) {
    PartOutcome& outcome = reading.outcome;
    if (!outcome.stored) return std::move(outcome);
    if (!reading.long_texts.empty()) {
        Text fields;
        for (const auto& [column, length] : reading.long_texts) {
            fields.append(fields.empty() ? u"" : u", ").append(column).append(u" (знаков: ");
            fields.append(Digits(static_cast<long long>(length))).append(u")");
        }
        outcome.remarks.push_back({Finding::Shortened, fields});
    }
    return std::move(outcome);
}

}  // namespace tav
