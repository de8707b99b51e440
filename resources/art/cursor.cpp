// An arrow that carries a picture.
#include <array>

#include "resources/art/art.h"

namespace lumafold::art {
namespace {

using namespace paint;

constexpr std::array<Point, 7> kArrow = {
    {{1, 1}, {1, 16.2}, {4.6, 12.9}, {7.0, 18.4}, {9.6, 17.2}, {7.2, 11.9}, {12, 11.6}}};
constexpr double kLeft = 11, kTop = 15, kRight = 31, kBottom = 30;

Sample Over(Sample top, Sample below) {
    return {top.light + below.light * (1 - top.cover), top.cover + below.cover * (1 - top.cover)};
}

Sample Solid(Colour colour, double cover = 1) { return {colour * cover, cover}; }

bool InFrame(Point p, double shrunk) {
    return p.x >= kLeft + shrunk && p.x < kRight - shrunk && p.y >= kTop + shrunk && p.y < kBottom - shrunk;
}

/// A white margin round hills at dawn; the left margin is not wider for the arrow that lies on it.
Sample PictureAt(Point p) {
    if (!InFrame(p, 0)) return {{}, 0};
    if (!InFrame(p, 1)) return Solid(Tint(0x28304A));
    if (!InFrame(p, 3)) return Solid(Tint(0xFFFFFF));
    const double sunX = p.x - 26, sunY = p.y - 20.2;
    if (p.y > 26.5 - 4.2 * Smooth(14, 20, p.x) + 5 * Smooth(19, 28, p.x)) return Solid(Tint(0x3B5B8C));
    if (p.y > 28.5 - 4.6 * Smooth(18, 28, p.x)) return Solid(Tint(0x5E86B0));
    if (sunX * sunX + sunY * sunY < 1.9 * 1.9) return Solid(Tint(0xFFF3C4));
    return Solid(Mix(Tint(0xF7C58A), Tint(0xFCE6C0), (p.y - kTop) / (kBottom - kTop)));
}

/// One pixel of black round the arrow: inside the arrow moved by up to that much.
bool NearArrow(Point p) {
    for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) {
            const double reach = i != 0 && j != 0 ? 0.7 : 1;
            if (Inside({p.x + i * reach, p.y + j * reach}, kArrow)) return true;
        }
    }
    return false;
}

Sample ArrowAt(Point p) {
    if (Inside(p, kArrow)) return Solid(Tint(0xFFFFFF));
    return NearArrow(p) ? Solid(Tint(0x000000)) : Sample{{}, 0};
}

} // namespace

Surface DragCursor() {
    return Draw(kCursorSize, kCursorSize, 8, [](Point p) { return Over(ArrowAt(p), PictureAt(p)); });
}

} // namespace lumafold::art
