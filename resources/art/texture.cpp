// Laid paper: soft clouds in the pulp, a fine tooth lit from the top left, and a few pressed fibres.
#include <cmath>

#include "resources/art/art.h"

namespace lumafold::art {
namespace {

using namespace paint;

constexpr double kClouds = 4, kTooth = 14.5, kFibre = 14;
constexpr int kFibres = 46;

/// Noise with `columns` by `rows` bumps on the whole sheet.
double Bumps(double x, double y, int columns, int rows, unsigned seed) {
    return TiledNoise(x / kTextureWidth * columns, y / kTextureHeight * rows, columns, rows, seed);
}

double Pulp(double x, double y) {
    return 0.6 * Bumps(x, y, 4, 5, 11) + 0.3 * Bumps(x, y, 8, 10, 12) + 0.3 * Bumps(x, y, 20, 25, 13);
}

double Height(double x, double y) {
    return 0.5 * Bumps(x, y, 40, 50, 21) + 0.5 * Bumps(x, y, 68, 85, 22) + 0.35 * Bumps(x, y, 100, 125, 23);
}

double Wrap(double value, double period) { return value - period * std::floor(value / period); }

/// Lays a thin bent line into the sheet; what leaves it on one side comes in on the other.
void PressFibre(std::vector<double>& sheet, int number) {
    const auto random = [number](unsigned seed) { return Random(number, 7, seed); };
    double x = random(31) * kTextureWidth, y = random(32) * kTextureHeight, angle = random(33) * 6.283185307;
    const double bend = (random(34) - 0.5) * 0.08, strength = (random(35) - 0.35) * kFibre;
    const int length = 10 + static_cast<int>(random(36) * 22);
    constexpr int kStepsPerPixel = 4;
    for (int step = 0; step < length * kStepsPerPixel; ++step) {
        const double fade = std::sin(3.141592653589793 * step / (length * kStepsPerPixel));
        const double left = std::floor(x), top = std::floor(y);
        for (int j = 0; j < 2; ++j) {
            for (int i = 0; i < 2; ++i) {
                const double share = std::abs(1 - i - (x - left)) * std::abs(1 - j - (y - top));
                const auto column = static_cast<std::size_t>(Wrap(left + i, kTextureWidth));
                const auto row = static_cast<std::size_t>(Wrap(top + j, kTextureHeight));
                sheet[row * kTextureWidth + column] += strength * fade * share / kStepsPerPixel;
            }
        }
        x += std::cos(angle) / kStepsPerPixel;
        y += std::sin(angle) / kStepsPerPixel;
        angle += bend / kStepsPerPixel;
    }
}

} // namespace

std::vector<std::uint8_t> Texture() {
    std::vector<double> sheet;
    for (int y = 0; y < kTextureHeight; ++y) {
        for (int x = 0; x < kTextureWidth; ++x) {
            const double slope = Height(x, y) - Height(x - 1.0, y - 1.0);
            sheet.push_back(kTextureMiddle + kClouds * Pulp(x, y) + kTooth * slope);
        }
    }
    for (int number = 0; number < kFibres; ++number)
        PressFibre(sheet, number);
    std::vector<std::uint8_t> levels;
    for (std::size_t i = 0; i < sheet.size(); ++i) {
        const double grain = Random(static_cast<int>(i), 3, 41) - 0.5;
        levels.push_back(static_cast<std::uint8_t>(std::lround(Clamp01((sheet[i] + grain) / 255) * 255)));
    }
    return levels;
}

} // namespace lumafold::art
