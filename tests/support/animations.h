// Animations for the tests of what writes them, and what each of their frames says is on screen.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold::test {

struct AnimationCase {
    std::string name;
    Animation animation;
};

/// Noise for its palette.
Animation EmptyAnimation(std::int32_t width, std::int32_t height, int bits);

/// Sides of 0 are those of the animation; delay in hundredths of a second.
struct FrameKind {
    int bits;
    std::int32_t delay, transparent = -1, width = 0, height = 0;
};
void AddFrame(Animation& to, FrameKind kind, const std::function<unsigned(int x, int y)>& pixelAt);

/// Every depth over odd sizes, still frames, holes, colours told twice, delays out of bounds.
std::vector<AnimationCase> AnimationCases();

/// Screens after each frame, row by row; kNoPixel where nothing has been drawn.
std::vector<std::vector<PixelValue>> WantedScreens(const Animation& animation);

} // namespace lumafold::test
