#include "jet/check/check_index.h"

#include <algorithm>

#include "common/failure.h"
#include "jet/check/check_index_page.h"
#include "jet/check/check_slots.h"
#include "jet/index/index_key.h"

namespace tav::jet::check {
namespace {

// Two entries a node at least: a deeper tree would not fit a file.
constexpr int kDeepest = 24;
constexpr std::size_t kRowId = 4;
constexpr std::uint32_t kLastCatalogueTable = 3;

// Compares the entries of one index with the rows they stand for, in the order of the leaves.
class EntryCheck {
 public:
    EntryCheck(CheckContext& context, const CheckedTable& table, const RealIndex& index,
               const CheckedRows& rows, Text name)
        : context_(context),
          table_(table),
          index_(index),
          rows_(rows),
          name_(std::move(name)),
          values_(table.definition.columns.size()),
          seen_(rows.live.pages()) {
        why_no_keys_ =
            index.columns.empty() ? Text(u"its columns are not known") : WhyNoKeys(table.definition, index);
        if (!why_no_keys_.empty()) {
            context_.Note(26, name_ + u": its keys were not compared with the rows: " + why_no_keys_);
        }
    }

    void Add(PageNumber page, std::string_view entry);
    void Finish(std::uint32_t distinct_keys);

 private:
    // A system table that lists the others has a number of its own for what contradicts its rows.
    int Invariant(int invariant) const {
        return table_.definition.page <= kLastCatalogueTable ? 30 : invariant;
    }
    void CheckUnique(PageNumber page, std::string_view key);
    void CheckKey(RowId row, std::string_view key);
    bool ReadValues(RowId row);
    void CheckMissing(RowId row);

