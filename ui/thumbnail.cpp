#include "ui/thumbnail.h"

#include <algorithm>

#include "image/resample.h"

namespace lumafold {
namespace {

constexpr int kMargin = 6;

/// Draws a true-colour picture with its corner at the place's, as much of it as fits. False when nothing was
/// drawn though there are pixels.
bool Blit(HDC context, const RECT& place, const DibHeader& picture) {
    if (picture.biWidth < 1 || picture.biHeight < 1) return true;
    const int saved = SaveDC(context);
    IntersectClipRect(context, place.left, place.top, place.right, place.bottom);
    const bool drawn =
        StretchDIBits(context, place.left, place.top, picture.biWidth, picture.biHeight, 0, 0,
                      picture.biWidth, picture.biHeight, ConstRowView(picture).Stored(),
                      reinterpret_cast<const BITMAPINFO*>(&picture), DIB_RGB_COLORS, SRCCOPY) > 0;
    RestoreDC(context, saved);
    return drawn;
}

} // namespace

RECT DrawThumbnail(const DRAWITEMSTRUCT& item, DibHandle picture) {
    RECT room = item.rcItem;
    InflateRect(&room, -kMargin, -kMargin);
    const std::int32_t roomWidth = room.right - room.left, roomHeight = room.bottom - room.top;
    const ReadDib loaded(picture);
    if (!loaded) return {};
    // Colours are averaged, not the indices that stand for them.
    const OwnedDib copy = DibToTrueColour(*loaded);
    if (!copy) return {};
    const std::int32_t percent = FitPercent(copy->biWidth, copy->biHeight, roomWidth, roomHeight);
    const OwnedDib scaled = percent < 100 ? DibScale(*copy, percent, percent) : OwnedDib();
    // Without a smaller copy the whole one is shown, from the corner of the room on.
    const DibHeader& shown = scaled ? *scaled : *copy;

    RECT place{room.left + FitOffset(roomWidth, shown.biWidth),
               room.top + FitOffset(roomHeight, shown.biHeight), 0, 0};
    place.right = std::min<LONG>(place.left + shown.biWidth, room.right);
    place.bottom = std::min<LONG>(place.top + shown.biHeight, room.bottom);
    if (!Blit(item.hDC, place, shown)) return {};
    InflateRect(&place, 1, 1);
    FrameRect(item.hDC, &place, GetSysColorBrush(COLOR_BTNSHADOW));
    return place;
}

const char* FileNameOf(const char* path) {
    const char* name = path;
    for (const char* at = path; *at != '\0'; at = CharNextA(at)) {
        if (*at == '\\' || *at == '/' || *at == ':') name = at + 1;
    }
    return name;
}

} // namespace lumafold
