#include "hosts/desktop/painting.h"

#include "hosts/common/wide_text.h"

namespace lumafold {
namespace {

BITMAPINFO TopDown(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    return info;
}

bool Holds(const std::vector<std::uint32_t>& pixels, int width, int height) {
    return width > 0 && height > 0 &&
           pixels.size() >= static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

} // namespace

PaintBuffer::PaintBuffer(HWND window) : window_(window) {
    const HDC screen = BeginPaint(window, &paint_);
    GetClientRect(window, &area_);
    memory_ = CreateCompatibleDC(screen);
    bitmap_ = CreateCompatibleBitmap(screen, area_.right > 0 ? area_.right : 1,
                                     area_.bottom > 0 ? area_.bottom : 1);
    before_ = SelectObject(memory_, bitmap_);
    SetBkMode(memory_, TRANSPARENT);
}

PaintBuffer::~PaintBuffer() {
    const RECT& dirty = paint_.rcPaint;
    BitBlt(paint_.hdc, dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top, memory_,
           dirty.left, dirty.top, SRCCOPY);
    SelectObject(memory_, before_);
    DeleteObject(bitmap_);
    DeleteDC(memory_);
    EndPaint(window_, &paint_);
}

void Fill(HDC context, const RECT& area, COLORREF colour) {
    SetBkColor(context, colour);
    ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    SetBkMode(context, TRANSPARENT);
}

void Frame(HDC context, const RECT& area, COLORREF colour, int thickness) {
    const RECT sides[] = {{area.left, area.top, area.right, area.top + thickness},
                          {area.left, area.bottom - thickness, area.right, area.bottom},
                          {area.left, area.top, area.left + thickness, area.bottom},
                          {area.right - thickness, area.top, area.right, area.bottom}};
    for (const RECT& side : sides)
        Fill(context, side, colour);
}

void Text(HDC context, const std::string& text, RECT area, HFONT font, COLORREF colour, UINT format) {
    const SelectedGdi selected(context, font);
    SetTextColor(context, colour);
    SetBkMode(context, TRANSPARENT);
    const std::wstring wide = Wide(text);
    DrawTextW(context, wide.c_str(), static_cast<int>(wide.size()), &area,
              format | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void Pixels(HDC context, int x, int y, int width, int height, const std::vector<std::uint32_t>& pixels) {
    if (!Holds(pixels, width, height)) return;
    const BITMAPINFO info = TopDown(width, height);
    SetDIBitsToDevice(context, x, y, static_cast<DWORD>(width), static_cast<DWORD>(height), 0, 0, 0,
                      static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
}

void ScaledPixels(HDC context, const RECT& place, int width, int height,
                  const std::vector<std::uint32_t>& pixels) {
    if (!Holds(pixels, width, height)) return;
    const BITMAPINFO info = TopDown(width, height);
    SetStretchBltMode(context, HALFTONE);
    StretchDIBits(context, place.left, place.top, place.right - place.left, place.bottom - place.top, 0, 0,
                  width, height, pixels.data(), &info, DIB_RGB_COLORS, SRCCOPY);
}

} // namespace lumafold
