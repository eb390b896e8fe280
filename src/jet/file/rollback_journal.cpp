#include "jet/file/rollback_journal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <string>

#include "common/concat.h"
#include "common/failure.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

constexpr std::string_view kJournalMagic("TAV rollback 2\n\0", 16);
constexpr std::string_view kNoMagic("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16);
constexpr std::size_t kOldCountAt = 16;
constexpr std::size_t kNewCountAt = 20;
constexpr std::size_t kImageCountAt = 24;
constexpr std::size_t kOwnerAt = 32;
constexpr std::size_t kImagesAt = 40;
constexpr std::size_t kChecksumSize = 8;

// An image, and in it
constexpr std::size_t kSector = 512;  // the least that a disk writes whole
constexpr std::size_t kOriginalAt = 8;
constexpr std::size_t kChangedAt = kOriginalAt + kPageSize;
constexpr std::size_t kImageSize = kChangedAt + kPageSize / kSector * kChecksumSize;
constexpr std::size_t kPiece = 1 << 20;  // is written at once: the system may put every piece on the disk
using Image = std::array<std::uint8_t, kImageSize>;

// Of whole words: every part of a journal is a multiple of 8 bytes long, so that the checksum of a part goes
// on where that of the part before ended. Each step is a bijection: no change of one word is lost.
constexpr std::uint64_t kNoChecksum = 0xCBF29CE484222325;
std::uint64_t Checksum(const std::uint8_t* bytes, std::size_t size, std::uint64_t sum = kNoChecksum) {
    for (std::size_t at = 0; at + 8 <= size; at += 8) {
        sum = std::rotl((sum ^ U64(bytes + at)) * 0x9E3779B97F4A7C15, 29);
    }
    return sum;
}

std::string_view View(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

// Whether a commit that was interrupted may have left the page so: each sector is the old or the new one.
bool IsOldOrNew(const Image& image, const Page& page) {
    for (std::size_t at = 0; at < kPageSize; at += kSector) {
        if (std::memcmp(page.data() + at, image.data() + kOriginalAt + at, kSector) == 0) continue;
        const std::uint64_t changed = U64(image.data() + kChangedAt + at / kSector * kChecksumSize);
        if (Checksum(page.data() + at, kSector) != changed) return false;
    }
    return true;
}

// A journal as it lies on the disk.
class StoredJournal {
 public:
    explicit StoredJournal(TextView path) : file_(path, LockedFile::Access::Read), size_(file_.Size()) {
        head_.fill(0);
        file_.ReadAt(0, head_.data(), std::min<std::uint64_t>(size_, head_.size()));
    }

    bool IsValid() const { return Starts(kJournalMagic) && IsWhole(); }
    // Whether it was made here: whole, invalid, or the beginning of one.
    bool IsOurs() const {
        if (size_ < kJournalMagic.size()) return kJournalMagic.starts_with(View(head_.data(), size_));
        return Starts(kJournalMagic) || (Starts(kNoMagic) && (IsWhole() || LacksBeginning()));
    }

    // Calls take(image) until one is refused; whether none was.
    template <class Take>
    bool ForEachImage(Take take) const {
        Image image;
        for (std::uint64_t i = 0; i < ImageCount(); ++i) {
            file_.ReadAt(kImagesAt + i * kImageSize, image.data(), kImageSize);
            if (!take(image)) return false;
        }
        return true;
    }

    // Whether the file is in the state that this journal was made for, or on the way from there to the next.
    bool IsOf(const LockedFile& database) const {
        const PageNumber old_count = OldCount();
        const std::uint64_t size = database.Size();
        if (size < Offset(old_count) || size > Offset(U32(&head_[kNewCountAt]))) return false;
        Page page;
        database.ReadAt(0, page.data(), kHeaderSize);
        if (U64(&head_[kOwnerAt]) != Checksum(page.data(), kHeaderSize)) return false;
        return ForEachImage([&](const Image& image) {
            if (U32(image.data()) >= old_count) return false;
            database.ReadAt(Offset(U32(image.data())), page.data(), kPageSize);
            return IsOldOrNew(image, page);
        });
    }

    void PlayBack(LockedFile& database) const {
        ForEachImage([&](const Image& image) {
            database.WriteAt(Offset(U32(image.data())), image.data() + kOriginalAt, kPageSize);
            return true;
        });
        database.Truncate(Offset(OldCount()));
        database.Sync();
    }

 private:
    PageNumber OldCount() const { return U32(&head_[kOldCountAt]); }
    std::uint64_t ImageCount() const { return U32(&head_[kImageCountAt]); }
    bool Starts(std::string_view magic) const { return View(head_.data(), magic.size()) == magic; }

    // By its checksum, which an invalid journal still has.
    bool IsWhole() const {
        if (size_ != kImagesAt + ImageCount() * kImageSize + kChecksumSize) return false;
        std::array<std::uint8_t, kImagesAt> head = head_;
        std::copy(kJournalMagic.begin(), kJournalMagic.end(), head.begin());
        std::uint64_t sum = Checksum(head.data(), head.size());
        ForEachImage([&](const Image& image) {
            sum = Checksum(image.data(), image.size(), sum);
            return true;
        });
        std::array<std::uint8_t, kChecksumSize> end{};
        file_.ReadAt(size_ - kChecksumSize, end.data(), end.size());
        return U64(end.data()) == sum;
    }
    // A power loss may leave a file's length, and any of its sectors, without the first one.
    bool LacksBeginning() const {
        std::array<std::uint8_t, kSector> first{};
        file_.ReadAt(0, first.data(), std::min<std::uint64_t>(size_, kSector));
        return std::all_of(first.begin(), first.end(), [](std::uint8_t byte) { return byte == 0; });
    }

    LockedFile file_;
    std::uint64_t size_;
    std::array<std::uint8_t, kImagesAt> head_;
};

void Mark(TextView path, std::string_view magic) {
    LockedFile file(path, LockedFile::Access::Write);
    file.WriteAt(0, magic.data(), magic.size());
    file.Sync();
}

[[noreturn]] void RefuseForeign(TextView journal, TextView database_path) {
    throw Failure(Concat(u"The file '", journal,
                         u"' is not a journal of this program. It has to be moved away before the database '",
                         database_path, u"' can be used."));
}

}  // namespace

RollbackJournal::RollbackJournal(TextView database_path, const std::uint8_t* header, PageNumber old_count,
                                 PageNumber new_count, std::size_t images)
    : path_(PathFor(database_path)), checksum_(kNoChecksum) {
    if (FileExists(path_)) {  // an invalid one that did not go
        if (!StoredJournal(path_).IsOurs()) RefuseForeign(path_, database_path);
        DeleteFile(path_);
    }
    file_ = std::make_unique<NewFile>(database_path, path_);
    std::array<std::uint8_t, kImagesAt> head{};
    std::copy(kJournalMagic.begin(), kJournalMagic.end(), head.begin());
    PutU32(&head[kOldCountAt], old_count);
    PutU32(&head[kNewCountAt], new_count);
    PutU32(&head[kImageCountAt], static_cast<std::uint32_t>(images));
    PutU64(&head[kOwnerAt], Checksum(header, kHeaderSize));
    Put(View(head.data(), head.size()));
}

RollbackJournal::~RollbackJournal() = default;

void RollbackJournal::Put(std::string_view bytes) {
    checksum_ = Checksum(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), checksum_);
    unwritten_.append(bytes);
    if (unwritten_.size() < kPiece) return;
    file_->Write(unwritten_);
    unwritten_.clear();
}

