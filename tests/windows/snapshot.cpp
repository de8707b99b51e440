#include "tests/windows/snapshot.h"

#include <gtest/gtest.h>

#include "platform/gdi_win32.h"

namespace lumafold::test {

Snapshot::Snapshot(HWND window) {
    GetWindowRect(window, &place_);
    const LONG width = place_.right - place_.left, height = place_.bottom - place_.top;
    HDC context = GetWindowDC(window), memory = CreateCompatibleDC(context);
    const OwnedGdi<HBITMAP> bitmap(CreateCompatibleBitmap(context, width, height));
    {
        const SelectedGdi selected(memory, bitmap.Get());
        BitBlt(memory, 0, 0, width, height, context, 0, 0, SRCCOPY);
    }
    picture_ = DibCreate(width, height, nullptr, 24);
    auto* header = reinterpret_cast<BITMAPINFO*>(&*picture_);
    EXPECT_EQ(GetDIBits(memory, bitmap.Get(), 0, static_cast<UINT>(height), picture_.Rows().Stored(), header,
                        DIB_RGB_COLORS),
              height);
    DeleteDC(memory);
    ReleaseDC(window, context);
}

PixelValue Snapshot::At(HWND control, POINT inside) const {
    ClientToScreen(control, &inside);
    return DibGetPixel(*picture_, inside.x - place_.left, inside.y - place_.top);
}

int Snapshot::CountOf(PixelValue colour) const {
    int count = 0;
    for (std::int32_t i = 0; i < picture_->biWidth * picture_->biHeight; ++i)
        count += DibGetPixel(*picture_, i % picture_->biWidth, i / picture_->biWidth) == colour ? 1 : 0;
    return count;
}

} // namespace lumafold::test
