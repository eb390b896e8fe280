// The pictures before a sheet's table: for those who would rather look than read.
#pragma once

#include <QPainter>
#include <QRectF>

#include "pdf/qt/lettering.h"
#include "pdf/sheet.h"

namespace tav {

// How high the sheet's picture is; 0 for a sheet without one.
double PictureHeight(const Sheet& sheet);
void DrawPicture(QPainter& painter, const QRectF& area, const Sheet& sheet, Lettering& lettering);

}  // namespace tav
