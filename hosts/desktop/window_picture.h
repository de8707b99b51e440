// A window as it is seen, frame and all.
#pragma once

#include <windows.h>

#include "image/dib.h"

namespace lumafold {

/// At 24 bits, what covers the window included; none when memory is short.
OwnedDib WindowPicture(HWND window);

} // namespace lumafold
