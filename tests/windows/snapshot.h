// What a window shows, as a picture to look at and to measure.
#pragma once

#include <windows.h>

#include <string>

#include "tests/support/pictures.h"

namespace lumafold::test {

class Snapshot {
public:
    /// The whole window with its frame. Others, such as an open drop-down list, are laid over it.
    explicit Snapshot(HWND window, HWND over = nullptr);

    std::int32_t Width() const { return size_.cx; }
    std::int32_t Height() const { return size_.cy; }
    /// 0x00BBGGRR.
    PixelValue At(POINT at) const { return PixelAt(picture_.Get(), at.x, at.y); }
    /// A point of the client area of the window, or of a control in it.
    PixelValue At(HWND control, POINT inside) const;
    int CountOf(PixelValue colour) const;

    /// Into the folder of screenshots, as NAME.png.
    void Save(const std::string& name) const;

private:
    POINT From(POINT screen) const { return {screen.x - origin_.x, screen.y - origin_.y}; }

    POINT origin_{};
    SIZE size_{};
    OwnedDib picture_;
};

} // namespace lumafold::test
