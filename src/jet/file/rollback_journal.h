// The rollback journal: the original images of the pages that a commit is about to overwrite.
//
// It stands beside the database, PATH-journal, with the rights of the database, from the moment it is synced
// until the database is synced. It is written and read in pieces. All numbers are little-endian:
//
//     + 0  16 bytes  "TAV rollback 2\n" and a zero byte; zeros when the unit is done
//     +16  u32       page count of the database before the unit
//     +20  u32       page count after it
//     +24  u32       number of images
//     +28  u32       zero
//     +32  u64       checksum of the database's first 0x98 bytes
//     +40  images    u32 page number, u32 zero, 4096 bytes,
//                    8 x u64 checksums of the 512-byte sectors that the unit writes over them
//     end  u64       checksum of everything before it
//
// A journal whose length and own checksum do not agree was torn before any page was overwritten, or is
// invalid because the unit is done: it is of no use and deleted. A torn one may lack any of its sectors, the
// first one as well, which is zeros then.
//
// A whole one is played back only onto the state that it was made for: the first bytes are the same, the file
// is as long as before the unit, as after it, or in between, and every sector of the journalled pages is the
// old or the new one (a page may be written by halves). Anything else is another state of the database, for
// instance an older copy that was put in the place of a damaged file. Then only a person can say which file
// is right, and nothing is touched.
//
// A file of that name that is no such journal, whole, torn or invalid, belongs to somebody else: it is never
// deleted, and the database is not used.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "jet/file/header.h"
#include "platform/files.h"
#include "platform/locked_file.h"

namespace tav::jet {

class RollbackJournal {
 public:
    // Starts the journal of `images` pages for the database of that path (a real one, without links), which
    // begins with these bytes, has `old_count` pages, and is to have `new_count`, never fewer.
    RollbackJournal(TextView database_path, const std::uint8_t* header, PageNumber old_count,
                    PageNumber new_count, std::size_t images);
    ~RollbackJournal();

    void Add(PageNumber page, const Page& original, const Page& changed);
    // On the disk, synced, when this returns after all images were added. Before that the end of this object
    // leaves no journal.
    void Finish();
    // Puts the original pages and length back into the file and syncs it.
    void PlayBack(LockedFile& file) const;
    // The unit is done when this returns: should the file's name outlast a power loss, nobody plays it back.
    void Invalidate() const;
    // Takes an Invalidate back that failed somewhere.
    void Validate() const;
    // Deletes the file of an invalid journal. One that does not go is left to the next open.
    void Remove() const noexcept;
    // Makes it invalid and deletes it; a Failure when it does not go.
    void Delete() const;

    static Text PathFor(TextView database_path);
    static bool Exists(TextView database_path);
    // Plays back the journal beside the database and deletes it. One that was made for another state of the
    // database, or somebody else's file, is a Failure that names both files and says what to do.
    static void Recover(TextView database_path, LockedFile& file);

 private:
    void Put(std::string_view bytes);

    Text path_;
    std::unique_ptr<NewFile> file_;
    std::uint64_t checksum_;
    std::string unwritten_;
};

}  // namespace tav::jet
