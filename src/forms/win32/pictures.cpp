#include "forms/win32/pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace tav {
namespace {

// What a point of a picture is drawn in.
enum class Ink { None, Line, Fill, Rest, Red, Green, Grey, Orange, White };

// Points lie between -1 and 1, y downwards.
struct Point {
    double x;
    double y;
    double Radius() const { return std::hypot(x, y); }
    // Clockwise from the top, as a part of the circle.
    double Turn() const {
        const double turn = std::atan2(x, -y) / (2 * std::numbers::pi);
        return turn < 0 ? turn + 1 : turn;
    }
};

// A stretch of time as a piece of the year's disc.
Ink Disc(Point at, int months) {
    constexpr double kOuter = 0.94;
    constexpr double kEdge = 0.16;
    if (at.Radius() > kOuter) return Ink::None;
    if (at.Radius() > kOuter - kEdge) return Ink::Line;
    return at.Turn() * 12 < months ? Ink::Fill : Ink::Rest;
}

template <int kMonths>
Ink Period(Point at) {
    return Disc(at, kMonths);
}

Ink SeveralYears(Point at) {
    constexpr double kAside = 0.3;
    constexpr double kSmaller = 0.7;
    const Ink front = Disc({(at.x + kAside) / kSmaller, (at.y - kAside) / kSmaller}, 12);
    return front != Ink::None ? front : Disc({(at.x - kAside) / kSmaller, (at.y + kAside) / kSmaller}, 12);
}

// An arrow in a circle, its head at the upper right.
Ink RefreshArrow(Point at) {
    const double dx = at.x - 0.62;
    const double dy = at.y + 0.25;
    if (dy <= 0.1 && dy >= -0.6 && std::abs(dx) < (0.1 - dy) * 0.62) return Ink::None;
    if (dy >= -0.05 && dy <= 0.45 && std::abs(dx) < (0.45 - dy) * 0.75) return Ink::Fill;
    const bool ring = at.Radius() < 0.82 && at.Radius() > 0.54;
    return ring && (at.Turn() < 0.22 || at.Turn() > 0.34) ? Ink::Fill : Ink::None;
}

Ink Cross(Point at) {
    const double rising = std::abs(at.x + at.y);
    const double falling = std::abs(at.x - at.y);
    const bool stroke = std::min(rising, falling) < 0.3;
    return stroke && std::max(std::abs(at.x), std::abs(at.y)) < 0.78 ? Ink::Red : Ink::None;
}

// Half of a stroke's width.
constexpr double kStroke = 0.14;

bool OnStroke(Point at, Point from, Point to) {
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double along = ((at.x - from.x) * dx + (at.y - from.y) * dy) / (dx * dx + dy * dy);
    const double part = std::clamp(along, 0.0, 1.0);
    return std::hypot(at.x - from.x - part * dx, at.y - from.y - part * dy) < kStroke;
}

// What became of a document: a disc with a sign in it, told apart by its sign as well as by its colour.
Ink Sign(Point at, Ink colour, bool on_sign) {
    if (at.Radius() > 0.94) return Ink::None;
    return on_sign ? Ink::White : colour;
}
Ink Waiting(Point at) {
    return at.Radius() < 0.8 && at.Radius() > 0.6 ? Ink::Line : Ink::None;
}
Ink Done(Point at) {
    const bool tick = OnStroke(at, {-0.45, 0.05}, {-0.12, 0.4}) || OnStroke(at, {-0.12, 0.4}, {0.48, -0.32});
    return Sign(at, Ink::Green, tick);
}
Ink Passed(Point at) {
    return Sign(at, Ink::Grey, OnStroke(at, {-0.45, 0}, {0.45, 0}));
}
Ink Attention(Point at) {
    return Sign(at, Ink::Orange,
                OnStroke(at, {0, -0.56}, {0, 0.12}) || Point{at.x, at.y - 0.52}.Radius() < kStroke);
}

using Shape = Ink (*)(Point);
constexpr std::array<std::pair<Picture, Shape>, 11> kShapes = {{
    {Picture::Refresh, RefreshArrow},
    {Picture::Erase, Cross},
    {Picture::All, SeveralYears},
    {Picture::Year, Period<12>},
    {Picture::Part, Period<6>},
    {Picture::Quarter, Period<3>},
    {Picture::Month, Period<1>},
    {Picture::Waiting, Waiting},
    {Picture::Done, Done},
    {Picture::Passed, Passed},
    {Picture::Attention, Attention},
}};

COLORREF ColourOf(Ink ink) {
    switch (ink) {
        case Ink::Line:
            return ::GetSysColor(COLOR_WINDOWTEXT);
        case Ink::Fill:
            return ::GetSysColor(COLOR_HIGHLIGHT);
        case Ink::Rest:
            return ::GetSysColor(COLOR_WINDOW);
        case Ink::Green:
            return RGB(0x2e, 0x8b, 0x57);
        case Ink::Grey:
            return RGB(0x80, 0x86, 0x8b);
        case Ink::Orange:
            return RGB(0xd9, 0x6c, 0x06);
        case Ink::White:
            return RGB(255, 255, 255);
        default:
            return RGB(200, 40, 40);
    }
}

// One pixel, the mean of several points in it, with its transparency in the upper byte.
std::uint32_t Pixel(Shape shape, int column, int row, int size) {
    constexpr int kPoints = 4;
    std::uint32_t sums[4] = {};
    for (int i = 0; i < kPoints * kPoints; ++i) {
        const double x = (column + (i % kPoints + 0.5) / kPoints) / size;
        const double y = (row + (i / kPoints + 0.5) / kPoints) / size;
        const Ink ink = shape({2 * x - 1, 2 * y - 1});
        if (ink == Ink::None) continue;
        const COLORREF colour = ColourOf(ink);
        sums[0] += GetBValue(colour);
        sums[1] += GetGValue(colour);
        sums[2] += GetRValue(colour);
        ++sums[3];
    }
    if (sums[3] == 0) return 0;
    const std::uint32_t opaque = 255 * sums[3] / (kPoints * kPoints);
    return opaque << 24 | sums[2] / sums[3] << 16 | sums[1] / sums[3] << 8 | sums[0] / sums[3];
}

HICON Draw(Shape shape, int size) {
    BITMAPINFO format{};
    format.bmiHeader = {sizeof format.bmiHeader, size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    ICONINFO icon{};
    icon.fIcon = TRUE;
    icon.hbmColor = ::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
    // The mask, a bit a pixel in rows of whole words, is for
    // drawing without transparency: that of disabled buttons.
    const int row_bytes = (size + 15) / 16 * 2;
    std::vector<std::uint8_t> mask(static_cast<std::size_t>(row_bytes * size));
    auto* pixel = static_cast<std::uint32_t*>(bits);
    for (int i = 0; bits != nullptr && i < size * size; ++i) {
        pixel[i] = Pixel(shape, i % size, i / size, size);
        const int bit = 0x80 >> i % size % 8;
        if (pixel[i] >> 24 < 128)
            mask[static_cast<std::size_t>(i / size * row_bytes + i % size / 8)] |=
                static_cast<std::uint8_t>(bit);
    }
    icon.hbmMask = ::CreateBitmap(size, size, 1, 1, mask.data());
    const HICON made = ::CreateIconIndirect(&icon);
    ::DeleteObject(icon.hbmColor);
    ::DeleteObject(icon.hbmMask);
    return made;
}

}  // namespace

Icon::Icon(Picture picture, int size) {
    for (const auto& [known, shape] : kShapes) {
        if (known == picture) icon_ = Draw(shape, size);
    }
    if (picture != Picture::Warning) return;
    const HANDLE shared = ::LoadImageW(nullptr, IDI_WARNING, IMAGE_ICON, size, size, LR_SHARED);
    icon_ = ::CopyIcon(static_cast<HICON>(shared));
}

Icon::~Icon() {
    if (icon_ != nullptr) ::DestroyIcon(icon_);
}

HIMAGELIST PictureList(int size) {
    const HIMAGELIST list = ::ImageList_Create(size, size, ILC_COLOR32, kPictures, 0);
    ::ImageList_SetImageCount(list, kPictures);
    for (const auto& [picture, shape] : kShapes) {
        ::ImageList_ReplaceIcon(list, static_cast<int>(picture), Icon(picture, size).get());
    }
    return list;
}

}  // namespace tav
