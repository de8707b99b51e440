// Quad: the target's four quarters grow, each from the middle of its own place, over the source; or the
// source's shrink there and uncover the target.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

enum class QuadDirection { Expand, Contract };

template <QuadDirection Direction>
class Quad {
public:
    static std::optional<Quad> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    explicit Quad(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent a frame
};

} // namespace lumafold
