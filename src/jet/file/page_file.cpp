#include "jet/file/page_file.h"

#include <algorithm>
#include <array>
#include <optional>
#include <thread>
#include <vector>

#include "common/concat.h"
#include "common/database_failure.h"
#include "jet/file/header.h"
#include "jet/file/page_allocation.h"
#include "jet/file/rollback_journal.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

constexpr std::size_t kUnchangedPages = 16384;  // 64 MB; more are let go by Trim
constexpr std::uint64_t kMostPages = 524288;    // 2 GB
constexpr std::size_t kSpareImages = 64;        // buffers for page images kept between statements

Text Quoted(TextView before, TextView path, TextView after) {
    return Concat(before, u"'", path, u"'", after);
}

std::chrono::seconds patience_of_all{0};

// The waits between the attempts to open one file.
class Patience {
 public:
    // After a wait; false when no time is left.
    bool Again() {
        const auto left = end_ - Clock::now();
        if (left <= Clock::duration::zero() || InterruptWatch::Interrupted()) return false;
        std::this_thread::sleep_for(std::min<Clock::duration>(wait_, left));
        wait_ = std::min(wait_ * 2, kLongestWait);
        return true;
    }

 private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kLongestWait{500};

    Clock::time_point end_ = Clock::now() + patience_of_all;
    std::chrono::milliseconds wait_{20};
};

// "Permission denied" stands for a lock and for a missing right. Who may read it and have it alone, but not
// write it, lacks the right.
[[noreturn]] void ExplainDenial(TextView path, PageFile::Access access) {
    bool alone = false;
    if (access == PageFile::Access::Write) {
        try {
            alone = LockedFile(path, PageFile::Access::Read).TryExclusive();
        } catch (const Failure&) {
            alone = false;
        }
    }
    if (alone) throw DatabaseFailure(Quoted(u"Cannot update. Database or object is read-only: ", path, u"."));
    throw FileInUse(path);
}

LockedFile OpenLocked(TextView path, PageFile::Access access) {
    try {
        return LockedFile(path, access);
    } catch (const Failure& failure) {
        switch (failure.error()) {
            case RunTimeError::FileNotFound:
            case RunTimeError::PathNotFound:
                throw Failure(Quoted(u"Could not find file ", path, u"."));
            case RunTimeError::PermissionDenied:
                ExplainDenial(path, access);
            default:
                throw;
        }
    }
}

// A ".ldb" file lists the users of a shared database, and each of them holds a lock on it. One that nobody
// holds is left over from a crash.
void RefuseSharers(TextView path) {
    const std::size_t name = path.size() - NameOf(path).size();
    const std::size_t dot = path.rfind(u'.');
    const bool has_extension = dot != TextView::npos && dot >= name;
    const Text users = Text(path.substr(0, has_extension ? dot : path.size())).append(u".ldb");
    if (!FileExists(users)) return;
    if (IsHeld(users)) throw FileInUse(path);
    try {
        DeleteFile(users);
    } catch (const Failure&) {
        throw FileInUse(path);
    }
}

void RefuseForeign(TextView path, const LockedFile& file) {
    std::array<std::uint8_t, kHeaderSize> header{};
    if (file.Size() < kPageSize) throw Failure(Quoted(u"Unrecognized database format ", path, u"."));
    file.ReadAt(0, header.data(), header.size());
    const Text why = WhyForeign(path, header.data());
    if (!why.empty()) throw Failure(why);
}

constexpr TextView kUndoneFirst = u" An interrupted change of this database has to be undone first.";

LockedFile OpenAlone(TextView path) {
    try {
        LockedFile file = OpenLocked(path, PageFile::Access::Write);
        RefuseSharers(path);
        return file;
    } catch (const Failure& failure) {
        const Text why = Text(failure.description()).append(kUndoneFirst);
        throw failure.error() == RunTimeError::FileInUse ? Failure(RunTimeError::FileInUse, why)
                                                         : Failure(why);
    }
}

// Undoes what a killed writer left half done. It needs the file alone and writable.
void RecoverAlone(TextView path) {
    LockedFile file = OpenAlone(path);
    if (RollbackJournal::Exists(path)) RollbackJournal::Recover(path, file);
}

LockedFile OpenWhole(TextView path, PageFile::Access access) {
    {
        LockedFile file = OpenLocked(path, access);
        RefuseForeign(path, file);
        if (access == PageFile::Access::Write) RefuseSharers(path);
        if (!RollbackJournal::Exists(path)) return file;
    }
    RecoverAlone(path);
    LockedFile file = OpenLocked(path, access);
    if (RollbackJournal::Exists(path)) throw FileInUse(path);
    return file;
}

