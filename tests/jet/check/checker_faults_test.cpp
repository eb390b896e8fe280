// Damages one place of a good file at a time, as faults.txt says: the checker names the invariant that is
// broken.
#include <gmock/gmock.h>

#include <map>
#include <set>

#include "common/get_next.h"
#include "jet/check/checker.h"
#include "jet/check/damaged_database.h"
#include "jet/index/index_page.h"
#include "jet/jet_samples.h"

namespace tav::jet {
namespace {

using tav::test::TempFolder;

// A file, the places in it that faults name, by their offsets, and the numbers of its pages and rows.
class Victim {
 public:
    explicit Victim(std::string bytes) : file_(std::move(bytes)) {}
    explicit Victim(Things& things) : file_(things.file) {
        const TableDefinition& table = things.table;
        const RealIndex& index = table.indexes[0];
        Name("definition", table.page);
        places_["columns"] = places_["definition"] + 63 + 12 * table.indexes.size();
        places_["real-indexes"] = places_["columns"] + 25 * table.columns.size();
        for (const Column& column : table.columns) places_["real-indexes"] += 2 + 2 * column.name.size();
        places_["logical-indexes"] = places_["real-indexes"] + 52 * table.indexes.size();
        Name("empty-definition", things.empty.page);
        Name("global-map", {1, 0});
        Name("released-map", {1, 1});
        Name("map", table.owned_map);
        Name("map-page", table.owned_map.page);
        Name("room-map", table.free_map);
        Name("empty-map", things.empty.owned_map);
        Name("index-map", index.map);
        Name("catalogue-row", {14, 9});  // of the table "empty"
        Name("catalogue-system-row", {14, 5});
        Name("data", things.rows.front().page);
        const PageNumber data = things.rows.front().page;
        places_["last-slot"] = data * kPageSize + 12 + 2u * U16(file_.At(data, 12));
        Name("row", things.rows[10]);
        Name("other", things.rows[5]);
        Name("moved", things.moved);
        Name("body", Pointer::FromWord(U32(file_.Record(things.moved))));
        Name("deleted", things.deleted);
        places_["row-end"] = EndOf(things.rows[10]) - 8;
        places_["cyrillic-end"] = EndOf(things.rows[12]) - 8;
        places_["row-trailer"] = places_["row-end"] - 5;
        numbers_["memo-start"] = file_.Byte(0, places_["row-end"] - 1);
        places_["memo"] = places_["row"] + file_.Byte(0, places_["row-end"] - 1);
        Name("root", index.root);
        Name("leaf", BigU32(file_.At(index.root, kEntriesAt + 9)));
        Name("last-leaf", U32(file_.At(index.root, 20)));
        std::size_t ends[2] = {};  // where the last two entries of the last leaf end
        for (std::size_t i = 1; i <= kEntrySpace; ++i) {
            if ((file_.Byte(numbers_["last-leaf"], kMaskAt + i / 8) >> i % 8 & 1) == 0) continue;
            ends[0] = ends[1];
            ends[1] = i;
        }
        places_["last-entry"] = places_["last-leaf"] + kMaskAt + ends[1] / 8;
        numbers_["last-entry-bit"] = 1u << ends[1] % 8;
        numbers_["free-without-last-entry"] = static_cast<std::uint32_t>(kEntrySpace - ends[0]);
        numbers_["beyond"] = file_.PageCount() + 1;
    }

    void Change(std::string_view change) {
        if (change == "append") return Name("appended", file_.AppendPage());
        const std::size_t place = Place(GetNext(change, " "));
        const std::string_view operation = GetNext(change, " ");
        const std::uint32_t value = Number(std::string(change));
        const bool in_map = operation.ends_with("bit");
        std::uint8_t* at = file_.At(0, in_map ? place + 5 + value / 8 : place);
        const std::uint32_t mask = in_map ? 1u << value % 8 : value;
        if (operation == "=") *at = static_cast<std::uint8_t>(value);
        if (operation == "=2") PutU16(at, static_cast<std::uint16_t>(value));
        if (operation == "=4") PutU32(at, value);
        if (operation == "+=") *at = static_cast<std::uint8_t>(*at + value);
        if (operation == "^=") *at = static_cast<std::uint8_t>(*at ^ value);
        if (operation == "&=") *at = static_cast<std::uint8_t>(*at & value);
        if (operation == "|=" || operation == "bit") *at = static_cast<std::uint8_t>(*at | mask);
        if (operation == "unbit") *at = static_cast<std::uint8_t>(*at & ~mask);
    }
    const std::string& bytes() { return file_.bytes(); }

 private:
    void Name(const std::string& name, PageNumber page) {
        places_[name] = page * kPageSize;
        numbers_[name] = page;
    }
    // A record; with "-slot" its slot.
    void Name(const std::string& name, Pointer row) {
        places_[name] = row.page * kPageSize + file_.SlotStart(row);
        places_[name + "-slot"] = row.page * kPageSize + 14 + 2u * row.slot;
        numbers_[name] = row.Word();
    }
    std::size_t EndOf(Pointer row) {
        const Pointer before{row.page, static_cast<std::uint8_t>(row.slot - 1)};
        return row.page * kPageSize + (row.slot == 0 ? kPageSize : file_.SlotStart(before));
    }
    std::size_t Place(std::string_view sum) const {
        const std::string name(GetNext(sum, "+"));
        std::size_t place = name.starts_with("page") ? Number(name.substr(4)) * kPageSize : places_.at(name);
        while (!sum.empty()) place += Number(std::string(GetNext(sum, "+")));
        return place;
    }
    std::uint32_t Number(const std::string& text) const {
        const auto named = numbers_.find(text);
        return named != numbers_.end() ? named->second
                                       : static_cast<std::uint32_t>(std::stoul(text, nullptr, 0));
    }

    FileBytes file_;
    std::map<std::string, std::size_t> places_;
    std::map<std::string, std::uint32_t> numbers_;
};

TEST(CheckerFaults, EachIsFoundUnderItsNumber) {
    Things things;
    const Victim whole(things);
    const TempFolder folder;
    const std::string file = tav::test::TestFile("jet/check/faults.txt");
    std::set<int> met;
    for (std::string_view rest = file; !rest.empty();) {
        std::string_view line = GetNext(rest, "\n");
        if (line.empty() || line.starts_with('#')) continue;
        SCOPED_TRACE(line);
        const std::string number(GetNext(line, " | "));
        GetNext(line, " | ");
        std::string_view changes = GetNext(line, " | ");
        if (!line.empty() && tav::test::SampleFolder().empty()) continue;
        Victim victim = line.empty() ? whole : Victim(ReadFile(tav::test::SamplePath(line)));
        while (!changes.empty()) victim.Change(GetNext(changes, ", "));
        const int invariant = std::stoi(number);
        if (invariant != 0) met.insert(invariant);
        bool found = invariant == 0;
        std::string said;
        for (const Finding& finding : CheckDatabase(folder.Write(u"fault.mdb", victim.bytes()))) {
            if (invariant == 0 && finding.error) found = false;
            found |= finding.invariant == invariant && finding.error != number.ends_with('n');
            said += (finding.error ? "  E" : "  N") + std::to_string(finding.invariant) + " " +
                    ToUtf8(finding.text) + "\n";
        }
        EXPECT_TRUE(found) << said;
    }
    EXPECT_EQ(met.size(), 30U) << "every invariant from 2 to 31";
    EXPECT_TRUE(*met.begin() == 2 && *met.rbegin() == 31);
}

}  // namespace
}  // namespace tav::jet
