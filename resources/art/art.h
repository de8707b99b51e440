// What is drawn: the turning logo, the paper of the dialogs, the drag cursor, the icons of a toolbar.
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

/// Greys round `kTextureMiddle` that repeat without a seam in both directions, rows from the top. The dialogs
/// make the middle the colour they tint with.
inline constexpr int kTextureMiddle = 168;
std::vector<std::uint8_t> Texture();

Surface DragCursor();

enum class IconState { Usable, Faded };
/// The icons of the desktop program's toolbar side by side, in the order of their numbers.
Surface ToolbarIcons(int size, IconState state);

} // namespace lumafold::art
