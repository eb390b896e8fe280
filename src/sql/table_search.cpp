#include "sql/table_search.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "jet/index/index_key.h"
#include "sql/sql_collation.h"
#include "sql/sql_value.h"

namespace tav::jet {
namespace {

// An index that covers some of the conditions only, and finds more rows than this, gives way to a hash.
constexpr std::size_t kManyRows = 256;

constexpr double kScanCost = 1e6;
constexpr double kRangeCost = 1e5;
constexpr double kLookupCost = 50;

// Whether a row without a value of the column is one in which SQL sees a Null, and no other row is.
bool ShowsNull(const Column& column) {
    return column.IsText() || column.type == ColumnType::Byte || column.type == ColumnType::Integer ||
           column.type == ColumnType::Long;
}

bool SortsLikeIndex(const Column& column) {
    return !column.IsText() && column.type != ColumnType::Boolean;
}

// None when SQLite does not tell them one by one.
std::vector<std::size_t> UsedColumns(const sqlite3_index_info& question, const TableDefinition& table) {
    constexpr std::size_t kTold = 63;
    std::vector<std::size_t> columns;
    if (question.colUsed >> kTold != 0) return columns;
    for (std::size_t i = 0; i < std::min(kTold, table.columns.size()); ++i) {
        if ((question.colUsed >> i & 1) != 0) columns.push_back(i);
    }
    return columns;
}

}  // namespace

// The usable conditions of a question, by what they do: places in aConstraint.
struct TableSearch::Conditions {
    struct Equal {
        std::size_t column;
        int constraint;
    };
    std::vector<Equal> equal;
    std::vector<Equal> low;
    std::vector<Equal> high;
    std::optional<std::size_t> null;

    Conditions(sqlite3_index_info& question, const TableDefinition& table) {
        for (int i = 0; i < question.nConstraint; ++i) {
            const auto& constraint = question.aConstraint[i];
            if (constraint.usable == 0 || constraint.iColumn < 0) continue;
            const auto column = static_cast<std::size_t>(constraint.iColumn);
            if (constraint.op == SQLITE_INDEX_CONSTRAINT_ISNULL && ShowsNull(table.columns[column]))
                null = column;
            // A comparison by another order than the column's own cannot be answered here.
            const std::string_view collation = sqlite3_vtab_collation(&question, i);
            if (table.columns[column].IsText() && collation != kCollation) continue;
            switch (constraint.op) {
                case SQLITE_INDEX_CONSTRAINT_EQ:
                    AddOnce(equal, column, i);
                    break;
                case SQLITE_INDEX_CONSTRAINT_GT:
                case SQLITE_INDEX_CONSTRAINT_GE:
                    AddOnce(low, column, i);
                    break;
                case SQLITE_INDEX_CONSTRAINT_LT:
                case SQLITE_INDEX_CONSTRAINT_LE:
                    AddOnce(high, column, i);
                    break;
                default:
                    break;
            }
        }
        std::sort(equal.begin(), equal.end(),
                  [](const Equal& a, const Equal& b) { return a.column < b.column; });
    }

    static const Equal* FindColumn(const std::vector<Equal>& list, std::size_t column) {
        const auto at =
            std::find_if(list.begin(), list.end(), [&](const Equal& e) { return e.column == column; });
        return at == list.end() ? nullptr : &*at;
    }

