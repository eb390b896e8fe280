// A report while it is made, row by row: the HTML that becomes its file and, where a copy on paper is wanted,
// the same cells as a sheet.
#pragma once

#include <initializer_list>
#include <span>

#include "common/text.h"
#include "pdf/sheet.h"

namespace tav {

class ReportPage {
 public:
    // `copy` may be null.
    explicit ReportPage(Sheet* copy) : copy_(copy) {}

    // Items as GetHS takes them (reports/cells.h). A row of the borderless table; one that is a single cell is
    // the title.
    void AddHeading(std::span<const TextView> items);
    void AddHeading(std::initializer_list<TextView> items) {
        AddHeading(std::span(items.begin(), items.size()));
    }
    // Rows of the ruled one; `codes` follow the row itself. The row's first cell leads to the sheet `link`.
    void AddColumnHeadings(std::span<const TextView> items);
    void AddColumnHeadings(std::initializer_list<TextView> items) {
        AddColumnHeadings(std::span(items.begin(), items.size()));
    }
    void AddRow(std::span<const TextView> items, std::initializer_list<TextView> codes, int link = kNoSheet);

    bool empty() const { return rows_.empty(); }
    Text Html() const;

 private:
    Sheet* copy_;
    Text heading_;
    Text rows_;
};

}  // namespace tav
