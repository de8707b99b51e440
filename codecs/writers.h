// The writers of the single formats. Inside this room only; callers see animation_writer.h.
#pragma once

#include "codecs/animation_writer.h"

namespace lumafold {

inline constexpr char kNoFrames[] = "the animation has no frames";

std::unique_ptr<AnimationWriter> NewGifWriter(const AnimationFacts& facts, const Runner& runner);
std::unique_ptr<AnimationWriter> NewApngWriter(const AnimationFacts& facts, int effort, const Runner& runner);
std::unique_ptr<AnimationWriter> NewMngWriter(const AnimationFacts& facts, int effort, const Runner& runner);

} // namespace lumafold
