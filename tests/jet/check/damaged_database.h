// A database with rows of every kind, and the places in it that a test damages.
#pragma once

#include <string>

#include "jet/jet_fixtures.h"
#include "jet/table/database.h"

namespace tav::jet {

// The bytes of a database file under a test's hands.
class FileBytes {
 public:
    explicit FileBytes(std::string bytes) : bytes_(std::move(bytes)) {}

    std::uint8_t* At(PageNumber page, std::size_t offset) {
        return reinterpret_cast<std::uint8_t*>(&bytes_.at(page * kPageSize + offset));
    }
    std::uint8_t& Byte(PageNumber page, std::size_t offset) { return *At(page, offset); }
    std::size_t SlotStart(Pointer slot) { return U16(At(slot.page, 14 + 2u * slot.slot)) & 0x1FFF; }
    std::uint8_t* Record(Pointer slot) { return At(slot.page, SlotStart(slot)); }
    // An inline map's bit.
    void SetBit(Pointer map, PageNumber page, bool set) {
        std::uint8_t& byte = Record(map)[5 + page / 8];
        const auto bit = static_cast<std::uint8_t>(1 << page % 8);
        byte = static_cast<std::uint8_t>(set ? byte | bit : byte & ~bit);
    }
    // A page of zeros at the end, in use by nobody.
    PageNumber AppendPage() {
        bytes_.append(kPageSize, '\0');
        const PageNumber page = PageCount() - 1;
        SetBit({1, 0}, page, false);
        return page;
    }
    PageNumber PageCount() const { return static_cast<PageNumber>(bytes_.size() / kPageSize); }
    std::string& bytes() { return bytes_; }

 private:
    std::string bytes_;
};

// The tables of NewDatabase, `things` with 700 rows, so that its indexes have nodes; among them a Null name,
// names that occur twice, Cyrillic ones, a moved row, a deleted one.
struct Things {
    Things();

    FileBytes file{{}};
    TableDefinition table;
    TableDefinition empty;
    std::vector<RowId> rows;
    RowId moved;
    RowId deleted;
};

inline Things::Things() {
    using test::Thing;
    const test::TempFolder folder;
    const Text path = test::NewDatabase(folder);
    {
        Database database(path, Database::Access::Write);
        Table& things = *database.FindTable(u"things");
        for (std::int64_t id = 0; id < 700; ++id) {
            test::Values row =
                Thing(id, (id % 3 == 0 ? u"Ромашка" : u"Thing") + Digits(id / 2), Text(u"note"));
            if (id == 7) row[1] = Null();
            row[5] = Text(u"memo");
            rows.push_back(things.Insert(row));
        }
        moved = rows[20];
        things.Update(moved, Thing(20, Text(100, u'Ж')));
        deleted = rows[600];
        things.Delete(deleted);
        database.file().Commit();
        table = things.definition();
        empty = database.FindTable(u"empty")->definition();
    }
    file = FileBytes(ReadFile(path));
}

}  // namespace tav::jet
