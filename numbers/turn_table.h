// Cosine and sine together, for warps that turn every pixel: to 16 digits, from the nearest of 1024
// directions turned by the small rest.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

#include "numbers/portable_math.h"
#include "platform/allocation.h"

namespace lumafold {

struct Turn {
    double cosine, sine;
};

/// Check it before use: its directions may not have been had.
class TurnTable {
public:
    TurnTable() : directions_(kDirections) {
        for (std::size_t i = 0; i < directions_.size(); ++i) {
            const double angle = static_cast<double>(i) * kSpacing;
            directions_[i] = {PortableCos(angle), PortableSin(angle)};
        }
    }
    explicit operator bool() const { return static_cast<bool>(directions_); }

    /// Radians, |angle| below 10^9.
    Turn At(double angle) const {
        const auto nearest = static_cast<std::int64_t>(std::floor(angle * (1 / kSpacing) + 0.5));
        const double rest = angle - static_cast<double>(nearest) * kSpacing, z = rest * rest;
        const double cosine = 1 - z * (0.5 - z * (1.0 / 24));
        const double sine = rest - rest * z * (1.0 / 6 - z * (1.0 / 120));
        const Turn& from = directions_[static_cast<std::size_t>(nearest) & (kDirections - 1)];
        return {from.cosine * cosine - from.sine * sine, from.sine * cosine + from.cosine * sine};
    }

private:
    static constexpr std::size_t kDirections = 1024;
    static constexpr double kSpacing = 2 * std::numbers::pi / kDirections;

    Array<Turn> directions_;
};

} // namespace lumafold
