// Files whose maps have the forms that other programs leave, and files that contradict themselves, made by editing
// the pages of a good file.
#pragma once

#include "jet/check/damaged_database.h"
#include "jet/file/bitmap.h"
#include "jet/file/data_page.h"
#include "jet/file/global_map.h"
#include "jet/file/usage_map.h"
#include "jet/schema/definition_layout.h"

namespace tav::jet {

using Bytes = std::vector<std::uint8_t>;

// Records of maps. `member` says which bits are set.
template <class Member>
Bytes Inline(PageNumber start, std::size_t size, Member member) {
    Bytes record(size);
    PutU32(record.data() + 1, start);
    for (PageNumber i = 0; i < (size - kInlineHead) * 8; ++i) {
        SetBit(record.data() + kInlineHead, i, member(start + i));
    }
    return record;
}
inline Bytes References(std::vector<PageNumber> bitmaps, std::size_t size = kReferenceSize) {
    Bytes record(size);
    record[0] = 1;
    for (std::size_t i = 0; i < bitmaps.size(); ++i) PutU32(record.data() + 1 + 4 * i, bitmaps[i]);
    return record;
}
template <class Member>
void MakeBitmap(std::uint8_t* page, PageNumber first, Member member) {
    std::fill_n(page, kPageSize, std::uint8_t{0});
    page[0] = 5;
    page[1] = 1;
    for (PageNumber i = 0; i < kPagesPerBitmap; ++i) SetBit(page + kBitmapHead, i, member(first + i));
}
const auto kNowhere = [](PageNumber) { return false; };

// Page 1 with these two records.
inline Page PageOne(const Bytes& free, const Bytes& released) {
    Page page;
    InitializeDataPage(page, kGlobalPage);
    AddRecord(page, free, 0);
    AddRecord(page, released, 0);
    return page;
}

// A database under a test's hands: `plain` has 300 pages of rows, the table between them and the end is gone,
// so that every second page of the last 100 is free; `things` has a row with a value in a chain of records.
struct Forms {
    FileBytes file{{}};
    PageNumber count = 0;
    Pointer owned;  // the map of `plain`
    TableDefinition things;
    RowId row;
    std::vector<Pointer> chain;

