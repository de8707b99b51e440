// Hurricane: the cross-fade is turned about the middle, most at its eye and not at all at the rim, and
// smeared along the turn. Both swell up to the middle of the way and die down.
#pragma once

#include "numbers/turn_table.h"
#include "transitions/gap.h"

namespace lumafold {

class HurricanePainter {
public:
    HurricanePainter(const Gap& gap, std::int64_t step) : gap_(gap), step_(step) {}
    explicit operator bool() const { return static_cast<bool>(turns_); }
    OwnedDib Frame(std::int64_t index) const;

private:
    const Gap& gap_;
    std::int64_t step_;
    TurnTable turns_;
};

class Hurricane {
public:
    static std::optional<Hurricane> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    HurricanePainter Start(const Gap& gap) const { return {gap, step_}; }

private:
    explicit Hurricane(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent a frame
};

} // namespace lumafold
