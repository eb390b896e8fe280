// The tree of one real index: leaves of entries (key, row id) in byte order, nodes above them.
//
// Leaves are linked from first to last. A node's entry is the last entry of its child, row id included; the
// last child has no entry, the node's tail names it. The root keeps its page number; an index of an empty
// table is one empty leaf. The index's usage map holds exactly the tree's pages.
//
// A node knows its height above the leaves, which are 0; the nodes of a level are linked as leaves are.
//
// Pages are not merged when they become sparse; an emptied one leaves the tree. A node below the root may
// then be left with its tail alone.
//
// Damage (a page of another table, entries out of order, links that do not meet, a child that does not end
// where the node says, more than kMaxDepth levels) is a Failure that names file and page. A change that fails
// half-way leaves the tree broken: the caller takes the statement back (page_file.h).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/file/format.h"
#include "jet/index/index_page.h"
#include "jet/schema/table_definition.h"

namespace tav::jet {

class PageFile;

class IndexTree {
 public:
    // `table` and `index` stay alive as long as the tree.
    IndexTree(PageFile& file, const TableDefinition& table, const RealIndex& index);

    bool HasKey(std::string_view key);
    // From all leaves.
    std::uint64_t CountEntries();

    // Adds or removes one entry, splitting and dropping pages as needed. Adding an entry that is there is a
    // Failure: the index is damaged. Where damage has left no entry to remove, nothing is done. A key is at most
    // kMaxKeySize long. What HasKey found out about the key serves the Add that follows; nobody else changes
    // the tree in between.
    void Add(std::string_view key, RowId row);
    void Remove(std::string_view key, RowId row);
    // Removes many, as EntryOf makes them, in ascending order: those that follow each other go together.
    void Remove(std::span<const std::string> entries);
    static std::string EntryOf(std::string_view key, RowId row);

    // Walks entries in order, across leaves. The tree must not change meanwhile.
    class Cursor {
     public:
        bool AtEnd() const { return page_ == 0; }
        std::string_view key() const {
            return std::string_view(entry_).substr(0, entry_.size() - kRowIdSize);
        }
        RowId row() const;
        void Next();

     private:
        friend class IndexTree;
        Cursor(PageFile& file, PageNumber table, PageNumber page, std::size_t place);
        // Reads the entry at the place, which may lie after the last one of its page.
        void Load();

        PageFile* file_;
        PageNumber table_;
        PageNumber page_;
        std::size_t place_;  // of the entry on its page
        std::string entry_;  // whole
    };
    // The first entry whose bytes are not below `bytes` (a key, or the beginning of one).
    Cursor Seek(std::string_view bytes);
    Cursor First() { return Seek({}); }

 private:
    // The way from the root down to a leaf.
    struct Step {
        PageNumber page = 0;
        std::size_t place = 0;  // of the entry followed; in the leaf, of the one searched
        bool last = false;      // place is after the last entry: the node's tail was followed
    };
    using Path = std::vector<Step>;

    IndexPage View(PageNumber page) const;
    IndexPageEditor Edit(PageNumber page);
    Path Descend(std::string_view entry) const;
    Path WayTo(std::string_view entry);

    void Insert(Path& path, std::size_t level, std::string_view entry);
    void PushDown(Path& path);
    void Split(Path& path, std::size_t level, const IndexPageEditor::Overflow& all);

    std::size_t RemoveRun(std::span<const std::string> entries);
    void Rename(Path& path, std::size_t level, std::string_view last);
    void PullUp();
    void Drop(const IndexPage& page);

    void CheckLinks(const IndexPage& page);
    void Join(PageNumber previous, PageNumber next);
    PageNumber Take();
    void Release(PageNumber page);

    PageFile* file_;
    const TableDefinition* table_;
    const RealIndex* index_;
    Path searched_;  // by HasKey, until the tree changes
};

}  // namespace tav::jet
