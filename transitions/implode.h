// Burp and Quantum singularity: a cross-fade warped about a centre that stands still or travels. The
// singularity draws the picture into the point and lets it go; the burp bulges, falls back, and hiccups once.
//
// In coordinates about the centre over its distance from the farther edges, a pixel at d < 1 shows what lies
// at d^e along its ray: e = 1 / (1 + a w) for the singularity, 1 + a w for the burp, w = (1 - d^2)^2, a the
// frame's pull.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

enum class ImplodeKind { Burp, QuantumSingularity };

template <ImplodeKind Kind>
class Implode {
public:
    static std::optional<Implode> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    explicit Implode(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent a frame
};

} // namespace lumafold
