#include "jet/create/create.h"

#include <algorithm>

#include "jet/create/definition_plan.h"
#include "jet/create/page_builder.h"
#include "jet/file/header_mask.h"
#include "jet/index/index_key.h"
#include "jet/index/index_page.h"
#include "jet/schema/definition_writer.h"
#include "jet/table/row_encoding.h"

namespace tav::jet {
namespace {

constexpr PageNumber kFirstTable = 2;
constexpr PageNumber kSystemMaps = 6;
constexpr PageNumber kMappedPages = 512;
constexpr std::uint16_t kCodePage = 1252;
constexpr std::uint16_t kSortOrder = 0x0409;

void PutBytes(Page& page, std::size_t at, std::string_view bytes) {
    std::ranges::copy(bytes, page.begin() + static_cast<std::ptrdiff_t>(at));
}

// The first page: what kind of file this is, the creation date, and a password field that holds none.
Page HeaderPage() {
    Page page{};
    PutBytes(page, 0, {"\0\1\0\0Standard Jet DB\0\1", 21});

    PutU32(&page[0x18], Pointer{1, 0}.Word());
    PutU32(&page[0x1C], Pointer{1, 1}.Word());
    for (std::uint32_t i = 0; i < kSystemTables; ++i) PutU32(&page[0x20 + 4 * i], kFirstTable + i);
    PutU16(&page[0x3C], kCodePage);
    PutBytes(page, 0x72, kCreationDate);
    const auto day = static_cast<std::uint32_t>(DoubleAt(&page[0x72]));
    for (std::size_t i = 0x42; i < 0x6A; i += 4) PutU32(&page[i], day);
    PutU16(&page[0x6A], kEngineBuild);
    PutU16(&page[0x6E], kSortOrder);
    MaskHeader(page.data());

    PutU16(&page[0x98], 1620);
    PutBytes(page, 0x9C, "4.0");
    PutU16(&page[kUseCounters], kFirstUseCounter);
    for (std::size_t i = kUseCounters + 2; i < kPageSize; i += 2) PutU16(&page[i], kIdleUseCounter);
    return page;
}

// The rows of a system table and their index entries while they are being collected.
struct RowCollector {
    RowCollector(const TableDefinition& definition, PageNumber data_page)
        : table(definition), page(data_page), data(definition.page), entries(definition.indexes.size()) {}

    using NamedValue = std::pair<TextView, Value>;
    // Columns that are not named are Null.
    void Add(std::initializer_list<NamedValue> named) {
        std::vector<Value> values(table.columns.size());
        for (const auto& [name, value] : named) values[table.FindColumn(name).value()] = value;
        EncodedRow record;
        EncodeRow(table, values, record);
        const RowId row{page, data.Add(record.bytes)};
        for (std::size_t i = 0; i < entries.size(); ++i) {
            entries[i].push_back(EncodeKey(table, table.indexes[i], values) + BigEndian(row.Word()));
        }
        ++rows;
    }

    const TableDefinition& table;
    PageNumber page;
    DataPage data;
    std::vector<std::vector<std::string>> entries;  // of each index
    std::uint32_t rows = 0;
};

class NewFile {
 public:
    NewFile();
    void AddTable(const TablePlan& plan);
    std::string Bytes();

 private:
    PageNumber Append(const Page& page = {});
    void AddRootPages(TableDefinition& table, DataPage& maps, PageNumber map_page);
    void AddObject(const ObjectRow& row);
    void AddAccess(const AccessRow& row);
    void WriteDefinition(const TableDefinition& table, const DefinitionCounts& counts);
    void WriteRows(RowCollector& collector);

