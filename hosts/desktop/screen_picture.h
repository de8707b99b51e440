// A screen as a picture of its own, for files and the clipboard.
#pragma once

#include "codecs/frame_screens.h"

namespace lumafold {

/// At 24 bits, white where nothing is drawn; none when memory is short.
OwnedDib ScreenPicture(const ScreenPixels& screen, std::int32_t width, std::int32_t height);

} // namespace lumafold
