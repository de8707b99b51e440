// Soft iris and Silent movie: a soft-edged shape opens from the middle onto the target. Silent movie first
// closes it over the source onto a flat colour, as early films did.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

enum class IrisShape { Ellipse, Diamond };

template <IrisShape kShape>
class SoftIris {
public:
    static std::optional<SoftIris> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    OwnedDib Frame(const Gap& gap, std::int64_t index) const;

private:
    explicit SoftIris(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< percent of the full shape a frame
};

class SilentMovie {
public:
    class Painter {
    public:
        Painter(const SilentMovie& plan, const Gap& gap);
        explicit operator bool() const { return static_cast<bool>(background_); }
        OwnedDib Frame(std::int64_t index) const;

    private:
        OwnedDib IrisFrame(std::int64_t percent, const DibHeader& inside) const;

        const SilentMovie& plan_;
        const Gap& gap_;
        OwnedDib background_;
    };

    static std::optional<SilentMovie> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    Painter Start(const Gap& gap) const { return {*this, gap}; }

private:
    explicit SilentMovie(std::int64_t step) : step_(step) {}
    std::int64_t ClosingFrames() const;

    std::int64_t step_; ///< percent of the full shape a frame
};

} // namespace lumafold
