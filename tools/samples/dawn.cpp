// The sun comes up behind ridge after ridge, each a little paler than the one in front of it.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "tools/samples/paint.h"

namespace lumafold::samples {
namespace {

constexpr Point kSun = {0.98, 0.435};
constexpr int kRidges = 6;

double Distance(Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y); }

Colour Sky(Point p) {
    Colour sky = Gradient({{0.00, Tint(0x26345F)},
                           {0.16, Tint(0x4B5688)},
                           {0.30, Tint(0x94799C)},
                           {0.40, Tint(0xE09C95)},
                           {0.48, Tint(0xFBC592)},
                           {0.60, Tint(0xFFE3B0)}},
                          p.y + 0.03 * (p.x - kSun.x) * (p.x - kSun.x));
    const double streak = Clouds(p.x * 1.7 + 3, p.y * 11 + 0.6 * Noise(p.x * 2, p.y * 3, 12), 5, 40);
    const double veil = Smooth(0.02, 0.42, streak) * Smooth(0.02, 0.12, p.y) * Smooth(0.46, 0.30, p.y);
    const Colour lit = Mix(Tint(0xB98BA8), Tint(0xFFD7A8), Smooth(0.10, 0.36, p.y));
    sky = Mix(sky, lit, 0.75 * veil);
    const double d = Distance(p, kSun);
    sky = Lighten(sky, Colour{1.0, 0.62, 0.28} * (0.75 * std::exp(-d * 5.5)));
    sky = Lighten(sky, Colour{1.0, 0.85, 0.55} * (1.3 * std::exp(-d * 20)));
    return Mix(sky, Tint(0xFFF8E2), Smooth(0.047, 0.043, d));
}

// Far ridges are jagged rock, near ones rolling woodland.
double RidgeHeight(int ridge, double x) {
    constexpr double kBase[kRidges] = {0.475, 0.535, 0.600, 0.685, 0.790, 0.925};
    constexpr double kRise[kRidges] = {0.125, 0.120, 0.120, 0.130, 0.130, 0.130};
    constexpr double kBumps[kRidges] = {2.6, 2.1, 1.7, 1.5, 1.2, 0.9};
    const double u = x * kBumps[ridge] + 7.3 * ridge + 1.7;
    const double rock = 1 - 2 * std::fabs(Clouds(u, 0.5 + ridge, 7, 60u + static_cast<unsigned>(ridge) * 9));
    const double hill = 0.5 + Clouds(u, 0.5 + ridge, 5, 61u + static_cast<unsigned>(ridge) * 9);
    const double jagged = 1 - ridge / double{kRidges - 1};
    return kBase[ridge] - kRise[ridge] * (Mix(hill, rock, 0.25 + 0.65 * jagged) - 0.45);
}

/// Every ridge's outline and its firs, worked out once.
class Land {
public:
    struct Fir {
        double x, foot, height;
    };

    Land() {
        for (int ridge = 0; ridge < kRidges; ++ridge) {
            for (int i = 0; i <= kSteps; ++i)
                tops_[ridge][i] = RidgeHeight(ridge, i * kReach / kSteps - kBefore);
        }
        Plant(woods_[0], kRidges - 2, 0.012, 0.045);
        Plant(woods_[1], kRidges - 1, 0.030, 0.17);
    }

    double RidgeTop(int ridge, double x) const {
        const double at = std::clamp((x + kBefore) / kReach, 0.0, 0.9999) * kSteps;
        const int i = static_cast<int>(at);
        return Mix(tops_[ridge][i], tops_[ridge][i + 1], at - i);
    }
    bool InsideWood(Point p, int ridge) const {
        if (ridge < kRidges - 2) return false;
        for (const Fir& fir : woods_[ridge - (kRidges - 2)]) {
            if (std::fabs(p.x - fir.x) < 0.3 * fir.height && InsideFir(p, fir)) return true;
        }
        return false;
    }

private:
    static constexpr int kSteps = 6000;
    static constexpr double kBefore = 0.1, kReach = kAspect + 2 * kBefore;

    static bool InsideFir(Point p, const Fir& fir);
    void Plant(std::vector<Fir>& wood, int ridge, double spacing, double tallest);

