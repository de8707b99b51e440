// What a window shows, as a picture to measure.
#pragma once

#include <windows.h>

#include "tests/support/pictures.h"

namespace lumafold::test {

class Snapshot {
public:
    /// The whole window with its frame.
    explicit Snapshot(HWND window);

    /// 0x00BBGGRR of a point of the client area of the window, or of a control in it.
    PixelValue At(HWND control, POINT inside) const;
    int CountOf(PixelValue colour) const;

private:
    RECT place_{}; ///< on the screen
    OwnedDib picture_;
};

} // namespace lumafold::test
