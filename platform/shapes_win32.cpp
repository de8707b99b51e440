#include <algorithm>

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
    const BITMAPINFO info = {{sizeof(info.bmiHeader), width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
    const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, bits, nullptr, 0);
    GdiFlush();
    return bitmap;
}

} // namespace

ShapeCanvas::ShapeCanvas(WindowHandle window, std::int32_t width, std::int32_t height, std::uint8_t* pixels)
    : width_(width), height_(height), pixels_(pixels) {
    const HDC context = MemoryContextLike(window);
    if (context == nullptr) return;
    context_ = context;
    bitmap_ = CreateSection(context, width, height, &bits_);
    if (bitmap_ == nullptr) return;
    if (SelectObject(context, bitmap_) == nullptr) return;
    const RECT all = {0, 0, width, height};
    usable_ = SelectObject(context, GetStockObject(WHITE_BRUSH)) != nullptr &&
              SelectObject(context, GetStockObject(WHITE_PEN)) != nullptr &&
              ::FillRect(context, &all, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH))) != 0;
}

ShapeCanvas::~ShapeCanvas() {
    // The context first, so that nothing is selected any more.
    if (context_ != nullptr) DeleteDC(Context(context_));
    if (bitmap_ != nullptr) DeleteObject(bitmap_);
}

void ShapeCanvas::FillRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    if (!usable_ || left >= right || top >= bottom) return;
    const RECT box = {left, top, right, bottom};
    usable_ = ::FillRect(Context(context_), &box, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))) != 0;
}

void ShapeCanvas::Ellipse(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    usable_ = usable_ && ::Ellipse(Context(context_), left, top, right, bottom) != FALSE;
}

void ShapeCanvas::Polygon(std::span<const ShapePoint> points) {
    if (!usable_ || points.size() < 2 || points.size() > kMaxPoints) return;
    POINT copies[kMaxPoints];
    for (std::size_t i = 0; i < points.size(); ++i)
        copies[i] = {points[i].x, points[i].y};
    usable_ = ::Polygon(Context(context_), copies, static_cast<int>(points.size())) != FALSE;
}

bool ShapeCanvas::Finish(std::int32_t top, std::int32_t bottom) {
    if (!usable_) return false;
    GdiFlush(); // what was asked for may not have been drawn yet
    // The section is stored bottom-up with padded rows, three equal bytes a pixel.
    const std::ptrdiff_t stride = (std::ptrdiff_t{3} * width_ + 3) / 4 * 4;
    for (std::int32_t y = std::max(top, 0); y < std::min(bottom, height_); ++y) {
        const std::uint8_t* drawn = static_cast<const std::uint8_t*>(bits_) + (height_ - 1 - y) * stride;
        std::uint8_t* row = pixels_ + std::ptrdiff_t{y} * width_;
        for (std::int32_t x = 0; x < width_; ++x)
            row[x] = drawn[std::ptrdiff_t{3} * x];
    }
    return true;
}

} // namespace lumafold
