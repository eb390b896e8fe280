// The pages of one database file: read on demand into a cache, changed in units that reach the disk whole.
//
// A unit of work begins with the first change after Open or Commit and ends with Commit or RollBack. Commit
// writes the original images of the changed pages into the rollback journal (the database's path +
// "-journal"), syncs it and its folder, writes the pages, syncs the file, makes the journal invalid, syncs
// that and deletes it. The unit is done when the journal is invalid. A kill or a power loss anywhere in
// between leaves either the old or the new state after the next open, which rolls back what a journal that
// was written whole says (rollback_journal.h). Page 0 is never written. Inside a unit each statement can be
// taken back on its own, and so can all of them since a savepoint. Neither the journal nor the changed pages
// need to fit into memory.
//
// A path that goes through links is resolved first: lock, journal and ".ldb" are those of the real file, and
// messages name it.
//
// The file is locked from open to close; what is refused then, and why, is told in locked_database.h.
#pragma once

#include <cstddef>
#include <memory>

#include "common/text.h"
#include "jet/file/format.h"
#include "platform/locked_file.h"

namespace tav::jet {

struct Allocation;

class PageFile {
 public:
    using Access = LockedFile::Access;

    PageFile(TextView path, Access access);
    ~PageFile();  // rolls back what was not committed
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    const Text& path() const;
    bool writable() const;
    PageNumber PageCount() const;

    // A page beyond the end, or one that cannot be read, is a Failure naming file and page. The reference
    // stays valid until the next Trim, Commit or RollBack.
    const Page& Read(PageNumber page);
    // The same to change it. Fails on a file opened for reading.
    Page& Change(PageNumber page);
    // One page more at the end, all zero; its number.
    PageNumber Append();

    // A statement: what it changed since BeginStatement is taken back by RollBackStatement, byte for byte, or
    // kept.
    void BeginStatement();
    void KeepStatement();
    void RollBackStatement();

    // Several statements: what they changed since SetSavepoint is taken back by RollBackToSavepoint, byte for
    // byte, or kept. There is one savepoint at a time, set between statements; a new one and Commit release
    // it.
    void SetSavepoint();
    void ReleaseSavepoint();
    void RollBackToSavepoint();

    // Ends the unit of work. When the disk refuses (full, read error), everything is as before the unit and
    // the Failure is thrown.
    void Commit();
    void RollBack();
    bool HasChanges() const;

    // Grows with every rollback of a statement or a unit: whoever keeps what he read from pages reads it
    // again when this has changed.
    std::uint64_t Rollbacks() const;

    // What page_allocation.h keeps with the file.
    Allocation& allocation();

    // The Failure of a page that contradicts itself: "The database '...' is damaged (page 17): reason."
    [[noreturn]] void Damaged(PageNumber page, TextView reason) const;

    // Lets go of pages when the cache holds more than its share; changed ones go into a temporary file until
    // the unit ends. So a statement about a large file, which calls it between rows, needs little memory. No
    // reference to a page is valid after it.
    void Trim();
    // Grows when Trim has let pages go: whoever holds bytes of a page while others read reads them again.
    std::uint64_t Trims() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

// The same for those who have a page's bytes alone.
[[noreturn]] void ThrowDamaged(TextView path, PageNumber page, TextView reason);

}  // namespace tav::jet
