#include "platform/shapes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/allocation.h"
#include "tests/support/checksum.h"

// The same expectations hold where the system draws and where our own rules do: what is drawn must not depend
// on it.

namespace lumafold {
namespace {

/// Black pixels to draw on.
struct Paper {
    std::int32_t width, height;
    std::vector<std::uint8_t> pixels =
        std::vector<std::uint8_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));

    /// Top row first: '#' white, '.' black, '?' anything else.
    std::string Text() const {
        std::string text;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            text += pixels[i] == 0 ? '.' : pixels[i] == 255 ? '#' : '?';
            if ((i + 1) % static_cast<std::size_t>(width) == 0) text += '\n';
        }
        return text;
    }
};

template <typename Draw>
std::string Drawn(std::int32_t width, std::int32_t height, Draw draw) {
    Paper paper{width, height};
    ShapeCanvas canvas(0, width, height, paper.pixels.data());
    if (!canvas) return "no canvas";
    draw(canvas);
    return canvas.Finish() ? paper.Text() : "not finished";
}

std::string DrawnEllipse(std::int32_t width, std::int32_t height, ShapePoint from, ShapePoint to) {
    return Drawn(width, height, [&](ShapeCanvas& canvas) { canvas.Ellipse(from.x, from.y, to.x, to.y); });
}

/// Rows from the top, written with a space between them.
std::string Lines(std::string text) {
    std::replace(text.begin(), text.end(), ' ', '\n');
    return text + '\n';
}

TEST(Shapes, RectanglesLeaveTheirEndOut) {
    const auto rectangle = [](std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b) {
        return Drawn(5, 3, [=](ShapeCanvas& canvas) { canvas.FillRect(l, t, r, b); });
    };
    EXPECT_EQ(rectangle(1, 0, 3, 2), Lines(".##.. .##.. ....."));
    EXPECT_EQ(rectangle(-70000, 2, 2, 70000), Lines("..... ..... ##..."));
    for (const std::string& nothing : {rectangle(3, 0, 3, 3), rectangle(3, 2, 1, 0), rectangle(5, 0, 9, 3)})
        EXPECT_EQ(nothing, Lines("..... ..... ....."));
}

TEST(Shapes, ALaterFinishBringsWhatWasAdded) {
    Paper paper{4, 4};
    ShapeCanvas canvas(0, 4, 4, paper.pixels.data());
    ASSERT_TRUE(canvas);
    EXPECT_EQ(paper.Text(), Lines(".... .... .... ...."));
    canvas.FillRect(0, 0, 2, 4);
    EXPECT_TRUE(canvas.Finish(-3, 2));
    EXPECT_EQ(paper.Text().substr(0, 10), Lines("##.. ##.."));
    canvas.FillRect(3, 3, 4, 4);
    EXPECT_TRUE(canvas.Finish(2, 9));
    EXPECT_EQ(paper.Text(), Lines("##.. ##.. ##.. ##.#"));
}

TEST(Shapes, CanvasesGiveBackWhatTheyTake) {
    const std::int64_t blocks = allocation_hooks::LiveBlocks();
    std::uint8_t pixel = 0;
    for (int i = 0; i < 11000; ++i) { // more than a process may have handles
        ShapeCanvas canvas(0, 1, 1, &pixel);
        ASSERT_TRUE(canvas) << i;
    }
    EXPECT_EQ(allocation_hooks::LiveBlocks(), blocks);
#ifdef _WIN32
    for (int i = 0; i < 11000; ++i) {
        ShapeCanvas canvas(0xFFF0, 1, 1, &pixel); // no such window
        ASSERT_FALSE(canvas);
        EXPECT_FALSE(canvas.Finish());
        ShapeCanvas tooLarge(0, 0x7FFFFFFF, 0, &pixel); // no bitmap has no rows
        ASSERT_FALSE(tooLarge);
    }
#endif
}

struct TextSum : Checksum {
    void Add(const std::string& text) { Checksum::Add(text.data(), text.size()); }
};

class Dice {
public:
    std::int32_t Between(std::int32_t low, std::int32_t high) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return low + static_cast<std::int32_t>((state_ >> 33) % static_cast<std::uint64_t>(high - low + 1));
    }
    ShapePoint Point(std::int32_t low, std::int32_t high) { return {Between(low, high), Between(low, high)}; }

private:
    std::uint64_t state_ = 1;
};

/// The system of the test machines draws stray lines beside ellipses much taller than wide (from 3x8, 4x18,
/// 5x32 on), from memory it never filled; they are left out here.
bool IsNarrow(ShapePoint from, ShapePoint to) {
    const std::int64_t diameter = std::abs(to.x - from.x) - 1;
    return diameter > 1 && std::abs(to.y - from.y) >= 2 * diameter * diameter;
}

TEST(Shapes, EllipsesOfAllSizesAndPlaces) {
    TextSum sizes;
    for (std::int32_t width = 0; width <= 40; ++width) {
        for (std::int32_t height = 0; height <= 40; ++height) {
            if (IsNarrow({0, 0}, {width, height})) continue;
            sizes.Add(DrawnEllipse(45, 43, {2, 1}, {2 + width, 1 + height}));
        }
    }
    EXPECT_EQ(sizes.Value(), 0x118C884D615E7210U);
    TextSum clipped;
    Dice dice;
    for (int i = 0; i < 1500; ++i) {
        const std::int32_t reach = i < 1000 ? 150 : i < 1400 ? 5000 : 131072;
        const ShapePoint from = dice.Point(-reach, reach), to = dice.Point(-reach, reach);
        if (!IsNarrow(from, to)) clipped.Add(DrawnEllipse(61, 47, from, to));
    }
    EXPECT_EQ(clipped.Value(), 0x1A5BB62BA90ECE88U);
}

TEST(Shapes, Tangles) {
    TextSum tangles;
    Dice dice;
    for (int i = 0; i < 2000; ++i) {
        const std::int32_t reach = i < 800 ? 40 : i < 1400 ? 200 : i < 1800 ? 20000 : 131072;
        std::vector<ShapePoint> polygon(static_cast<std::size_t>(dice.Between(2, i % 50 == 0 ? 128 : 9)));
        for (ShapePoint& point : polygon)
            point = dice.Point(-reach / 2, reach);
        tangles.Add(Drawn(61, 47, [&](ShapeCanvas& canvas) { canvas.Polygon(polygon); }));
    }
    EXPECT_EQ(tangles.Value(), 0xE020752CB88059A6U);
}

#ifndef _WIN32
TEST(Shapes, NoCoordinateIsTooLarge) {
    constexpr std::int32_t kLow = INT32_MIN, kHigh = INT32_MAX;
    const ShapePoint square[] = {{kLow, kLow}, {kHigh, kLow}, {kHigh, kHigh}, {kLow, kHigh}};
    EXPECT_EQ(Drawn(3, 3, [&](ShapeCanvas& canvas) { canvas.Polygon(square); }), Lines("### ### ###"));
    EXPECT_EQ(DrawnEllipse(3, 3, {-3000000, -3000000}, {3000000, 1}), Lines("### ... ..."));
}
#endif

} // namespace
} // namespace lumafold
