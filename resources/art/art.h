// What the plug-in's art is: the turning logo, the paper of the dialogs, the drag cursor.
#pragma once

#include <cstdint>
#include <vector>

#include "resources/art/surface.h"

namespace lumafold::art {

inline constexpr int kLogoWidth = 50, kLogoHeight = 49;
inline constexpr int kTextureWidth = 200, kTextureHeight = 250;
inline constexpr int kCursorSize = 32, kCursorHotX = 1, kCursorHotY = 1;

/// The sheet at `turn` of its round, 0 to 1, in front of the night.
Surface LogoFrame(double turn);
/// The sheet alone, for icons.
Surface LogoIcon(int size);

/// Greys that repeat without a seam in both directions, rows from the top. Tinting makes 0 the base colour
/// and 255 white; the paper lies between, where a shadow's grey becomes about the grey of a button.
std::vector<std::uint8_t> Texture();

Surface DragCursor();

} // namespace lumafold::art
