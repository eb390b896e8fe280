#include "reports/statement_page.h"

#include <vector>

#include "db/literals.h"
#include "reports/cells.h"
#include "reports/fields.h"
#include "reports/money.h"
#include "reports/report_page.h"
#include "reports/statement_columns.h"
#include "reports/statement_picture.h"

namespace tav {
namespace {

constexpr TextView kTitle = u"<h3>Справка по выписке операций по расчету с бюджетом</h3>";

void AddHeading(ReportPage& page, const Recordset& header, const std::optional<ShownTaxpayer>& shown,
                TextView period) {
    const Text inn = shown ? HtmlText(shown->inn) : FieldText(header, u"h1");
    const Text kpp = shown ? HtmlText(shown->kpp) : FieldText(header, u"h2");
    const Text name = shown ? HtmlText(shown->name) : FieldText(header, u"h3");
    page.AddHeading({kTitle, u"#c2", u"#ac"});
    page.AddHeading({u"ИНН:", u"#w15%", inn, u"#al"});
    page.AddHeading({u"КПП:", kpp, u"#al"});
    page.AddHeading({u"Наименование организации:", name, u"#al"});
    page.AddHeading({u"Наименование налога:", FieldText(header, u"h8"), u"#al"});
    page.AddHeading({u"КБК:", FieldText(header, u"h7"), u"#al"});
    page.AddHeading({u"ОКАТО:", FieldText(header, u"h10"), u"#al"});
    page.AddHeading({u"За период:", period, u"#al"});
    page.AddHeading({u"Валюта:", FieldText(header, u"h11"), u"#al"});
}

void AddColumnHeadings(ReportPage& page) {
    std::vector<TextView> rows[2];
    for (const StatementColumn& column : StatementColumns()) {
        const HeadingItems* const items[] = {&column.upper, &column.lower};
        for (std::size_t row = 0; row < 2; ++row) {
            for (const TextView item : *items[row]) {
                if (!item.empty()) rows[row].push_back(item);
            }
        }
    }
    for (std::vector<TextView>& row : rows) {
        row.push_back(u"#ac");
        page.AddColumnHeadings(row);
    }
}

// A row of the table: a cell and its codes for every column, `codes` after the last one.
class Row {
 public:
    // `text` and `amount` give the content of a column's cell.
    template <class ForText, class ForAmount>
    Row(const ForText& text, const ForAmount& amount) {
        // The order of the calls is the order of the page, because the sums are taken with it.
        for (const StatementColumn& column : StatementColumns()) {
            contents_.push_back(column.IsAmount() ? amount(column) : text(column));
        }
    }

    void AddTo(ReportPage& page, std::initializer_list<TextView> codes,
               std::initializer_list<TextView> row_codes) const {
        std::vector<TextView> items;
        for (std::size_t i = 0; i < contents_.size(); ++i) {
            const StatementColumn& column = StatementColumns()[i];
            items.push_back(contents_[i]);
            if (column.rule) items.push_back(u"#l2");
            if (!column.alignment.empty()) items.push_back(column.alignment);
        }
        items.insert(items.end(), codes);
        page.AddRow(items, row_codes);
    }

 private:
    std::vector<Text> contents_;
};

// A row that is not of one operation has one text, where operations have theirs.
auto Labelled(TextView label) {
    return [label](const StatementColumn& column) { return Text(column.field == u"p3" ? label : u""); };
}

void AddOpeningRow(ReportPage& page, const Recordset& balance) {
    const Row row(Labelled(u"Сальдо на начало"), [&](const StatementColumn& column) {
        return column.opening.empty() ? Text() : GetMoney(&balance, column.field, kOpening);
    });
    row.AddTo(page, {u"#ar", u"#b1", u"#u2"}, {u"#b0", u"#u0"});
}

void AddOperationRow(ReportPage& page, const Recordset& operation) {
    const Row row(
        [&](const StatementColumn& column) { return FieldText(operation, column.field); },
        [&](const StatementColumn& column) { return GetMoney(&operation, column.field, kTurnover); });
    row.AddTo(page, {u"#ar"}, {});
}

void AddTurnoverRow(ReportPage& page) {
    const Row row(Labelled(u"Обороты"), [](const StatementColumn& column) {
        return column.turnover ? GetMoney(nullptr, column.Number(), kTurnover) : Text();
    });
    row.AddTo(page, {u"#ar", u"#b1", u"#u2"}, {u"#b0", u"#u0"});
}

// Without a top rule.
void AddClosingRow(ReportPage& page) {
    const Row row(Labelled(u"Сальдо на конец"), [](const StatementColumn& column) {
        return column.opening.empty() ? Text() : GetMoney(nullptr, column.Number(), kClosing);
    });
    row.AddTo(page, {u"#ar", u"#b1"}, {u"#b0"});
}

}  // namespace

Text StatementPage(Connection& connection, Recordset& headers, Sheet* copy,
                   const std::optional<ShownTaxpayer>& shown) {
    const Recordset first = headers;
    const std::int64_t first_id = WholeNumber(first, u"id");
    Text end;
    Value last_day;
    for (Recordset each = headers; !each.Eof(); each.MoveNext()) {
        end = FieldText(each, u"pere");
        last_day = each.Field(u"pere");
    }
    StatementPicture picture(copy == nullptr ? nullptr : &copy->balance);
    // The order of the calls is the order of the page, because the cells' state is sticky.
    ReportPage page(copy);
    AddHeading(page, first, shown, FieldText(first, u"perb").append(u"-").append(end));
    AddColumnHeadings(page);
    const Recordset balance = connection.Execute(OpeningSelect(isns(first.Field(u"perb")), first_id));
    picture.TakeOpening(balance);
    AddOpeningRow(page, balance);
    for (; !headers.Eof(); headers.MoveNext()) {
        Recordset operations = connection.Execute(OperationsSelect(WholeNumber(headers, u"id")));
        for (; !operations.Eof(); operations.MoveNext()) {
            picture.TakeOperation(operations);
            AddOperationRow(page, operations);
        }
    }
    AddTurnoverRow(page);
    AddClosingRow(page);
    picture.Finish(first.Field(u"perb"), last_day);
    return page.Html();
}

}  // namespace tav
