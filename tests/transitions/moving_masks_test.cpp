#include "tests/transitions/effect_checks.h"

#include <cmath>
#include <vector>

#include "transitions/compositing.h"
#include "transitions/shape_masks.h"

namespace lumafold::test {
namespace {

/// The mask of the spikes with all teeth in one outline.
DibHandle PlainSpikes(CanvasSize size, bool down, std::int32_t count) {
    const std::int32_t across = down ? size.width : size.height, along = down ? size.height : size.width;
    std::int32_t segment = 2 * across / (2 * count);
    while (segment * 2 * count < 2 * across) {
        ++segment;
    }
    const std::int32_t breadth = 2 * (segment * 2 * count / 2);
    std::vector<ShapePoint> points;
    for (std::int32_t i = 0; i <= 2 * count; ++i) {
        points.push_back({i * segment, i % 2 != 0 ? 4 * along : 2 * along});
    }
    points.push_back({breadth, 0});
    points.push_back({0, 0});
    for (ShapePoint& point : points) {
        if (!down) std::swap(point.x, point.y);
    }
    return DrawHalvedMask(0, down ? breadth : 6 * along, down ? 6 * along : breadth,
                          [&](ShapeCanvas& canvas) { canvas.Polygon(points); });
}

DibHandle PlainSlide(CanvasSize size, bool down) {
    const std::int32_t w = 2 * size.width, h = 2 * size.height;
    return DrawHalvedMask(0, down ? w : 2 * w, down ? 2 * h : h,
                          [=](ShapeCanvas& canvas) { canvas.FillRect(0, 0, w, h); });
}

void ExpectMovingMask(const char* name, CanvasSize size, bool down, OwnedDib mask, std::uint32_t radius,
                      int step) {
    SCOPED_TRACE(name + std::to_string(size.width));
    Rendered run = BusyRun(name, size);
    ASSERT_EQ(run.result.returned, 1);
    const OwnedDib soft(DibGaussianBlur(mask.Get(), static_cast<std::int32_t>(radius), 100));
    const LockedDib source(run.source.Get()), target(run.target.Get()), whole(soft.Get());
    const std::int32_t spareX = whole->biWidth - size.width, spareY = whole->biHeight - size.height;
    const int distance = down ? spareY : spareX;
    volatile float offset = static_cast<float>(distance);
    std::int32_t frame = 0;
    for (int p = step; p < 100; p += step) {
        offset = static_cast<float>(offset - static_cast<long double>(distance * step) *
                                                 static_cast<long double>(0.01));
        const int at = static_cast<int>(std::floor(offset));
        const int left = down ? spareX / 2 : at, top = down ? at : spareY / 2;
        const int right = down ? whole->biWidth - size.width / 2 + size.width : left + size.width;
        const OwnedDib cut(DibCropRect(soft.Get(), {left, top, right, top + size.height}, 0));
        const LockedDib locked(cut.Get());
        const OwnedDib expected(DibMaskBlend(target.Get(), source.Get(), locked.Get()));
        ExpectSamePicture(run.result.Image(++frame), expected.Get());
        EXPECT_EQ(run.result.Delay(frame), kTestDelay);
    }
    EXPECT_EQ(run.result.Count(), frame + 1);
    ExpectSamePicture(run.result.Image(0), run.source.Get());
    EXPECT_EQ(run.result.Delay(0), kTestPause);
}

TEST(MovingMasks, AreTheirDefinition) {
    const SettingsGuard guard;
    for (const CanvasSize size : kOddSizes) {
        for (const std::uint32_t count : {1U, 6U, 16U}) {
            pluginSettings.TransitionSpikeCount = count;
            const auto teeth = static_cast<std::int32_t>(count);
            ExpectMovingMask("Spikes (vertical)", size, true, OwnedDib(PlainSpikes(size, true, teeth)), 25,
                             5);
            ExpectMovingMask("Spikes (horizontal)", size, false, OwnedDib(PlainSpikes(size, false, teeth)),
                             25, 5);
        }
        ExpectMovingMask("Soft slide (vertical)", size, true, OwnedDib(PlainSlide(size, true)), 75, 5);
        ExpectMovingMask("Soft slide (horizontal)", size, false, OwnedDib(PlainSlide(size, false)), 75, 5);
    }
}

// One tooth, no blur, half the way: its upper corners at the frame's top, its tip at the bottom. The
// outline's own pixels make it lean by half a pixel.
TEST(MovingMasks, ToothByHand) {
    const SettingsGuard guard;
    pluginSettings.TransitionSpikeCount = 1;
    pluginSettings.TransitionSpikeStep = 50;
    pluginSettings.TransitionSpikeRadius = 0;
    Rendered down = BlackToWhite("Spikes (vertical)", {8, 8}),
             right = BlackToWhite("Spikes (horizontal)", {8, 8});
    ASSERT_EQ(down.result.Count(), 2);
    EXPECT_EQ(Drawing(down.result.Image(1)), "########/"
                                             "?######?/"
                                             ".######?/"
                                             ".?####?./"
                                             "..####?./"
                                             "..?##?../"
                                             "...##?../"
                                             "...??.../");
    EXPECT_EQ(Drawing(right.result.Image(1)), "#?....../"
                                              "###?..../"
                                              "#####?../"
                                              "#######?/"
                                              "#######?/"
                                              "#####??./"
                                              "###??.../"
                                              "#??...../");
}

// The offset is rounded to single precision in every frame: after 25 steps of 2 % it stands at 4 of 8
// (doubles would have it a little below) and just below 13 of 26 (unrounded it would be 13).
TEST(MovingMasks, OffsetKeepsSinglePrecision) {
    const SettingsGuard guard;
    pluginSettings.TransitionSoftSlideStep = 2;
    pluginSettings.TransitionSoftSlideRadius = 0;
    for (const auto& [length, covered] : {std::pair{8, 4}, std::pair{26, 14}}) {
        const auto count = static_cast<std::size_t>(covered),
                   rest = static_cast<std::size_t>(length - covered);
        Rendered right = BlackToWhite("Soft slide (horizontal)", {length, 1}),
                 down = BlackToWhite("Soft slide (vertical)", {1, length});
        const std::string line = std::string(count, '#') + std::string(rest, '.') + '/';
        EXPECT_EQ(Drawing(right.result.Image(25)), line);
        std::string column;
        for (std::size_t i = 0; i < count + rest; ++i) {
            column += i < count ? "#/" : "./";
        }
        EXPECT_EQ(Drawing(down.result.Image(25)), column);
    }
}

} // namespace
} // namespace lumafold::test
