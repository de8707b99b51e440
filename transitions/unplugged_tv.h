// Unplugged TV: the source collapses into a line and the line into a dot, with the target behind it; then,
// if the setting asks for it, the dot glows up once more and fades.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// What the screen shows, all in percent.
struct TvScreen {
    std::int64_t vertical, horizontal; ///< of the picture, at least 2 are drawn
    std::optional<std::int64_t> glow;  ///< brightness of the dot that is there instead of the picture
};

/// The picture, squashed, in the middle of the background; or the background with the dot glowing in its
/// middle. Both pictures have 24 bits.
OwnedDib UnpluggedTVFrame(const DibHeader& background, const DibHeader& picture, const TvScreen& screen);

class UnpluggedTv {
public:
    static std::optional<UnpluggedTv> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;
    /// All but the first collapse goes at twice the speed.
    std::int32_t Delay(std::int64_t index, std::int32_t delay) const;

private:
    enum class Afterglow { Off, On };
    UnpluggedTv(std::int64_t step, Afterglow afterglow) : step_(step), afterglow_(afterglow) {}
    std::int64_t CollapseFrames() const;
    std::int64_t BrighteningFrames() const;
    TvScreen Screen(std::int64_t index) const;

    std::int64_t step_; ///< percent a frame
    Afterglow afterglow_;
};

} // namespace lumafold
