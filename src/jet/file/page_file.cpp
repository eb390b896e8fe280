#include "jet/file/page_file.h"

#include <algorithm>
#include <array>

#include "common/concat.h"
#include "common/database_failure.h"
#include "jet/file/locked_database.h"
#include "jet/file/page_allocation.h"
#include "jet/file/page_cache.h"
#include "jet/file/page_images.h"
#include "jet/file/rollback_journal.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

constexpr std::uint64_t kMostPages = 524288;  // 2 GB

PageNumber PagesOf(TextView path, const LockedFile& file) {
    const std::uint64_t size = file.Size();
    if (size % kPageSize != 0 || size < 3 * kPageSize || size / kPageSize > kMostPages) {
        throw Failure(
            Concat(u"Unrecognized database format '", path, u"'. The file is damaged: its size is wrong."));
    }
    return static_cast<PageNumber>(size / kPageSize);
}

}  // namespace

struct PageFile::State {
    State(const Text& real_path, Access wanted)
        : path(real_path),
          access(wanted),
          locked(OpenLocked(path, access)),
          committed_count(PagesOf(path, locked.file)),
          cache(locked.file, path, committed_count) {}

    Text path;
    Access access;
    LockedDatabase locked;
    PageNumber committed_count;
    PageCache cache;
    PageImages statement{cache, PageCache::kStatement};
    PageImages savepoint{cache, PageCache::kSavepoint};
    std::uint64_t rollbacks = 0;
    std::uint64_t trims = 0;
    Allocation allocation;
    // The disk holds half a unit that could not be undone; the journal stays for the next open.
    bool torn = false;

    void RefuseTorn() const {
        if (!torn) return;
        throw DatabaseFailure(Concat(u"The database '", path,
                                     u"' could not be brought back to its last whole state; open it again."));
    }

    void RefuseReading() const {
        if (access == Access::Write) return;
        throw DatabaseFailure(Concat(u"Cannot update. Database or object is read-only: '", path, u"'."));
    }

    PageCache::CachedPage& Load(PageNumber page) {
        RefuseTorn();
        return cache.Load(page);
    }

    void ForgetChanges() {
        cache.Forget();
        cache.CutTo(committed_count);
        statement.End();
        savepoint.End();
        ++rollbacks;
    }

    // What cannot be taken back on its own goes with the whole unit.
    void TakeBack(PageImages& images) {
        try {
            if (images.TakeBack()) ++rollbacks;
        } catch (...) {
            ForgetChanges();
            throw DatabaseFailure(CurrentFailure());
        }
    }

    // Until the journal is made invalid the unit is not done: whatever fails before, the journal undoes it.
    void WriteChanges(const RollbackJournal& journal) {
        Page buffer;
        try {
            for (const PageNumber page : cache.changed()) {
                locked.file.WriteAt(Offset(page), cache.Changed(page, buffer).data(), kPageSize);
            }
            locked.file.Sync();
            journal.Invalidate();
        } catch (...) {
            torn = true;
            journal.Validate();  // it may be invalid already, and a kill may come before the pages are back
            journal.PlayBack(locked.file);
            journal.Delete();
            torn = false;
            throw;
        }
        journal.Remove();
    }

    void WriteUnit() {
        RefuseTorn();
        std::vector<PageNumber>& changed = cache.changed();
        std::ranges::sort(changed);
        const auto first_new = std::ranges::lower_bound(changed, committed_count);
        Page original;
        locked.file.ReadAt(0, original.data(), kPageSize);
        RollbackJournal journal(path, original.data(), committed_count, cache.Count(),
                                static_cast<std::size_t>(first_new - changed.begin()));
        Page buffer;
        for (auto page = changed.begin(); page != first_new; ++page) {
            locked.file.ReadAt(Offset(*page), original.data(), kPageSize);
            journal.Add(*page, original, cache.Changed(*page, buffer));
        }
        journal.Finish();
        WriteChanges(journal);
    }
};

PageFile::PageFile(TextView typed_path, Access access)
    : state_(std::make_unique<State>(RealPath(typed_path), access)) {}

PageFile::~PageFile() = default;

const Text& PageFile::path() const {
    return state_->path;
}

bool PageFile::writable() const {
    return state_->access == Access::Write;
}

PageNumber PageFile::PageCount() const {
    return state_->cache.Count();
}

std::uint64_t PageFile::Rollbacks() const {
    return state_->rollbacks;
}

Allocation& PageFile::allocation() {
    return state_->allocation;
}

void ThrowDamaged(TextView path, PageNumber page, TextView reason) {
    throw DatabaseFailure(
        Concat(u"The database '", path, u"' is damaged (page ", Digits(page), u"): ", reason, u"."));
}

void PageFile::Damaged(PageNumber page, TextView reason) const {
    ThrowDamaged(path(), page, reason);
}

const Page& PageFile::Read(PageNumber page) {
    if (page >= PageCount()) Damaged(page, u"the file ends before it");
    return state_->Load(page).bytes;
}

Page& PageFile::Change(PageNumber page) {
    state_->RefuseReading();
    if (page == 0) Damaged(page, u"the header is never changed");
    if (page >= PageCount()) Damaged(page, u"the file ends before it");
    PageCache::CachedPage& cached = state_->Load(page);
    state_->statement.Keep(page, cached);
    state_->savepoint.Keep(page, cached);
    state_->cache.MarkChanged(page, cached);
    return cached.bytes;
}

PageNumber PageFile::Append() {
    state_->RefuseReading();
    PageCache::CachedPage& cached = state_->cache.Append();
    state_->statement.Appended(cached);
    state_->savepoint.Appended(cached);
    return PageCount() - 1;
}

void PageFile::BeginStatement() {
    state_->statement.Begin();
}

void PageFile::KeepStatement() {
    state_->statement.End();
}

void PageFile::RollBackStatement() {
    state_->TakeBack(state_->statement);
}

void PageFile::SetSavepoint() {
    state_->savepoint.Begin();
}

void PageFile::ReleaseSavepoint() {
    state_->savepoint.End();
}

void PageFile::RollBackToSavepoint() {
    state_->statement.End();
    state_->TakeBack(state_->savepoint);
}

void PageFile::Commit() {
    state_->statement.End();
    state_->savepoint.End();
    if (!HasChanges()) return;
    try {
        state_->WriteUnit();
    } catch (...) {
        state_->ForgetChanges();
        throw;
    }
    state_->cache.Keep();
    state_->committed_count = PageCount();
}

void PageFile::RollBack() {
    state_->ForgetChanges();
}

bool PageFile::HasChanges() const {
    return !state_->cache.changed().empty();
}

std::uint64_t PageFile::Trims() const {
    return state_->trims;
}

void PageFile::Trim() {
    if (state_->cache.Trim()) ++state_->trims;
}

}  // namespace tav::jet