    double tops_[kRidges][kSteps + 1];
    std::vector<Fir> woods_[2];
};

// A fir: tiers of branches that widen downwards, each tier drooping below the next.
bool Land::InsideFir(Point p, const Fir& fir) {
    const double down = (p.y - (fir.foot - fir.height)) / fir.height;
    if (down < 0 || down > 1.06) return false;
    const double tiers = down * 8;
    const double tooth = tiers - std::floor(tiers);
    const double half = fir.height * 0.20 * (0.04 + down * (0.55 + 0.45 * tooth));
    const double ragged = 1 + 0.25 * Noise(p.x * 420, p.y * 420, 77);
    return std::fabs(p.x - fir.x) < half * ragged;
}

void Land::Plant(std::vector<Fir>& wood, int ridge, double spacing, double tallest) {
    const auto seed = 500u + static_cast<unsigned>(ridge);
    for (int k = -2; k * spacing < kAspect + 0.05; ++k) {
        if (Random(k, 1, seed) < 0.25) continue;
        const double x = (k + 0.5 + 0.8 * (Random(k, 2, seed) - 0.5)) * spacing;
        const double height =
            tallest * (0.35 + 0.65 * Random(k, 3, seed) * (0.6 + 0.4 * Noise(x * 5, 3, seed)));
        wood.push_back({x, RidgeTop(ridge, x) + 0.006, height});
    }
}

Colour Ridge(const Land& land, int ridge, Point p, double top) {
    const double near = ridge / double{kRidges - 1};
    Colour rock = Gradient({{0.0, Tint(0xC9929C)},
                            {0.2, Tint(0xA27A95)},
                            {0.4, Tint(0x74648A)},
                            {0.6, Tint(0x4A4B73)},
                            {0.8, Tint(0x262F4E)},
                            {1.0, Tint(0x0E1729)}},
                           near);
    const double below = p.y - top;
    // Slopes that face the sun catch a little of it.
    const double slope = (land.RidgeTop(ridge, p.x + 0.006) - top) / 0.006 * (kSun.x > p.x ? 1 : -1);
    const double relief = Clouds(p.x * 22, p.y * 16 + below * 20, 4, 90u + static_cast<unsigned>(ridge));
    rock = rock * (1 + 0.16 * relief * (1 - 0.4 * near));
    rock = Lighten(rock,
                   Tint(0xFFB27A) * (0.20 * Smooth(0, 0.9, slope) * Smooth(0.07, 0.0, below) * (1 - near)));
    const double haze = Smooth(0.01, 0.13 + 0.03 * near, below + 0.02 * Noise(p.x * 4, p.y * 9, 31));
    const Colour mist = Mix(Tint(0xFFD6B0), Tint(0x8E86A8), Smooth(0.15, 0.95, near));
    const double sunward = std::exp(-2.2 * std::fabs(p.x - kSun.x));
    rock = Mix(rock, Mix(mist, Tint(0xFFDDB0), 0.45 * sunward * (1 - near)), haze * Mix(0.70, 0.32, near));
    return rock;
}

bool InsideBird(Point p, Point at, double span) {
    const double x = std::fabs(p.x - at.x) / span, y = (p.y - at.y) / span;
    const double wing = 0.32 * x - 0.55 * std::sqrt(x) * (1 - x) - 0.05;
    return x < 1 && std::fabs(y - wing) < 0.075 * (1 - 0.75 * x);
}

Colour Dawn(const Land& land, Point p) {
    for (int ridge = kRidges - 1; ridge >= 0; --ridge) {
        const double top = land.RidgeTop(ridge, p.x);
        if (p.y >= top || land.InsideWood(p, ridge)) return Ridge(land, ridge, p, std::min(top, p.y));
    }
    constexpr Point kBirds[] = {{0.44, 0.235}, {0.495, 0.215}, {0.535, 0.245}, {0.60, 0.225}};
    for (const Point& bird : kBirds) {
        if (InsideBird(p, bird, 0.017 + 0.004 * Random(static_cast<int>(bird.x * 100), 0, 3)))
            return Tint(0x3A3A5E);
    }
    return Sky(p);
}

} // namespace

Scene DawnOverMountains() {
    const auto land = std::make_shared<const Land>();
    return [land](Point p) { return Dawn(*land, p); };
}

} // namespace lumafold::samples
