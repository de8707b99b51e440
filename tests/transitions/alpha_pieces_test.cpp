#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/checksum.h"
#include "tests/support/pictures.h"
#include "transitions/random.h"
#include "transitions/table.h"

namespace lumafold::test {
namespace {

constexpr int kOpaqueBars = 0, kOpaqueTiles = 4, kClearTiles = 5;

struct Piece {
    std::int32_t x, y, width, height;
    float alpha = 255.0F;
};

/// The pieces of a row and the limit, from the truncated positions and the broken sums.
std::vector<Piece> Pieces(int row, std::int32_t width, std::int32_t height, std::int32_t& limit) {
    std::vector<Piece> pieces;
    if (row >= kOpaqueTiles) {
        const auto size = static_cast<std::int32_t>(pluginSettings.TransitionAlphaTileSize);
        limit = static_cast<std::int32_t>(pluginSettings.TransitionAlphaTileCount);
        for (std::int32_t y = 0; y < height; y += size) {
            for (std::int32_t x = 0; x < width; x += size) {
                pieces.push_back({x, y, size, size});
            }
        }
        return pieces;
    }
    const std::int32_t extent = row < 2 ? height : width;
    limit = std::min(static_cast<std::int32_t>(pluginSettings.TransitionAlphaBarCount), extent);
    float a = 0, p = 0;
    for (std::int32_t at = 0; at < extent; at += extent / limit) {
        a += static_cast<float>(extent) / static_cast<float>(limit);
        const auto thickness = static_cast<std::int32_t>(std::trunc(a) - p);
        p = a;
        pieces.push_back(row < 2 ? Piece{0, at, width, thickness} : Piece{at, 0, thickness, height});
    }
    return pieces;
}

void Draw(DibHeader* canvas, const DibHeader* source, const DibHeader* target, const Piece& piece,
          bool opaque) {
    const int a = std::clamp(static_cast<int>(std::trunc(piece.alpha)), 0, 255);
    for (std::int32_t y = piece.y; y < piece.y + piece.height; ++y) {
        for (std::int32_t x = piece.x; x < piece.x + piece.width; ++x) {
            const PixelValue s = opaque ? pluginSettings.TransitionAlphaTileColor : DibGetPixel(source, x, y);
            const PixelValue t = DibGetPixel(target, x, y);
            const auto mix = [a](unsigned from, unsigned to) {
                return from * static_cast<unsigned>(a) / 255 + to * static_cast<unsigned>(255 - a) / 255;
            };
            DibSetPixel(
                canvas, x, y,
                MakeColour(mix(RedOf(s), RedOf(t)), mix(GreenOf(s), GreenOf(t)), mix(BlueOf(s), BlueOf(t))));
        }
    }
}

std::vector<std::uint64_t> PlainFrames(int row, DibHandle sourceHandle, DibHandle targetHandle) {
    const LockedDib source(sourceHandle), target(targetHandle);
    const OwnedDib owned(GlobalDuplicate(sourceHandle));
    const LockedDib canvas(owned.Get());
    std::vector<std::uint64_t> frames{DibChecksum(sourceHandle)};
    std::int32_t limit = 0;
    std::vector<Piece> waiting = Pieces(row, source->biWidth, source->biHeight, limit), active;
    const auto d = static_cast<float>(255.0 / pluginSettings.TransitionAlphaTileStep);
    Random random(pluginSettings.RandomSeed);
    for (bool more = true; more;) {
        if (static_cast<int>(active.size()) + 1 < std::max(limit, 2) && !waiting.empty()) {
            const auto chosen = waiting.begin() + static_cast<int>(random.Draw() % waiting.size());
            active.push_back(*chosen);
            waiting.erase(chosen);
        }
        for (const Piece& piece : active) {
            Draw(canvas.Get(), source.Get(), target.Get(), piece, row % 2 == 0);
        }
        frames.push_back(DibChecksum(owned.Get()));
        std::erase_if(active, [](const Piece& piece) { return piece.alpha < 0; });
        more = !waiting.empty();
        for (Piece& piece : active) {
            more = more || piece.alpha > 0;
            piece.alpha -= d;
        }
    }
    return frames;
}

std::vector<std::uint64_t> Frames(int row, DibHandle source, DibHandle target) {
    EffectResult result;
    RunEffect(row, source, target, result);
    std::vector<std::uint64_t> frames;
    for (std::int32_t i = 0; i < result.Count(); ++i) {
        frames.push_back(DibChecksum(result.Image(i)));
    }
    return frames;
}

TEST(AlphaPieces, EveryFrameFollowsThePlainDefinition) {
    const SettingsGuard guard;
    constexpr std::int32_t kSizes[][2] = {{1, 1}, {7, 5}, {33, 1}, {1, 33}, {61, 47}};
    struct Settings {
        std::uint32_t step, bars, tileSize, tiles, colour;
    };
    // Exact and broken steps; 47 rows in 20 bars list 24 of them; 40 bars of 47 rows include some of no
    // height.
    for (const Settings& s :
         {Settings{8, 20, 16, 20, 0xFFFFFF}, {7, 4, 5, 4, 0x12CD80}, {3, 40, 9, 2, 0x80FF01}}) {
        pluginSettings.TransitionAlphaTileStep = s.step;
        pluginSettings.TransitionAlphaBarCount = s.bars;
        pluginSettings.TransitionAlphaTileSize = s.tileSize;
        pluginSettings.TransitionAlphaTileCount = s.tiles;
        pluginSettings.TransitionAlphaTileColor = s.colour;
        for (const auto& [width, height] : kSizes) {
            const OwnedDib source = BusyPicture(width, height, 3), target = BusyPicture(width, height, 44);
            for (int row = 0; row <= kClearTiles; ++row) {
                EXPECT_EQ(Frames(row, source.Get(), target.Get()),
                          PlainFrames(row, source.Get(), target.Get()))
                    << "row " << row << ", " << width << "x" << height << ", step " << s.step;
            }
        }
    }
}

TEST(AlphaPieces, SomeRowsBelongToNoBar) {
    const SettingsGuard guard;
    pluginSettings.TransitionAlphaBarCount = 3;
    const OwnedDib source = PlainPicture(2, 100, 0x0000FF), target = PlainPicture(2, 100, 0x00FF00);
    EffectResult result;
    RunEffect(kOpaqueBars, source.Get(), target.Get(), result);
    ASSERT_EQ(result.returned, 1);
    for (std::int32_t y = 0; y < 100; ++y) {
        EXPECT_EQ(PixelAt(result.Image(result.Count() - 1), 1, y), y == 65 ? 0x0000FFU : 0x00FF00U) << y;
    }
}

TEST(AlphaPieces, OnePieceShowsItsWholeFade) {
    const SettingsGuard guard;
    pluginSettings.TransitionAlphaTileColor = 0x0A64FF;
    pluginSettings.TransitionAlphaTileStep = 4; // 63.75: alpha 255, 191, 127, 63 and 0 once, as nothing waits
    const OwnedDib source = PlainPicture(1, 1, 0x123456), target = PlainPicture(1, 1, 0xFF6400);
    EffectResult result;
    RunEffect(kOpaqueTiles, source.Get(), target.Get(), result);
    const PixelValue kShown[] = {0x123456, 0x0A64FF, 0x4763BF, 0x84637F, 0xC2633F, 0xFF6400};
    ASSERT_EQ(result.Count(), 6);
    for (std::int32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(PixelAt(result.Image(i), 0, 0), kShown[i]) << i;
        EXPECT_EQ(result.Delay(i), i == 0 ? kTestPause : kTestDelay);
    }
}

TEST(AlphaPieces, FramesAreCountedWithoutRendering) {
    const SettingsGuard guard;
    EXPECT_EQ(FrameCount(kClearTiles, 640, 480), 1209);
    pluginSettings.TransitionAlphaTileSize = 2;
    pluginSettings.TransitionAlphaTileStep = 2;
    EXPECT_EQ(FrameCount(kOpaqueTiles, 4, 2), 5); // a tile a frame
    pluginSettings.TransitionAlphaTileCount = 1;
    EXPECT_EQ(FrameCount(kOpaqueTiles, 4, 2), 8);        // one after the other
    pluginSettings.TransitionAlphaTileStep = 0xFFFFFFFF; // so fine that the fade stands still
    EXPECT_EQ(FrameCount(kOpaqueTiles, 4, 2), 0);
}

} // namespace
} // namespace lumafold::test
