// Frames as differences: what a frame shows unchanged from the one before is marked while colours are still
// exact, and made transparent once the frame has been reduced.
#pragma once

#include "image/frame_list.h"

namespace lumafold {

/// Gives `frame` a mask of what equals the picture `before` it, and the matte colour as its transparentIndex
/// until it is painted. Both pictures have 24 bits and one size. False, with the record as it was, when they
/// have not, memory is short or one cannot be locked.
bool MarkUnchanged(DibHandle before, FrameRecord& frame, PixelValue matte);

/// Makes the marked pixels of a frame transparent; one without a mask stays as it is. With a palette they
/// become `slot`, whose entry becomes the matte colour; with slot -1 nothing is written and nothing is
/// transparent. In true colour they become black, and so does the transparentIndex, which then is a colour.
/// False, touching nothing, when a picture cannot be locked or has no such slot.
bool PaintUnchanged(FrameRecord& frame, int slot, PixelValue matte);

} // namespace lumafold
