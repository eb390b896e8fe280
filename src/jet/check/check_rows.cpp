#include "jet/check/check_rows.h"

#include "jet/check/check_long_values.h"
#include "jet/check/check_row.h"
#include "jet/check/check_slots.h"
#include "jet/file/data_page.h"

namespace tav::jet::check {
namespace {

constexpr std::size_t kPointer = 4;

// The record that holds the body of the row in `slot`: its own, or the one it was moved to.
Bytes BodyOf(CheckContext& context, const Slot& slot) {
    if (slot.flags != kSlotMoved) return slot.record;
    const Pointer target = Pointer::FromWord(U32(slot.record.data()));
    return SlotAt(context.At(target.page), target.slot)->record;
}

class RowsCheck {
 public:
    RowsCheck(CheckContext& context, const CheckedTable& table, const std::function<void(const Row&)>& visit)
        : context_(context), table_(table), visit_(visit), long_values_(context, table) {}

    CheckedRows Run();

 private:
    std::vector<PageNumber> DataPages();
    void CheckPage(PageNumber page);
    bool CheckMoved(RowId id, const Slot& slot);
    void CheckLive(RowId id, const Slot& slot);
    void CheckBodies();
    void CheckCounts(std::size_t rows);

    CheckContext& context_;
    const CheckedTable& table_;
    const std::function<void(const Row&)>& visit_;
    LongValueCheck long_values_;
    CheckedRows rows_;
    SlotSet bodies_;   // of moved rows
    SlotSet targets_;  // what moved rows point to
    std::optional<std::size_t> autonumber_column_;
    std::optional<std::int64_t> highest_;
};

std::vector<PageNumber> RowsCheck::DataPages() {
    const Text name = u"the data of " + table_.place;
    const TableDefinition& definition = table_.definition;
    const CheckContext::Owner owner = context_.NewOwner(name);
    std::vector<PageNumber> owned = context_.ClaimMap(definition.owned_map, u"the map of " + name, owner);
    CheckFreeMap(context_, definition.free_map, owned, table_.place);
    std::erase_if(owned, [&](PageNumber page) {
        context_.Trim();
        return !CheckDataPage(context_, page, definition.page, table_.place);
    });
    return owned;
}

// A moved row's first slot points to the body, which nothing else points to.
bool RowsCheck::CheckMoved(RowId id, const Slot& slot) {
    const auto broken = [&](TextView what) {
        context_.Error(15, Place(table_.place, id) + Text(what));
        return false;
    };
    if (slot.record.size() < kPointer) return broken(u"the moved row has no room for its pointer");
    const Pointer target = Pointer::FromWord(U32(slot.record.data()));
    if (!targets_.HasPage(target.page)) return broken(u"the moved row points to a page of somebody else");
    const std::optional<Slot> body = SlotAt(context_.At(target.page), target.slot);
    if (!body || body->flags != kSlotBody) return broken(u"the moved row does not point to a body");
    if (!targets_.Add(target)) return broken(u"the moved row points to the body of another row");
    return true;
}

void RowsCheck::CheckLive(RowId id, const Slot& slot) {
    rows_.live.Add(id);
    if (slot.flags == kSlotMoved && !CheckMoved(id, slot)) return;
    const Bytes body = BodyOf(context_, slot);
    if (!CheckRow(context_, table_, long_values_, body, Place(table_.place, id))) return;
    rows_.sound.Add(id);
    const Row row(context_.file(), table_.definition, id, body);
    if (autonumber_column_) {
        const Value value = row.Get(*autonumber_column_);
        const auto* number = std::get_if<std::int64_t>(&value);
        if (number != nullptr && (!highest_ || *number > *highest_)) highest_ = *number;
    }
    visit_(row);
}

void RowsCheck::CheckPage(PageNumber number) {
    const Page& page = context_.At(number);
    for (std::size_t i = 0; i < SlotCount(page); ++i) {
        const Pointer id{number, static_cast<std::uint8_t>(i)};
        const std::optional<Slot> slot = SlotAt(page, i);
        if (!slot) continue;  // told of with the page
        if (slot->flags == kSlotBody) bodies_.Add(id);
        if (slot->flags == 0 || slot->flags == kSlotMoved) CheckLive(id, *slot);
    }
}

// There are programs that delete a row by calling it a body.
void RowsCheck::CheckBodies() {
    bodies_.ForEachNotIn(targets_, [&](Pointer body) {
        Text text = Place(table_.place, body) + u"no row points to this body of a moved row";
        if (context_.IsOwnFile()) return context_.Error(15, std::move(text));
        context_.Note(15, text + u"; another program deletes rows so");
    });
}

void RowsCheck::CheckCounts(std::size_t rows) {
    const bool own = context_.IsOwnFile();
    const auto add = [&](int invariant, const Text& text) {
        const Text whole = Place(table_.place, table_.definition.page) + text;
        own ? context_.Error(invariant, whole) : context_.Note(invariant, whole);
    };
    if (rows != table_.rows) {
        add(18, u"its row count is " + Digits(table_.rows) + u", but it has " +
                    Digits(static_cast<long long>(rows)) + u" rows");
    }
    if (highest_ && *highest_ > table_.autonumber) {
        add(29,
            u"its last autonumber is " + Digits(table_.autonumber) + u", but a row has " + Digits(*highest_));
    }
}

CheckedRows RowsCheck::Run() {
    const std::vector<Column>& columns = table_.definition.columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].IsAutonumber() && columns[i].type == ColumnType::Long) autonumber_column_ = i;
    }
    const SlotSet empty(DataPages());
    rows_ = {empty, empty};
    bodies_ = targets_ = empty;
    for (const PageNumber page : empty.pages()) {
        context_.Trim();
        CheckPage(page);
    }
    CheckBodies();
    CheckCounts(rows_.live.Count());
    return std::move(rows_);
}

}  // namespace

CheckedRows CheckRows(CheckContext& context, const CheckedTable& table,
                      const std::function<void(const Row&)>& visit) {
    return RowsCheck(context, table, visit).Run();
}

Row SoundRow(CheckContext& context, const CheckedTable& table, RowId id) {
    const Slot slot = *SlotAt(context.At(id.page), id.slot);
    return Row(context.file(), table.definition, id, BodyOf(context, slot));
}

}  // namespace tav::jet::check
