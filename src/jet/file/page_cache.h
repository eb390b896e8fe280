// The pages of a database file in memory. One that the unit of work has not changed is as it is on the disk
// and may be let go at any time. A changed one is kept until the unit ends, in memory, or in the spill file
// when there are many.
#pragma once

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

#include "jet/file/format.h"
#include "jet/file/spill_file.h"
#include "platform/locked_file.h"

namespace tav::jet {

class PageCache {
 public:
    // What can be taken back inside a unit: a statement, and what happened since a savepoint (page_images.h).
    enum Level : std::size_t { kStatement, kSavepoint, kLevels };

    struct CachedPage {
        Page bytes;
        std::array<std::uint64_t, kLevels> kept{};  // by level, the last one that kept an image of it
        bool changed = false;
    };

    // `file` outlives the cache. The path is that of the database.
    PageCache(const LockedFile& file, TextView path, PageNumber count);

    PageNumber Count() const { return static_cast<PageNumber>(pages_.size()); }
    SpillFile& spill() { return spill_; }

    // A page below Count(). The reference stays valid until the next Trim, or until the page is forgotten.
    CachedPage& Load(PageNumber page);
    // The page, which Load returned, is part of the unit from now on.
    void MarkChanged(PageNumber page, CachedPage& cached);
    // One page more, all zero and changed.
    CachedPage& Append();

    // The pages that the unit has changed, in no order; those of them that were forgotten may be among them
    // until DropForgotten.
    std::vector<PageNumber>& changed() { return changed_; }
    // Such a page, read into the buffer when it is not in memory.
    const Page& Changed(PageNumber page, Page& buffer) const;

    // A changed page gets other bytes, wherever it is.
    void Restore(PageNumber page, const Page& bytes);
    // The page is as on the disk again.
    void Forget(PageNumber page);
    void CutTo(PageNumber count);
    void DropForgotten();

    // The end of a unit: what it changed is on the disk now, or is forgotten.
    void Keep();
    void Forget();

    // Lets pages go when there are more than memory should hold; whether it did.
    bool Trim();

 private:
    // A changed page that was let go. When it is in memory too, that one is newer.
    struct SpilledPage {
        SpillFile::Place place = 0;
        std::array<std::uint64_t, kLevels> kept{};
    };

    std::unique_ptr<CachedPage> NewPage();
    void LetGo(PageNumber page);
    void Spill(PageNumber page);
    void EndUnit();

    const LockedFile* file_;
    SpillFile spill_;
    std::vector<std::unique_ptr<CachedPage>> pages_;  // by number; null when not in memory
    std::vector<std::unique_ptr<CachedPage>> spare_;  // let go, for the next ones; not of a small file
    std::unordered_map<PageNumber, SpilledPage> spilled_;
    std::vector<PageNumber> changed_;
    // Pages in memory.
    std::size_t unchanged_count_ = 0;
    std::size_t changed_count_ = 0;
};

}  // namespace tav::jet
