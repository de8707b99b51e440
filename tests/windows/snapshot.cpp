#include "tests/windows/snapshot.h"

#include <vector>

#include <gtest/gtest.h>

#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "platform/gdi_win32.h"

namespace lumafold::test {
namespace {

void Copy(HDC into, POINT at, HWND window) {
    RECT rect;
    GetWindowRect(window, &rect);
    HDC context = GetWindowDC(window);
    BitBlt(into, at.x, at.y, rect.right - rect.left, rect.bottom - rect.top, context, 0, 0, SRCCOPY);
    ReleaseDC(window, context);
}

} // namespace

Snapshot::Snapshot(HWND window, HWND over) {
    RECT rect, upper{};
    GetWindowRect(window, &rect);
    const RECT own = rect;
    if (over != nullptr) {
        GetWindowRect(over, &upper);
        UnionRect(&rect, &own, &upper);
    }
    origin_ = {rect.left, rect.top};
    size_ = {rect.right - rect.left, rect.bottom - rect.top};

    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    const OwnedGdi<HBITMAP> bitmap(CreateCompatibleBitmap(screen, size_.cx, size_.cy));
    {
        const SelectedGdi selected(memory, bitmap.Get());
        Copy(memory, From(POINT{own.left, own.top}), window);
        if (over != nullptr) Copy(memory, From(POINT{upper.left, upper.top}), over);
    }
    picture_ = OwnedDib(DibCreate(size_.cx, size_.cy, nullptr, 24));
    const LockedDib dib(picture_.Get());
    auto* header = reinterpret_cast<BITMAPINFO*>(dib.Get());
    auto* rows = reinterpret_cast<std::uint8_t*>(dib.Get()) + DibRowsOffset(*dib);
    EXPECT_EQ(GetDIBits(memory, bitmap.Get(), 0, static_cast<UINT>(size_.cy), rows, header, DIB_RGB_COLORS),
              size_.cy);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

PixelValue Snapshot::At(HWND control, POINT inside) const {
    ClientToScreen(control, &inside);
    return At(From(inside));
}

int Snapshot::CountOf(PixelValue colour) const {
    int count = 0;
    for (std::int32_t y = 0; y < Height(); ++y) {
        for (std::int32_t x = 0; x < Width(); ++x)
            count += At({x, y}) == colour ? 1 : 0;
    }
    return count;
}

void Snapshot::Save(const std::string& name) const {
    CreateDirectoryA(LUMAFOLD_SCREENSHOTS, nullptr);
    std::string error;
    const std::vector<std::uint8_t> bytes = EncodePng(picture_.Get(), error);
    EXPECT_TRUE(WriteFileSafely(LUMAFOLD_SCREENSHOTS + name + ".png", bytes, error)) << error;
}

} // namespace lumafold::test
