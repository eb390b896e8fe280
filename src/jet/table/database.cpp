#include "jet/table/database.h"

#include <algorithm>

#include "common/failure.h"

namespace tav::jet {
namespace {

constexpr PageNumber kCatalogue = 2;
constexpr std::uint32_t kNotAUserTable = 0x80000002;  // flags of the engine's and the program's own tables

// Types of the catalogue's rows.
enum class EntryType : std::int64_t { Table = 1, OdbcLink = 4, Link = 6 };

// The catalogue's columns that matter here.
struct CatalogueColumns {
    std::size_t id;
    std::size_t name;
    std::size_t type;
    std::size_t flags;

    CatalogueColumns(const PageFile& file, const TableDefinition& catalogue) {
        const auto find = [&](TextView column, ColumnType kind) {
            const std::optional<std::size_t> at = catalogue.FindColumn(column);
            if (!at || catalogue.columns[*at].type != kind) {
                file.Damaged(kCatalogue, u"the catalogue of tables is not as it should be");
            }
            return *at;
        };
        id = find(u"Id", ColumnType::Long);
        name = find(u"Name", ColumnType::Text);
        type = find(u"Type", ColumnType::Integer);
        flags = find(u"Flags", ColumnType::Long);
    }
};

std::int64_t NumberOf(const Value& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : *number;
}

}  // namespace

Database::Database(TextView path, Access access) : file_(path, access) {
    Table catalogue(file_, ReadTableDefinition(file_, kCatalogue, u"MSysObjects"));
    const CatalogueColumns columns(file_, catalogue.definition());
    for (Table::Scan scan = catalogue.Rows(); !scan.AtEnd(); scan.Next()) {
        const Row row = scan.row();
        const auto type = static_cast<EntryType>(NumberOf(row.Get(columns.type)));
        const Value name = row.Get(columns.name);
        if (IsNull(name)) continue;
        if (type == EntryType::OdbcLink || type == EntryType::Link) linked_.push_back(std::get<Text>(name));
        if (type != EntryType::Table) continue;
        if ((static_cast<std::uint32_t>(NumberOf(row.Get(columns.flags))) & kNotAUserTable) != 0) continue;
        const auto page = static_cast<PageNumber>(NumberOf(row.Get(columns.id)) & 0xFFFFFF);
        tables_.push_back({std::get<Text>(name), page});
    }
}

Table* Database::FindTable(TextView name) {
    const auto same = [&](const Text& other) { return EqualNoCase(other, name); };
    if (std::any_of(linked_.begin(), linked_.end(), same)) {
        throw Failure(Text(u"Table '")
                          .append(name)
                          .append(u"' is linked from another database, which is not supported."));
    }
    const auto entry = std::find_if(tables_.begin(), tables_.end(),
                                    [&](const TableEntry& table) { return same(table.name); });
    if (entry == tables_.end()) return nullptr;
    std::unique_ptr<Table>& table = open_[entry->page];
    if (table == nullptr) {
        table = std::make_unique<Table>(file_, ReadTableDefinition(file_, entry->page, entry->name));
    }
    return table.get();
}

}  // namespace tav::jet
