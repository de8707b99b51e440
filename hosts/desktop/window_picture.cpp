#include "hosts/desktop/window_picture.h"

#include "platform/gdi_win32.h"

namespace lumafold {

OwnedDib WindowPicture(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    const int width = area.right - area.left, height = area.bottom - area.top;
    OwnedDib picture = DibCreate(width, height, nullptr, 24);
    if (!picture) return picture;
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    const OwnedGdi<HBITMAP> bitmap(CreateCompatibleBitmap(screen, width, height));
    {
        const SelectedGdi selected(memory, bitmap.Get());
        BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
    }
    auto* info = reinterpret_cast<BITMAPINFO*>(&*picture);
    GetDIBits(memory, bitmap.Get(), 0, static_cast<UINT>(height), picture.Rows().Stored(), info,
              DIB_RGB_COLORS);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

} // namespace lumafold
