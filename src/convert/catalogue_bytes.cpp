#include "convert/catalogue_bytes.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tav {
namespace {

constexpr std::size_t kPiece = 1 << 18;

}  // namespace

CatalogueBytes CatalogueBytes::OfFile(TextView path) {
    CatalogueBytes bytes;
    bytes.file_.emplace(path);
    return bytes;
}

CatalogueBytes CatalogueBytes::OfText(std::string text) {
    CatalogueBytes bytes;
    bytes.text_ = std::move(text);
    return bytes;
}

std::size_t CatalogueBytes::Read(std::size_t begin, char* to, std::size_t size) const {
    return file_ ? file_->ReadAt(begin, to, size) : text_.copy(to, size, std::min(begin, text_.size()));
}

void CatalogueBytes::Append(std::string& to, std::size_t begin, std::size_t size) const {
    const std::size_t before = to.size();
    to.resize(before + size);
    to.resize(before + Read(begin, to.data() + before, size));
}

bool CatalogueWindow::ReadOn(std::size_t at) {
    const std::size_t before = size_ - at;
    std::memmove(buffer_.data(), buffer_.data() + at, before);
    begin_ += at;
    const std::size_t wanted = std::max(before, kPiece);
    if (buffer_.size() < before + wanted) buffer_.resize(before + wanted);
    size_ = before + bytes_.Read(begin_ + before, buffer_.data() + before, wanted);
    return size_ > before;
}

int CatalogueLines::At(std::size_t place) {
    std::string piece;
    while (at_ < place) {
        piece.clear();
        bytes_.Append(piece, at_, std::min(place - at_, kPiece));
        if (piece.empty()) break;
        at_ += piece.size();
        line_ += static_cast<int>(std::ranges::count(piece, '\n'));
    }
    return line_;
}

}  // namespace tav