 private:
    static void AddOnce(std::vector<Equal>& list, std::size_t column, int constraint) {
        if (FindColumn(list, column) == nullptr) list.push_back({column, constraint});
    }
};

TableSearch::TableSearch(Table& table) : table_(&table) {
    for (const RealIndex& index : table.definition().indexes) {
        has_keys_.push_back(WhyNoKeys(table.definition(), index).empty());
    }
}

void TableSearch::Plan(sqlite3_index_info& question, bool ignores_repeats) {
    const Conditions conditions(question, table_->definition());
    SearchPlan plan;
    int argument = 0;
    const auto use = [&](const Conditions::Equal& condition) {
        question.aConstraintUsage[condition.constraint].argvIndex = ++argument;
    };
    question.estimatedCost = kScanCost;
    question.estimatedRows = static_cast<sqlite3_int64>(kScanCost);
    if (!conditions.equal.empty()) {
        for (const Conditions::Equal& condition : conditions.equal) {
            // All values of a list at once: one after the other they would decide the order of the rows.
            if (sqlite3_vtab_in(&question, condition.constraint, -1) != 0) {
                if (plan.list) continue;
                plan.list = plan.equal.size();
                sqlite3_vtab_in(&question, condition.constraint, 1);
            }
            plan.equal.push_back(condition.column);
            use(condition);
        }
        ChooseIndex(plan);
        // The more conditions, the fewer rows: the join with the most of them wins.
        question.estimatedCost = kLookupCost / static_cast<double>(plan.equal.size());
        question.estimatedRows = 1 + 20 / static_cast<sqlite3_int64>(plan.equal.size());
        if (IsUniqueKey(plan) && !plan.list) question.estimatedRows = 1;
    } else if (ChooseRange(plan, conditions)) {
        const std::size_t column = table_->definition().indexes[*plan.index].columns[0].column;
        if (plan.low) use(*Conditions::FindColumn(conditions.low, column));
        if (plan.high) use(*Conditions::FindColumn(conditions.high, column));
        question.estimatedCost = kRangeCost;
        question.estimatedRows = static_cast<sqlite3_int64>(kRangeCost);
    } else {
        plan.null = conditions.null;
        if (ignores_repeats) plan.repeats = UsedColumns(question, table_->definition());
    }
    question.idxNum = Remember(plan);
}

void TableSearch::ChooseIndex(SearchPlan& plan) const {
    const std::vector<RealIndex>& indexes = table_->definition().indexes;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const std::vector<IndexColumn>& columns = indexes[i].columns;
        std::size_t leading = 0;
        while (leading < columns.size() &&
               std::binary_search(plan.equal.begin(), plan.equal.end(), columns[leading].column)) {
            ++leading;
        }
        if (has_keys_[i] && leading > plan.leading) {
            plan.index = i;
            plan.leading = leading;
        }
    }
}

bool TableSearch::ChooseRange(SearchPlan& plan, const Conditions& conditions) const {
    const std::vector<RealIndex>& indexes = table_->definition().indexes;
    for (std::size_t i = 0; i < indexes.size() && !plan.index; ++i) {
        const IndexColumn& first = indexes[i].columns[0];
        if (!has_keys_[i] || !first.ascending ||
            !SortsLikeIndex(table_->definition().columns[first.column])) {
            continue;
        }
        plan.low = Conditions::FindColumn(conditions.low, first.column) != nullptr;
        plan.high = Conditions::FindColumn(conditions.high, first.column) != nullptr;
        if (plan.low || plan.high) plan.index = i;
    }
    return plan.index.has_value();
}

bool TableSearch::IsUniqueKey(const SearchPlan& plan) const {
    if (!plan.index) return false;
    const RealIndex& index = table_->definition().indexes[*plan.index];
    return index.unique && plan.leading == index.columns.size();
}

int TableSearch::Remember(const SearchPlan& plan) {
    const auto known = std::find(plans_.begin(), plans_.end(), plan);
    const auto number = static_cast<int>(known - plans_.begin());
    if (known == plans_.end()) {
        plans_.push_back(plan);
        wide_.push_back(false);
    }
    return number;
}

std::optional<std::vector<RowId>> TableSearch::Find(int plan_number, std::span<const Value> arguments) {
    const auto number = static_cast<std::size_t>(plan_number);
    const SearchPlan& plan = plans_[number];
    if (plan.equal.empty() && !plan.index) return std::nullopt;
    if (std::any_of(arguments.begin(), arguments.end(), IsNull)) return std::vector<RowId>();
    if (plan.equal.empty()) return ByRange(plan, arguments);
    if (plan.index && !wide_[number]) {
        std::optional<std::vector<RowId>> rows = ByIndex(plan, arguments);
        if (rows) {
            wide_[number] =
                rows->size() > kManyRows && plan.leading < plan.equal.size() && !IsUniqueKey(plan);
            return rows;
        }
    }
    std::optional<std::vector<RowId>> rows = ByHash(plan, arguments);
    return rows || !plan.index ? rows : ByIndex(plan, arguments);
}