LockedFile OpenPatiently(TextView path, PageFile::Access access) {
    for (Patience patience;;) {
        try {
            return OpenWhole(path, access);
        } catch (const Failure& failure) {
            if (failure.error() != RunTimeError::FileInUse || !patience.Again()) throw;
        }
    }
}

}  // namespace

struct PageFile::State {
    // What can be taken back inside a unit: a statement, and what happened since a savepoint.
    enum Level { kStatement, kSavepoint, kLevels };

    struct CachedPage {
        Page bytes;
        std::array<std::uint64_t, kLevels> kept{};  // by level, the last one that kept an image of it
        bool changed = false;
    };
    struct Image {
        PageNumber page = 0;
        bool changed = false;
        Page bytes;
    };
    // The pages that changed since it began, as they were.
    struct Images {
        bool active = false;
        std::uint64_t number = 0;  // of those begun at this level
        PageNumber page_count = 0;
        std::vector<std::unique_ptr<Image>> images;  // the first `used` are of the present one
        std::size_t used = 0;

        void Begin(PageNumber count) {
            End();
            active = true;
            ++number;
            page_count = count;
        }

        void Keep(PageNumber page, const CachedPage& entry) {
            if (used == images.size()) images.push_back(std::make_unique<Image>());
            Image& image = *images[used++];
            image.page = page;
            image.changed = entry.changed;
            image.bytes = entry.bytes;
        }

        void End() {
            active = false;
            used = 0;
            if (images.size() > kSpareImages) images.resize(kSpareImages);
        }
    };

    Text path;
    Access access = Access::Read;
    std::optional<LockedFile> file;
    PageNumber count = 0;
    PageNumber committed_count = 0;
    std::vector<std::unique_ptr<CachedPage>> pages;  // by number; null when not in memory
    std::vector<PageNumber> changed;
    std::size_t unchanged = 0;  // pages in memory that could be read again
    std::uint64_t rollbacks = 0;
    Allocation allocation;
    bool torn =
        false;  // the disk holds half a unit that could not be undone; the journal stays for the next open

    std::array<Images, kLevels> levels;

    std::uint64_t Offset(PageNumber page) const { return static_cast<std::uint64_t>(page) * kPageSize; }

    void RefuseTorn() const {
        if (!torn) return;
        throw DatabaseFailure(Quoted(u"The database ", path,
                                     u" could not be brought back to its last whole state; open it again."));
    }

    CachedPage& Load(PageNumber page) {
        RefuseTorn();
        std::unique_ptr<CachedPage>& entry = pages[page];
        if (entry == nullptr) {
            auto loaded = std::make_unique<CachedPage>();
            file->ReadAt(Offset(page), loaded->bytes.data(), kPageSize);
            entry = std::move(loaded);
            ++unchanged;
        }
        return *entry;
    }

    void KeepImages(PageNumber page, CachedPage& entry) {
        for (std::size_t level = 0; level < kLevels; ++level) {
            if (!levels[level].active || entry.kept[level] == levels[level].number) continue;
            levels[level].Keep(page, entry);
            entry.kept[level] = levels[level].number;
        }
    }

    void EndLevels() {
        for (Images& level : levels) level.End();
    }

    void RollBackLevel(Level level) {
        Images& images = levels[level];
        if (!images.active) return;
        for (std::size_t i = 0; i < images.used; ++i) {
            const Image& image = *images.images[i];
            CachedPage& entry = Load(image.page);
            if (entry.changed && !image.changed) ++unchanged;
            entry.bytes = image.bytes;
            entry.changed = image.changed;
        }
        CutTo(images.page_count);
        std::erase_if(changed, [&](PageNumber page) { return page >= count || !pages[page]->changed; });
        images.End();
        ++rollbacks;
    }

    void CutTo(PageNumber page_count) {
        pages.resize(page_count);
        count = page_count;
    }

    void ForgetChanges() {
        for (const PageNumber page : changed) {
            if (page < committed_count) pages[page].reset();
        }
        changed.clear();
        CutTo(committed_count);
        EndLevels();
        ++rollbacks;
    }

    // Until the journal is made invalid the unit is not done: whatever fails before, the journal undoes it.
    void WriteChanges(const RollbackJournal& journal) {
        try {
            for (const PageNumber page : changed) {
                file->WriteAt(Offset(page), pages[page]->bytes.data(), kPageSize);
            }
            file->Sync();
            journal.Invalidate();
        } catch (...) {
            torn = true;
            journal.Validate();  // it may be invalid already, and a kill may come before the pages are back
            journal.PlayBack(*file);
            journal.Delete();
            torn = false;
            throw;
        }
        journal.Remove();
    }

