// Liquid metal: the source fades into the target under a circular ripple that swells, then dies down along
// the same strengths. The ripple moves a pixel by the same distance along x and y, which gives the sheared
// look.
#pragma once

#include "transitions/gap.h"

namespace lumafold {

/// One axis as the centre sees it: pixels equally far to either side share a class. Distances are kept
/// doubled, which makes them whole.
class RippleAxis {
public:
    RippleAxis(std::int32_t size, std::int32_t centrePercent);
    explicit operator bool() const { return static_cast<bool>(classes_); }

    std::size_t Count() const { return count_; }
    std::size_t ClassOf(std::int32_t at) const { return classes_[static_cast<std::size_t>(at)]; }
    const std::uint32_t* Classes() const { return classes_.data(); }
    /// In pixels.
    double Distance(std::size_t index) const {
        return 0.5 * static_cast<double>(nearest_ + 2 * std::int64_t(index));
    }
    double ToFarEnd() const { return size_ - 0.5 * static_cast<double>(doubledCentre_); }

private:
    std::int64_t Doubled(std::int32_t at) const;

    std::int64_t doubledCentre_, nearest_ = 0;
    std::int32_t size_;
    std::size_t count_ = 0;
    Array<std::uint32_t> classes_;
};

/// The distances from the centre that occur in a picture, each once, and where they do. A frame's sines are
/// then worked out once for each. Check it before use.
class RippleField {
public:
    /// The centre in percent of the sides.
    RippleField(CanvasSize size, std::int32_t centreX, std::int32_t centreY);
    explicit operator bool() const { return ready_; }

    /// What a ripple of this strength moves each of the distances by, in pixels; empty when memory is short.
    Array<double> Displacements(float strength) const;
    /// One row of the picture's displacements.
    void FillRow(std::int32_t y, const Array<double>& displacements, Array<double>& row) const;

private:
    bool AssignSlots();

    RippleAxis columns_, rows_;
    Array<std::uint32_t> slots_; // index into the radii, by class of row and class of column
    Array<double> radii_;
    std::size_t radiusCount_ = 0;
    double farthest_;
    bool ready_ = false;
};

/// A 24-bit picture of the field's size, as a ripple of this strength bends it.
OwnedDib LiquidMetalRipple(const DibHeader& picture, const RippleField& field, float strength);

class LiquidMetalPainter {
public:
    LiquidMetalPainter(const Gap& gap, std::int64_t step);
    explicit operator bool() const { return static_cast<bool>(field_); }
    OwnedDib Frame(std::int64_t index) const;

private:
    const Gap& gap_;
    std::int64_t step_;
    float viscosity_;
    RippleField field_;
};

class LiquidMetal {
public:
    static std::optional<LiquidMetal> Plan(const PluginSettings& settings, CanvasSize canvas);
    std::int64_t Frames() const;
    LiquidMetalPainter Start(const Gap& gap) const { return {gap, step_}; }
    std::int32_t Delay(std::int64_t index, std::int32_t delay) const;

private:
    explicit LiquidMetal(std::int64_t step) : step_(step) {}

    std::int64_t step_; ///< levels of 255 a frame
};

} // namespace lumafold
