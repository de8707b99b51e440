#include "tests/transitions/effect_checks.h"
#include "transitions/shape_masks.h"

namespace lumafold::test {
namespace {

void UseSettings(std::uint32_t size, std::uint32_t perturb) {
    pluginSettings.TransitionPaintballSize = size;
    pluginSettings.TransitionPaintballPerturb = perturb;
    pluginSettings.RandomSeed = 16129;
}

/// Every frame by its definition: all splats drawn anew, the whole picture blended through them.
void ExpectPlainPaintball(CanvasSize size, int n, std::uint32_t perturb) {
    std::vector<ShapePoint> free, splats;
    for (int y = 0; y < n - size.height % n + size.height; y += n) {
        for (int x = 0; x < n - size.width % n + size.width; x += n) {
            free.push_back({2 * x, 2 * y});
        }
    }
    const int r = static_cast<int>(std::ceil(std::sqrt(8.0 * n * n) * 0.5));
    Random random(pluginSettings.RandomSeed);
    EXPECT_EQ(FrameCount(RowNamed("Paintball"), size.width, size.height), std::ssize(free) + 1);
    ExpectFrames("Paintball", size, [&](int, const DibHeader* from, const DibHeader* to) {
        const auto taken = free.begin() + static_cast<std::ptrdiff_t>(random.Draw() % free.size());
        splats.push_back(*taken);
        free.erase(taken);
        if (perturb != 0) random.Draw();
        const OwnedDib mask(DrawHalvedMask(0, 2 * size.width, 2 * size.height, [&](ShapeCanvas& canvas) {
            for (const ShapePoint at : splats) {
                canvas.Ellipse(at.x - r, at.y - r, at.x + r, at.y + r);
            }
        }));
        return OwnedDib(DibMaskBlend(to, from, LockedDib(mask.Get()).Get()));
    });
}

TEST(Paintball, IsItsDefinition) {
    const SettingsGuard guard;
    for (const CanvasSize size : kOddSizes) {
        for (const std::uint32_t n : {1U, 2U, 7U, 16U, 128U}) {
            if (n == 1 && size.width > 33) continue; // the plain way takes long over thousands of splats
            for (const std::uint32_t perturb : {0U, 90U}) {
                SCOPED_TRACE(n);
                UseSettings(n, perturb);
                ExpectPlainPaintball(size, static_cast<int>(n), perturb);
            }
        }
    }
}

TEST(Paintball, GiantSplatHidesEverything) {
    const SettingsGuard guard;
    UseSettings(0xFFFFFFFF, 0);
    EXPECT_EQ(FrameCount(RowNamed("Paintball"), 61, 47), 2);
    ExpectFrames("Paintball", {61, 47},
                 [](int, const DibHeader*, const DibHeader* to) { return CopyOf(to); });
}

} // namespace
} // namespace lumafold::test
