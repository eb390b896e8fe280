// Many pieces of Text put together in one call: Concat(u"Файл '", path, u"' повреждён.").
#pragma once

#include <initializer_list>

#include "common/text.h"

namespace tav {

Text ConcatPieces(std::initializer_list<TextView> pieces);

// The text is reserved once, whatever the number of pieces.
template <class... Pieces>
Text Concat(const Pieces&... pieces) {
    return ConcatPieces({TextView(pieces)...});
}

}  // namespace tav
