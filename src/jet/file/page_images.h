// The pages that changed since a moment inside a unit of work, as they were then, so that it can be taken
// back byte for byte: one object for the running statement, one for the savepoint.
#pragma once

#include <memory>
#include <vector>

#include "jet/file/page_cache.h"

namespace tav::jet {

class PageImages {
 public:
    // The cache outlives the images.
    PageImages(PageCache& cache, PageCache::Level level);

    // From now on; what was kept before is dropped.
    void Begin();
    // Before a page is changed; the first time counts. A page appended meanwhile needs no image.
    void Keep(PageNumber page, PageCache::CachedPage& cached);
    void Appended(PageCache::CachedPage& cached) const { cached.kept[level_] = number_; }
    // False when none has begun. Images of the other level that began later are of no use after this.
    bool TakeBack();
    void End() noexcept;

 private:
    // One that the unit had not changed yet is as it is on the disk.
    struct Image {
        PageNumber page = 0;
        bool changed = false;
        std::unique_ptr<Page> bytes;  // else they are in the spill file
        SpillFile::Place place = 0;
    };

    PageCache* cache_;
    PageCache::Level level_;
    bool active_ = false;
    std::uint64_t number_ = 0;  // of those begun
    PageNumber page_count_ = 0;
    std::vector<Image> images_;
    std::size_t in_memory_ = 0;                 // images whose bytes are
    std::vector<std::unique_ptr<Page>> spare_;  // buffers kept from one statement to the next
};

}  // namespace tav::jet
