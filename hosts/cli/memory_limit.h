// How much memory a build may take, and what is said of one that would take more.
#pragma once

#include <string>

#include "build/estimate.h"
#include "hosts/cli/output_kind.h"

namespace lumafold {

/// Half of what the machine has; never more than a 32-bit program can use.
std::uint64_t UsualMemoryLimit();

/// What takes the frames holds of them, in bytes a pixel of the canvas.
struct TakerNeed {
    double once;  ///< however many frames there are
    double frame; ///< for each frame, until the last one
};
inline constexpr TakerNeed kSheetNeed{6, 0}; ///< a contact sheet's screen, and a picture in true colour
/// `quality` is that of a WebP, none without losses; `packed` is what a frame comes to in true colour, in
/// bytes a pixel, none in others; `workers` pack `frames` frames.
TakerNeed NeedOf(OutputKind kind, std::optional<int> quality, std::optional<double> packed,
                 std::size_t workers, std::int64_t frames);

/// What the pictures come to as PNG data, in bytes a pixel, by a part of some of them.
double PackedBytes(ImageList& list);

/// All that the build holds at once at the most, its list and the taker of its frames included.
std::uint64_t CommandBytes(ImageList& list, const BuildEstimate& estimate, const TakerNeed& taker);

/// "would need 12.3 GB: 4000 frames of 640x480; the limit is 8.0 GB", or "" where `limit` bytes are enough.
std::string WhyTooLarge(const BuildEstimate& estimate, std::uint64_t bytes, std::uint64_t limit);

} // namespace lumafold
