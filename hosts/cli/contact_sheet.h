// Many pictures on one: a grid of small copies with a line of text under each, to see an animation at a
// glance.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "hosts/cli/frame_sink.h"

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
/// over what stood before it where it is transparent.
class SheetCells final : public FrameSink {
public:
    explicit SheetCells(std::size_t most) : most_(most) {}

    void Begin(const AnimationFacts& facts, std::size_t frames) override;
    void Add(const FrameView& frame) override;
    /// `delays` has one for each frame and takes the place of those that they came with; empty leaves them.
    std::vector<SheetCell> Take(std::span<const std::int32_t> delays = {});

private:
    void Show(const FrameView& frame);

    struct Chosen {
        std::size_t frame;
        std::int32_t delay;
        OwnedDib picture;
    };
    const std::size_t most_;
    std::size_t frames_ = 0, added_ = 0;
    OwnedDib screen_; ///< what a viewer shows after each frame
    std::vector<Chosen> chosen_;
};

} // namespace lumafold
