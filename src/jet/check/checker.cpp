// The invariants of a database file, by the numbers that findings bear. E: its violation is an error. N: it is
// unusual, but met in files that the database engine or another program made and left.
//
//      1 E  The size is a whole number of pages, three at least; the file is a Jet 4 database, neither encrypted
//           nor protected by a password.
//      2 E  The header points to the two global maps and the system tables; it has a creation date.
//      3 E  Page 1 holds the global maps and nothing else; one of references has 69 bytes.
//        N  Pages that the map of free pages does not cover; maps that are too short for other programs.
//      4 E  A pointer to a map leads to a living record of a map page; the map is of a known kind and its bitmap
//           pages are of their type.
//      5 E  No page has two owners, no map record serves twice.
//      6 E  No page in use is free in the global map.
//        N  Pages neither owned nor free; bits beyond the end; pages released by a session that has not ended.
//      7 E  No page beyond the end of the file is owned.
//      8 E  The catalogue can be read; it names the system tables; each table in it has a definition of its own
//           and a name of its own, letter case ignored.
//      9 E  A definition has its constant, pages of its type that end, and the length it says.
//        N  Free field.
//     10 E  Columns: numbers and variable places within the table's and unique, fixed places apart from each
//           other, types known where indexes need them, lengths and precisions that can be.
//     11 E  Real indexes: constant, flag, one to ten existing columns, a root of an index's type in its map.
//     12 E  Logical indexes name a real index; one primary key at most.
//        N  Number other than the real index's.
//     13 E  The map of pages with room is a part of the owned ones.
//        N  Pages with room that it lacks.
//     14 E  Data pages: type, owner, slots one below the other and not over 255, exact free field.
//     15 E  A moved row points to a body on a page of its table; every body is pointed at once.
//        N  A body that no row points to, in a file that others have written: a row they have deleted.
//     16 E  Rows: column counts, length, variable values in order and inside, no bytes for a Null, fixed
//           values inside.
//     17 E  Values: text whole and within its column, long values as long as their records, possible dates.
//     18 E  The row count is exact, in a file that only this program wrote.
//        N  The same in other files.
//     19 E  Index pages: type, owner, exact free field, entries inside and long enough, a prefix inside the
//           first; height 0 of a leaf.
//     20 E  Entries ascend within a page and along the leaves.
//     21 E  An entry of a node is the last entry of its child; there is a last child; the tree's pages are
//           in its map, none twice, all leaves at one depth.
//        N  The height that a node says it has.
//     22 E  Leaves are linked in the order of the tree, nodes of one level too if they are linked at all.
//     23 E  The map of an index holds the pages of its tree only.
//     24 E  An entry leads to a living row, no two entries to one.
//     25 E  Every row has an entry, but for rows that are all Null in an index that ignores Nulls.
//     26 E  An entry's key is that of its row.
//        N  Keys of a kind that cannot be made here.
//     27 E  No key occurs twice in a unique index, but for all Null; no Null where one is not allowed.
//     28 N  The counter of distinct keys is at least their number.
//     29 E  The last autonumber is at least the highest in use, in a file that only this program wrote.
//        N  The same in other files.
//     30 E  The indexes of the catalogue and of its access rights agree with their rows (24 to 26).
//     31 E  Byte 1 of a page is 1, bytes 8 to 11 of data and index pages are 0.

#include "jet/check/checker.h"

#include <set>

#include "common/failure.h"
#include "jet/check/check_file.h"
#include "jet/check/check_index.h"
#include "jet/check/check_rows.h"
#include "jet/schema/system_tables.h"

namespace tav::jet {
namespace {

using check::CheckContext;
using check::CheckedRows;
using check::CheckedTable;

constexpr PageNumber kCatalogue = 2;
constexpr PageNumber kPageOfId = 0xFFFFFF;

struct CatalogueTable {
    PageNumber page = 0;
    Text name;
};

// The tables among the catalogue's rows, collected while the rows are checked.
class CatalogueReader {
 public:
    CatalogueReader(CheckContext& context, const TableDefinition& definition)
        : context_(context),
          id_(definition.FindColumn(u"Id")),
          name_(definition.FindColumn(u"Name")),
          type_(definition.FindColumn(u"Type")) {
        if (!id_ || !name_ || !type_) context.Error(8, u"the catalogue lacks the columns that name tables");
    }