    void SetGlobal(const Bytes& free, const Bytes& released) {
        const Page page = PageOne(free, released);
        std::copy(page.begin(), page.end(), file.At(kGlobalPage, 0));
    }
    auto FreeBits() {
        std::vector<bool> bits(count);
        for (PageNumber page = 0; page < count; ++page) bits[page] = Bit(file.Record({1, 0}) + 5, page);
        return [bits, last = count](PageNumber page) { return page >= last || bits[page]; };
    }
    Bytes Released(std::size_t size = kReferenceSize) { return Inline(0, size, kNowhere); }
    // A column of `things`, as its definition has it.
    std::uint8_t* ColumnBlock(std::size_t column) {
        return file.At(things.page, layout::kHeader + layout::kCounter * things.indexes.size() + 25 * column);
    }
    // A page more for a bitmap.
    PageNumber Append() {
        file.bytes().append(kPageSize, '\0');
        return file.PageCount() - 1;
    }
};

struct Form {
    const char* what;
    void (*make)(Forms& forms);
    const char* refusal = nullptr;  // what a refusal says
    int error = 0;                  // the invariant that the checker finds broken
};

inline void MakeReferenceGlobal(Forms& f, std::size_t size = kReferenceSize) {
    const auto free = f.FreeBits();
    const PageNumber bitmap = f.Append();
    MakeBitmap(f.file.At(bitmap, 0), 0, [&](PageNumber page) { return page != bitmap && free(page); });
    f.SetGlobal(References({bitmap}, size), f.Released());
}

// Of the table; the page of its bitmap.
inline PageNumber MakeReferenceOwned(Forms& f) {
    const Bytes record(f.file.Record(f.owned), f.file.Record(f.owned) + kReferenceSize);
    const PageNumber bitmap = f.Append();
    MakeBitmap(f.file.At(bitmap, 0), 0,
               [&](PageNumber page) { return page < 512 && Bit(record.data() + 5, page); });
    f.file.SetBit({1, 0}, bitmap, false);
    std::ranges::copy(References({bitmap}), f.file.Record(f.owned));
    return bitmap;
}

const Form kForms[] = {
    {"short", [](Forms& f) { f.SetGlobal(Inline(0, 13, f.FreeBits()), f.Released()); }},
    {"window", [](Forms& f) { f.SetGlobal(Inline(200, kReferenceSize, f.FreeBits()), f.Released()); }},
    {"window at an odd page", [](Forms& f) { f.SetGlobal(Inline(203, 25, f.FreeBits()), f.Released()); }},
    {"window beyond the end", [](Forms& f) { f.SetGlobal(Inline(4000, 25, kNowhere), f.Released()); }},
    {"references", [](Forms& f) { MakeReferenceGlobal(f); }},
    {"long released map",
     [](Forms& f) {
         const auto free = f.FreeBits();
         f.SetGlobal(Inline(0, 69, free),
                     Inline(0, 97, [&](PageNumber page) { return page < f.count && free(page); }));
     }},
    {"released map of references",
     [](Forms& f) {
         const auto free = f.FreeBits();
         const PageNumber bitmap = f.Append();
         MakeBitmap(f.file.At(bitmap, 0), 0, kNowhere);
         f.SetGlobal(Inline(0, 69, [&](PageNumber page) { return page != bitmap && free(page); }),
                     References({bitmap}));
     }},
    {"no room to grow", [](Forms& f) { f.SetGlobal(Inline(0, 69, f.FreeBits()), f.Released(4001)); }},
    {"records the other way round",
     [](Forms& f) {
         f.SetGlobal(f.Released(), Inline(0, 69, f.FreeBits()));
         f.file.Byte(0, 0x18) ^= 1;
         f.file.Byte(0, 0x1C) ^= 1;
     }},
    {"table's map of references", [](Forms& f) { MakeReferenceOwned(f); }},
    {"table's map from an odd page",
     [](Forms& f) {
         const Bytes old(f.file.Record(f.owned), f.file.Record(f.owned) + kReferenceSize);
         const Bytes moved = Inline(11, kReferenceSize,
                                    [&](PageNumber page) { return page < 512 && Bit(old.data() + 5, page); });
         std::copy(moved.begin(), moved.end(), f.file.Record(f.owned));
     }},
    {"every page is called free",
     [](Forms& f) { f.SetGlobal(Inline(0, 69, [](PageNumber) { return true; }), f.Released()); }, nullptr, 6},
    {"bitmap beyond the end", [](Forms& f) { f.SetGlobal(References({9999}), f.Released()); },
     "the file ends before it", 7},
    {"bitmap that is no bitmap", [](Forms& f) { f.SetGlobal(References({f.owned.page}), f.Released()); },
     "a usage bitmap is expected here", 5},
    {"long references", [](Forms& f) { MakeReferenceGlobal(f, 101); }, "a wrong length", 3},
    {"bitmap that is called free",
     [](Forms& f) {
         const PageNumber bitmap = f.Append();
         MakeBitmap(f.file.At(bitmap, 0), 0, f.FreeBits());
         f.SetGlobal(References({bitmap}), f.Released());
     },
     "it is called free, but is a bitmap", 6},
    {"one bitmap of two maps",
     [](Forms& f) {
         MakeReferenceGlobal(f);
         f.SetGlobal(References({f.file.PageCount() - 1}), References({f.file.PageCount() - 1}));
     },
     "two ranges have this bitmap", 5},
    {"bitmap of a table's map",
     [](Forms& f) { f.SetGlobal(References({MakeReferenceOwned(f)}), f.Released()); },
     "a bitmap of the map of free pages is used twice", 5},
    {"kind of the released map", [](Forms& f) { f.SetGlobal(Inline(0, 69, f.FreeBits()), Bytes(69, 2)); },
     "holds no usage map", 4},
    {"maps on another page", [](Forms& f) { f.file.Byte(0, 0x19) ^= 2; }, "where the map of free pages is",
     2},
    {"page of two tables", [](Forms& f) { f.file.SetBit(f.owned, 14, true); }, "two tables or indexes use it",
     5},
    {"page beyond the end", [](Forms& f) { f.file.SetBit(f.owned, 500, true); },
     "a page beyond the end of the file", 7},
    {"map beyond the end",
     [](Forms& f) {
         PutU32(f.file.At(f.things.page, 55), Pointer{f.count, 0}.Word());
     },
     "the file ends before it", 4},
    {"bitmap that is another table's page",
     [](Forms& f) { f.file.SetBit(f.things.owned_map, MakeReferenceOwned(f), true); },
     "two tables or indexes use it", 5},
    {"file without its last page", [](Forms& f) { f.file.bytes().resize(f.file.bytes().size() - kPageSize); },
     "a page beyond the end of the file", 7},
    {"file without half a page",
     [](Forms& f) { f.file.bytes().resize(f.file.bytes().size() - kPageSize / 2); }, "its size is wrong", 1},
    {"chain in a circle", [](Forms& f) { PutU32(f.file.Record(f.chain.back()), f.chain.front().Word()); },
     "column 'data' has a long value whose records lead in a circle", 17},
    {"Decimal of more decimals than digits",
     [](Forms& f) {
         std::uint8_t* column = f.ColumnBlock(2);
         column[0] = static_cast<std::uint8_t>(ColumnType::Numeric);
         column[11] = 18;
         column[12] = 19;
     },
     "column 'amount' has an impossible precision or scale", 10},
};

}  // namespace tav::jet
