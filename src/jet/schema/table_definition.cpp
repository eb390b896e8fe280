#include "jet/schema/table_definition.h"

#include <algorithm>
#include <string>

#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"

namespace tav::jet {
namespace {

constexpr std::size_t kPageHeader = 8;  // of every definition page; part of the definition on the first only
constexpr std::uint32_t kConstant = 1625;
constexpr std::uint32_t kIndexConstant = 1923;
constexpr std::uint32_t kLongestDefinition = 1 << 20;
constexpr std::size_t kHeaderSize = 63;
constexpr std::size_t kCounterSize = 12;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kRealIndexSize = 52;
constexpr std::size_t kLogicalIndexSize = 28;
constexpr std::size_t kIndexPlaces = 10;
constexpr std::uint16_t kUnusedPlace = 0xFFFF;
constexpr unsigned kMaximumColumns = 255;
constexpr unsigned kMaximumIndexes = 256;  // so all counters lie on the first page

bool IsKnown(ColumnType type) {
    const auto number = static_cast<unsigned>(type);
    return (number >= 1 && number <= 12) || (number >= 15 && number <= 17);
}

// Reads the bytes of a definition in order; whatever runs over their end is damage.
class Reader {
 public:
    Reader(const PageFile& file, PageNumber page, std::string_view bytes)
        : file_(file), page_(page), bytes_(bytes) {}

    std::size_t position() const { return position_; }
    const std::uint8_t* Take(std::size_t size) {
        if (size > bytes_.size() - position_) Damaged(u"the table definition ends too early");
        const char* at = bytes_.data() + position_;
        position_ += size;
        return reinterpret_cast<const std::uint8_t*>(at);
    }
    Text TakeName() {
        const std::uint16_t size = U16(Take(2));
        if (size % 2 != 0) Damaged(u"a name in the table definition has an odd length");
        const std::uint8_t* units = Take(size);
        Text name(size / 2, u'\0');
        for (std::size_t i = 0; i < name.size(); ++i) name[i] = U16(units + 2 * i);
        return name;
    }
    [[noreturn]] void Damaged(TextView reason) const { file_.Damaged(page_, reason); }