    void Add(const Row& row) {
        if (!id_ || !name_ || !type_) return;
        const Value type = row.Get(*type_);
        if (type != Value(std::int64_t{1})) return;
        const Value id = row.Get(*id_);
        const Value name = row.Get(*name_);
        const Text place = check::Place(u"the catalogue", row.id());
        if (!std::holds_alternative<std::int64_t>(id) || !std::holds_alternative<Text>(name)) {
            return context_.Error(8, place + u"a table has no name or no page");
        }
        const auto page = static_cast<PageNumber>(std::get<std::int64_t>(id)) & kPageOfId;
        const Text& text = std::get<Text>(name);
        if (!names_.insert(UpperCase(text)).second) {
            context_.Error(8, place + u"there is another table of the name " + text);
        }
        if (page < kCatalogue || page >= context_.PageCount() ||
            context_.At(page)[0] != static_cast<std::uint8_t>(PageType::TableDefinition)) {
            return context_.Error(8,
                                  place + u"table " + text + u" has no definition on page " + Digits(page));
        }
        if (!pages_.insert(page).second) {
            return context_.Error(8, place + u"table " + text + u" has the definition of another table");
        }
        tables_.push_back({page, text});
    }

    // The tables but the catalogue itself.
    std::vector<CatalogueTable> Take() {
        for (PageNumber page = kCatalogue; page < kCatalogue + kSystemTables; ++page) {
            if (!pages_.contains(page)) {
                context_.Error(8, u"the catalogue does not name the system table on page " + Digits(page));
            }
        }
        std::erase_if(tables_, [](const CatalogueTable& table) { return table.page == kCatalogue; });
        return std::move(tables_);
    }

 private:
    CheckContext& context_;
    std::optional<std::size_t> id_;
    std::optional<std::size_t> name_;
    std::optional<std::size_t> type_;
    std::set<Text> names_;
    std::set<PageNumber> pages_;
    std::vector<CatalogueTable> tables_;
};

// The catalogue is a table like the others, and names them.
std::vector<CatalogueTable> CheckCatalogue(CheckContext& context) {
    const std::optional<CheckedTable> table = check::CheckDefinition(context, kCatalogue, u"MSysObjects");
    if (!table) {
        context.Error(8, u"the catalogue cannot be read");
        return {};
    }
    CatalogueReader reader(context, table->definition);
    const CheckedRows rows = check::CheckRows(context, *table, [&](const Row& row) { reader.Add(row); });
    check::CheckIndexes(context, *table, rows);
    return reader.Take();
}

void CheckTable(CheckContext& context, const CatalogueTable& table) {
    if (context.OwnerOf(table.page) != CheckContext::kNobody) {
        return context.Error(8, u"the catalogue: table " + table.name + u" has its definition on page " +
                                    Digits(table.page) + u", which belongs to " +
                                    context.NameOf(context.OwnerOf(table.page)));
    }
    const std::optional<CheckedTable> checked = check::CheckDefinition(context, table.page, table.name);
    if (!checked) return;
    const CheckedRows rows = check::CheckRows(context, *checked, [](const Row&) {});
    check::CheckIndexes(context, *checked, rows);
}

std::vector<Finding> CheckFile(PageFile& file) {
    CheckContext context(file);
    try {
        check::CheckHeader(context);
        check::CheckGlobalMap(context);
        for (const CatalogueTable& table : CheckCatalogue(context)) CheckTable(context, table);
        check::CheckLeftovers(context);
    } catch (const Failure& failure) {  // the disk does not give a page
        context.Error(1, failure.description());
    }
    return context.Take();
}

bool CanBeRead(TextView path) {
    try {
        const LockedFile file(path, LockedFile::Access::Read);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace

std::vector<Finding> CheckDatabase(TextView path) {
    try {
        PageFile file(path, PageFile::Access::Read);
        return CheckFile(file);
    } catch (const Failure& failure) {
        if (!CanBeRead(path)) throw;
        return {{true, 1, failure.description()}};
    }
}

}  // namespace tav::jet
