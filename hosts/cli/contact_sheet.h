// Many pictures on one: a grid of small copies with a line of text under each, to see an animation at a
// glance.
#pragma once

#include <span>
#include <string>

#include "hosts/codecs/animation.h"

namespace lumafold {

inline constexpr std::int32_t kSheetCellWidth = 160,
                              kSheetCellHeight = 120; ///< pictures are shrunk into this
inline constexpr std::size_t kMostSheetCells = 48;

struct SheetCell {
    OwnedDib picture;  ///< any depth and size
    std::string label; ///< printable ASCII
};

/// A picture's copy at 24 bits, shrunk to fit a cell; none when memory is short.
OwnedDib SheetPicture(DibHandle picture);

/// The sheet at 24 bits, row by row from the upper left; none for no cells or when memory is short.
OwnedDib LayOutSheet(std::span<const SheetCell> cells);

/// The sheet of an animation as it is seen: at most kMostSheetCells frames, evenly spaced, the first and last
/// among them, each laid over what stood before it where it is transparent.
OwnedDib AnimationSheet(const Animation& animation);

} // namespace lumafold
