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

} // namespace
} // namespace lumafold::test
