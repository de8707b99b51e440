// Alpha bars and tiles: pieces of the picture, picked at random, fade to the target, several at a time. An
// opaque piece starts as a block of one colour, a transparent one as the source.
#include <cmath>

#include "transitions/drawing_list.h"
#include "transitions/mix_bytes.h"
#include "transitions/random.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

enum class PieceShape { HorizontalBar, VerticalBar, Tile };
enum class PieceLook { Opaque, Transparent };

constexpr float kStartAlpha = 255;

struct PieceBox {
    std::int32_t x, y, width, height;
};
struct FadingPiece {
    PieceBox box;
    float alpha; ///< kStartAlpha is the start look, 0 the target
};

/// What a piece loses from frame to frame; 0 when the fade would never end.
float FadeStep(std::uint32_t frames) {
    if (frames == 0) return 0;
    const auto fade = static_cast<float>(255.0 / frames);
    return kStartAlpha - fade < kStartAlpha ? fade : 0;
}

std::int32_t BarsAcross(std::int32_t extent, std::uint32_t asked) {
    return static_cast<std::int32_t>(std::min<std::int64_t>(asked, extent));
}

/// Where the extent is no multiple of the number of bars, more are listed than that.
std::int64_t BarCount(std::int32_t extent, std::int32_t bars) {
    return bars < 1 ? 0 : LoopCount(0, extent, extent / bars);
}

/// Positions advance by the truncated quotient while thicknesses follow the single-precision sum of the exact
/// ones, so a line here and there is left uncovered and a bar may have no thickness at all
/// (docs/quirks.md 31).
void ListBars(CanvasSize canvas, PieceShape shape, std::uint32_t asked, DrawingList<PieceBox>& boxes) {
    const bool rows = shape == PieceShape::HorizontalBar;
    const std::int32_t extent = rows ? canvas.height : canvas.width, bars = BarsAcross(extent, asked);
    const float quotient = static_cast<float>(extent) / static_cast<float>(bars);
    float sum = 0, previous = 0;
    for (std::int32_t i = 0, at = 0; i < BarCount(extent, bars); ++i, at += extent / bars) {
        sum = sum + quotient;
        const auto exact = static_cast<std::int64_t>(std::trunc(sum) - previous);
        const auto thickness = static_cast<std::int32_t>(std::clamp<std::int64_t>(exact, 0, extent - at));
        boxes.Append(rows ? PieceBox{0, at, canvas.width, thickness}
                          : PieceBox{at, 0, thickness, canvas.height});
        previous = sum;
    }
}

void ListTiles(CanvasSize canvas, std::int64_t size, DrawingList<PieceBox>& boxes) {
    for (std::int64_t y = 0; y < canvas.height; y += size) {
        for (std::int64_t x = 0; x < canvas.width; x += size) {
            boxes.Append({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                          static_cast<std::int32_t>(std::min(size, canvas.width - x)),
                          static_cast<std::int32_t>(std::min(size, canvas.height - y))});
        }
    }
}

/// Draws the pieces onto the canvas, which keeps them, and returns a copy of it. `look` is the picture that
/// pieces start from; its last row stands for those below it.
OwnedDib RenderAlphaPieces(DibHeader& canvas, const DibHeader& look, const DibHeader& target,
                           std::span<const FadingPiece> pieces) {
    const RowView rows(canvas);
    const ConstRowView lookRows(look), targetRows(target);
    for (const auto& [box, alpha] : pieces) {
        const auto share = static_cast<std::uint8_t>(std::clamp(static_cast<int>(alpha), 0, 255));
        const std::ptrdiff_t left = std::ptrdiff_t{3} * box.x;
        for (std::int32_t y = box.y; y < box.y + box.height; ++y) {
            MixBytes(targetRows.Row(y) + left, lookRows.Row(std::min(y, lookRows.Height() - 1)) + left,
                     rows.Row(y) + left, static_cast<std::size_t>(box.width) * 3, share);
        }
    }
    return DibCopy(canvas);
}

struct AlphaPieces {
    PieceShape shape;
    PieceLook look;
    std::int64_t count; ///< of pieces
    std::int64_t limit; ///< one more than may fade at a time (docs/quirks.md 30), at least 2
    float fade;         ///< what a piece loses of its alpha from frame to frame

