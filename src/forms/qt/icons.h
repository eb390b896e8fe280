// The pictures of buttons, nodes and picture boxes: icons
// of the style, and drawn ones in the palette's colours.
#pragma once

#include <QIcon>
#include <QWidget>

#include "forms/forms.h"

namespace tav {

// The null icon for None.
QIcon PictureIcon(Picture picture, const QWidget& widget);

}  // namespace tav
