#include "transitions/alpha_pieces.h"

#include <cmath>

#include "transitions/mix_bytes.h"

namespace lumafold {
namespace {

// A limit below 2 would admit nothing, ever: a picture one row high has such bars.
constexpr std::int64_t kLowestLimit = 2;
constexpr float kStartAlpha = 255;

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

/// Calls `bar(position, thickness)`. Positions advance by the truncated quotient while thicknesses follow the
/// single-precision sum of the exact ones, so a line here and there is left uncovered and a bar may have no
/// thickness at all (docs/quirks.md 31).
template <typename Bar>
void ForEachBar(std::int32_t extent, std::int32_t bars, Bar bar) {
    const float quotient = static_cast<float>(extent) / static_cast<float>(bars);
    float sum = 0, previous = 0;
    for (std::int64_t at = 0; at < extent; at += extent / bars) {
        sum = sum + quotient;
        const auto thickness = static_cast<std::int64_t>(std::trunc(sum) - previous);
        bar(static_cast<std::int32_t>(at),
            static_cast<std::int32_t>(std::clamp<std::int64_t>(thickness, 0, extent - at)));
        previous = sum;
    }
}

void ListTiles(CanvasSize canvas, std::int64_t size, PieceList<PieceBox>& boxes) {
    for (std::int64_t y = 0; y < canvas.height; y += size) {
        for (std::int64_t x = 0; x < canvas.width; x += size) {
            boxes.Append({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                          static_cast<std::int32_t>(std::min(size, canvas.width - x)),
                          static_cast<std::int32_t>(std::min(size, canvas.height - y))});
        }
    }
}

void ListPieces(PieceShape shape, const PluginSettings& settings, CanvasSize canvas,
                PieceList<PieceBox>& boxes) {
    switch (shape) {
    case PieceShape::HorizontalBar:
        ForEachBar(canvas.height, BarsAcross(canvas.height, settings.TransitionAlphaBarCount),
                   [&](std::int32_t y, std::int32_t height) {
                       boxes.Append({0, y, canvas.width, height});
                   });
        break;
    case PieceShape::VerticalBar:
        ForEachBar(canvas.width, BarsAcross(canvas.width, settings.TransitionAlphaBarCount),
                   [&](std::int32_t x, std::int32_t width) {
                       boxes.Append({x, 0, width, canvas.height});
                   });
        break;
    case PieceShape::Tile:
        ListTiles(canvas, settings.TransitionAlphaTileSize, boxes);
        break;
    }
}

} // namespace

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

AlphaPiecesPainter::AlphaPiecesPainter(const Gap& gap, const PiecePlan& plan)
    : gap_(gap), plan_(plan), random_(gap.settings.RandomSeed),
      waiting_(static_cast<std::size_t>(plan.count)),
      fading_(static_cast<std::size_t>(std::min(plan.count, plan.limit))), canvas_(DibCopy(gap.source)),
      block_(plan.look == PieceLook::Opaque ? DibCreateFlat(gap.size.width, gap.size.height,
                                                            gap.settings.TransitionAlphaTileColor & 0xFFFFFF)
                                            : OwnedDib()) {
    if (waiting_) ListPieces(plan_.shape, gap.settings, gap.size, waiting_);
}

OwnedDib AlphaPiecesPainter::Frame(std::int64_t) {
    Admit();
    OwnedDib frame =
        RenderAlphaPieces(*canvas_, block_ ? *block_ : gap_.source, gap_.target, fading_.Entries());
    Retire();
    return frame;
}

/// At most one piece a frame.
void AlphaPiecesPainter::Admit() {
    if (static_cast<std::int64_t>(fading_.Count()) + 1 >= plan_.limit || waiting_.Count() == 0) return;
    fading_.Append({waiting_.Take(random_.Draw() % waiting_.Count()), kStartAlpha});
}

/// Takes out every piece below 0, and fades the others. At exactly 0 a piece stays and shows the target once
/// more (docs/quirks.md 32).
void AlphaPiecesPainter::Retire() {
    for (std::size_t i = 0; i < fading_.Count();) {
        if (fading_.Entries()[i].alpha < 0) {
            (void)fading_.Take(i);
        } else {
            ++i;
        }
    }
    for (FadingPiece& piece : fading_.Entries())
        piece.alpha -= plan_.fade;
}

template <PieceShape Shape, PieceLook Look>
std::optional<AlphaPieces<Shape, Look>> AlphaPieces<Shape, Look>::Plan(const PluginSettings& settings,
                                                                       CanvasSize canvas) {
    PiecePlan plan{Shape, Look, 0, 0, FadeStep(settings.TransitionAlphaTileStep)};
    if constexpr (Shape == PieceShape::Tile) {
        const std::int64_t size = settings.TransitionAlphaTileSize;
        plan.count = size == 0 ? 0 : LoopCount(0, canvas.width, size) * LoopCount(0, canvas.height, size);
        plan.limit = settings.TransitionAlphaTileCount;
    } else {
        const std::int32_t extent = Shape == PieceShape::HorizontalBar ? canvas.height : canvas.width;
        const std::int32_t bars = BarsAcross(extent, settings.TransitionAlphaBarCount);
        plan.count = BarCount(extent, bars);
        plan.limit = bars;
    }
    plan.limit = std::max(plan.limit, kLowestLimit);
    if (plan.count == 0 || plan.fade == 0) return {};
    return AlphaPieces(plan);
}

/// One piece is admitted a frame while there is a place; a place is held until the piece is below 0. The run
/// ends when the last piece has come down to 0 or below.
template <PieceShape Shape, PieceLook Look>
std::int64_t AlphaPieces<Shape, Look>::Frames() const {
    std::int64_t above = 0; // frames that show a piece before it has come down
    float alpha = kStartAlpha;
    while (alpha > 0) {
        alpha -= plan_.fade;
        ++above;
    }
    const std::int64_t held = above + (alpha < 0 ? 1 : 2);
    const std::int64_t places = plan_.limit - 1;
    const std::int64_t last = plan_.count - 1;
    const std::int64_t admitted = places >= held ? last : last / places * held + last % places;
    return admitted + above + 1;
}

template class AlphaPieces<PieceShape::HorizontalBar, PieceLook::Opaque>;
template class AlphaPieces<PieceShape::HorizontalBar, PieceLook::Transparent>;
template class AlphaPieces<PieceShape::VerticalBar, PieceLook::Opaque>;
template class AlphaPieces<PieceShape::VerticalBar, PieceLook::Transparent>;
template class AlphaPieces<PieceShape::Tile, PieceLook::Opaque>;
template class AlphaPieces<PieceShape::Tile, PieceLook::Transparent>;

} // namespace lumafold
