// What an effect is given: the list entry whose gap it fills, with the work fields the driver adds. The
// record has the layout of an ImageEntry, of which it is a copy; addresses apart, it is the same on every
// platform.
#pragma once

#include "image/frame_list.h"
#include "platform/window_handle.h"

namespace lumafold {

#pragma pack(push, 1)
struct TransitionContext {
    DibHandle listImage; ///< the entry's own picture, of any size; effects leave it alone
    char label[261];
    std::int32_t transition; ///< row of the TransitionTable
    std::int32_t pause;      ///< delay of the still frame, in the host's unit
    std::int32_t delay;      ///< delay of each frame between
    DibHandle image;         ///< where the transition starts: 24 bits, canvas size; borrowed, as the next two
    DibHandle nextImage;     ///< where it ends, the same size
    DibHandle previousImage;
    std::int32_t carryWord; ///< 1 at first; each effect may leave a value here for the next
    std::int32_t paletteBits;
    Palette palette;
    std::uint32_t flags;
    FrameList* frames; ///< where the effect appends
    WindowHandle window;
};
#pragma pack(pop)
static_assert(sizeof(TransitionContext) == 1073 + sizeof(void*));

} // namespace lumafold
