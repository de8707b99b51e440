// A picture scaled down into a list item or a button, and its file's name.
#pragma once

#include <windows.h>

#include "image/dib.h"

namespace lumafold {

/// Draws the picture centred in the item, 6 pixels in, shrunk but never enlarged, with a frame round it.
/// Where it stands, the frame included; an empty rectangle when nothing could be drawn.
RECT DrawThumbnail(const DRAWITEMSTRUCT& item, DibHandle picture);

/// The file's name and extension in a path.
const char* FileNameOf(const char* path);

} // namespace lumafold
