#include "jet/check/check_definition.h"

#include <algorithm>
#include <set>

#include "common/failure.h"
#include "jet/check/check_slots.h"
#include "jet/schema/definition_layout.h"

namespace tav::jet::check {
namespace {

using namespace layout;

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
        sound_ = false;
    }
    bool ReadChain();
    bool ReadBlocks();
    void CheckConstants();
    void CheckFreeField(std::size_t length);
    void CheckColumns();
    void CheckFixedPlaces();
    void CheckRealIndexes();
    void CheckLogicalIndexes();
    void CheckUse();

    CheckContext& context_;
    PageNumber page_;
    CheckedTable table_;
    std::vector<std::uint8_t> bytes_;
    DefinitionBlocks blocks_;
    bool sound_ = true;
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

void DefinitionCheck::CheckConstants() {
    if (blocks_.header.constant != kConstant) Error(9, u"the definition lacks its constant");
    for (const ColumnBlock& block : blocks_.columns) {
        if (block.constant != kConstant) {
            Error(10, u"column " + Digits(block.column.number) + u" lacks its constant");
        }
    }
    for (std::size_t i = 0; i < blocks_.indexes.size(); ++i) {
        const Text name = u"real index " + Digits(static_cast<long long>(i));
        if (blocks_.indexes[i].constant != kIndexConstant) Error(11, name + u" lacks its constant");
        if ((blocks_.indexes[i].flags & RealIndexBlock::kAlways) == 0) {
            Error(11, name + u" lacks the flag every index has");
        }
    }
    for (const LogicalIndexBlock& block : blocks_.logical_indexes) {
        if (block.constant != kConstant) {
            Error(12, u"logical index " + Digits(block.index.number) + u" lacks its constant");
        }
    }
}

// The parts of the definition in their order. False when they do not add up.
bool DefinitionCheck::ReadBlocks() {
    if (const Text why = layout::ReadBlocks(bytes_, blocks_); !why.empty()) {
        Error(9, why);
        return false;
    }
    if (blocks_.end != blocks_.header.length) {
        Error(9, u"the definition does not end where its length says");
        return false;
    }
    CheckConstants();
    TakeBlocks(blocks_, table_.definition);
    table_.rows = blocks_.header.rows;
    table_.autonumber = static_cast<std::int32_t>(blocks_.header.autonumber);
    for (const CounterBlock& counter : blocks_.counters)
        table_.distinct_keys.push_back(counter.distinct_keys);
    CheckFreeField(blocks_.end);
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
        if (column.type == ColumnType::Boolean || column.IsFixed()) continue;
        if (column.variable_index >= definition.variable_columns ||
            !places.insert(column.variable_index).second) {
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
    for (std::size_t i = 0; i < definition.indexes.size(); ++i) {
        const Text name = u"real index " + Digits(static_cast<long long>(i));
        std::vector<IndexColumn>& columns = definition.indexes[i].columns;
        if (columns.empty()) Error(11, name + u" has no columns");
        for (const IndexColumn& part : columns) {
            if (part.column == definition.columns.size()) {
                Error(11, name + u" has a column that does not exist");
                columns.clear();
                break;
            }
            if (!IsKnown(definition.columns[part.column].type)) {
                Error(10, name + u" has a column of an unknown type");
            }
        }
    }
}

void DefinitionCheck::CheckLogicalIndexes() {
    int primary_keys = 0;
    for (const LogicalIndex& logical : table_.definition.logical_indexes) {
        if (logical.real_index >= table_.definition.indexes.size()) {
            Error(12, u"index " + logical.name + u" names a real index that does not exist");
            continue;
        }
        if (logical.number != logical.real_index) {
            context_.Note(12, Place(table_.place, page_) + u"index " + logical.name +
                                  u" has a number other than its real index");
        }
        if (logical.type == 1) ++primary_keys;
    }
    if (primary_keys > 1) Error(12, u"the table has more than one primary key");
}

// What nothing is said of can be used.
void DefinitionCheck::CheckUse() {
    try {
        ReadTableDefinition(context_.file(), page_, table_.definition.name);
    } catch (const Failure& failure) {
        if (sound_) Error(10, failure.description());
    }
}

std::optional<CheckedTable> DefinitionCheck::Run() {
    if (!ReadChain() || !ReadBlocks()) return std::nullopt;
    CheckColumns();
    CheckRealIndexes();
    CheckLogicalIndexes();
    CheckUse();
    return std::move(table_);
}

}  // namespace

std::optional<CheckedTable> CheckDefinition(CheckContext& context, PageNumber page, TextView name) {
    return DefinitionCheck(context, page, name).Run();
}

}  // namespace tav::jet::check
