// Animations for the tests of what writes them, and what each of their frames says is on screen.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/codecs/animation.h"

namespace lumafold::test {

struct AnimationCase {
    std::string name;
    Animation animation;
};

/// Noise for its palette.
Animation EmptyAnimation(std::int32_t width, std::int32_t height, int bits);

/// Sides of 0 are those of the animation; delay in hundredths of a second.
void AddFrame(Animation& to, int bits, const std::function<unsigned(int x, int y)>& pixelAt,
              std::int32_t delay, std::int32_t transparent = -1, std::int32_t width = 0,
              std::int32_t height = 0);

/// Every depth over odd sizes, still frames, holes, colours told twice, delays out of bounds.
std::vector<AnimationCase> AnimationCases();

/// Screens after each frame, row by row; kNoPixel where nothing has been drawn.
std::vector<std::vector<PixelValue>> WantedScreens(const Animation& animation);

} // namespace lumafold::test
