// What is seen at each frame of an animation: a frame that has holes shows what stood there before it.
#pragma once

#include <algorithm>
#include <map>

#include "codecs/frame_changes.h"

namespace lumafold {

/// Colours as 0x00BBGGRR, row by row from the top; kNoPixel where nothing has been drawn.
using ScreenPixels = std::vector<PixelValue>;

/// What is seen after each frame, one after the other.
class RunningScreen {
public:
    /// `facts` with both sides at least 1.
    explicit RunningScreen(const AnimationFacts& facts);

    /// Good until the next call. Throws AnimationError for a frame without pixels, and std::bad_alloc.
    const ScreenPixels& Show(const FrameView& frame);
    const ScreenPixels& Shown() const { return shown_; }
    /// Goes on from an earlier screen.
    void Return(const ScreenPixels& shown) { shown_ = shown; }
    /// Goes back to where nothing has been drawn.
    void Clear() { std::fill(shown_.begin(), shown_.end(), kNoPixel); }

private:
    std::size_t width_;
    FrameReader reader_;
    ScreenPixels shown_;
};

/// Frames in any order. A frame that covers the screen needs none before it, and some screens on the way are
/// kept, so that the others need not begin at the first frame. The animation must outlive this. Throws
/// AnimationError for a frame without a picture, and std::bad_alloc.
class FrameScreens {
public:
    explicit FrameScreens(const Animation& animation);

    /// Good until the next call.
    const ScreenPixels& At(std::size_t index);

private:
    void Draw(std::size_t index);
    bool Covers(std::size_t index) const;
    void Keep(std::size_t index);

    const Animation& animation_;
    RunningScreen screen_;
    std::ptrdiff_t shown_ = -1; ///< the frame that screen_ shows, -1 while it shows none
    std::map<std::size_t, ScreenPixels> kept_;
};

} // namespace lumafold
