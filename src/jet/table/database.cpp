#include "jet/table/database.h"

#include <algorithm>

#include "common/concat.h"
#include "common/failure.h"
#include "jet/table/pages_in_use.h"
#include "jet/table/table_properties.h"

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

Catalogue ReadCatalogue(PageFile& file) {
    Table table(file, ReadTableDefinition(file, kCatalogue, u"MSysObjects"));
    const CatalogueColumns columns(file, table.definition());
    Catalogue catalogue;
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const Row row = scan.row();
        const auto type = static_cast<EntryType>(NumberOf(row.Get(columns.type)));
        Value name = row.Get(columns.name);
        if (IsNull(name)) continue;
        if (type == EntryType::OdbcLink || type == EntryType::Link) {
            catalogue.linked.push_back(std::get<Text>(std::move(name)));
            continue;
        }
        if (type != EntryType::Table) continue;
        const auto flags = static_cast<std::uint32_t>(NumberOf(row.Get(columns.flags)));
        const auto page = static_cast<PageNumber>(NumberOf(row.Get(columns.id)) & 0xFFFFFF);
        const bool user = (flags & kNotAUserTable) == 0;
        catalogue.tables.push_back({std::get<Text>(std::move(name)), page, user, row.id()});
    }
    return catalogue;
}

Database::Database(TextView path, Access access) : file_(path, access) {
    Catalogue catalogue = ReadCatalogue(file_);
    tables_ = std::move(catalogue.tables);
    std::erase_if(tables_, [](const TableEntry& table) { return !table.user; });
    linked_ = std::move(catalogue.linked);
    file_.allocation().find_pages_in_use = &PagesInUse;
}

Table* Database::FindTable(TextView name) {
    const auto same = [&](const Text& other) { return EqualNoCase(other, name); };
    if (std::any_of(linked_.begin(), linked_.end(), same)) {
        throw Failure(
            Concat(u"Table '", name, u"' is linked from another database, which is not supported."));
    }
    const auto entry = std::find_if(tables_.begin(), tables_.end(),
                                    [&](const TableEntry& table) { return same(table.name); });
    if (entry == tables_.end()) return nullptr;
    std::unique_ptr<Table>& table = open_[entry->page];
    if (table == nullptr) {
        TableDefinition definition = ReadTableDefinition(file_, entry->page, entry->name);
        Table catalogue(file_, ReadTableDefinition(file_, kCatalogue, u"MSysObjects"));
        if (const auto column = catalogue.definition().FindColumn(u"LvProp")) {
            const Value properties = catalogue.Find(entry->row).Get(*column);
            if (const auto* bytes = std::get_if<Binary>(&properties)) {
                TakeProperties(bytes->bytes, definition);
            }
        }
        table = std::make_unique<Table>(file_, std::move(definition));
    }
    return table.get();
}

PageNumber Database::LastPageOfRows() {
    PageNumber last = 0;
    for (const auto& [page, table] : open_) last = std::max(last, table->LastPage());
    return last;
}

}  // namespace tav::jet
