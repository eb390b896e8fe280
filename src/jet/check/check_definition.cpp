#include "jet/check/check_definition.h"

#include <algorithm>
#include <map>
#include <set>

#include "jet/check/check_slots.h"
#include "jet/schema/definition_layout.h"

namespace tav::jet::check {
namespace {

using namespace layout;

// No table has more; what a definition claims beyond is damage.
constexpr std::size_t kMostPages = 256;
constexpr std::size_t kMostColumns = 255;
constexpr std::size_t kMostIndexes = 64;

// The definition's bytes with its pages' headers taken out. A step beyond its end sets `failed` and gives
// zeros.
class Cursor {
 public:
    explicit Cursor(Bytes bytes) : bytes_(bytes) {}

    const std::uint8_t* Take(std::size_t size) {
        static constexpr std::array<std::uint8_t, kHeader> kZeros{};
        if (size > bytes_.size() - at_) {
            failed_ = true;
            at_ = bytes_.size();
            return kZeros.data();
        }
        at_ += size;
        return bytes_.data() + (at_ - size);
    }
    Text Name() {
        const std::size_t size = U16(Take(2));
        if (size > bytes_.size() - at_) {
            failed_ = true;
            return {};
        }
        const std::uint8_t* units = bytes_.data() + at_;
        at_ += size;
        Text name;
        for (std::size_t i = 0; i + 1 < size; i += 2) name += static_cast<char16_t>(U16(units + i));
        return name;
    }
    // Whether `count` blocks of that size can still follow.
    bool Fits(std::size_t count, std::size_t size) const { return count <= (bytes_.size() - at_) / size; }
    std::size_t position() const { return at_; }
    bool failed() const { return failed_; }

 private:
    Bytes bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

bool IsKnown(ColumnType type) {
    const auto number = static_cast<unsigned>(type);
    return (number >= 1 && number <= 12) || (number >= 15 && number <= 17);
}

class DefinitionCheck {
 public:
    DefinitionCheck(CheckContext& context, PageNumber page, TextView name) : context_(context), page_(page) {
        table_.place = Text(u"table ") + Text(name);
        table_.definition.name = name;
        table_.definition.page = page;
    }
    std::optional<CheckedTable> Run();

 private:
    void Error(int invariant, const Text& text) {
        context_.Error(invariant, Place(table_.place, page_) + text);
    }
    bool ReadChain();
    bool ReadBlocks();
    void ReadColumn(const std::uint8_t* block);
    void ReadRealIndex(const std::uint8_t* block);
    void ReadLogicalIndex(const std::uint8_t* block);
    void CheckFreeField(std::size_t length);
    void CheckColumns();
    void CheckFixedPlaces();
    void CheckRealIndexes();
    void CheckLogicalIndexes();

