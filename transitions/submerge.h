// Submerge: the source sinks into a flat colour, its darkest parts first, and the target rises out of it, its
// brightest parts first.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// The luminance of a 24-bit picture's pixels, worked out once for all levels of the water. Each stands for
/// all three bytes of its pixel, so that a frame is a choice byte by byte.
class LuminancePlane {
public:
    /// Check it before use: the memory may not have been there.
    explicit LuminancePlane(const DibHeader& picture);
    explicit operator bool() const { return static_cast<bool>(bytes_); }
    const std::uint8_t* Row(std::int32_t y) const {
        return bytes_.data() + rowBytes_ * static_cast<std::size_t>(y);
    }

private:
    std::size_t rowBytes_;
    Array<std::uint8_t> bytes_;
};

/// The picture with everything darker than `level`, 0 to 255, under water of this colour; kNoPixel is black.
OwnedDib SubmergeFrame(const DibHeader& picture, const LuminancePlane& luminance, int level,
                       PixelValue colour);

class Submerge {
public:
    class Painter {
    public:
        Painter(std::int64_t step, const Gap& gap)
            : step_(step), gap_(gap), source_(gap.source), target_(gap.target) {}
        explicit operator bool() const { return source_ && target_; }
        OwnedDib Frame(std::int64_t index) const;

    private:
        std::int64_t step_;
        const Gap& gap_;
        LuminancePlane source_, target_;
    };

    static std::optional<Submerge> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    Painter Start(const Gap& gap) const { return {step_, gap}; }

private:
    explicit Submerge(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< levels of luminance a frame
};

} // namespace lumafold
