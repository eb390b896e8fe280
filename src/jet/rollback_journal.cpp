#include "jet/rollback_journal.h"

#include <string_view>

namespace tav::jet {
namespace {

constexpr std::string_view kMagic("TAV rollback 1\n\0", 16);
constexpr std::size_t kPageCountAt = 16;
constexpr std::size_t kImageCountAt = 20;
constexpr std::size_t kOwnerAt = 24;
constexpr std::size_t kImagesAt = 32;
constexpr std::size_t kImageSize = 4 + kPageSize;
constexpr std::size_t kChecksumSize = 8;

std::uint64_t Checksum(const std::uint8_t* bytes, std::size_t size) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (std::size_t i = 0; i < size; ++i) sum = (sum ^ bytes[i]) * 0x100000001B3;
    return sum;
}

const std::uint8_t* Data(const std::string& bytes) {
    return reinterpret_cast<const std::uint8_t*>(bytes.data());
}
std::uint8_t* Data(std::string& bytes) {
    return reinterpret_cast<std::uint8_t*>(bytes.data());
}

Text JournalPath(TextView database_path) {
    return Text(database_path).append(u"-journal");
}

bool IsWhole(const std::string& bytes, const std::uint8_t* header) {
    if (bytes.size() < kImagesAt + kChecksumSize || !bytes.starts_with(kMagic)) return false;
    const std::uint64_t images = U32(Data(bytes) + kImageCountAt);
    if (bytes.size() != kImagesAt + images * kImageSize + kChecksumSize) return false;
    const std::size_t body = bytes.size() - kChecksumSize;
    return U64(Data(bytes) + body) == Checksum(Data(bytes), body) &&
           U64(Data(bytes) + kOwnerAt) == Checksum(header, kHeaderSize);
}

}  // namespace

RollbackJournal::RollbackJournal(TextView database_path, const std::uint8_t* header, PageNumber page_count)
    : path_(JournalPath(database_path)), bytes_(kMagic) {
    bytes_.resize(kImagesAt);
    PutU32(Data(bytes_) + kPageCountAt, page_count);
    PutU64(Data(bytes_) + kOwnerAt, Checksum(header, kHeaderSize));
}

void RollbackJournal::Add(PageNumber page, const Page& original) {
    const std::size_t at = bytes_.size();
    bytes_.resize(at + kImageSize);
    PutU32(Data(bytes_) + at, page);
    std::memcpy(bytes_.data() + at + 4, original.data(), kPageSize);
    PutU32(Data(bytes_) + kImageCountAt, U32(Data(bytes_) + kImageCountAt) + 1);
}

void RollbackJournal::Write() {
    const std::size_t body = bytes_.size();
    bytes_.resize(body + kChecksumSize);
    PutU64(Data(bytes_) + body, Checksum(Data(bytes_), body));
    WriteFileWhole(path_, bytes_);
}

void RollbackJournal::PlayBack(LockedFile& file) const {
    const std::uint32_t images = U32(Data(bytes_) + kImageCountAt);
    for (std::uint32_t i = 0; i < images; ++i) {
        const std::uint8_t* image = Data(bytes_) + kImagesAt + i * kImageSize;
        file.WriteAt(static_cast<std::uint64_t>(U32(image)) * kPageSize, image + 4, kPageSize);
    }
    file.Truncate(static_cast<std::uint64_t>(U32(Data(bytes_) + kPageCountAt)) * kPageSize);
    file.Sync();
}

void RollbackJournal::Delete() const {
    DeleteFile(path_);
    SyncFolder(FolderOf(path_));
}

bool RollbackJournal::Exists(TextView database_path) {
    return FileExists(JournalPath(database_path));
}

void RollbackJournal::Recover(TextView database_path, LockedFile& file) {
    std::array<std::uint8_t, kHeaderSize> header{};
    file.ReadAt(0, header.data(), header.size());
    RollbackJournal journal(database_path, header.data(), 0);
    journal.bytes_ = ReadFile(journal.path_);
    if (IsWhole(journal.bytes_, header.data())) journal.PlayBack(file);
    journal.Delete();
}

}  // namespace tav::jet
