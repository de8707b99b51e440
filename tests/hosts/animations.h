// Animations for the tests of what writes them, and what each of their frames says is on screen.
#pragma once

#include <string>
#include <vector>

#include "hosts/codecs/animation.h"

namespace lumafold::test {

struct AnimationCase {
    std::string name;
    Animation animation;
};

/// Every depth over odd sizes, still frames, holes, colours told twice, delays out of bounds.
std::vector<AnimationCase> AnimationCases();

/// Screens after each frame, row by row; kNoPixel where nothing has been drawn.
std::vector<std::vector<PixelValue>> WantedScreens(const Animation& animation);

} // namespace lumafold::test
