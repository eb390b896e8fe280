// The pictures of buttons, nodes and picture boxes: drawn at any size in the system's colours.
#pragma once

#include "forms/forms.h"
#include "platform/win32_windows.h"

namespace tav {

// An icon that is destroyed with its owner.
class Icon {
 public:
    Icon() = default;
    Icon(Picture picture, int size);
    ~Icon();
    Icon(Icon&& other) noexcept : icon_(std::exchange(other.icon_, nullptr)) {}
    Icon& operator=(Icon&& other) noexcept {
        std::swap(icon_, other.icon_);
        return *this;
    }
    // Null for Picture::None.
    HICON get() const { return icon_; }

 private:
    HICON icon_ = nullptr;
};

// All pictures, each at the place of its number.
HIMAGELIST PictureList(int size);

}  // namespace tav