    std::vector<Page> pages_;
    std::vector<TableDefinition> system_;
    std::vector<RowCollector> rows_;  // of MSysObjects and MSysACEs
};

PageNumber NewFile::Append(const Page& page) {
    pages_.push_back(page);
    return static_cast<PageNumber>(pages_.size() - 1);
}

// One empty leaf per index, and the map that holds it.
void NewFile::AddRootPages(TableDefinition& table, DataPage& maps, PageNumber map_page) {
    for (RealIndex& index : table.indexes) {
        index.root = Append(LeafPage(table.page, {}));
        index.map = {map_page, maps.Add(MapRecord(index.root, index.root + 1))};
    }
}

// Two maps per memo or OLE column, in the order of the column numbers.
void AddLongValueMaps(TableDefinition& table, DataPage& maps, PageNumber map_page) {
    std::vector<LongValueMaps*> columns;
    for (LongValueMaps& column : table.long_values) columns.push_back(&column);
    std::ranges::sort(columns, {}, &LongValueMaps::column_number);
    for (LongValueMaps* column : columns) {
        column->owned = {map_page, maps.Add(MapRecord(0, 0))};
        column->free = {map_page, maps.Add(MapRecord(0, 0))};
    }
}

NewFile::NewFile() {
    pages_.resize(kSystemMaps + 1);
    pages_[0] = HeaderPage();

    PageNumber data_page = kSystemMaps + 1;
    for (const SystemTablePlan& plan : SystemTablePlans()) {
        system_.push_back(PlanSystemTable(plan));
        data_page += static_cast<PageNumber>(plan.table.indexes.size());
    }
    DataPage maps(0);
    for (std::size_t i = 0; i < kSystemTables; ++i) {
        TableDefinition& table = system_[i];
        table.page = kFirstTable + static_cast<PageNumber>(i);
        const bool has_rows = i == kObjects || i == kAccess;
        const std::string owned = has_rows ? MapRecord(data_page, data_page + 1) : MapRecord(0, 0);
        if (has_rows) rows_.emplace_back(table, data_page++);
        table.owned_map = {kSystemMaps, maps.Add(owned)};
        table.free_map = {kSystemMaps, maps.Add(owned)};
        AddLongValueMaps(table, maps, kSystemMaps);
        AddRootPages(table, maps, kSystemMaps);
    }
    pages_[kSystemMaps] = maps.page();
    pages_.resize(data_page);

    for (const ObjectRow& row : SystemObjects()) AddObject(row);
    for (const AccessRow& row : SystemAccess()) AddAccess(row);
}

void NewFile::AddTable(const TablePlan& plan) {
    TableDefinition table = PlanUserTable(plan);
    table.page = Append();
    const PageNumber map_page = Append();
    DataPage maps(0);
    table.owned_map = {map_page, maps.Add(MapRecord(0, 0))};
    table.free_map = {map_page, maps.Add(MapRecord(0, 0))};
    AddRootPages(table, maps, map_page);
    AddLongValueMaps(table, maps, map_page);
    pages_[map_page] = maps.page();
    WriteDefinition(table, {0, std::vector<std::uint32_t>(table.indexes.size())});

    AddObject({table.page, kTablesContainer, plan.name, 1, 0, kAdminSid});
    AddAccess({table.page, kAdminSid, kTableRights, false});
    AddAccess({table.page, kUsersSid, kTableRights, false});
}

void NewFile::AddObject(const ObjectRow& row) {
    const Date made{DoubleAt(reinterpret_cast<const std::uint8_t*>(kCatalogueDate.data()))};
    rows_[kObjects].Add({{u"Id", std::int64_t{row.id}},
                         {u"ParentId", std::int64_t{row.parent}},
                         {u"Name", Text(row.name)},
                         {u"Type", std::int64_t{row.type}},
                         {u"DateCreate", made},
                         {u"DateUpdate", made},
                         {u"Owner", Binary{std::string(row.owner)}},
                         {u"Flags", std::int64_t{static_cast<std::int32_t>(row.flags)}}});
}

void NewFile::AddAccess(const AccessRow& row) {
    rows_[kAccess].Add({{u"ObjectId", std::int64_t{row.object}},
                        {u"SID", Binary{std::string(row.sid)}},
                        {u"ACM", std::int64_t{row.rights}},
                        {u"FInheritable", row.inheritable}});
}

// On the table's page and as many after the last one as it takes.
void NewFile::WriteDefinition(const TableDefinition& table, const DefinitionCounts& counts) {
    const std::string bytes = DefinitionBytes(table, counts);
    std::vector<PageNumber> numbers = {table.page};
    while (numbers.size() < DefinitionPages(bytes.size())) numbers.push_back(Append());
    const std::vector<Page> pages = CutDefinition(bytes, numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) pages_[numbers[i]] = pages[i];
}

void NewFile::WriteRows(RowCollector& collector) {
    pages_[collector.page] = collector.data.page();
    DefinitionCounts counts{collector.rows, {}};
    for (std::size_t i = 0; i < collector.entries.size(); ++i) {
        std::vector<std::string>& entries = collector.entries[i];
        std::ranges::sort(entries);
        pages_[collector.table.indexes[i].root] = LeafPage(collector.table.page, entries);
        std::uint32_t distinct = 0;
        std::string_view previous;
        for (const std::string& entry : entries) {
            const std::string_view key = std::string_view(entry).substr(0, entry.size() - kRowIdSize);
            if (key != previous) ++distinct;
            previous = key;
        }
        counts.distinct_keys.push_back(distinct);
    }
    WriteDefinition(collector.table, counts);
}

std::string NewFile::Bytes() {
    for (RowCollector& collector : rows_) WriteRows(collector);
    for (const SystemTable i : {kQueries, kRelationships}) {
        WriteDefinition(system_[i], {0, std::vector<std::uint32_t>(system_[i].indexes.size())});
    }
    DataPage global(1);
    global.Add(MapRecord(static_cast<PageNumber>(pages_.size()), kMappedPages));
    global.Add(MapRecord(0, 0));
    pages_[1] = global.page();

    std::string bytes;
    for (const Page& page : pages_) bytes.append(page.begin(), page.end());
    return bytes;
}

}  // namespace

std::string EmptyDatabase(std::span<const TablePlan> tables) {
    NewFile file;
    for (const TablePlan& table : tables) file.AddTable(table);
    return file.Bytes();
}

}  // namespace tav::jet
