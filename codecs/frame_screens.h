// What is seen at each frame of an animation: a frame that has holes shows what stood there before it.
#pragma once

#include <map>

#include "codecs/frame_changes.h"

namespace lumafold {

/// Colours as 0x00BBGGRR, row by row from the top; kNoPixel where nothing has been drawn.
using ScreenPixels = std::vector<PixelValue>;

/// Frames in any order; some screens on the way are kept, so that none has to begin at the first frame. The
/// animation must outlive this. Throws AnimationError for a frame without a picture, and std::bad_alloc.
class FrameScreens {
public:
    explicit FrameScreens(const Animation& animation);

    /// Good until the next call.
    const ScreenPixels& At(std::size_t index);

private:
    void Draw(std::size_t index);
    void Keep(std::size_t index);

    const Animation& animation_;
    FrameReader reader_;
    ScreenPixels screen_;
    std::ptrdiff_t shown_ = -1; ///< the frame that screen_ shows, -1 while it shows none
    std::map<std::size_t, ScreenPixels> kept_;
};

} // namespace lumafold
