#include "load/column_values.h"

#include <algorithm>
#include <array>

#include "common/concat.h"
#include "common/regional.h"
#include "db/literals.h"

namespace tav {
namespace {

using Kind = CatalogueColumn::Kind;

struct TypedColumn {
    CatalogueTable table;
    TextView column;
    Kind kind;
};

// Every other column of the header and the operations is text; every column of the acts is a number.
constexpr std::array<TypedColumn, 10> kTypedColumns = {{
    {CatalogueTable::Header, u"h12", Kind::Day},
    {CatalogueTable::Header, u"h13", Kind::Day},
    {CatalogueTable::Header, u"perb", Kind::Day},
    {CatalogueTable::Header, u"pere", Kind::Day},
    {CatalogueTable::Operations, u"p1", Kind::Day},
    {CatalogueTable::Operations, u"p10", Kind::Amount},
    {CatalogueTable::Operations, u"p11", Kind::Amount},
    {CatalogueTable::Operations, u"p12", Kind::Amount},
    {CatalogueTable::Operations, u"p13", Kind::Amount},
    {CatalogueTable::Operations, u"p14", Kind::Amount},
}};

Kind KindOf(CatalogueTable table, TextView column) {
    if (table == CatalogueTable::Acts) return Kind::Amount;
    for (const TypedColumn& typed : kTypedColumns) {
        if (typed.table == table && typed.column == column) return typed.kind;
    }
    return Kind::Words;
}

bool Converts(Kind kind, TextView text) {
    return kind == Kind::Day ? ParseDate(text).has_value() : ParseNumber(ToLocalNumber(text)).has_value();
}

}  // namespace

Text ColumnName(TextView element) {
    const TextView digits = element.substr(std::min<std::size_t>(1, element.size()));
    const bool number =
        !digits.empty() && std::ranges::all_of(digits, [](char16_t c) { return c >= u'0' && c <= u'9'; });
    if (!number) return Text(element);
    const std::size_t first = std::min(digits.find_first_not_of(u'0'), digits.size() - 1);
    return Concat(element.substr(0, 1), digits.substr(first));
}

bool ColumnValues::IsText(TextView column) const {
    return std::ranges::any_of(sizes_,
                               [&](const TextSize& size) { return EqualNoCase(size.column, column); });
}

void ColumnValues::Clear() {
    count_ = 0;
    ++collection_;
}

CatalogueColumn& ColumnValues::ColumnOf(std::string_view element) {
    const auto known = columns_.find(element);
    if (known != columns_.end()) return known->second;
    const Text name = FromUtf8(element);
    CatalogueColumn column{name, ColumnName(name)};
    column.kind = KindOf(table_, column.column);
    for (const TextSize& size : sizes_) {
        if (EqualNoCase(size.column, column.column)) column.size = size.characters;
    }
    return columns_.emplace(element, std::move(column)).first->second;
}

void ColumnValues::Cut(TextView element, std::size_t characters) {
    for (Item& item : std::span(items_.data(), count_)) {
        if (item.column->element == element && item.text.size() > characters) item.text.resize(characters);
    }
}

void ColumnValues::Add(std::string_view element, Text text) {
    CatalogueColumn& column = ColumnOf(element);
    if (column.collection != collection_) {
        column.collection = collection_;
        column.position = count_++;
        if (items_.size() < count_) items_.emplace_back();
        items_[column.position].column = &column;
        items_[column.position].text = std::move(text);
        return;
    }
    Text& value = items_[column.position].text;
    if (column.kind == Kind::Words) {
        value.append(u" ").append(text);
    } else if (Converts(column.kind, text) || !Converts(column.kind, value)) {
        value = std::move(text);
    }
}

}  // namespace tav
