#include "jet/table/pages_in_use.h"

#include <set>

#include "jet/file/map_record.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/schema/table_definition.h"
#include "jet/table/database.h"

namespace tav::jet {
namespace {

constexpr TextView kTwice = u"two tables or indexes use it";

class Join {
 public:
    explicit Join(PageFile& file) : file_(&file), pages_(file.PageCount()) {
        Claim(0);
        Claim(kGlobalPage);
    }

    void Add(const TableDefinition& table) {
        for (const PageNumber page : table.pages) Claim(page);
        AddMap(table.owned_map, true);
        AddMap(table.free_map, false);
        for (const RealIndex& index : table.indexes) AddMap(index.map, true);
        for (const LongValueMaps& maps : table.long_values) {
            AddMap(maps.owned, true);
            AddMap(maps.free, false);
        }
    }
    PageSet Take() { return std::move(pages_); }

 private:
    void Claim(PageNumber page) {
        if (page >= file_->PageCount()) file_->Damaged(page, u"the file ends before it");
        if (!pages_.Add(page)) file_->Damaged(page, kTwice);
    }

    // The pages of the map itself, and its members when they belong to nobody else. Two maps may share a page.
    void AddMap(Pointer record, bool owns) {
        if (record == Pointer{}) return;
        if (!records_.insert(record).second)
            file_->Damaged(record.page, u"two tables or indexes share a map");
        const UsageMap map(*file_, record);
        for (const PageNumber page : map.BitmapPages()) Claim(page);
        if (map_pages_.insert(record.page).second) Claim(record.page);
        if (!owns) return;
        if (const std::optional<PageNumber> page = map.JoinInto(pages_)) file_->Damaged(*page, kTwice);
    }

    PageFile* file_;
    PageSet pages_;
    std::set<PageNumber> map_pages_;
    std::set<Pointer> records_;
};

}  // namespace

PageSet PagesInUse(PageFile& file) {
    Join join(file);
    for (const TableEntry& table : ReadCatalogue(file).tables) {
        join.Add(ReadTablePages(file, table.page, table.name));
    }
    return join.Take();
}

}  // namespace tav::jet
