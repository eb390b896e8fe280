#include "jet/file/locked_database.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

#include "common/concat.h"
#include "common/database_failure.h"
#include "jet/file/header.h"
#include "jet/file/rollback_journal.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

using Access = LockedFile::Access;

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
[[noreturn]] void ExplainDenial(TextView path, Access access) {
    bool alone = false;
    if (access == Access::Write) {
        try {
            alone = LockedFile(path, Access::Read).TryExclusive();
        } catch (const Failure&) {
            alone = false;
        }
    }
    if (alone) {
        throw DatabaseFailure(Concat(u"Cannot update. Database or object is read-only: '", path, u"'."));
    }
    throw FileInUse(path);
}

LockedFile Lock(TextView path, Access access) {
    try {
        return LockedFile(path, access);
    } catch (const Failure& failure) {
        switch (failure.error()) {
            case RunTimeError::FileNotFound:
            case RunTimeError::PathNotFound:
                throw Failure(Concat(u"Could not find file '", path, u"'."));
            case RunTimeError::PermissionDenied:
                ExplainDenial(path, access);
            default:
                throw;
        }
    }
}

std::unique_ptr<UsersFile> UsersFor(TextView path, Access access) {
    return access == Access::Write ? std::make_unique<UsersFile>(path) : nullptr;
}

void RefuseForeign(TextView path, const LockedFile& file) {
    std::array<std::uint8_t, kHeaderSize> header{};
    if (file.Size() < kPageSize) throw Failure(Concat(u"Unrecognized database format '", path, u"'."));
    file.ReadAt(0, header.data(), header.size());
    const Text why = WhyForeign(path, header.data());
    if (!why.empty()) throw Failure(why);
}

LockedDatabase OpenAlone(TextView path) {
    try {
        LockedFile file = Lock(path, Access::Write);
        return {std::move(file), UsersFor(path, Access::Write)};
    } catch (const Failure& failure) {
        const Text why =
            Concat(failure.description(), u" An interrupted change of this database has to be undone first.");
        throw failure.error() == RunTimeError::FileInUse ? Failure(RunTimeError::FileInUse, why)
                                                         : Failure(why);
    }
}

// Undoes what a killed writer left half done. It needs the file alone and writable.
void RecoverAlone(TextView path) {
    LockedDatabase database = OpenAlone(path);
    if (RollbackJournal::Exists(path)) RollbackJournal::Recover(path, database.file);
}

LockedDatabase OpenWhole(TextView path, Access access) {
    {
        LockedFile file = Lock(path, access);
        RefuseForeign(path, file);
        std::unique_ptr<UsersFile> users = UsersFor(path, access);
        if (!RollbackJournal::Exists(path)) return {std::move(file), std::move(users)};
    }
    RecoverAlone(path);
    LockedFile file = Lock(path, access);
    if (RollbackJournal::Exists(path)) throw FileInUse(path);
    return {std::move(file), UsersFor(path, access)};
}

}  // namespace

void SetPatience(std::chrono::seconds patience) {
    patience_of_all = patience;
}

LockedDatabase OpenLocked(TextView path, Access access) {
    for (Patience patience;;) {
        try {
            return OpenWhole(path, access);
        } catch (const Failure& failure) {
            if (failure.error() != RunTimeError::FileInUse || !patience.Again()) throw;
        }
    }
}

}  // namespace tav::jet