 private:
    const PageFile& file_;
    PageNumber page_;
    std::string_view bytes_;
    std::size_t position_ = 0;
};

// The definition's bytes from the chain of its pages, which goes into `pages`.
std::string Gather(PageFile& file, PageNumber first, std::vector<PageNumber>& pages) {
    std::string bytes;
    std::size_t length = kHeaderSize;
    for (PageNumber page = first; page != 0 && bytes.size() < length;) {
        const Page& content = file.Read(page);
        if (content[0] != static_cast<std::uint8_t>(PageType::TableDefinition) || content[1] != 1) {
            file.Damaged(page, u"a table definition is expected here");
        }
        const std::size_t skip = pages.empty() ? 0 : kPageHeader;
        bytes.append(reinterpret_cast<const char*>(content.data()) + skip, kPageSize - skip);
        if (pages.empty()) length = U32(content.data() + 8);
        if (length < kHeaderSize || length > kLongestDefinition) {
            file.Damaged(page, u"the table definition has an impossible length");
        }
        pages.push_back(page);
        page = U32(content.data() + 4);
    }
    if (bytes.size() < length) file.Damaged(first, u"the table definition ends too early");
    bytes.resize(length);
    return bytes;
}

Column ReadColumn(Reader& reader, const TableDefinition& table) {
    const std::uint8_t* block = reader.Take(kColumnSize);
    Column column;
    column.type = static_cast<ColumnType>(block[0]);
    column.number = U16(block + 5);
    column.variable_index = U16(block + 7);
    column.sort_order = U16(block + 11);
    column.sort_version = block[14];
    column.scale = block[12];
    column.flags = block[15];
    column.extended_flags = block[16];
    column.fixed_offset = U16(block + 21);
    column.length = U16(block + 23);
    if (!IsKnown(column.type)) reader.Damaged(u"a column has an unknown type");
    if (column.number >= table.column_capacity) reader.Damaged(u"a column number is too high");
    if (column.type == ColumnType::Boolean) return column;
    if (column.IsFixed() && column.IsLongValue()) reader.Damaged(u"a long value is said to be fixed");
    if (!column.IsFixed() && column.variable_index >= table.variable_columns) {
        reader.Damaged(u"a variable column has too high an index");
    }
    if (column.IsFixed() && column.fixed_offset + ValueSize(column) > static_cast<int>(kPageSize)) {
        reader.Damaged(u"a fixed column lies outside every row");
    }
    return column;
}

// Fixed columns must not overlap, variable ones not share a place, numbers not repeat.
void CheckColumns(const Reader& reader, TableDefinition& table) {
    std::vector<bool> numbers(table.column_capacity);
    table.variable_order.assign(table.variable_columns, table.columns.size());
    std::vector<bool> bytes(kPageSize);
    const auto take = [&](std::vector<bool>& set, std::size_t at) {
        if (set[at]) reader.Damaged(u"two columns share one place");
        set[at] = true;
    };
    for (std::size_t position = 0; position < table.columns.size(); ++position) {
        const Column& column = table.columns[position];
        take(numbers, column.number);
        if (column.type == ColumnType::Boolean) continue;
        if (!column.IsFixed()) {
            std::size_t& place = table.variable_order[column.variable_index];
            if (place != table.columns.size()) reader.Damaged(u"two columns share one place");
            place = position;
            continue;
        }
        const auto end = static_cast<std::uint16_t>(column.fixed_offset + ValueSize(column));
        for (std::size_t at = column.fixed_offset; at < end; ++at) take(bytes, at);
        table.fixed_size = std::max(table.fixed_size, end);
    }
}

RealIndex ReadRealIndex(Reader& reader, const PageFile& file, const TableDefinition& table) {
    const std::uint8_t* block = reader.Take(kRealIndexSize);
    if (U32(block) != kIndexConstant) reader.Damaged(u"an index block does not look like one");
    RealIndex index;
    for (std::size_t place = 0; place < kIndexPlaces; ++place) {
        const std::uint8_t* at = block + 4 + 3 * place;
        if (U16(at) == kUnusedPlace) continue;
        const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                        [&](const Column& column) { return column.number == U16(at); });
        if (found == table.columns.end()) reader.Damaged(u"an index names a column that is not there");
        index.columns.push_back({static_cast<std::size_t>(found - table.columns.begin()), at[2] != 0});
    }
    index.map = Pointer::FromWord(U32(block + 34));
    index.root = U32(block + 38);
    index.unique = (block[46] & 0x01) != 0;
    index.ignores_nulls = (block[46] & 0x02) != 0;
    index.required = (block[46] & 0x08) != 0;
    if (index.columns.empty()) reader.Damaged(u"an index has no columns");
    if (index.root == 0 || index.root >= file.PageCount()) {
        reader.Damaged(u"an index's root lies outside the file");
    }
    return index;
}

LogicalIndex ReadLogicalIndex(Reader& reader, const TableDefinition& table) {
    const std::uint8_t* block = reader.Take(kLogicalIndexSize);
    LogicalIndex index;
    index.number = U32(block + 4);
    index.real_index = U32(block + 8);
    index.partner_table = U32(block + 17);
    index.type = block[23];
    index.relationship = block[12];
    if (index.real_index >= table.indexes.size()) reader.Damaged(u"an index name belongs to no index");
    return index;
}

void ReadIndexes(Reader& reader, const PageFile& file, TableDefinition& table, std::size_t real,
                 std::size_t logical) {
    for (std::size_t i = 0; i < real; ++i) {
        table.indexes.push_back(ReadRealIndex(reader, file, table));
        table.indexes.back().counter_at = kHeaderSize + kCounterSize * i;
    }
    for (std::size_t i = 0; i < logical; ++i)
        table.logical_indexes.push_back(ReadLogicalIndex(reader, table));
    for (LogicalIndex& index : table.logical_indexes) {
        index.name = reader.TakeName();
        RealIndex& backing = table.indexes[index.real_index];
        if (backing.name.empty()) backing.name = index.name;
        if (index.type == 1) backing.primary = true;
    }
}

void ReadLongValueMaps(Reader& reader, TableDefinition& table) {
    for (std::uint16_t number = U16(reader.Take(2)); number != kUnusedPlace; number = U16(reader.Take(2))) {
        const std::uint8_t* maps = reader.Take(8);
        table.long_values.push_back({number, Pointer::FromWord(U32(maps)), Pointer::FromWord(U32(maps + 4))});
    }
}

}  // namespace

std::uint16_t ValueSize(const Column& column) {
    switch (column.type) {
        case ColumnType::Boolean:
            return 0;
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
            return 8;
        case ColumnType::Guid:
            return 16;
        case ColumnType::Numeric:
            return 17;
        default:
            return column.length;
    }
}

TableDefinition ReadTableDefinition(PageFile& file, PageNumber page, TextView name) {
    TableDefinition table;
    table.name = name;
    table.page = page;
    const std::string bytes = Gather(file, page, table.pages);
    Reader reader(file, page, bytes);
    const std::uint8_t* header = reader.Take(kHeaderSize);
    const unsigned columns = U16(header + 45);
    const std::uint32_t logical = U32(header + 47);
    const std::uint32_t real = U32(header + 51);
    table.system = header[40] == 0x53;
    table.column_capacity = U16(header + 41);
    table.variable_columns = U16(header + 43);
    table.owned_map = Pointer::FromWord(U32(header + 55));
    table.free_map = Pointer::FromWord(U32(header + 59));
    if (U32(header + 12) != kConstant) reader.Damaged(u"the table definition does not look like one");
    if (columns > kMaximumColumns || table.column_capacity > kPageSize ||
        table.variable_columns > table.column_capacity || columns > table.column_capacity) {
        reader.Damaged(u"the table definition has impossible numbers of columns");
    }
    if (real > kMaximumIndexes || logical > kMaximumIndexes) {
        reader.Damaged(u"the table definition has impossible numbers of indexes");
    }
    reader.Take(kCounterSize * real);
    for (unsigned i = 0; i < columns; ++i) table.columns.push_back(ReadColumn(reader, table));
    for (Column& column : table.columns) column.name = reader.TakeName();
    CheckColumns(reader, table);
    ReadIndexes(reader, file, table, real, logical);
    ReadLongValueMaps(reader, table);
    return table;
}

std::optional<std::size_t> TableDefinition::FindColumn(TextView column_name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (EqualNoCase(columns[i].name, column_name)) return i;
    }
    return std::nullopt;
}

}  // namespace tav::jet