    CheckContext& context_;
    const CheckedTable& table_;
    const RealIndex& index_;
    const CheckedRows& rows_;
    Text name_;
    Text why_no_keys_;
    std::vector<Value> values_;  // of the index's columns; the others stay Null
    SlotSet seen_;
    std::string previous_key_;
    std::uint32_t distinct_ = 0;
    long long not_encoded_ = 0;
};

// False when a value cannot be read.
bool EntryCheck::ReadValues(RowId id) {
    try {
        const Row row = SoundRow(context_, table_, id);
        for (const IndexColumn& column : index_.columns) values_[column.column] = row.Get(column.column);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

void EntryCheck::CheckUnique(PageNumber page, std::string_view key) {
    if (distinct_ == 0 || key != previous_key_) {
        ++distinct_;
        previous_key_ = key;
        return;
    }
    // A key of as many bytes as columns is all Null.
    if (!index_.unique && !index_.primary) return;
    if (index_.columns.empty() || key.size() == index_.columns.size()) return;
    context_.Error(27, Place(name_, page) + u"a key occurs twice in a unique index");
}

void EntryCheck::CheckKey(RowId id, std::string_view key) {
    if (index_.columns.empty() || !ReadValues(id)) return;
    const auto is_null = [&](const IndexColumn& column) { return IsNull(values_[column.column]); };
    if ((index_.required || index_.primary) && std::ranges::any_of(index_.columns, is_null)) {
        context_.Error(27, Place(name_, id) + u"the row has a Null in a column that must not be Null");
    }
    if (!why_no_keys_.empty()) return;
    try {
        if (EncodeKey(table_.definition, index_, values_) != key) {
            context_.Error(Invariant(26), Place(name_, id) + u"the row's entry has another key than the row");
        }
    } catch (const Failure&) {
        ++not_encoded_;
    }
}

void EntryCheck::Add(PageNumber page, std::string_view entry) {
    const std::string_view key = entry.substr(0, entry.size() - kRowId);
    const std::string_view id = entry.substr(entry.size() - kRowId);
    const RowId row = Pointer::FromWord(BigU32(reinterpret_cast<const std::uint8_t*>(id.data())));
    CheckUnique(page, key);
    if (!rows_.live.Contains(row)) {
        context_.Error(Invariant(24), Place(name_, page) + u"an entry leads to page " + Digits(row.page) +
                                          u", slot " + Digits(row.slot) + u", where there is no row");
    } else if (!seen_.Add(row)) {
        context_.Error(Invariant(24), Place(name_, row) + u"the row has two entries");
    } else if (rows_.sound.Contains(row)) {
        CheckKey(row, key);
    }
}

void EntryCheck::CheckMissing(RowId row) {
    if (index_.ignores_nulls) {
        if (!rows_.sound.Contains(row) || !ReadValues(row)) return;
        if (AllNull(index_, values_)) return;
    }
    context_.Error(Invariant(25), Place(name_, row) + u"the row has no entry");
}

void EntryCheck::Finish(std::uint32_t distinct_keys) {
    rows_.live.ForEachNotIn(seen_, [&](RowId row) { CheckMissing(row); });
    if (not_encoded_ != 0) {
        context_.Note(26, name_ + u": " + Digits(not_encoded_) +
                              u" entries were not compared with their rows: a character's code is not known");
    }
    if (distinct_keys < distinct_) {
        context_.Note(28, name_ + u": its counter is " + Digits(distinct_keys) + u", but it has " +
                              Digits(distinct_) + u" distinct keys");
    }
}

// Walks the tree of one index in order.
class TreeCheck {
 public:
    TreeCheck(CheckContext& context, PageNumber table, const Text& name, std::vector<PageNumber> pages,
              EntryCheck& entries)
        : context_(context),
          table_(table),
          name_(name),
          pages_(std::move(pages)),
          reached_(pages_.size()),
          entries_(entries) {}

    void Run(PageNumber root);

 private:
    void Error(int invariant, PageNumber page, TextView text) {
        context_.Error(invariant, Place(name_, page) + Text(text));
    }
    void Visit(PageNumber page, int depth);
    void VisitLeaf(PageNumber page, int depth, const IndexPage& leaf);
    void VisitNode(PageNumber page, int depth, const IndexPage& node);
    void CheckLinks(PageNumber page, int depth, const IndexPage& node);

    CheckContext& context_;
    PageNumber table_;
    const Text& name_;
    std::vector<PageNumber> pages_;
    std::vector<bool> reached_;
    EntryCheck& entries_;
    int leaf_depth_ = -1;
    PageNumber leaf_ = 0;       // the last one visited
    PageNumber leaf_next_ = 0;  // what it says comes next
    std::string last_;          // the last leaf entry
    struct Level {
        PageNumber last = 0;  // the node visited last
        PageNumber next = 0;  // what it says comes next
    };
    std::vector<Level> levels_;  // of nodes, by depth
};

void TreeCheck::Visit(PageNumber number, int depth) {
    const auto found = std::ranges::lower_bound(pages_, number);
    if (found == pages_.end() || *found != number) {
        return Error(21, number, u"the tree leads to this page, which is not in the index's map");
    }
    const auto position = static_cast<std::size_t>(found - pages_.begin());
    if (reached_[position]) return Error(21, number, u"the tree leads to this page twice");
    reached_[position] = true;
    if (depth > kDeepest) return Error(21, number, u"the tree is too deep");

    context_.Trim();
    const Page& page = context_.At(number);
    if (page[0] != static_cast<std::uint8_t>(PageType::IndexNode) &&
        page[0] != static_cast<std::uint8_t>(PageType::IndexLeaf)) {
        return Error(depth == 0 ? 11 : 19, number, u"it is not an index page");
    }
    CheckByteOne(context_, number, name_);
    CheckZeros(context_, number, name_);
    if (U32(&page[4]) != table_) Error(19, number, u"its owner field names somebody else");
    const IndexPage read = ReadIndexPage(page);
    for (const Text& fault : read.faults) Error(19, number, fault);
    for (std::size_t i = 1; i < read.entries.size(); ++i) {
        if (read.entries[i] <= read.entries[i - 1]) Error(20, number, u"its entries are not ascending");
    }
    read.leaf ? VisitLeaf(number, depth, read) : VisitNode(number, depth, read);
}

void TreeCheck::VisitLeaf(PageNumber number, int depth, const IndexPage& leaf) {
    if (leaf_depth_ == -1) leaf_depth_ = depth;
    if (depth != leaf_depth_) Error(21, number, u"the leaf is not as deep as the others");
    if (leaf.previous != leaf_ || leaf_next_ != (leaf_ == 0 ? 0 : number)) {
        Error(22, number, u"the links between this leaf and the one before are wrong");
    }
    leaf_ = number;
    leaf_next_ = leaf.next;
    if (leaf.entries.empty()) return;
    if (leaf.entries.front() <= last_) Error(20, number, u"it begins before the end of the leaf before");
    for (const std::string& entry : leaf.entries) entries_.Add(number, entry);
    last_ = leaf.entries.back();
}

// Other programs may leave the nodes of a level unlinked.
void TreeCheck::CheckLinks(PageNumber number, int depth, const IndexPage& node) {
    levels_.resize(std::max(levels_.size(), static_cast<std::size_t>(depth) + 1));
    Level& level = levels_[static_cast<std::size_t>(depth)];
    const bool linked = node.previous != 0 || level.next != 0;
    if (linked && (node.previous != level.last || (level.last != 0 && level.next != number))) {
        Error(22, number, u"the links between this node and the one before are wrong");
    }
    level = {number, node.next};
}

void TreeCheck::VisitNode(PageNumber number, int depth, const IndexPage& node) {
    CheckLinks(number, depth, node);
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        Visit(node.children[i], depth + 1);
        if (node.entries[i] != last_) {
            Error(21, number,
                  u"its entry for page " + Digits(node.children[i]) + u" is not that page's last");
        }
    }
    if (node.tail == 0) return Error(21, number, u"the node has no last child");
    Visit(node.tail, depth + 1);
    if (node.height == leaf_depth_ - depth || leaf_depth_ == -1) return;
    context_.Note(21, Place(name_, number) + u"its height is " + Digits(node.height) +
                          u", but the leaves are " + Digits(leaf_depth_ - depth) + u" below it");
}

void TreeCheck::Run(PageNumber root) {
    if (!std::ranges::binary_search(pages_, root)) {
        return Error(11, root, u"its root page is not in its map");
    }
    Visit(root, 0);
    if (leaf_next_ != 0) Error(22, leaf_, u"the last leaf leads on to page " + Digits(leaf_next_));
    for (const Level& level : levels_) {
        if (level.next != 0) Error(22, level.last, u"the last node leads on to page " + Digits(level.next));
    }
    for (std::size_t i = 0; i < pages_.size(); ++i) {
        if (!reached_[i]) Error(23, pages_[i], u"the page is in the index's map, but not in its tree");
    }
}

}  // namespace

void CheckIndexes(CheckContext& context, const CheckedTable& table, const CheckedRows& rows) {
    for (std::size_t i = 0; i < table.definition.indexes.size(); ++i) {
        const RealIndex& index = table.definition.indexes[i];
        const Text name =
            table.place + u", index " + (index.name.empty() ? Digits(static_cast<long long>(i)) : index.name);
        const CheckContext::Owner owner = context.NewOwner(name);
        std::vector<PageNumber> pages = context.ClaimMap(index.map, u"the map of " + name, owner);
        EntryCheck entries(context, table, index, rows, name);
        TreeCheck(context, table.definition.page, name, std::move(pages), entries).Run(index.root);
        entries.Finish(table.distinct_keys[i]);
    }
}

}  // namespace tav::jet::check
