// Backscatter: the target pushes the source out of the frame behind a glowing seam, and pixels near the seam
// are scattered. The two directions differ in the order of their points and in their thinning.
#pragma once

#include "transitions/gap.h"
#include "transitions/random.h"

namespace lumafold {

enum class PushAxis { Horizontal, Vertical };

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

template <PushAxis Axis>
class BackscatterPainter {
public:
    BackscatterPainter(const Gap& gap, std::int64_t step, std::int64_t last)
        : gap_(gap), step_(step), last_(last), random_(gap.settings.RandomSeed) {}
    explicit operator bool() const { return true; }
    OwnedDib Frame(std::int64_t index);

private:
    const Gap& gap_;
    std::int64_t step_, last_;
    Random random_;
};

template <PushAxis Axis>
class Backscatter {
public:
    static std::optional<Backscatter> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    BackscatterPainter<Axis> Start(const Gap& gap) const { return {gap, step_, Frames() - 1}; }

private:
    explicit Backscatter(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent a frame
};

} // namespace lumafold
