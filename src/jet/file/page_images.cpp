#include "jet/file/page_images.h"

#include <utility>

namespace tav::jet {
namespace {

constexpr std::size_t kImagesInMemory = 2048;  // 8 MB
constexpr std::size_t kSpareBuffers = 64;

}  // namespace

PageImages::PageImages(PageCache& cache, PageCache::Level level) : cache_(&cache), level_(level) {
    spare_.reserve(kSpareBuffers);
}

void PageImages::Begin() {
    End();
    active_ = true;
    ++number_;
    page_count_ = cache_->Count();
}

void PageImages::Keep(PageNumber page, PageCache::CachedPage& cached) {
    if (!active_ || cached.kept[level_] == number_) return;
    Image image{page, cached.changed, nullptr};
    if (cached.changed && in_memory_ < kImagesInMemory) {
        if (spare_.empty()) spare_.push_back(std::make_unique<Page>());
        image.bytes = std::move(spare_.back());
        spare_.pop_back();
        *image.bytes = cached.bytes;
        ++in_memory_;
    } else if (cached.changed) {
        image.place = cache_->spill().Put(cached.bytes);
    }
    images_.push_back(std::move(image));
    cached.kept[level_] = number_;
}

bool PageImages::TakeBack() {
    if (!active_) return false;
    Page buffer;
    for (const Image& image : images_) {
        if (!image.changed) {
            cache_->Forget(image.page);
        } else if (image.bytes != nullptr) {
            cache_->Restore(image.page, *image.bytes);
        } else {
            cache_->spill().Get(image.place, buffer);
            cache_->Restore(image.page, buffer);
        }
    }
    cache_->CutTo(page_count_);
    cache_->DropForgotten();
    End();
    return true;
}

// It needs no memory: a unit that is whole cannot fail here.
void PageImages::End() noexcept {
    active_ = false;
    for (Image& image : images_) {
        if (image.bytes != nullptr && spare_.size() < spare_.capacity())
            spare_.push_back(std::move(image.bytes));
    }
    images_.clear();
    in_memory_ = 0;
}

}  // namespace tav::jet
