#include <cstring>

#include <windows.h>

#include "platform/shapes.h"

namespace lumafold {
namespace {

HDC Context(void* context) { return static_cast<HDC>(context); }

/// A drawing context in memory, made like the window's; null on failure.
HDC MemoryContextLike(WindowHandle window) {
    const auto owner =
        reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window)); // NOLINT(performance-no-int-to-ptr)
    const HDC screen = GetDC(owner);
    if (screen == nullptr) return nullptr;
    const HDC context = CreateCompatibleDC(screen);
    ReleaseDC(owner, screen);
    return context;
}

HBITMAP CreateSection(HDC context, std::int32_t width, std::int32_t height, void** bits) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, bits, nullptr, 0);
    GdiFlush();
    return bitmap;
}

} // namespace

ShapeCanvas::ShapeCanvas(WindowHandle window, std::int32_t width, std::int32_t height, std::uint8_t* rows)
    : width_(width), height_(height), stride_((static_cast<std::size_t>(width) * 3 + 3) / 4 * 4),
      rows_(rows) {
    std::memset(rows_, 0, stride_ * static_cast<std::size_t>(height_));
    const HDC context = MemoryContextLike(window);
    if (context == nullptr) return;
    context_ = context;
    bitmap_ = CreateSection(context, width, height, &bits_);
    if (bitmap_ == nullptr) return;
    SetMapMode(context, MM_TEXT);
    previousBitmap_ = SelectObject(context, bitmap_);
    if (previousBitmap_ == nullptr) return;
    SetWindowExtEx(context, width, height, nullptr);
    SetViewportExtEx(context, width, height, nullptr);
    SetWindowOrgEx(context, 0, 0, nullptr);
    const RECT all = {0, 0, width, height};
    previousBrush_ = SelectObject(context, GetStockObject(WHITE_BRUSH));
    previousPen_ = SelectObject(context, GetStockObject(WHITE_PEN));
    usable_ = ::FillRect(context, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))) != 0 &&
              previousBrush_ != nullptr && previousPen_ != nullptr;
}

ShapeCanvas::~ShapeCanvas() {
    const HDC context = Context(context_);
    if (context == nullptr) return;
    for (void* previous : {previousPen_, previousBrush_, previousBitmap_}) {
        if (previous != nullptr) SelectObject(context, previous);
    }
    if (bitmap_ != nullptr) DeleteObject(bitmap_);
    DeleteDC(context);
}

void ShapeCanvas::FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    if (!usable_ || left >= right || top >= bottom) return;
    const RECT box = {left, top, right, bottom};
    usable_ = ::FillRect(Context(context_), &box, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))) != 0;
}

void ShapeCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    if (!usable_) return;
    usable_ = ::Ellipse(Context(context_), left, top, right, bottom) != FALSE;
}

void ShapeCanvas::Polygon(std::span<const ShapePoint> points) {
    constexpr std::size_t kMaxPoints = 128;
    if (!usable_ || points.size() < 2 || points.size() > kMaxPoints) return;
    POINT copies[kMaxPoints];
    for (std::size_t i = 0; i < points.size(); ++i) {
        copies[i] = {points[i].x, points[i].y};
    }
    usable_ = ::Polygon(Context(context_), copies, static_cast<int>(points.size())) != FALSE;
}

bool ShapeCanvas::Finish(std::int32_t top, std::int32_t bottom) {
    if (!usable_) return false;
    GdiFlush(); // what was asked for may not have been drawn yet
    if (top < 0) top = 0;
    if (bottom > height_) bottom = height_;
    if (top >= bottom) return true;
    const std::size_t first = static_cast<std::size_t>(height_ - bottom) * stride_;
    std::memcpy(rows_ + first, static_cast<const std::uint8_t*>(bits_) + first,
                static_cast<std::size_t>(bottom - top) * stride_);
    return true;
}

} // namespace lumafold