    CheckContext& context_;
    PageNumber page_;
    CheckedTable table_;
    std::vector<std::uint8_t> bytes_;
    std::vector<std::vector<std::uint16_t>> index_columns_;  // column numbers
};

// Collects the bytes of all pages. False when not even the first one is there.
bool DefinitionCheck::ReadChain() {
    const CheckContext::Owner owner = context_.NewOwner(u"the definition of " + table_.place);
    PageNumber next = page_;
    while (true) {
        if (table_.definition.pages.size() == kMostPages) {
            Error(9, u"it has more pages than any definition");
            return true;
        }
        if (!context_.Claim(next, owner)) {
            if (table_.definition.pages.empty()) return false;
            Error(9, u"its pages lead to page " + Digits(next) + u", which is not its own");
            return true;
        }
        const Page& page = context_.At(next);
        if (page[0] != static_cast<std::uint8_t>(PageType::TableDefinition)) {
            Error(9, u"page " + Digits(next) + u" of the definition is of another type");
            return !table_.definition.pages.empty();
        }
        CheckByteOne(context_, next, table_.place);
        bytes_.insert(bytes_.end(), page.begin() + (table_.definition.pages.empty() ? 0 : kPageHeader),
                      page.end());
        table_.definition.pages.push_back(next);
        next = U32(&page[4]);
        if (next == 0) return true;
    }
}

void DefinitionCheck::ReadColumn(const std::uint8_t* block) {
    Column column;
    column.type = static_cast<ColumnType>(block[0]);
    column.number = U16(block + 5);
    column.variable_index = U16(block + 7);
    column.sort_order = U16(block + 11);
    column.scale = block[12];
    column.sort_version = block[14];
    column.flags = block[15];
    column.extended_flags = block[16];
    column.fixed_offset = U16(block + 21);
    column.length = U16(block + 23);
    if (U32(block + 1) != kConstant) Error(10, u"column " + Digits(column.number) + u" lacks its constant");
    table_.definition.columns.push_back(std::move(column));
}

void DefinitionCheck::ReadRealIndex(const std::uint8_t* block) {
    const Text name = u"real index " + Digits(static_cast<long long>(index_columns_.size()));
    if (U32(block) != kIndexConstant) Error(11, name + u" lacks its constant");
    RealIndex index;
    std::vector<std::uint16_t> numbers;
    for (std::size_t i = 0; i < kIndexPlaces; ++i) {
        const std::uint8_t* place = block + 4 + 3 * i;
        if (U16(place) == kNoColumn) continue;
        numbers.push_back(U16(place));
        index.columns.push_back({0, place[2] != 0});
    }
    index.map = Pointer::FromWord(U32(block + 34));
    index.root = U32(block + 38);
    const std::uint8_t flags = block[46];
    if ((flags & 0x80) == 0) Error(11, name + u" lacks the flag every index has");
    index.unique = (flags & 0x01) != 0;
    index.ignores_nulls = (flags & 0x02) != 0;
    index.required = (flags & 0x08) != 0;
    index_columns_.push_back(std::move(numbers));
    table_.definition.indexes.push_back(std::move(index));
}

void DefinitionCheck::ReadLogicalIndex(const std::uint8_t* block) {
    LogicalIndex index;
    index.number = U32(block + 4);
    index.real_index = U32(block + 8);
    index.type = block[23];
    index.partner_table = U32(block + 17);
    if (U32(block) != kConstant) Error(12, u"logical index " + Digits(index.number) + u" lacks its constant");
    table_.definition.logical_indexes.push_back(std::move(index));
}

// The parts of the definition in their order. False when they do not add up.
bool DefinitionCheck::ReadBlocks() {
    TableDefinition& definition = table_.definition;
    Cursor cursor{Bytes(bytes_)};
    const std::uint8_t* header = cursor.Take(kHeader);
    const std::size_t length = U32(header + 8);
    if (U32(header + 12) != kConstant) Error(9, u"the definition lacks its constant");
    if (length > bytes_.size()) {
        Error(9, u"the definition is longer than its pages");
        return false;
    }
    table_.rows = U32(header + 16);
    table_.autonumber = static_cast<std::int32_t>(U32(header + 20));
    definition.system = header[40] == 'S';
    definition.column_capacity = U16(header + 41);
    definition.variable_columns = U16(header + 43);
    const std::size_t columns = U16(header + 45);
    const std::size_t logical = U32(header + 47);
    const std::size_t real = U32(header + 51);
    definition.owned_map = Pointer::FromWord(U32(header + 55));
    definition.free_map = Pointer::FromWord(U32(header + 59));
    if (columns > kMostColumns || real > kMostIndexes || !cursor.Fits(logical, kLogicalIndex)) {
        Error(9, u"the definition has too many columns or indexes");
        return false;
    }

    for (std::size_t i = 0; i < real; ++i) table_.distinct_keys.push_back(U32(cursor.Take(kCounter) + 4));
    for (std::size_t i = 0; i < columns; ++i) ReadColumn(cursor.Take(kColumn));
    for (Column& column : definition.columns) column.name = cursor.Name();
    for (std::size_t i = 0; i < real; ++i) ReadRealIndex(cursor.Take(kRealIndex));
    for (std::size_t i = 0; i < logical; ++i) ReadLogicalIndex(cursor.Take(kLogicalIndex));
    for (LogicalIndex& index : definition.logical_indexes) index.name = cursor.Name();
    while (!cursor.failed()) {
        const std::uint16_t number = U16(cursor.Take(2));
        if (number == kNoColumn) break;
        const std::uint8_t* entry = cursor.Take(kLongValue - 2);
        definition.long_values.push_back(
            {number, Pointer::FromWord(U32(entry)), Pointer::FromWord(U32(entry + 4))});
    }
    if (cursor.failed() || cursor.position() != length) {
        Error(9, u"the definition does not end where its length says");
        return false;
    }
    CheckFreeField(length);
    return true;
}

void DefinitionCheck::CheckFreeField(std::size_t length) {
    const std::size_t pages = table_.definition.pages.size();
    if (length <= kPageSize - kPageHeader && pages > 1) return;
    const std::size_t free = bytes_.size() - length;
    const std::size_t expected = free - std::min(free, kPageHeader);
    const PageNumber last = table_.definition.pages.back();
    if (U16(&context_.At(last)[2]) != expected) {
        context_.Note(9, Place(table_.place, last) + u"its free field is not exact");
    }
}

void DefinitionCheck::CheckColumns() {
    const TableDefinition& definition = table_.definition;
    std::set<std::uint16_t> numbers;
    std::set<std::uint16_t> places;
    for (const Column& column : definition.columns) {
        const Text name = u"column " + column.name;
        if (column.number >= definition.column_capacity || !numbers.insert(column.number).second) {
            Error(10, name + u" has a number beyond the table's, or that of another column");
        }
        if (!column.IsFixed() && (column.variable_index >= definition.variable_columns ||
                                  !places.insert(column.variable_index).second)) {
            Error(10, name + u" has a variable place beyond the table's, or that of another column");
        }
    }
    CheckFixedPlaces();
}

void DefinitionCheck::CheckFixedPlaces() {
    std::vector<std::pair<std::size_t, std::size_t>> places;  // begin and end
    for (const Column& column : table_.definition.columns) {
        if (!column.IsFixed() || column.type == ColumnType::Boolean) continue;
        places.emplace_back(column.fixed_offset, std::size_t{column.fixed_offset} + ValueSize(column));
    }
    std::ranges::sort(places);
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (places[i].first < places[i - 1].second) {
            Error(10,
                  u"two fixed columns overlap at offset " + Digits(static_cast<long long>(places[i].first)));
        }
    }
}

void DefinitionCheck::CheckRealIndexes() {
    TableDefinition& definition = table_.definition;
    std::map<std::uint16_t, std::size_t> positions;
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        positions.emplace(definition.columns[i].number, i);
    }
    for (std::size_t i = 0; i < definition.indexes.size(); ++i) {
        const Text name = u"real index " + Digits(static_cast<long long>(i));
        std::vector<IndexColumn>& columns = definition.indexes[i].columns;
        if (columns.empty()) Error(11, name + u" has no columns");
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const auto found = positions.find(index_columns_[i][k]);
            if (found == positions.end()) {
                Error(11, name + u" has a column that does not exist");
                columns.clear();
                break;
            }
            columns[k].column = found->second;
            if (!IsKnown(definition.columns[found->second].type)) {
                Error(10, name + u" has a column of an unknown type");
            }
        }
    }
}

