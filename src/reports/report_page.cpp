#include "reports/report_page.h"

#include "common/regional.h"
#include "reports/cells.h"
#include "reports/page.h"

namespace tav {
namespace {

int NumberOr(TextView text, int otherwise) {
    return static_cast<int>(ParseInteger(text).value_or(otherwise));
}

SheetRow Copied(const std::vector<Cell>& cells, int link) {
    SheetRow row;
    row.link = link;
    for (const Cell& cell : cells) {
        SheetCell& copy = row.cells.emplace_back();
        copy.text = ShownText(cell.content);
        copy.rows = NumberOr(cell.rows, 1);
        copy.columns = NumberOr(cell.columns, 1);
        copy.left_rule = NumberOr(cell.left_rule, 0);
        copy.top_rule = cell.top_rule;
        copy.bold = cell.bold;
        if (cell.alignment == u'c') copy.alignment = CellAlignment::Centre;
        if (cell.alignment == u'r') copy.alignment = CellAlignment::Right;
    }
    return row;
}

}  // namespace

void ReportPage::AddHeading(std::span<const TextView> items) {
    std::vector<Cell> cells;
    heading_ += GetHS(u"tr", {GetHS(u"td", items, copy_ == nullptr ? nullptr : &cells)});
    if (copy_ == nullptr) return;
    if (cells.size() == 1) {
        copy_->title = ShownText(cells[0].content);
    } else {
        copy_->heading.push_back(Copied(cells, kNoSheet));
    }
}

void ReportPage::AddColumnHeadings(std::span<const TextView> items) {
    std::vector<Cell> cells;
    rows_ += GetHS(u"tr", {GetHS(u"td", items, copy_ == nullptr ? nullptr : &cells)});
    if (copy_ != nullptr) copy_->headings.push_back(Copied(cells, kNoSheet));
}

void ReportPage::AddRow(std::span<const TextView> items, std::initializer_list<TextView> codes, int link) {
    std::vector<Cell> cells;
    const Text html = GetHS(u"td", items, copy_ == nullptr ? nullptr : &cells);
    std::vector<TextView> row = {html};
    row.insert(row.end(), codes);
    rows_ += GetHS(u"tr", row);
    if (copy_ != nullptr) copy_->rows.push_back(Copied(cells, link));
}

Text ReportPage::Html() const {
    return Page(heading_, rows_);
}

}  // namespace tav
