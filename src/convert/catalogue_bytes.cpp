#include "convert/catalogue_bytes.h"

#include <algorithm>
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

void CatalogueBytes::Append(std::string& to, std::size_t begin, std::size_t size) const {
    if (!file_) {
        to.append(text_, std::min(begin, text_.size()), size);
        return;
    }
    const std::size_t before = to.size();
    to.resize(before + size);
    to.resize(before + file_->ReadAt(begin, to.data() + before, size));
}

bool CatalogueWindow::ReadOn(std::size_t at) {
    text_.erase(0, at);
    begin_ += at;
    const std::size_t before = text_.size();
    bytes_.Append(text_, begin_ + before, std::max(before, kPiece));
    return text_.size() > before;
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
