// The picture operations of Backscatter: the target pushes the source out of the frame behind a glowing seam,
// and pixels near the seam are scattered. The two directions differ in the order of their points and in their
// thinning.
#pragma once

#include "image/dib.h"
#include "transitions/random.h"

namespace lumafold {

/// Where the seam stands at `percent`: by the height in both directions (docs/quirks.md 33).
std::int64_t SeamAt(const DibHeader& target, std::int64_t percent);

/// The frame at `percent`, without its seam: the target comes from the top or from the left.
OwnedDib PushWipeVertical(const DibHeader& target, const DibHeader& source, std::int64_t percent);
OwnedDib PushWipeHorizontal(const DibHeader& target, const DibHeader& source, std::int64_t percent);

/// Draws the five-line seam into a 24-bit frame and scatters what lies up to `size` pixels before and behind
/// it, each point by up to half of that. Points outside the picture take their draws too, so that the draws
/// of the others, and of the frames to come, are the same wherever the seam stands (docs/quirks.md 34).
/// A size of 0 or less scatters nothing.
void ScatterSeamVertical(DibHeader& frame, std::int64_t seam, std::int32_t size, PixelValue colour,
                         Random& random);
void ScatterSeamHorizontal(DibHeader& frame, std::int64_t seam, std::int32_t size, PixelValue colour,
                           Random& random);

} // namespace lumafold
