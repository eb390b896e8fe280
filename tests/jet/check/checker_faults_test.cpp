// Damages one place of a good file at a time: the checker names the invariant that is broken.
#include <gmock/gmock.h>

#include "jet/check/checker.h"
#include "jet/check/damaged_database.h"
#include "jet/index/index_page.h"
#include "jet/jet_samples.h"

namespace tav::jet {
namespace {

using tav::test::TempFolder;
using test::FileBytes;
using test::Things;

constexpr PageNumber kObjects = 2;
constexpr PageNumber kObjectsData = 14;
constexpr std::size_t kRowCount = 16;
constexpr std::size_t kCounters = 63;
constexpr std::size_t kColumns = kCounters + 2 * 12;  // of a table with two indexes
constexpr std::size_t kColumn = 25;

// Where the definition's blocks of real and logical indexes begin.
std::size_t RealIndexes(Things& things) {
    std::size_t at = kColumns + kColumn * things.table.columns.size();
    for (const Column& column : things.table.columns) at += 2 + 2 * column.name.size();
    return at;
}
std::size_t LogicalIndexes(Things& things) {
    return RealIndexes(things) + 52 * things.table.indexes.size();
}

struct Fault {
    const char* what;
    int invariant;
    void (*make)(Things& things);
    bool error = true;
};

std::uint8_t* Definition(Things& things, std::size_t offset) {
    return things.file.At(things.table.page, offset);
}
PageNumber FirstDataPage(Things& things) {
    return things.rows.front().page;
}
// The first and the last leaf of an index with one node.
PageNumber FirstLeaf(Things& things, std::size_t index) {
    const PageNumber root = things.table.indexes[index].root;
    return BigU32(things.file.At(root, kEntriesAt + 9));
}
PageNumber LastLeaf(Things& things, std::size_t index) {
    return U32(things.file.At(things.table.indexes[index].root, 20));
}
// The catalogue's row of table "empty", and the record of a sound row with a name of one byte a character.
std::uint8_t* EmptyInCatalogue(Things& things) {
    return things.file.Record({kObjectsData, 9});
}
RowId SomeRow(Things& things) {
    return things.rows[10];
}
std::size_t RecordSize(Things& things, RowId row) {
    const std::size_t end = row.slot == 0
                                ? kPageSize
                                : things.file.SlotStart({row.page, static_cast<std::uint8_t>(row.slot - 1)});
    return end - things.file.SlotStart(row);
}
// The last index entry goes: no node holds it.
void DropLastEntry(Things& things, std::size_t index) {
    const PageNumber leaf = LastLeaf(things, index);
    std::size_t end = 0;
    for (std::size_t i = 1; i <= kEntrySpace; ++i) {
        if ((things.file.Byte(leaf, kMaskAt + i / 8) >> i % 8 & 1) != 0) end = i;
    }
    std::size_t before = 0;
    for (std::size_t i = 1; i < end; ++i) {
        if ((things.file.Byte(leaf, kMaskAt + i / 8) >> i % 8 & 1) != 0) before = i;
    }
    things.file.Byte(leaf, kMaskAt + end / 8) ^= static_cast<std::uint8_t>(1 << end % 8);
    PutU16(things.file.At(leaf, 2), static_cast<std::uint16_t>(kEntrySpace - before));
}

const Fault kFaults[] = {
    {"pointer to a system table", 2, [](Things& t) { t.file.Byte(0, 0x20) ^= 1; }},
    {"half a password", 2, [](Things& t) { t.file.Byte(0, 0x50) ^= 1; }},
    {"owner of the global map's page", 3, [](Things& t) { t.file.Byte(1, 4) = 7; }},
    {"a third map on page 1", 3, [](Things& t) { t.file.Byte(1, 12) = 3; }},
    {"kind of the global map", 4,
     [](Things& t) {
         t.file.Record({1, 0})[0] = 2;
     }},
    {"start of the global map", 3,
     [](Things& t) {
         t.file.Record({1, 0})[1] = 8;
     },
     false},
    {"released page", 6,
     [](Things& t) {
         t.file.SetBit({1, 1}, 40, true);
     },
     false},
    {"map slot that is not there", 4, [](Things& t) { *Definition(t, 55) = 200; }},
    {"map page beyond the end", 4, [](Things& t) { *Definition(t, 58) = 9; }},
    {"map on a data page", 4, [](Things& t) { PutU32(Definition(t, 55), SomeRow(t).Word()); }},
    {"deleted map", 4, [](Things& t) { t.file.SetSlotFlags(t.table.owned_map, 0xC000); }},
    {"owner of a map page", 4, [](Things& t) { t.file.Byte(t.table.owned_map.page, 4) = 1; }},
    {"kind of a map", 4, [](Things& t) { t.file.Record(t.table.owned_map)[0] = 2; }},
    {"start of a map", 14, [](Things& t) { t.file.Record(t.table.owned_map)[1] = 4; }},
    {"bitmap page of another type", 4,
     [](Things& t) {
         const PageNumber bitmap = t.file.AppendPage();
         t.file.Record(t.empty.owned_map)[0] = 1;
         PutU32(t.file.Record(t.empty.owned_map) + 1, bitmap);
     }},
    {"page of two tables", 5, [](Things& t) { t.file.SetBit(t.empty.owned_map, FirstDataPage(t), true); }},
    {"map of two tables", 5,
     [](Things& t) { PutU32(t.file.At(t.empty.page, 55), t.table.owned_map.Word()); }},
    {"page in use that is free", 6,
     [](Things& t) {
         t.file.SetBit({1, 0}, FirstDataPage(t), true);
     }},
    {"leaked page", 6, [](Things& t) { t.file.AppendPage(); }, false},
    {"page beyond the end", 7,
     [](Things& t) { t.file.SetBit(t.empty.owned_map, t.file.PageCount() + 1, true); }},
    {"table of the catalogue elsewhere", 8, [](Things& t) { EmptyInCatalogue(t)[2] ^= 1; }},
    {"table of the catalogue twice", 8,
     [](Things& t) { EmptyInCatalogue(t)[2] = static_cast<std::uint8_t>(t.table.page); }},
    {"system table of the catalogue as a query", 8,
     [](Things& t) {
         t.file.Record({kObjectsData, 5})[10] = 5;
     }},
    {"table of the catalogue on a second page of another", 8,
     [](Things& t) {
         const PageNumber page = t.file.AppendPage();
         t.file.Byte(page, 0) = 2;
         t.file.Byte(page, 1) = 1;
         PutU32(Definition(t, 4), page);
         EmptyInCatalogue(t)[2] = static_cast<std::uint8_t>(page);
     }},
    {"catalogue's definition", 8, [](Things& t) { t.file.Byte(kObjects, 45) = 200; }},
    {"definition's length", 9, [](Things& t) { ++*Definition(t, 8); }},
    {"definition's constant", 9, [](Things& t) { ++*Definition(t, 12); }},
    {"definition in a circle", 9, [](Things& t) { PutU32(Definition(t, 4), t.table.page); }},
    {"definition that goes on on a data page", 9,
     [](Things& t) { PutU32(Definition(t, 4), FirstDataPage(t)); }},
    {"number of indexes", 9, [](Things& t) { *Definition(t, 53) = 200; }},
    {"definition's free field", 9, [](Things& t) { ++*Definition(t, 2); }, false},
    {"column number beyond the table's", 10, [](Things& t) { *Definition(t, kColumns + 5) = 77; }},
    {"column number twice", 10, [](Things& t) { *Definition(t, kColumns + 5) = 1; }},
    {"variable place twice", 10, [](Things& t) { *Definition(t, kColumns + kColumn + 7) = 1; }},
    {"fixed columns that overlap", 10, [](Things& t) { *Definition(t, kColumns + 2 * kColumn + 21) = 2; }},
    {"indexed column of an unknown type", 10, [](Things& t) { *Definition(t, kColumns) = 14; }},
    {"index block's constant", 11, [](Things& t) { ++*Definition(t, RealIndexes(t)); }},
    {"index flag", 11, [](Things& t) { *Definition(t, RealIndexes(t) + 46) = 0x09; }},
    {"index column that is not there", 11, [](Things& t) { *Definition(t, RealIndexes(t) + 4) = 88; }},
    {"index without columns", 11, [](Things& t) { PutU16(Definition(t, RealIndexes(t) + 4), 0xFFFF); }},
    {"root outside the map", 11, [](Things& t) { PutU32(Definition(t, RealIndexes(t) + 38), t.table.page); }},
    {"type of the root", 11, [](Things& t) { t.file.Byte(t.table.indexes[0].root, 0) = 1; }},
    {"logical index of no real one", 12, [](Things& t) { *Definition(t, LogicalIndexes(t) + 8) = 5; }},
    {"two primary keys", 12,
     [](Things& t) {
         *Definition(t, LogicalIndexes(t) + 23) = *Definition(t, LogicalIndexes(t) + 28 + 23) = 1;
     }},
    {"logical number", 12, [](Things& t) { *Definition(t, LogicalIndexes(t) + 4) = 9; }, false},
    {"page with room that is not owned", 13,
     [](Things& t) { t.file.SetBit(t.table.free_map, t.table.page, true); }},
    {"type of a data page", 14, [](Things& t) { t.file.Byte(FirstDataPage(t), 0) = 2; }},
    {"owner of a data page", 14, [](Things& t) { ++t.file.Byte(FirstDataPage(t), 4); }},
    {"free field of a data page", 14, [](Things& t) { ++t.file.Byte(FirstDataPage(t), 2); }},
    {"free field of a map page", 14, [](Things& t) { ++t.file.Byte(t.table.owned_map.page, 2); }},
    {"slot count", 14, [](Things& t) { t.file.Byte(FirstDataPage(t), 13) = 1; }},
    {"slot behind its neighbour", 14, [](Things& t) { PutU16(t.file.At(FirstDataPage(t), 14 + 6), 4095); }},
    {"unknown slot flag", 14, [](Things& t) { t.file.Byte(FirstDataPage(t), 15) |= 0x20; }},
    {"record over the slots", 14,
     [](Things& t) {
         PutU16(t.file.At(FirstDataPage(t), 14 + 2 * (U16(t.file.At(FirstDataPage(t), 12)) - 1u)), 20);
     }},
    {"moved row to nowhere", 15, [](Things& t) { t.file.Record(t.moved)[0] = 250; }},
    {"moved row to another table", 15,
     [](Things& t) {
         PutU32(t.file.Record(t.moved), Pointer{kObjectsData, 0}.Word());
     }},
    {"moved row to a live one", 15, [](Things& t) { PutU32(t.file.Record(t.moved), t.rows[5].Word()); }},
    {"body that nobody points to", 15, [](Things& t) { t.file.SetSlotFlags(t.rows[5], 0x8000); }},
    {"row deleted in another program's way", 15,
     [](Things& t) {
         t.file.SetSlotFlags(t.rows[5], 0x8000);
         ++t.file.Byte(0, 0xE00);
     },
     false},
    {"body that two point to", 15,
     [](Things& t) {
         std::copy_n(t.file.Record(t.moved), 4, t.file.Record(t.rows[5]));
         t.file.SetSlotFlags(t.rows[5], 0x4000);
     }},
    {"deleted body", 15,
     [](Things& t) { t.file.SetSlotFlags(Pointer::FromWord(U32(t.file.Record(t.moved))), 0xC000); }},
    {"row's column count", 16, [](Things& t) { t.file.Record(SomeRow(t))[0] = 7; }},
    {"row's count of variable values", 16,
     [](Things& t) { t.file.Record(SomeRow(t))[RecordSize(t, SomeRow(t)) - 3] = 9; }},
    {"row's first variable value", 16,
     [](Things& t) { t.file.Record(SomeRow(t))[RecordSize(t, SomeRow(t)) - 5] = 2; }},
    {"row's variable values out of order", 16,
     [](Things& t) { t.file.Record(SomeRow(t))[RecordSize(t, SomeRow(t)) - 5] = 250; }},
    {"bytes of a Null", 16,
     [](Things& t) { t.file.Record(SomeRow(t))[RecordSize(t, SomeRow(t)) - 1] &= 0xFD; }},
    {"text cut in a character", 17,
     [](Things& t) {
         std::uint8_t* row = t.file.Record(t.rows[12]);  // Cyrillic
         --row[RecordSize(t, t.rows[12]) - 7];
     }},
    {"text longer than its column", 17, [](Things& t) { *Definition(t, kColumns + kColumn + 23) = 4; }},
    {"map that is the global one", 5, [](Things& t) { PutU32(t.file.At(t.empty.page, 55), 0x101); }},
    {"too many columns", 9, [](Things& t) { *Definition(t, 46) = 2; }},
    {"date that is none", 17,
     [](Things& t) { std::fill_n(t.file.Record(SomeRow(t)) + 6, 8, std::uint8_t{0xFF}); }},
    {"memo of an unknown kind", 17,
     [](Things& t) {
         const std::size_t size = RecordSize(t, SomeRow(t));
         t.file.Record(SomeRow(t))[t.file.Record(SomeRow(t))[size - 7] + 3] = 0xC0;
     }},
    {"memo elsewhere that is not there", 17,
     [](Things& t) {
         const std::size_t size = RecordSize(t, SomeRow(t));
         t.file.Record(SomeRow(t))[t.file.Record(SomeRow(t))[size - 7] + 3] = 0x40;
     }},
    {"memo's length", 17,
     [](Things& t) {
         const std::size_t size = RecordSize(t, SomeRow(t));
         ++t.file.Record(SomeRow(t))[t.file.Record(SomeRow(t))[size - 7]];
     }},
    {"row count", 18, [](Things& t) { ++*Definition(t, kRowCount); }},
    {"type of a leaf", 19, [](Things& t) { t.file.Byte(FirstLeaf(t, 0), 0) = 1; }},
    {"owner of a leaf", 19, [](Things& t) { ++t.file.Byte(FirstLeaf(t, 0), 4); }},
    {"free field of a leaf", 19, [](Things& t) { ++t.file.Byte(FirstLeaf(t, 0), 2); }},
    {"prefix", 19, [](Things& t) { t.file.Byte(FirstLeaf(t, 0), 25) = 2; }},
    {"entry beyond the leaf", 19, [](Things& t) { t.file.Byte(FirstLeaf(t, 0), kEntriesAt - 1) |= 0x80; }},
    {"short entry", 19, [](Things& t) { t.file.Byte(LastLeaf(t, 0), kMaskAt) |= 4; }},
    {"entries out of order", 20, [](Things& t) { t.file.Byte(FirstLeaf(t, 0), kEntriesAt + 1) = 0xFF; }},
    {"leaves out of order", 20, [](Things& t) { t.file.Byte(LastLeaf(t, 0), kEntriesAt + 3) = 0; }},
    {"node without a last child", 21, [](Things& t) { PutU32(t.file.At(t.table.indexes[0].root, 20), 0); }},
    {"node entry", 21, [](Things& t) { --t.file.Byte(t.table.indexes[0].root, kEntriesAt + 4); }},
    {"child that is none", 21, [](Things& t) { t.file.Byte(t.table.indexes[0].root, kEntriesAt + 12) = 2; }},
    {"child twice", 21, [](Things& t) { PutU32(t.file.At(t.table.indexes[0].root, 20), FirstLeaf(t, 0)); }},
    {"root as its own child", 21,
     [](Things& t) { PutU32(t.file.At(t.table.indexes[0].root, 20), t.table.indexes[0].root); }},
    {"link to the next leaf", 22, [](Things& t) { PutU32(t.file.At(FirstLeaf(t, 0), 16), 0); }},
    {"link to the leaf before", 22, [](Things& t) { PutU32(t.file.At(LastLeaf(t, 0), 12), 0); }},
    {"last leaf that goes on", 22, [](Things& t) { PutU32(t.file.At(LastLeaf(t, 0), 16), FirstLeaf(t, 0)); }},
    {"page outside the tree", 23,
     [](Things& t) { t.file.SetBit(t.table.indexes[0].map, t.file.AppendPage(), true); }},
    {"page missing in the index's map", 21,
     [](Things& t) { t.file.SetBit(t.table.indexes[0].map, LastLeaf(t, 0), false); }},
    {"entry of no row", 24, [](Things& t) { t.file.Byte(LastLeaf(t, 0), kEntriesAt + 8) = 254; }},
    {"entry of a deleted row", 24, [](Things& t) { t.file.SetSlotFlags(SomeRow(t), 0xC000); }},
    {"two entries of a row", 24, [](Things& t) { t.file.Byte(LastLeaf(t, 0), kEntriesAt + 8) ^= 1; }},
    {"row without an entry", 25, [](Things& t) { DropLastEntry(t, 0); }},
    {"deleted row that lives again", 25, [](Things& t) { t.file.SetSlotFlags(t.deleted, 0); }},
    {"number another than its key", 26, [](Things& t) { t.file.Record(SomeRow(t))[2] ^= 1; }},
    {"unique index with equal keys", 27, [](Things& t) { *Definition(t, RealIndexes(t) + 52 + 46) |= 1; }},
    {"Null where none may be", 27, [](Things& t) { *Definition(t, RealIndexes(t) + 52 + 46) |= 8; }},
    {"counter of distinct keys", 28, [](Things& t) { *Definition(t, kCounters + 5) = 0; }, false},
    {"row count in a file that others have used", 18,
     [](Things& t) {
         ++*Definition(t, kRowCount);
         ++t.file.Byte(0, 0xE00);
     },
     false},
    {"last autonumber", 29, [](Things& t) { *Definition(t, kColumns + 15) |= 4; }},
    {"entry of the catalogue", 30, [](Things& t) { t.file.Byte(8, kEntriesAt + 8) = 200; }},
    {"key of the catalogue", 30, [](Things& t) { ++t.file.Byte(8, kEntriesAt + 9 * 10 - 5); }},
    {"entry of the access rights", 30, [](Things& t) { t.file.Byte(9, kEntriesAt + 8) = 200; }},
    {"byte 1 of a data page", 31, [](Things& t) { t.file.Byte(FirstDataPage(t), 1) = 0; }},
    {"byte 1 of a definition", 31, [](Things& t) { t.file.Byte(t.table.page, 1) = 0; }},
    {"bytes 8 to 11 of a data page", 31, [](Things& t) { t.file.Byte(FirstDataPage(t), 8) = 1; }},
    {"bytes 8 to 11 of a leaf", 31, [](Things& t) { t.file.Byte(FirstLeaf(t, 0), 11) = 1; }},
};

std::string Listed(const std::vector<Finding>& findings) {
    std::string list;
    for (const Finding& finding : findings) {
        list += (finding.error ? "  E" : "  N") + std::to_string(finding.invariant) + " " +
                ToUtf8(finding.text) + "\n";
    }
    return list;
}

TEST(CheckerFaults, EachIsFoundUnderItsNumber) {
    const Things whole;
    const TempFolder folder;
    for (const Fault& fault : kFaults) {
        Things things = whole;
        fault.make(things);
        const std::vector<Finding> findings = CheckDatabase(folder.Write(u"fault.mdb", things.file.bytes()));
        EXPECT_TRUE(std::ranges::any_of(findings,
                                        [&](const Finding& finding) {
                                            return finding.invariant == fault.invariant &&
                                                   finding.error == fault.error;
                                        }))
            << fault.what << ", expected " << fault.invariant << ":\n"
            << Listed(findings);
    }
}

TEST(CheckerFaults, EveryInvariantHasOne) {
    for (int invariant = 2; invariant <= 31; ++invariant) {
        EXPECT_TRUE(std::ranges::any_of(kFaults, [&](const Fault& fault) {
            return fault.invariant == invariant;
        })) << invariant;
    }
}

// The same in files of the database engine, which have what new files lack.
struct SampleFault {
    const char* what;
    int invariant;
    const char* file;
    PageNumber page;
    std::size_t offset;
    std::uint8_t value;
};

const SampleFault kSampleFaults[] = {
    {"chain of records in a circle", 17, "test2V2000.mdb", 53, 0x15, 53},
    {"chain that leaves records out", 17, "test2V2000.mdb", 53, 0x15, 58},
    {"chain that leaves its column's pages", 17, "test2V2000.mdb", 53, 0x15, 31},
    {"owner of a page of long values", 14, "test2V2000.mdb", 54, 4, 0},
    {"second page of a definition", 9, "test2V2000.mdb", 19, 0, 1},
    {"moved row to a slot that is not there", 15, "overflowTestV2000.mdb", 27, 0xF9D, 3},
    {"body of a moved row as a row of its own", 15, "overflowTestV2000.mdb", 28, 15, 0x0F},
    {"deleted body of a moved row", 15, "overflowTestV2000.mdb", 28, 15, 0xCF},
    {"shared prefix", 26, "compIndexTestV2000.mdb", 32, 24, 2},
    {"descending Null", 26, "compIndexTestV2000.mdb", 33, 480, 0xFE},
    {"last child", 21, "compIndexTestV2000.mdb", 29, 20, 32},
    {"rows that have no entry because they are Null", 25, "testIndexPropertiesV2000.mdb", 24, 207 + 46, 0x80},
};

TEST(CheckerFaults, EachIsFoundInFilesOfTheDatabaseEngine) {
    TAV_NEEDS_SAMPLES();
    const TempFolder folder;
    for (const SampleFault& fault : kSampleFaults) {
        FileBytes file(ReadFile(tav::test::SamplePath(fault.file)));
        file.Byte(fault.page, fault.offset) = fault.value;
        const std::vector<Finding> findings = CheckDatabase(folder.Write(u"fault.mdb", file.bytes()));
        EXPECT_TRUE(std::ranges::any_of(
            findings,
            [&](const Finding& finding) { return finding.error && finding.invariant == fault.invariant; }))
            << fault.what << ", expected " << fault.invariant << ":\n"
            << Listed(findings);
    }
}

}  // namespace
}  // namespace tav::jet
