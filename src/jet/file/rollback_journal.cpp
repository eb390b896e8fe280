#include "jet/file/rollback_journal.h"

#include <array>
#include <bit>
#include <string_view>

#include "common/concat.h"
#include "common/failure.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

constexpr std::string_view kMagic("TAV rollback 2\n\0", 16);
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

// Of whole words: every part of a journal is a multiple of 8 bytes long. Each step is a bijection, so that no
// change of one word is lost.
std::uint64_t Checksum(const std::uint8_t* bytes, std::size_t size) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (std::size_t at = 0; at + 8 <= size; at += 8) {
        sum = std::rotl((sum ^ U64(bytes + at)) * 0x9E3779B97F4A7C15, 29);
    }
    return sum;
}

const std::uint8_t* Data(const std::string& bytes) {
    return reinterpret_cast<const std::uint8_t*>(bytes.data());
}
std::uint8_t* Data(std::string& bytes) {
    return reinterpret_cast<std::uint8_t*>(bytes.data());
}

std::uint64_t Offset(PageNumber page) {
    return static_cast<std::uint64_t>(page) * kPageSize;
}

// Calls take(image) until one is refused; whether none was.
template <class Take>
bool ForEachImage(const std::string& bytes, Take take) {
    const std::uint8_t* image = Data(bytes) + kImagesAt;
    for (std::uint32_t left = U32(Data(bytes) + kImageCountAt); left > 0; --left, image += kImageSize) {
        if (!take(image)) return false;
    }
    return true;
}

// Whether a commit that was interrupted may have left the page so: each sector is the old or the new one.
bool IsOldOrNew(const std::uint8_t* image, const Page& page) {
    for (std::size_t at = 0; at < kPageSize; at += kSector) {
        if (std::memcmp(page.data() + at, image + kOriginalAt + at, kSector) == 0) continue;
        const std::uint64_t changed = U64(image + kChangedAt + at / kSector * kChecksumSize);
        if (Checksum(page.data() + at, kSector) != changed) return false;
    }
    return true;
}

}  // namespace

RollbackJournal::RollbackJournal(TextView database_path, const std::uint8_t* header, PageNumber old_count,
                                 PageNumber new_count)
    : database_path_(database_path), path_(PathFor(database_path)), bytes_(kMagic) {
    bytes_.resize(kImagesAt);
    PutU32(Data(bytes_) + kOldCountAt, old_count);
    PutU32(Data(bytes_) + kNewCountAt, new_count);
    PutU64(Data(bytes_) + kOwnerAt, Checksum(header, kHeaderSize));
}

void RollbackJournal::Add(PageNumber page, const Page& original, const Page& changed) {
    const std::size_t end = bytes_.size();
    bytes_.resize(end + kImageSize);
    std::uint8_t* image = Data(bytes_) + end;
    PutU32(image, page);
    std::memcpy(image + kOriginalAt, original.data(), kPageSize);
    for (std::size_t at = 0; at < kPageSize; at += kSector) {
        PutU64(image + kChangedAt + at / kSector * kChecksumSize, Checksum(changed.data() + at, kSector));
    }
    PutU32(Data(bytes_) + kImageCountAt, U32(Data(bytes_) + kImageCountAt) + 1);
}

void RollbackJournal::Write() {
    const std::size_t body = bytes_.size();
    bytes_.resize(body + kChecksumSize);
    PutU64(Data(bytes_) + body, Checksum(Data(bytes_), body));
    WriteFileLike(database_path_, path_, bytes_);
}

void RollbackJournal::PlayBack(LockedFile& file) const {
    ForEachImage(bytes_, [&](const std::uint8_t* image) {
        file.WriteAt(Offset(U32(image)), image + kOriginalAt, kPageSize);
        return true;
    });
    file.Truncate(Offset(U32(Data(bytes_) + kOldCountAt)));
    file.Sync();
}

void RollbackJournal::Mark(std::string_view magic) const {
    LockedFile file(path_, LockedFile::Access::Write);
    file.WriteAt(0, magic.data(), magic.size());
    file.Sync();
}

void RollbackJournal::Invalidate() const {
    Mark(kNoMagic);
}

void RollbackJournal::Validate() const {
    Mark(kMagic);
}

void RollbackJournal::Remove() const noexcept {
    try {
        DeleteFile(path_);
    } catch (const Failure&) {
        return;
    }
}

void RollbackJournal::Delete() const {
    Invalidate();
    DeleteFile(path_);
}

Text RollbackJournal::PathFor(TextView database_path) {
    return Text(database_path).append(u"-journal");
}

bool RollbackJournal::Exists(TextView database_path) {
    return FileExists(PathFor(database_path));
}

bool RollbackJournal::IsWhole() const {
    if (bytes_.size() < kImagesAt + kChecksumSize || !bytes_.starts_with(kMagic)) return false;
    const std::uint64_t images = U32(Data(bytes_) + kImageCountAt);
    if (bytes_.size() != kImagesAt + images * kImageSize + kChecksumSize) return false;
    const std::size_t body = bytes_.size() - kChecksumSize;
    return U64(Data(bytes_) + body) == Checksum(Data(bytes_), body);
}

// Whether the file is in the state that this journal was made for, or on the way from there to the next one.
bool RollbackJournal::IsOf(const LockedFile& file) const {
    const PageNumber old_count = U32(Data(bytes_) + kOldCountAt);
    const std::uint64_t size = file.Size();
    if (size < Offset(old_count) || size > Offset(U32(Data(bytes_) + kNewCountAt))) return false;
    Page page;
    file.ReadAt(0, page.data(), kHeaderSize);
    if (U64(Data(bytes_) + kOwnerAt) != Checksum(page.data(), kHeaderSize)) return false;
    return ForEachImage(bytes_, [&](const std::uint8_t* image) {
        if (U32(image) >= old_count) return false;
        file.ReadAt(Offset(U32(image)), page.data(), kPageSize);
        return IsOldOrNew(image, page);
    });
}

void RollbackJournal::Recover(TextView database_path, LockedFile& file) {
    RollbackJournal journal(database_path, std::array<std::uint8_t, kHeaderSize>{}.data(), 0, 0);
    journal.bytes_ = ReadFile(journal.path_);
    if (!journal.IsWhole()) return DeleteFile(journal.path_);
    if (!journal.IsOf(file)) {
        throw Failure(Concat(u"The journal '", journal.path_,
                             u"' was written for another state of the database '", database_path,
                             u"'. If this database is the right one, move the journal away; otherwise "
                             u"put back the database that was here when the journal was written."));
    }
    journal.PlayBack(file);
    journal.Delete();
}

}  // namespace tav::jet
