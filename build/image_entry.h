// The record behind each line of the image list. A TransitionContext is a copy of one: the second picture is
// the context's `image`, the reserved bytes are its work fields, the tail its list of frames and its window.
#pragma once

#include "transitions/context.h"

namespace lumafold {

#pragma pack(push, 1)
struct ImageEntry {
    DibHandle image;         ///< the picture as loaded, owned
    char label[261];         ///< the file's path, or what the line is called
    std::int32_t transition; ///< row of the TransitionTable; -1 while unset, as the next two
    std::int32_t pause;
    std::int32_t delay;
    DibHandle workImage; ///< a second picture, owned; 0 when absent
    std::uint8_t reserved[784];
    std::uint32_t flags; ///< bit 0: has a transition, pause and delay of its own
    FrameList* frames;   ///< only while a build runs
    WindowHandle window;
};
#pragma pack(pop)

inline constexpr std::uint32_t kEntryOverride = 1;

static_assert(sizeof(ImageEntry) == sizeof(TransitionContext));
static_assert(sizeof(void*) != 4 || sizeof(ImageEntry) == 1077);
static_assert(offsetof(ImageEntry, transition) == offsetof(TransitionContext, transition) &&
              offsetof(ImageEntry, transition) == 265 &&
              offsetof(ImageEntry, workImage) == offsetof(TransitionContext, image) &&
              offsetof(ImageEntry, reserved) == offsetof(TransitionContext, nextImage) &&
              offsetof(ImageEntry, flags) == offsetof(TransitionContext, flags) &&
              offsetof(ImageEntry, flags) == 1065 &&
              offsetof(ImageEntry, frames) == offsetof(TransitionContext, frames));

} // namespace lumafold
