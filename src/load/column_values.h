// The child elements of a head, a row or an act's body as columns of a table with their texts.
//
// An element's name becomes a column's by keeping its first letter and the number after it without leading
// zeros: h01 is h1, p0211 is p211; a name without a number (perb, pere) is its own column. An element that
// occurs twice gives one column, at the place of its first occurrence: the texts joined with one space; in a
// number or date column the last text that converts, or the last one if none does.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/text.h"
#include "db/engine.h"

namespace tav {

enum class CatalogueTable { Header, Operations, Acts };

// What is known of an element name: made once, used for every row.
struct CatalogueColumn {
    enum class Kind { Words, Amount, Day };

    Text element;  // "p01"
    Text column;   // "p1"
    Kind kind = Kind::Words;
    std::size_t size = 0;        // how many characters the database takes; 0: as many as there are
    std::size_t position = 0;    // in the values being collected
    std::size_t collection = 0;  // the number of the collection that `position` belongs to

    // What follows the first letter of the element: "01".
    TextView digits() const { return TextView(element).substr(1); }
};

// Collects the values of one row after another; the memory is used again.
class ColumnValues {
 public:
    struct Item {
        const CatalogueColumn* column = nullptr;
        Text text;
    };

    // `sizes` are those of the table's text columns.
    explicit ColumnValues(CatalogueTable table, std::vector<TextSize> sizes = {})
        : table_(table), sizes_(std::move(sizes)) {}

    // Whether the database has the column as one of texts.
    bool IsText(TextView column) const;
    // Forgets the values.
    void Clear();
    void Add(std::string_view element, Text text);
    // Cuts the element's text, if it is there, to so many characters.
    void Cut(TextView element, std::size_t characters);
    // Cuts what is longer than its column, and gives `report(column, length)` each of these texts.
    template <class Report>
    void CutToSize(Report report) {
        for (Item& item : std::span(items_.data(), count_)) {
            const std::size_t size = item.column->size;
            if (size == 0 || item.text.size() <= size) continue;
            report(*item.column, item.text.size());
            item.text.resize(size);
        }
    }
    std::span<const Item> items() const { return {items_.data(), count_}; }

 private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    using Columns = std::unordered_map<std::string, CatalogueColumn, Hash, std::equal_to<>>;

    CatalogueColumn& ColumnOf(std::string_view element);

    CatalogueTable table_;
    std::vector<TextSize> sizes_;
    Columns columns_;
    std::vector<Item> items_;
    std::size_t count_ = 0;
    std::size_t collection_ = 1;
};

// The column name of an element.
Text ColumnName(TextView element);

}  // namespace tav
