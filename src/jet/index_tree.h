// The tree of one real index: leaves of entries (key, row id) in byte order, nodes above them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/format.h"
#include "jet/table_definition.h"

namespace tav::jet {

class PageFile;

class IndexTree {
 public:
    // `table` and `index` stay alive as long as the tree.
    IndexTree(PageFile& file, const TableDefinition& table, const RealIndex& index);

    bool HasKey(std::string_view key);

    // Adds or removes one entry, splitting and dropping pages as needed; the root page keeps its number.
    // Adding an entry that is there, or removing one that is not, is a Failure: the index is damaged.
    void Add(std::string_view key, RowId row);
    void Remove(std::string_view key, RowId row);

    // Walks entries in order, across leaves. The tree must not change meanwhile.
    class Cursor {
     public:
        bool AtEnd() const { return page_ == 0; }
        std::string_view key() const { return std::string_view(entry_).substr(0, entry_.size() - 4); }
        RowId row() const;
        void Next();

     private:
        friend class IndexTree;
        PageFile* file_ = nullptr;
        PageNumber page_ = 0;
        std::size_t begin_ = 0;  // of the entry in the page's entry area
        std::size_t end_ = 0;
        std::string entry_;  // whole, prefix put back
        void Load();
    };
    // The first entry whose bytes are not below `bytes` (a key, or the beginning of one).
    Cursor Seek(std::string_view bytes);
    Cursor First() { return Seek({}); }

 private:
    PageFile* file_;
    const TableDefinition* table_;
    const RealIndex* index_;
};

}  // namespace tav::jet
