// Frames as differences: what a frame shows unchanged from the one before is marked while colours are still
// exact, and made transparent once the frame has been reduced.
#pragma once

#include "image/frame_list.h"

namespace lumafold {

/// Gives `frame` a mask of what equals `reference`, which then shows the frame, and the matte colour as its
/// transparentIndex until it is painted. With no reference yet the frame becomes it and gets no mask. The
/// caller owns both and puts the record back. False when memory is short or a picture cannot be locked; the
/// record is then as it was.
bool MarkUnchanged(OwnedDib& reference, FrameRecord& frame, PixelValue matte);

/// Makes the marked pixels of a frame transparent; one without a mask stays as it is. With a palette they
/// become `slot`, whose entry becomes the matte colour; with slot -1 nothing is written and nothing is
/// transparent. In true colour they become black, and so does the transparentIndex, which then is a colour.
/// False, touching nothing, when a picture cannot be locked or has no such slot.
bool PaintUnchanged(FrameRecord& frame, int slot, PixelValue matte);

} // namespace lumafold
