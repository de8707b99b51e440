// Many pictures on one: a grid of small copies with a line of text under each, to see an animation at a
// glance.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

inline constexpr std::int32_t kSheetCellWidth = 160,
                              kSheetCellHeight = 120; ///< pictures are shrunk into this
inline constexpr std::size_t kMostSheetCells = 48, kSheetColumns = 6;

struct SheetCell {
    OwnedDib picture;  ///< any depth and size; none leaves the place free
    std::string label; ///< printable ASCII; runs on under the cells after it that have none
};

/// A picture's copy at 24 bits, shrunk to fit a cell; none when memory is short.
OwnedDib SheetPicture(const DibHeader& picture);

/// A picture's copy at 24 bits and `percent` of its size, but no side without a pixel; none when memory is
/// short.
OwnedDib ShrinkPicture(const DibHeader& picture, std::int32_t percent);

/// The sheet at 24 bits, row by row from the upper left; none for no cells or when memory is short.
OwnedDib LayOutSheet(std::span<const SheetCell> cells, std::size_t columns);

/// An animation as it is seen: at most `most` frames, evenly spaced, the first and last among them, each laid
/// over what stood before it where it is transparent. Empty when memory is short.
std::vector<SheetCell> AnimationCells(const Animation& animation, std::size_t most);

/// kMostSheetCells of them, kSheetColumns in a row.
OwnedDib AnimationSheet(const Animation& animation);

} // namespace lumafold
