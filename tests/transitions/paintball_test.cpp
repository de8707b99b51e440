#include "tests/transitions/effect_checks.h"

#include <cmath>
#include <vector>

#include "transitions/compositing.h"
#include "transitions/random.h"
#include "transitions/shape_masks.h"

namespace lumafold::test {
namespace {

void UseSettings(std::uint32_t size, std::uint32_t perturb, std::uint32_t seed) {
    pluginSettings.TransitionPaintballSize = size;
    pluginSettings.TransitionPaintballPerturb = perturb;
    pluginSettings.RandomSeed = seed;
}

/// Every frame by its definition: all splats drawn anew, the whole picture blended through them.
void ExpectPlainPaintball(Rendered& run, CanvasSize size, int n, std::uint32_t perturb, std::uint32_t seed) {
    std::vector<ShapePoint> free, splats;
    for (int y = 0; y < n - size.height % n + size.height; y += n) {
        for (int x = 0; x < n - size.width % n + size.width; x += n) {
            free.push_back({2 * x, 2 * y});
        }
    }
    ASSERT_EQ(run.result.Count(), static_cast<std::int32_t>(free.size()) + 1);
    const LockedDib source(run.source.Get()), target(run.target.Get());
    const int r = static_cast<int>(std::ceil(std::sqrt(8.0 * n * n) * 0.5));
    Random random(seed);
    for (std::int32_t frame = 1; !free.empty(); ++frame) {
        const auto taken = free.begin() + static_cast<std::ptrdiff_t>(random.Draw() % free.size());
        splats.push_back(*taken);
        free.erase(taken);
        const OwnedDib mask(DrawHalvedMask(0, 2 * size.width, 2 * size.height, [&](ShapeCanvas& canvas) {
            for (const ShapePoint at : splats) {
                canvas.Ellipse(at.x - r, at.y - r, at.x + r, at.y + r);
            }
        }));
        const LockedDib locked(mask.Get());
        ExpectSamePicture(run.result.Image(frame),
                          OwnedDib(DibMaskBlend(target.Get(), source.Get(), locked.Get())).Get());
        const auto k = perturb == 0 ? 0 : static_cast<std::int32_t>(random.Draw() % perturb);
        EXPECT_EQ(run.result.Delay(frame),
                  perturb == 0 ? kTestDelay
                               : std::max(k * kTestDelay / static_cast<std::int32_t>(perturb), 1));
    }
}

TEST(Paintball, IsItsDefinition) {
    const SettingsGuard guard;
    for (const CanvasSize size : kOddSizes) {
        for (const std::uint32_t n : {1U, 2U, 7U, 16U, 128U}) {
            if (n == 1 && size.width > 33) continue; // the plain way takes long over thousands of splats
            for (const std::uint32_t perturb : {0U, 90U}) {
                SCOPED_TRACE(std::to_string(size.width) + ' ' + std::to_string(n));
                UseSettings(n, perturb, 16129);
                Rendered run = BusyRun("Paintball", size);
                ExpectPlainPaintball(run, size, static_cast<int>(n), perturb, 16129);
            }
        }
    }
}

/// Which point of a 3 x 3 grid each frame hits first, and how long it lasts. The outer points lie beyond the
/// edge.
struct Hits {
    std::string order;
    std::vector<std::int32_t> delays;

    explicit Hits(std::int32_t delay) {
        const OwnedDib source(PlainPicture(32, 32, 0)), target(PlainPicture(32, 32, 0xFFFFFF));
        EffectResult result;
        RunEffect(RowNamed("Paintball"), source.Get(), target.Get(), result, delay);
        for (std::int32_t i = 1; i < result.Count(); ++i) {
            for (int point = 0; point < 9; ++point) {
                const int x = std::min(point % 3 * 16, 31), y = std::min(point / 3 * 16, 31);
                const bool before = PixelAt(result.Image(i - 1), x, y) != 0;
                if (!before && PixelAt(result.Image(i), x, y) != 0) order += std::to_string(point);
            }
            delays.push_back(result.Delay(i));
        }
    }
};

TEST(Paintball, DrawsInOrder) {
    const SettingsGuard guard;
    UseSettings(16, 0, 16129);
    const Hits plain(50);
    EXPECT_EQ(plain.order, "562071348");
    EXPECT_EQ(plain.delays, std::vector<std::int32_t>(9, 50));
    UseSettings(16, 90, 16129); // the delays take every second draw
    const Hits perturbed(50);
    EXPECT_EQ(perturbed.order, "513086274");
    EXPECT_EQ(perturbed.delays, (std::vector<std::int32_t>{20, 3, 11, 16, 25, 11, 43, 32, 30}));
    EXPECT_EQ(Hits(0).delays, std::vector<std::int32_t>(9, 1));
}

TEST(Paintball, GiantSplatHidesEverything) {
    const SettingsGuard guard;
    UseSettings(0xFFFFFFFF, 0, 1);
    Rendered run = BusyRun("Paintball", {61, 47});
    ASSERT_EQ(run.result.Count(), 2);
    ExpectSamePicture(run.result.Image(1), run.target.Get());
}

} // namespace
} // namespace lumafold::test
