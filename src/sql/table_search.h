// Finds the rows that a statement's conditions allow: by an index of the file, by a hash, or by a scan. An
// index that damage has left with too few entries or too many is not asked.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <span>
#include <vector>

#include "common/value.h"
#include "jet/table/table.h"
#include "sql/hash_index.h"

namespace tav::jet {

class TableSearch {
 public:
    explicit TableSearch(Table& table);

    // SQLite asks how the conditions it has could be used; the answer's idxNum is given to Find.
    // Rows that repeat another in all columns used may be left out where `ignores_repeats`.
    void Plan(sqlite3_index_info& question, bool ignores_repeats);

    // The candidates among which SQLite tests the conditions again, in the order in which the table stores them
    // whatever found them; no value when all rows are. `arguments` are those the plan asked for.
    std::optional<std::vector<RowId>> Find(int plan, std::span<const Value> arguments);

    // Which of the plan's arguments is a list of values ("in (...)"), if one is: Find is for one value of it.
    std::optional<std::size_t> ListArgument(int plan) const {
        return plans_[static_cast<std::size_t>(plan)].list;
    }

    // The column that is Null in the rows wanted, where all rows are candidates: others need not be looked at.
    std::optional<std::size_t> NullColumn(int plan) const {
        return plans_[static_cast<std::size_t>(plan)].null;
    }

    // The columns whose repetition makes a row needless, where all rows are candidates; empty: none is.
    std::span<const std::size_t> RepeatColumns(int plan) const {
        return plans_[static_cast<std::size_t>(plan)].repeats;
    }

    // What happened to the rows, so that the hashes stay current.
    void Inserted(std::span<const Value> row, RowId id);
    void Updated(std::span<const Value> before, std::span<const Value> after, RowId id);
    void Deleted(std::span<const Value> row, RowId id);
    bool HasHashes() const { return !hashes_.empty(); }
    void DropHashes() { hashes_.clear(); }

 private:
    // First the columns that equal something, in table order, then the two bounds of a range.
    struct SearchPlan {
        std::vector<std::size_t> equal;
        bool low = false;
        bool high = false;
        std::optional<std::size_t> index;  // of the file
        std::size_t leading = 0;           // how many of its columns are in `equal`
        std::optional<std::size_t> list;   // place in `equal` of a column that equals one of several values
        std::optional<std::size_t> null;   // of a scan: a column that the rows have no value of
        std::vector<std::size_t> repeats;  // of a scan: columns whose repetition makes a row needless

        bool operator==(const SearchPlan&) const = default;
    };
    struct Conditions;

    void ChooseIndex(SearchPlan& plan) const;
    bool ChooseRange(SearchPlan& plan, const Conditions& conditions) const;
    int Remember(const SearchPlan& plan);
    bool IsUniqueKey(const SearchPlan& plan) const;
    std::optional<std::vector<RowId>> ByIndex(const SearchPlan& plan, std::span<const Value> arguments);
    std::optional<std::vector<RowId>> ByRange(const SearchPlan& plan, std::span<const Value> arguments);
    std::optional<std::vector<RowId>> ByHash(const SearchPlan& plan, std::span<const Value> arguments);

    Table* table_;
    std::vector<bool> has_keys_;  // by index of the file
    std::vector<SearchPlan> plans_;
    std::vector<bool> wide_;  // plans whose index alone finds too many rows
    std::vector<HashIndex> hashes_;
    bool too_large_ = false;  // for a hash
};

}  // namespace tav::jet