std::optional<std::vector<RowId>> TableSearch::ByIndex(const SearchPlan& plan,
                                                       std::span<const Value> arguments) {
    if (!table_->HasWholeIndex(*plan.index)) return std::nullopt;
    const TableDefinition& definition = table_->definition();
    const RealIndex& index = definition.indexes[*plan.index];
    std::string key;
    for (std::size_t i = 0; i < plan.leading; ++i) {
        const std::size_t column = index.columns[i].column;
        const auto at = std::lower_bound(plan.equal.begin(), plan.equal.end(), column) - plan.equal.begin();
        const auto value = ForIndex(definition.columns[column], arguments[static_cast<std::size_t>(at)]);
        const auto part =
            value ? EncodeKeyColumn(definition.columns[column], index.columns[i].ascending, *value)
                  : std::nullopt;
        if (!part) return std::nullopt;
        key += *part;
    }
    std::vector<RowId> rows;
    IndexTree tree = table_->Index(*plan.index);
    for (IndexTree::Cursor at = tree.Seek(key); !at.AtEnd() && at.key().starts_with(key); at.Next()) {
        rows.push_back(at.row());
    }
    std::ranges::sort(rows);
    return rows;
}

std::optional<std::vector<RowId>> TableSearch::ByRange(const SearchPlan& plan,
                                                       std::span<const Value> arguments) {
    if (!table_->HasWholeIndex(*plan.index)) return std::nullopt;
    const Column& column =
        table_->definition().columns[table_->definition().indexes[*plan.index].columns[0].column];
    std::vector<std::string> bounds;
    for (const Value& argument : arguments) {
        const std::optional<Value> value = ForIndex(column, argument);
        const auto key = value ? EncodeKeyColumn(column, true, *value) : std::nullopt;
        if (!key) return std::nullopt;
        bounds.push_back(*key);
    }
    const std::string low = plan.low ? bounds.front() : std::string();
    const std::string high = plan.high ? bounds.back() : std::string();
    std::vector<RowId> rows;
    IndexTree tree = table_->Index(*plan.index);
    for (IndexTree::Cursor at = tree.Seek(low); !at.AtEnd(); at.Next()) {
        if (plan.high && at.key().substr(0, high.size()) > high) break;
        rows.push_back(at.row());
    }
    std::ranges::sort(rows);
    return rows;
}

std::optional<std::vector<RowId>> TableSearch::ByHash(const SearchPlan& plan,
                                                      std::span<const Value> arguments) {
    const auto known = std::ranges::find(hashes_, plan.equal, &HashIndex::columns);
    if (known != hashes_.end()) return known->Find(arguments);
    if (too_large_) return std::nullopt;
    std::optional<HashIndex> made = HashIndex::Of(*table_, plan.equal);
    too_large_ = !made;
    if (too_large_) return std::nullopt;
    return hashes_.emplace_back(*std::move(made)).Find(arguments);
}

void TableSearch::Inserted(std::span<const Value> row, RowId id) {
    for (HashIndex& hash : hashes_) hash.Add(row, id);
}

void TableSearch::Updated(std::span<const Value> before, std::span<const Value> after, RowId id) {
    for (HashIndex& hash : hashes_) {
        const std::vector<std::size_t>& columns = hash.columns();
        const bool same = std::all_of(columns.begin(), columns.end(),
                                      [&](std::size_t column) { return before[column] == after[column]; });
        if (same) continue;
        hash.Remove(before, id);
        hash.Add(after, id);
    }
}

void TableSearch::Deleted(std::span<const Value> row, RowId id) {
    for (HashIndex& hash : hashes_) hash.Remove(row, id);
}

}  // namespace tav::jet
