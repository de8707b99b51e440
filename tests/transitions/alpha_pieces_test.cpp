#include "tests/transitions/effect_checks.h"

namespace lumafold::test {
namespace {

constexpr const char* kNames[] = {"Alpha horizontal bar (opaque)", "Alpha horizontal bar (transparent)",
                                  "Alpha vertical bar (opaque)",   "Alpha vertical bar (transparent)",
                                  "Alpha tile (opaque)",           "Alpha tile (transparent)"};

struct Piece {
    std::int32_t x, y, width, height;
    float alpha = 255.0F;
};

/// The pieces of a row and the limit, from the truncated positions and the broken sums.
std::vector<Piece> Pieces(int row, CanvasSize canvas, std::int32_t& limit) {
    std::vector<Piece> pieces;
    if (row >= 4) {
        const auto size = static_cast<std::int32_t>(pluginSettings.TransitionAlphaTileSize);
        limit = static_cast<std::int32_t>(pluginSettings.TransitionAlphaTileCount);
        for (std::int32_t y = 0; y < canvas.height; y += size) {
            for (std::int32_t x = 0; x < canvas.width; x += size) {
                pieces.push_back({x, y, size, size});
            }
        }
        return pieces;
    }
    const std::int32_t extent = row < 2 ? canvas.height : canvas.width;
    limit = std::min(static_cast<std::int32_t>(pluginSettings.TransitionAlphaBarCount), extent);
    float a = 0, p = 0;
    for (std::int32_t at = 0; at < extent; at += extent / limit) {
        a += static_cast<float>(extent) / static_cast<float>(limit);
        const auto thickness = static_cast<std::int32_t>(std::trunc(a) - p);
        p = a;
        pieces.push_back(row < 2 ? Piece{0, at, canvas.width, thickness}
                                 : Piece{at, 0, thickness, canvas.height});
    }
    return pieces;
}

void Draw(DibHeader* canvas, const DibHeader* source, const DibHeader* target, const Piece& piece,
          bool opaque) {
    const int alpha = std::clamp(static_cast<int>(std::trunc(piece.alpha)), 0, 255);
    for (std::int32_t y = piece.y; y < piece.y + piece.height; ++y) {
        for (std::int32_t x = piece.x; x < piece.x + piece.width; ++x) {
            const PixelValue s = opaque ? pluginSettings.TransitionAlphaTileColor : DibGetPixel(source, x, y);
            DibSetPixel(canvas, x, y, PlainMix(DibGetPixel(target, x, y), s, static_cast<unsigned>(alpha)));
        }
    }
}

void ExpectPlainFrames(int row, CanvasSize size) {
    std::int32_t limit = 0;
    std::vector<Piece> waiting = Pieces(row, size, limit), active;
    const auto d = static_cast<float>(255.0 / pluginSettings.TransitionAlphaTileStep);
    Random random(pluginSettings.RandomSeed);
    OwnedDib canvas;
    bool more = true;
    ExpectFrames(kNames[row], size, [&](int, const DibHeader* from, const DibHeader* to) {
        EXPECT_TRUE(more);
        if (!canvas) canvas = CopyOf(from);
        if (static_cast<int>(active.size()) + 1 < std::max(limit, 2) && !waiting.empty()) {
            const auto chosen = waiting.begin() + static_cast<int>(random.Draw() % waiting.size());
            active.push_back(*chosen);
            waiting.erase(chosen);
        }
        const LockedDib locked(canvas.Get());
        for (const Piece& piece : active) {
            Draw(locked.Get(), from, to, piece, row % 2 == 0);
        }
        std::erase_if(active, [](const Piece& piece) { return piece.alpha < 0; });
        more = !waiting.empty();
        for (Piece& piece : active) {
            more = more || piece.alpha > 0;
            piece.alpha -= d;
        }
        return CopyOf(locked.Get());
    });
    EXPECT_FALSE(more);
}

TEST(AlphaPieces, AreTheirDefinition) {
    const SettingsGuard guard;
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
        for (const CanvasSize size : kOddSizes) {
            for (int row = 0; row < 6; ++row) {
                ExpectPlainFrames(row, size);
            }
        }
    }
}

} // namespace
} // namespace lumafold::test
