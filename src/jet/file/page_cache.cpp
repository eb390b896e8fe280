#include "jet/file/page_cache.h"

#include <algorithm>
#include <utility>

namespace tav::jet {
namespace {

// More are let go by Trim: 16 MB of unchanged pages, 16 MB of changed ones.
constexpr std::size_t kUnchangedPages = 4096;
constexpr std::size_t kChangedPages = 4096;

}  // namespace

PageCache::PageCache(const LockedFile& file, TextView path, PageNumber count)
    : file_(&file), spill_(path), pages_(count) {}

// Its bytes are still to be set.
std::unique_ptr<PageCache::CachedPage> PageCache::NewPage() {
    if (spare_.empty()) return std::make_unique_for_overwrite<CachedPage>();
    std::unique_ptr<CachedPage> page = std::move(spare_.back());
    spare_.pop_back();
    page->kept = {};
    page->changed = false;
    return page;
}

PageCache::CachedPage& PageCache::Load(PageNumber page) {
    std::unique_ptr<CachedPage>& cached = pages_[page];
    if (cached != nullptr) return *cached;
    std::unique_ptr<CachedPage> loaded = NewPage();
    if (const auto found = spilled_.find(page); found != spilled_.end()) {
        spill_.Get(found->second.place, loaded->bytes);
        loaded->kept = found->second.kept;
        loaded->changed = true;
        ++changed_count_;
    } else {
        file_->ReadAt(Offset(page), loaded->bytes.data(), kPageSize);
        ++unchanged_count_;
    }
    cached = std::move(loaded);
    return *cached;
}

void PageCache::MarkChanged(PageNumber page, CachedPage& cached) {
    if (cached.changed) return;
    changed_.push_back(page);
    cached.changed = true;
    --unchanged_count_;
    ++changed_count_;
}

PageCache::CachedPage& PageCache::Append() {
    std::unique_ptr<CachedPage> cached = NewPage();
    cached->bytes.fill(0);
    cached->changed = true;
    changed_.push_back(Count());
    ++changed_count_;
    return *pages_.emplace_back(std::move(cached));
}

const Page& PageCache::Changed(PageNumber page, Page& buffer) const {
    if (pages_[page] != nullptr) return pages_[page]->bytes;
    spill_.Get(spilled_.at(page).place, buffer);
    return buffer;
}

void PageCache::Restore(PageNumber page, const Page& bytes) {
    if (pages_[page] != nullptr) {
        pages_[page]->bytes = bytes;
    } else {
        spill_.PutAgain(spilled_.at(page).place, bytes);
    }
}

void PageCache::LetGo(PageNumber page) {
    std::unique_ptr<CachedPage>& cached = pages_[page];
    if (cached == nullptr) return;
    --(cached->changed ? changed_count_ : unchanged_count_);
    if (spare_.size() < spare_.capacity()) spare_.push_back(std::move(cached));
    cached.reset();
}

void PageCache::Forget(PageNumber page) {
    LetGo(page);
    spilled_.erase(page);
}

void PageCache::CutTo(PageNumber count) {
    for (PageNumber page = count; page < Count(); ++page) Forget(page);
    pages_.resize(count);
}

void PageCache::DropForgotten() {
    std::erase_if(changed_, [&](PageNumber page) {
        if (page >= Count()) return true;
        return pages_[page] != nullptr ? !pages_[page]->changed : !spilled_.contains(page);
    });
}

void PageCache::EndUnit() {
    changed_.clear();
    spilled_.clear();
    spill_.Clear();
}

void PageCache::Keep() {
    for (const PageNumber page : changed_) {
        if (pages_[page] != nullptr) pages_[page]->changed = false;
    }
    unchanged_count_ += std::exchange(changed_count_, 0);
    EndUnit();
}

void PageCache::Forget() {
    for (const PageNumber page : changed_) LetGo(page);
    EndUnit();
}

void PageCache::Spill(PageNumber page) {
    const CachedPage& cached = *pages_[page];
    if (const auto found = spilled_.find(page); found != spilled_.end()) {
        spill_.PutAgain(found->second.place, cached.bytes);
        found->second.kept = cached.kept;
    } else {
        spilled_.emplace(page, SpilledPage{spill_.Put(cached.bytes), cached.kept});
    }
    LetGo(page);
}

bool PageCache::Trim() {
    const bool too_many_unchanged = unchanged_count_ > kUnchangedPages;
    const bool too_many_changed = changed_count_ > kChangedPages;
    if (too_many_unchanged) {
        spare_.reserve(kUnchangedPages);
        for (PageNumber page = 0; page < Count(); ++page) {
            if (pages_[page] != nullptr && !pages_[page]->changed) LetGo(page);
        }
    }
    if (too_many_changed) {
        for (const PageNumber page : changed_) {
            if (pages_[page] != nullptr) Spill(page);
        }
    }
    return too_many_unchanged || too_many_changed;
}

}  // namespace tav::jet
