#include "common/concat.h"

namespace tav {

Text ConcatPieces(std::initializer_list<TextView> pieces) {
    std::size_t size = 0;
    for (const TextView piece : pieces) size += piece.size();
    Text out;
    out.reserve(size);
    for (const TextView piece : pieces) out.append(piece);
    return out;
}

}  // namespace tav