void DefinitionCheck::CheckLogicalIndexes() {
    TableDefinition& definition = table_.definition;
    int primary_keys = 0;
    for (const LogicalIndex& logical : definition.logical_indexes) {
        if (logical.real_index >= definition.indexes.size()) {
            Error(12, u"index " + logical.name + u" names a real index that does not exist");
            continue;
        }
        if (logical.number != logical.real_index) {
            context_.Note(12, Place(table_.place, page_) + u"index " + logical.name +
                                  u" has a number other than its real index");
        }
        RealIndex& real = definition.indexes[logical.real_index];
        if (real.name.empty()) real.name = logical.name;
        if (logical.type == 1) {
            real.primary = true;
            ++primary_keys;
        }
    }
    if (primary_keys > 1) Error(12, u"the table has more than one primary key");
}

std::optional<CheckedTable> DefinitionCheck::Run() {
    if (!ReadChain() || !ReadBlocks()) return std::nullopt;
    CheckColumns();
    CheckRealIndexes();
    CheckLogicalIndexes();
    return std::move(table_);
}

}  // namespace

std::optional<CheckedTable> CheckDefinition(CheckContext& context, PageNumber page, TextView name) {
    return DefinitionCheck(context, page, name).Run();
}

}  // namespace tav::jet::check
