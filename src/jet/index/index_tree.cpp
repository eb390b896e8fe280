#include "jet/index/index_tree.h"

#include <algorithm>
#include <utility>

#include "common/failure.h"
#include "jet/file/page_file.h"
#include "jet/file/usage_map.h"
#include "jet/index/index_key.h"
#include "jet/index/index_split.h"

namespace tav::jet {

namespace {

// Far more than the pages of a file can need.
constexpr std::size_t kMaxDepth = 20;

void CheckTable(const IndexPage& page, PageNumber table) {
    if (page.Table() != table) page.Damaged(u"it belongs to another table");
}

IndexPage ViewPage(PageFile& file, PageNumber table, PageNumber number) {
    const IndexPage page(file.Read(number), number, file.path());
    CheckTable(page, table);
    return page;
}

Text Named(RowId row) {
    return u"the row on page " + Digits(row.page) + u", slot " + Digits(row.slot);
}

}  // namespace

IndexTree::IndexTree(PageFile& file, const TableDefinition& table, const RealIndex& index)
    : file_(&file), table_(&table), index_(&index) {}

std::string IndexTree::EntryOf(std::string_view key, RowId row) {
    return std::string(key).append(BigEndian(row.Word()));
}

IndexPage IndexTree::View(PageNumber page) const {
    return ViewPage(*file_, table_->page, page);
}

IndexPageEditor IndexTree::Edit(PageNumber number) {
    const IndexPageEditor page(file_->Change(number), number, file_->path());
    CheckTable(page, table_->page);
    return page;
}

IndexTree::Path IndexTree::Descend(std::string_view entry) const {
    Path path;
    path.reserve(4);
    for (PageNumber number = index_->root;;) {
        const IndexPage page = View(number);
        if (path.size() == kMaxDepth) page.Damaged(u"the tree has too many levels");
        const std::size_t place = page.Find(entry);
        path.push_back({number, place, place == page.Used()});
        if (page.IsLeaf()) return path;
        number = page.Child(place);
    }
}

// Where an entry belongs. The leaf of its key, that HasKey found, is the right one if it ends after the entry or is
// the last of all.
IndexTree::Path IndexTree::WayTo(std::string_view entry) {
    Path path = std::exchange(searched_, {});
    if (path.empty()) return Descend(entry);
    const IndexPage leaf = View(path.back().page);
    const std::size_t place = leaf.Find(entry);
    const bool last = place == leaf.Used();
    if (last && !std::ranges::all_of(path.begin(), path.end() - 1, &Step::last)) return Descend(entry);
    path.back() = {leaf.number(), place, last};
    return path;
}

bool IndexTree::HasKey(std::string_view key) {
    searched_ = Descend(key);
    const IndexPage leaf = View(searched_.back().page);
    if (searched_.back().last) return false;
    const std::string entry = leaf.Entry(searched_.back().place);
    return entry.size() == key.size() + kRowIdSize && entry.starts_with(key);
}

std::uint64_t IndexTree::CountEntries() {
    std::uint64_t count = 0;
    PageNumber number = Descend({}).back().page;
    for (PageNumber steps = 0; number != 0; ++steps) {
        const IndexPage leaf = View(number);
        if (!leaf.IsLeaf() || steps == file_->PageCount()) leaf.Damaged(u"the chain of leaves is broken");
        count += leaf.Count();
        number = leaf.Next();
        file_->Trim();
    }
    return count;
}

void IndexTree::Add(std::string_view key, RowId row) {
    if (key.size() > kMaxKeySize) {
        throw Failure(u"A key is too long for the index \"" + index_->name + u"\".");
    }
    const std::string entry = EntryOf(key, row);
    Path path = WayTo(entry);
    const IndexPage leaf = View(path.back().page);
    if (leaf.Equals(path.back().place, entry)) leaf.Damaged(u"there is an entry of " + Named(row));
    for (const Step& step : path) {
        if (path.back().last && !step.last) leaf.Damaged(u"it ends before the entry in the node above");
    }
    Insert(path, path.size() - 1, entry);
}

void IndexTree::Insert(Path& path, std::size_t level, std::string_view entry) {
    const std::size_t place = path[level].place;
    IndexPageEditor page = Edit(path[level].page);
    if (page.Insert(place, entry)) return;
    const IndexPageEditor::Overflow all = page.With(place, entry);
    if (page.Pack(all.entries)) return;
    if (level == 0) {
        PushDown(path);
        ++level;
    }
    Split(path, level, all);
}

// The root's content moves to a page of its own, so that the root can become the node above it.
void IndexTree::PushDown(Path& path) {
    const PageNumber number = Take();
    Page& root = file_->Change(index_->root);
    file_->Change(number) = root;
    const auto height = static_cast<std::uint8_t>(root[kHeightAt] + 1);
    IndexPageEditor::FormatNode(root, table_->page, number, height);
    path.front().page = number;
    path.insert(path.begin(), Step{index_->root, 0, true});
}

// A new page takes the left part of the entries, so that the node above needs one entry more and no change.
void IndexTree::Split(Path& path, std::size_t level, const IndexPageEditor::Overflow& all) {
    IndexPageEditor right = Edit(path[level].page);
    CheckLinks(right);
    const std::span<const std::string> entries = all.entries;
    if (entries.size() < (right.IsLeaf() ? 2 : 3)) right.Damaged(u"an entry is too long");
    const bool appended = right.Next() == 0 && all.added + 1 == entries.size();
    const std::size_t cut = right.IsLeaf() ? CutLeaf(entries, appended) : CutNode(entries, appended);

    const PageNumber number = Take();
    Page& page = file_->Change(number);
    std::string last = entries[cut];
    if (right.IsLeaf()) {
        IndexPageEditor::FormatLeaf(page, table_->page);
    } else {
        const std::size_t size = last.size() - kChildSize;
        const PageNumber tail = BigU32(reinterpret_cast<const std::uint8_t*>(last.data()) + size);
        IndexPageEditor::FormatNode(page, table_->page, tail, right.Height());
        last.resize(size);
    }
    IndexPageEditor left = Edit(number);
    if (!left.Pack(entries.first(cut + (right.IsLeaf() ? 1 : 0))) || !right.Pack(entries.subspan(cut + 1))) {
        right.Damaged(u"its entries cannot be divided");
    }
    Join(right.Previous(), number);
    Join(number, right.number());
    Insert(path, level - 1, last + BigEndian(number));
}

void IndexTree::Remove(std::string_view key, RowId row) {
    const std::string entry = EntryOf(key, row);
    Remove(std::span(&entry, 1));
}

void IndexTree::Remove(std::span<const std::string> entries) {
    searched_.clear();
    while (!entries.empty()) entries = entries.subspan(RemoveRun(entries));
}

// Removes the first entry, and those of the next ones that follow it in its leaf; how many.
std::size_t IndexTree::RemoveRun(std::span<const std::string> entries) {
    Path path = Descend(entries.front());
    std::size_t level = path.size() - 1;
    // Damage has taken it before.
    if (!View(path[level].page).Equals(path[level].place, entries.front())) return 1;
    IndexPageEditor page = Edit(path[level].page);
    std::size_t end = path[level].place;
    std::size_t count = 0;
    for (; count < entries.size() && page.Equals(end, entries[count]); ++count) end = page.After(end);
    page.Erase(path[level].place, end);

    if (!page.IsEmpty()) {
        if (path[level].place == page.Used()) Rename(path, level, page.Entry(page.LastPlace()));
        return count;
    }
    while (level > 0) {
        Drop(page);
        --level;
        page = Edit(path[level].page);
        if (!path[level].last) {
            page.Erase(path[level].place);
            break;
        }
        if (!page.IsEmpty()) {  // the last child but one becomes the last
            const std::size_t place = page.LastPlace();
            const std::string last = page.Entry(place);
            page.SetTail(page.Child(place));
            page.Erase(place);
            Rename(path, level, last);
            break;
        }
        if (level == 0) IndexPageEditor::FormatLeaf(file_->Change(index_->root), table_->page);
    }
    PullUp();
    return count;
}

// What is below the path's page of that level ends with `last` now: the node that says so is corrected.
void IndexTree::Rename(Path& path, std::size_t level, std::string_view last) {
    while (level-- > 0) {
        if (path[level].last) continue;
        IndexPageEditor node = Edit(path[level].page);
        const PageNumber child = node.Child(path[level].place);
        node.Erase(path[level].place);
        Insert(path, level, std::string(last).append(BigEndian(child)));
        return;
    }
}

// A root with a single child takes over that child's content.
void IndexTree::PullUp() {
    for (std::size_t level = 0; level < kMaxDepth; ++level) {
        const IndexPage root = View(index_->root);
        if (root.IsLeaf() || !root.IsEmpty()) return;
        const IndexPage child = View(root.Tail());
        if (child.Previous() != 0 || child.Next() != 0) child.Damaged(u"it is no only child");
        file_->Change(index_->root) = file_->Read(child.number());
        Release(child.number());
    }
}

// Takes an emptied page out of its level and gives it back.
void IndexTree::Drop(const IndexPage& page) {
    CheckLinks(page);
    Join(page.Previous(), page.Next());
    Release(page.number());
}

void IndexTree::CheckLinks(const IndexPage& page) {
    const auto meets = [&](const IndexPage& neighbour, PageNumber link) {
        if (neighbour.IsLeaf() != page.IsLeaf() || link != page.number()) {
            neighbour.Damaged(u"it is not linked with page " + Digits(page.number()));
        }
    };
    if (page.Previous() != 0) {
        const IndexPage previous = View(page.Previous());
        meets(previous, previous.Next());
    }
    if (page.Next() != 0) {
        const IndexPage next = View(page.Next());
        meets(next, next.Previous());
    }
}

// Neighbours on a level; 0 is the end.
void IndexTree::Join(PageNumber previous, PageNumber next) {
    if (previous != 0) Edit(previous).SetNext(next);
    if (next != 0) Edit(next).SetPrevious(previous);
}

PageNumber IndexTree::Take() {
    return UsageMap(*file_, index_->map).TakePage();
}

void IndexTree::Release(PageNumber page) {
    if (page == index_->root) file_->Damaged(page, u"an index's root is its own child");
    UsageMap(*file_, index_->map).DropPage(page);
}

IndexTree::Cursor IndexTree::Seek(std::string_view bytes) {
    const Step leaf = Descend(bytes).back();
    return Cursor(*file_, table_->page, leaf.page, leaf.place);
}

IndexTree::Cursor::Cursor(PageFile& file, PageNumber table, PageNumber page, std::size_t place)
    : file_(&file), table_(table), page_(page), place_(place) {
    Load();
}

void IndexTree::Cursor::Load() {
    IndexPage page = ViewPage(*file_, table_, page_);
    for (PageNumber steps = 0; place_ >= page.Used(); ++steps) {
        if (page.Next() == 0) {
            page_ = 0;
            return;
        }
        const IndexPage next = ViewPage(*file_, table_, page.Next());
        if (!next.IsLeaf() || next.Previous() != page_ || steps == file_->PageCount()) {
            next.Damaged(u"the chain of leaves is broken");
        }
        page = next;
        page_ = next.number();
        place_ = 0;
    }
    std::string entry = page.Entry(place_);
    if (entry <= entry_) page.Damaged(u"its entries are not in order");
    entry_ = std::move(entry);
}

RowId IndexTree::Cursor::row() const {
    const std::string_view word = std::string_view(entry_).substr(entry_.size() - kRowIdSize);
    return RowId::FromWord(BigU32(reinterpret_cast<const std::uint8_t*>(word.data())));
}

void IndexTree::Cursor::Next() {
    place_ = ViewPage(*file_, table_, page_).After(place_);
    Load();
}

}  // namespace tav::jet
