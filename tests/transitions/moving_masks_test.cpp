#include "tests/transitions/effect_checks.h"
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

void ExpectMovingMask(const char* name, CanvasSize size, bool down, DibHandle sharp, std::int32_t radius) {
    const OwnedDib mask(sharp), soft(DibGaussianBlur(mask.Get(), radius, 100));
    const LockedDib whole(soft.Get());
    const std::int32_t spareX = whole->biWidth - size.width, spareY = whole->biHeight - size.height;
    const int distance = down ? spareY : spareX;
    volatile float offset = static_cast<float>(distance);
    ExpectFrames(name, size, [&](int, const DibHeader* from, const DibHeader* to) {
        offset = static_cast<float>(offset -
                                    static_cast<long double>(distance * 5) * static_cast<long double>(0.01));
        const int at = static_cast<int>(std::floor(offset));
        const int left = down ? spareX / 2 : at, top = down ? at : spareY / 2;
        const int right = down ? whole->biWidth - size.width / 2 + size.width : left + size.width;
        const OwnedDib cut(DibCropRect(soft.Get(), {left, top, right, top + size.height}, 0));
        return OwnedDib(DibMaskBlend(to, from, LockedDib(cut.Get()).Get()));
    });
}

TEST(MovingMasks, AreTheirDefinition) {
    const SettingsGuard guard;
    for (const CanvasSize size : kOddSizes) {
        for (const bool down : {false, true}) {
            for (const std::int32_t teeth : {1, 6, 16}) {
                pluginSettings.TransitionSpikeCount = static_cast<std::uint32_t>(teeth);
                ExpectMovingMask(down ? "Spikes (vertical)" : "Spikes (horizontal)", size, down,
                                 PlainSpikes(size, down, teeth), 25);
            }
            ExpectMovingMask(down ? "Soft slide (vertical)" : "Soft slide (horizontal)", size, down,
                             PlainSlide(size, down), 75);
        }
    }
}

// One tooth, no blur, half the way: its upper corners at the frame's top, its tip at the bottom. The
// outline's own pixels make it lean by half a pixel.
TEST(MovingMasks, ToothByHand) {
    const SettingsGuard guard;
    pluginSettings.TransitionSpikeCount = 1;
    pluginSettings.TransitionSpikeStep = 50;
    pluginSettings.TransitionSpikeRadius = 0;
    EXPECT_EQ(FrameCount(RowNamed("Spikes (vertical)"), 8, 8), 2);
    EXPECT_EQ(DrawnFrame("Spikes (vertical)", {8, 8}, 1), "########/"
                                                          "?######?/"
                                                          ".######?/"
                                                          ".?####?./"
                                                          "..####?./"
                                                          "..?##?../"
                                                          "...##?../"
                                                          "...??.../");
}

// The offset is rounded to single precision in every frame: after 25 steps of 2 % it stands at 4 of 8
// (doubles would have it a little below) and just below 13 of 26 (unrounded it would be 13).
TEST(MovingMasks, OffsetKeepsSinglePrecision) {
    const SettingsGuard guard;
    pluginSettings.TransitionSoftSlideStep = 2;
    pluginSettings.TransitionSoftSlideRadius = 0;
    for (const auto& [length, covered] : {std::pair{8, 4}, std::pair{26, 14}}) {
        std::string line, column;
        for (int i = 0; i < length; ++i) {
            line += i < covered ? "#" : ".";
            column += i < covered ? "#/" : "./";
        }
        EXPECT_EQ(DrawnFrame("Soft slide (horizontal)", {length, 1}, 25), line + '/');
        EXPECT_EQ(DrawnFrame("Soft slide (vertical)", {1, length}, 25), column);
    }
}

} // namespace
} // namespace lumafold::test