    RollbackJournal MakeJournal() const {
        RefuseTorn();
        Page original;
        file->ReadAt(0, original.data(), kPageSize);
        RollbackJournal journal(path, original.data(), committed_count, count);
        for (const PageNumber page : changed) {
            if (page >= committed_count) continue;
            file->ReadAt(Offset(page), original.data(), kPageSize);
            journal.Add(page, original, pages[page]->bytes);
        }
        return journal;
    }
};

void PageFile::SetPatience(std::chrono::seconds patience) {
    patience_of_all = patience;
}

PageFile::PageFile(TextView typed_path, Access access) : state_(std::make_unique<State>()) {
    const Text path = RealPath(typed_path);
    state_->path = path;
    state_->access = access;
    state_->file = OpenPatiently(path, access);
    const std::uint64_t size = state_->file->Size();
    if (size % kPageSize != 0 || size < 3 * kPageSize || size / kPageSize > kMostPages) {
        throw Failure(
            Quoted(u"Unrecognized database format ", path, u". The file is damaged: its size is wrong."));
    }
    state_->committed_count = static_cast<PageNumber>(size / kPageSize);
    state_->CutTo(state_->committed_count);
}

PageFile::~PageFile() = default;

const Text& PageFile::path() const {
    return state_->path;
}

bool PageFile::writable() const {
    return state_->access == Access::Write;
}

PageNumber PageFile::PageCount() const {
    return state_->count;
}

std::uint64_t PageFile::Rollbacks() const {
    return state_->rollbacks;
}

Allocation& PageFile::allocation() {
    return state_->allocation;
}

void ThrowDamaged(TextView path, PageNumber page, TextView reason) {
    throw DatabaseFailure(Quoted(u"The database ", path, u" is damaged (page ")
                              .append(Digits(page))
                              .append(u"): ")
                              .append(reason)
                              .append(u"."));
}

void PageFile::Damaged(PageNumber page, TextView reason) const {
    ThrowDamaged(path(), page, reason);
}

const Page& PageFile::Read(PageNumber page) {
    if (page >= state_->count) Damaged(page, u"the file ends before it");
    return state_->Load(page).bytes;
}

Page& PageFile::Change(PageNumber page) {
    if (!writable()) {
        throw DatabaseFailure(
            Quoted(u"Cannot update. Database or object is read-only: ", state_->path, u"."));
    }
    if (page == 0) Damaged(page, u"the header is never changed");
    if (page >= state_->count) Damaged(page, u"the file ends before it");
    State::CachedPage& entry = state_->Load(page);
    state_->KeepImages(page, entry);
    if (!entry.changed) {
        state_->changed.push_back(page);
        entry.changed = true;
        --state_->unchanged;
    }
    return entry.bytes;
}

PageNumber PageFile::Append() {
    if (!writable()) {
        throw DatabaseFailure(
            Quoted(u"Cannot update. Database or object is read-only: ", state_->path, u"."));
    }
    const PageNumber page = state_->count;
    auto entry = std::make_unique<State::CachedPage>();
    entry->bytes.fill(0);
    entry->changed = true;
    for (std::size_t i = 0; i < State::kLevels; ++i) entry->kept[i] = state_->levels[i].number;
    state_->changed.push_back(page);
    state_->pages.push_back(std::move(entry));
    ++state_->count;
    return page;
}

void PageFile::BeginStatement() {
    state_->levels[State::kStatement].Begin(state_->count);
}

void PageFile::KeepStatement() {
    state_->levels[State::kStatement].End();
}

void PageFile::RollBackStatement() {
    state_->RollBackLevel(State::kStatement);
}

void PageFile::SetSavepoint() {
    state_->levels[State::kSavepoint].Begin(state_->count);
}

void PageFile::ReleaseSavepoint() {
    state_->levels[State::kSavepoint].End();
}

void PageFile::RollBackToSavepoint() {
    state_->levels[State::kStatement].End();
    state_->RollBackLevel(State::kSavepoint);
}

void PageFile::Commit() {
    state_->EndLevels();
    if (!HasChanges()) return;
    std::sort(state_->changed.begin(), state_->changed.end());
    try {
        RollbackJournal journal = state_->MakeJournal();
        journal.Write();
        state_->WriteChanges(journal);
    } catch (...) {
        state_->ForgetChanges();
        throw;
    }
    for (const PageNumber page : state_->changed) state_->pages[page]->changed = false;
    state_->unchanged += state_->changed.size();
    state_->changed.clear();
    state_->committed_count = state_->count;
}

void PageFile::RollBack() {
    state_->ForgetChanges();
}

bool PageFile::HasChanges() const {
    return !state_->changed.empty();
}

void PageFile::Trim() {
    if (state_->unchanged <= kUnchangedPages) return;
    for (std::unique_ptr<State::CachedPage>& entry : state_->pages) {
        if (entry != nullptr && !entry->changed) entry.reset();
    }
    state_->unchanged = 0;
}

}  // namespace tav::jet
