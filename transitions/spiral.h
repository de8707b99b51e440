// Spiral out: the source turns and shrinks away over the target. Spiral in: the target turns and grows over
// the source. Clockwise both; a frame is one step of the turn, and the whole way is one full turn.
#pragma once

#include "transitions/gap.h"
#include "transitions/sampling.h"

namespace lumafold {

enum class SpiralWay { In, Out };

/// A picture at its own size and halved again and again, so that it does not flicker when it turns small.
class Pyramid {
public:
    /// Levels down to the one that `smallest`, the smallest scale, asks for. Check it before use.
    Pyramid(const DibHeader& picture, double smallest);
    explicit operator bool() const { return count_ > 0; }

    /// How often the picture is halved for a scale.
    std::int32_t LevelFor(double scale) const;
    const SamplePlane& Level(std::int32_t level) const { return levels_[static_cast<std::size_t>(level)]; }

private:
    static constexpr std::int32_t kMostLevels = 16; // no step asks for more than nine

    bool Halves(std::int32_t level, double scale) const;
    bool Append(const DibHeader& picture);

    std::array<SamplePlane, kMostLevels> levels_;
    std::int32_t count_ = 0;
};

template <SpiralWay Way>
class SpiralPainter {
public:
    SpiralPainter(const Gap& gap, std::int32_t steps);
    explicit operator bool() const { return !smooth_ || *smooth_; }
    OwnedDib Frame(std::int64_t index) const;

private:
    const DibHeader &turning_, &ground_;
    std::int32_t steps_;
    std::optional<Pyramid> smooth_; // of the turning picture, unless its nearest pixels are shown
};

template <SpiralWay Way>
class Spiral {
public:
    static std::optional<Spiral> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const { return steps_ - 1; }
    SpiralPainter<Way> Start(const Gap& gap) const { return {gap, steps_}; }

private:
    explicit Spiral(std::int32_t steps) : steps_(steps) {}

    std::int32_t steps_; ///< of the full turn
};

} // namespace lumafold