    static std::optional<AlphaPieces> Plan(const PluginSettings& settings, CanvasSize canvas,
                                           PieceShape shape, PieceLook look) {
        AlphaPieces plan{shape, look, 0, 0, FadeStep(settings.TransitionAlphaTileStep)};
        if (shape == PieceShape::Tile) {
            const std::int64_t size = settings.TransitionAlphaTileSize;
            plan.count = size == 0 ? 0 : LoopCount(0, canvas.width, size) * LoopCount(0, canvas.height, size);
            plan.limit = settings.TransitionAlphaTileCount;
        } else {
            const std::int32_t extent = shape == PieceShape::HorizontalBar ? canvas.height : canvas.width;
            const std::int32_t bars = BarsAcross(extent, settings.TransitionAlphaBarCount);
            plan.count = BarCount(extent, bars);
            plan.limit = bars;
        }
        // A limit below 2 would admit nothing, ever: a picture one row high has such bars.
        plan.limit = std::max<std::int64_t>(plan.limit, 2);
        if (plan.count == 0 || plan.fade == 0) return {};
        return plan;
    }

    /// One piece is admitted a frame while there is a place; a place is held until the piece is below 0. The
    /// run ends when the last piece has come down to 0 or below.
    static RenderNeed Need(const PluginSettings&, PieceShape, PieceLook look) {
        return {0, look == PieceLook::Opaque ? 6.0 : 3.0};
    }
    std::int64_t Frames() const {
        std::int64_t above = 0; // frames that show a piece before it has come down
        float alpha = kStartAlpha;
        while (alpha > 0) {
            alpha -= fade;
            ++above;
        }
        const std::int64_t held = above + (alpha < 0 ? 1 : 2);
        const std::int64_t places = limit - 1;
        const std::int64_t last = count - 1;
        const std::int64_t admitted = places >= held ? last : last / places * held + last % places;
        return admitted + above + 1;
    }

    struct State {
        Random random;
        DrawingList<PieceBox> waiting;
        DrawingList<FadingPiece> fading;
        OwnedDib canvas, block;           ///< the latter one row of the colour that opaque pieces are
        const DibHeader* start = nullptr; ///< what pieces look like at first: that block, or the source

        explicit operator bool() const { return waiting && fading && canvas && start != nullptr; }
    };
    State Start(const Gap& gap) const {
        const PluginSettings& settings = gap.settings;
        State state{Random(settings.RandomSeed),
                    DrawingList<PieceBox>(count),
                    DrawingList<FadingPiece>(std::min(count, limit)),
                    DibCopy(gap.source),
                    {}};
        if (look == PieceLook::Opaque) {
            state.block = DibCreateFlat(gap.size.width, 1, settings.TransitionAlphaTileColor & 0xFFFFFF);
            if (state.block) state.start = &*state.block;
        } else {
            state.start = &gap.source;
        }
        if (state.waiting && shape == PieceShape::Tile) {
            ListTiles(gap.size, settings.TransitionAlphaTileSize, state.waiting);
        } else if (state.waiting) {
            ListBars(gap.size, shape, settings.TransitionAlphaBarCount, state.waiting);
        }
        return state;
    }

    OwnedDib Frame(const Gap& gap, State& state, std::int64_t) const {
        // At most one piece is admitted a frame.
        if (static_cast<std::int64_t>(state.fading.Count()) + 1 < limit && state.waiting.Count() > 0)
            state.fading.Append(
                {state.waiting.Take(state.random.Draw() % state.waiting.Count()), kStartAlpha});
        OwnedDib frame = RenderAlphaPieces(*state.canvas, *state.start, gap.target, state.fading.Entries());
        Fade(state.fading);
        return frame;
    }
    /// Takes out every piece below 0, and fades the others. At exactly 0 a piece stays and shows the target
    /// once more (docs/quirks.md 32).
    void Fade(DrawingList<FadingPiece>& pieces) const {
        for (std::size_t i = pieces.Count(); i > 0; --i) {
            if (pieces.Entries()[i - 1].alpha < 0) (void)pieces.Take(i - 1);
        }
        for (FadingPiece& piece : pieces.Entries())
            piece.alpha -= fade;
    }
};

} // namespace

constinit const Effect kAlphaBarsOpaqueHorizontal =
    EffectOf<AlphaPieces, PieceShape::HorizontalBar, PieceLook::Opaque>();
constinit const Effect kAlphaBarsHorizontal =
    EffectOf<AlphaPieces, PieceShape::HorizontalBar, PieceLook::Transparent>();
constinit const Effect kAlphaBarsOpaqueVertical =
    EffectOf<AlphaPieces, PieceShape::VerticalBar, PieceLook::Opaque>();
constinit const Effect kAlphaBarsVertical =
    EffectOf<AlphaPieces, PieceShape::VerticalBar, PieceLook::Transparent>();
constinit const Effect kAlphaTilesOpaque = EffectOf<AlphaPieces, PieceShape::Tile, PieceLook::Opaque>();
constinit const Effect kAlphaTiles = EffectOf<AlphaPieces, PieceShape::Tile, PieceLook::Transparent>();

} // namespace lumafold