void RollbackJournal::Add(PageNumber page, const Page& original, const Page& changed) {
    Image image{};
    PutU32(image.data(), page);
    std::memcpy(image.data() + kOriginalAt, original.data(), kPageSize);
    for (std::size_t at = 0; at < kPageSize; at += kSector) {
        PutU64(image.data() + kChangedAt + at / kSector * kChecksumSize,
               Checksum(changed.data() + at, kSector));
    }
    Put(View(image.data(), image.size()));
}

void RollbackJournal::Finish() {
    std::array<std::uint8_t, kChecksumSize> end{};
    PutU64(end.data(), checksum_);
    file_->Write(unwritten_.append(View(end.data(), end.size())));
    file_->Finish();
    file_.reset();
}

void RollbackJournal::PlayBack(LockedFile& file) const {
    StoredJournal(path_).PlayBack(file);
}

void RollbackJournal::Invalidate() const {
    Mark(path_, kNoMagic);
}

void RollbackJournal::Validate() const {
    Mark(path_, kJournalMagic);
}

void RollbackJournal::Remove() const noexcept {
    try {
        DeleteFile(path_);
    } catch (...) {
        return;
    }
}

void RollbackJournal::Delete() const {
    Invalidate();
    DeleteFile(path_);
}

Text RollbackJournal::PathFor(TextView database_path) {
    return Concat(database_path, u"-journal");
}

bool RollbackJournal::Exists(TextView database_path) {
    return FileExists(PathFor(database_path));
}

void RollbackJournal::Recover(TextView database_path, LockedFile& file) {
    const Text path = PathFor(database_path);
    {
        const StoredJournal journal(path);
        if (!journal.IsOurs()) RefuseForeign(path, database_path);
        if (journal.IsValid()) {
            if (!journal.IsOf(file)) {
                throw Failure(
                    Concat(u"The journal '", path, u"' was written for another state of the database '",
                           database_path,
                           u"'. If this database is the right one, move the journal away; otherwise "
                           u"put back the database that was here when the journal was written."));
            }
            journal.PlayBack(file);
        }
    }
    Mark(path, kNoMagic);
    DeleteFile(path);
}

}  // namespace tav::jet
