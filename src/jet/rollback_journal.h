// The rollback journal: the original images of the pages that a commit is about to overwrite.
//
// It stands beside the database, PATH-journal, from the moment it is synced until the database is synced.
// All numbers are little-endian:
//
//     + 0  16 bytes  "TAV rollback 1\n" and a zero byte
//     +16  u32       page count of the database before the unit
//     +20  u32       number of images
//     +24  u64       checksum of the database's first 0x98 bytes: whose journal this is
//     +32  images    u32 page number, 4096 bytes
//     end  u64       checksum (FNV-1a) of everything before it
//
// A journal whose length and checksums do not agree was torn before any page was overwritten: it is of no
// use and deleted. So is one that belongs to another database, which happens when a person puts an older copy
// in the place of a damaged file.
#pragma once

#include <string>

#include "jet/header.h"
#include "platform/files.h"

namespace tav::jet {

class RollbackJournal {
 public:
    // A journal for the database of that path, which begins with these bytes and has that many pages.
    RollbackJournal(TextView database_path, const std::uint8_t* header, PageNumber page_count);

    void Add(PageNumber page, const Page& original);
    // On the disk, synced, when this returns.
    void Write();
    // Puts the original pages and length back into the file and syncs it.
    void PlayBack(LockedFile& file) const;
    void Delete() const;

    static bool Exists(TextView database_path);
    // Plays back the journal beside the database if it is whole and belongs to it, and deletes it.
    static void Recover(TextView database_path, LockedFile& file);

 private:
    Text path_;
    std::string bytes_;
};

}  // namespace tav::jet
