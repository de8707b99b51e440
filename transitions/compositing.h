// What the effects blend with: a Gaussian blur, a cross-fade by one weight, a blend through a mask. Each
// leaves its arguments alone and returns a new mask or 24-bit picture, empty when memory is short.
#pragma once

#include "image/dib.h"
#include "transitions/mask.h"

namespace lumafold {

/// The weights of a blur of n taps, adding up to 1, each the sum of three samples; below 1 tap, 3 are used.
/// Sigma in pixels. Empty when it could not be allocated.
Array<double> GaussianKernel(std::int32_t taps, double sigma);

/// Convolves a row of `count` three-byte pixels. Borders are renormalised by the weights that fall inside,
/// half a level added before the division (docs/quirks.md 10). No taps give black.
void BlurRow(const Array<double>& kernel, const std::uint8_t* source, std::uint8_t* target,
             std::int32_t count);

/// Radius and sigma in tenths of a pixel; a picture has 24 bits, or the blur fails. A kernel that cannot be
/// had gives black, not a failure (docs/quirks.md 11).
OwnedDib DibGaussianBlur(const DibHeader& picture, std::int32_t radius, std::int32_t sigma);
Mask MaskGaussianBlur(Mask mask, std::int32_t radius, std::int32_t sigma);

/// (b x t) / 255 + (a x (255 - t)) / 255 in each channel, both quotients truncated; t from 0 (a) to 255 (b).
OwnedDib DibCrossfade(const DibHeader& a, const DibHeader& b, int t);

/// White in the mask shows a, black shows b, its low byte weighs between; a one-bit mask copies whole pixels.
OwnedDib DibMaskBlend(const DibHeader& a, const DibHeader& b, const DibHeader& mask);

/// The same for 24-bit pictures of one size, which the mask covers when its pixel (left, top) lies on their
/// first.
OwnedDib MaskBlend(const DibHeader& a, const DibHeader& b, const Mask& mask, std::int32_t left = 0,
                   std::int32_t top = 0);
/// The same into `box` of a third picture of their size; the mask is one of the box.
void MaskBlendBox(const DibHeader& a, const DibHeader& b, const Mask& mask, const Rect& box, DibHeader& out);

} // namespace lumafold
