// Alpha bars and tiles: pieces of the picture, picked at random, fade to the target, several at a time. An
// opaque piece starts as a block of one colour, a transparent one as the source.
#include "transitions/effect_run.h"
#include "transitions/effects.h"
#include "transitions/mix_bytes.h"
#include "transitions/random.h"

#include <cmath>

namespace lumafold {
namespace {

struct Box {
    std::int32_t x, y, width, height;
};

struct FadingPiece {
    Box box;
    float alpha; // 255 is the start look, 0 the target
};

/// Entries behind a removed one move up: the order decides which piece the next draw picks.
template <typename T>
class PieceList {
public:
    explicit PieceList(std::size_t capacity) : entries_(capacity) {}

    explicit operator bool() const { return static_cast<bool>(entries_); }
    std::size_t Count() const { return count_; }
    T* begin() { return entries_.begin(); }
    T* end() { return entries_.begin() + count_; }

    void Append(const T& entry) { entries_[count_++] = entry; }
    T Take(std::size_t index) {
        const T entry = entries_[index];
        --count_;
        std::memmove(&entries_[index], &entries_[index] + 1, (count_ - index) * sizeof(T));
        return entry;
    }

private:
    Array<T> entries_;
    std::size_t count_ = 0;
};

/// What a piece loses from frame to frame; 0 when the fade would never end.
float FadeStep() {
    const std::uint32_t step = pluginSettings.TransitionAlphaTileStep;
    if (step == 0) return 0;
    const auto fade = static_cast<float>(255.0 / step);
    return 255.0F - fade < 255.0F ? fade : 0;
}

/// How many pieces a canvas is cut into (0 where that would never end), and how the list is filled with them.
struct Cut {
    std::int64_t (*count)(CanvasSize);
    void (*list)(CanvasSize, PieceList<Box>&);
    std::int64_t (*limit)(CanvasSize); ///< one more than may fade at a time
};

// A limit below 2 would admit nothing, ever: a picture one row high has such bars.
constexpr std::int64_t kLowestLimit = 2;

std::int64_t TileCount(CanvasSize canvas) {
    const std::int64_t size = pluginSettings.TransitionAlphaTileSize;
    return size == 0 ? 0 : LoopCount(0, canvas.width, size) * LoopCount(0, canvas.height, size);
}
void ListTiles(CanvasSize canvas, PieceList<Box>& boxes) {
    const std::int64_t size = pluginSettings.TransitionAlphaTileSize;
    for (std::int64_t y = 0; y < canvas.height; y += size) {
        for (std::int64_t x = 0; x < canvas.width; x += size) {
            boxes.Append({static_cast<std::int32_t>(x), static_cast<std::int32_t>(y),
                          static_cast<std::int32_t>(std::min(size, canvas.width - x)),
                          static_cast<std::int32_t>(std::min(size, canvas.height - y))});
        }
    }
}
std::int64_t TileLimit(CanvasSize) {
    return std::max<std::int64_t>(kLowestLimit, pluginSettings.TransitionAlphaTileCount);
}
constexpr Cut kTiles{TileCount, ListTiles, TileLimit};

/// The number of bars asked for; where the picture is no multiple of it, more come to be listed.
std::int32_t BarsAcross(std::int32_t extent) {
    return static_cast<std::int32_t>(std::min<std::int64_t>(pluginSettings.TransitionAlphaBarCount, extent));
}
std::int64_t BarCount(std::int32_t extent) {
    const std::int32_t bars = BarsAcross(extent);
    return bars < 1 ? 0 : LoopCount(0, extent, extent / bars);
}

/// Calls `bar(position, thickness)`. Positions advance by the truncated quotient while thicknesses follow the
/// sum of the broken ones, so a row here and there is left uncovered and a bar may have no thickness at all:
/// wanted.
template <typename Bar>
void ForEachBar(std::int32_t extent, Bar bar) {
    const std::int32_t bars = BarsAcross(extent);
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

constexpr Cut kHorizontalBars{
    [](CanvasSize canvas) { return BarCount(canvas.height); },
    [](CanvasSize canvas, PieceList<Box>& boxes) {
        ForEachBar(canvas.height, [&](std::int32_t y, std::int32_t height) {
            boxes.Append({0, y, canvas.width, height});
        });
    },
    [](CanvasSize canvas) { return std::max<std::int64_t>(kLowestLimit, BarsAcross(canvas.height)); }};

constexpr Cut kVerticalBars{
    [](CanvasSize canvas) { return BarCount(canvas.width); },
    [](CanvasSize canvas, PieceList<Box>& boxes) {
        ForEachBar(canvas.width, [&](std::int32_t x, std::int32_t width) {
            boxes.Append({x, 0, width, canvas.height});
        });
    },
    [](CanvasSize canvas) { return std::max<std::int64_t>(kLowestLimit, BarsAcross(canvas.width)); }};

enum class Look { Opaque, Transparent };

/// What the pieces are drawn onto. It keeps finished ones, so that each frame is a copy of it after the
/// pieces that still fade have been drawn once more.
class Canvas {
public:
    Canvas(const EffectRun& run, DibHandle source, Look look)
        : dib_(GlobalDuplicate(source)), locked_(dib_.Get()), source_(run.Source()), target_(run.Target()),
          colourRow_(look == Look::Opaque ? static_cast<std::size_t>(run.Width()) * 3 : 0) {
        for (std::size_t i = 0; i + 2 < colourRow_.size(); i += 3) {
            colourRow_[i] = static_cast<std::uint8_t>(BlueOf(pluginSettings.TransitionAlphaTileColor));
            colourRow_[i + 1] = static_cast<std::uint8_t>(GreenOf(pluginSettings.TransitionAlphaTileColor));
            colourRow_[i + 2] = static_cast<std::uint8_t>(RedOf(pluginSettings.TransitionAlphaTileColor));
        }
    }

    explicit operator bool() const { return locked_ && colourRow_; }

    void Draw(const FadingPiece& piece) {
        const Box& box = piece.box;
        const auto share = static_cast<std::uint8_t>(std::clamp(static_cast<int>(piece.alpha), 0, 255));
        const RowView to(locked_.Get());
        const std::ptrdiff_t left = std::ptrdiff_t{3} * box.x;
        for (std::int32_t y = box.y; y < box.y + box.height; ++y) {
            const std::uint8_t* look = colourRow_.size() != 0 ? colourRow_.data() : source_.Row(y) + left;
            MixBytes(target_.Row(y) + left, look, to.Row(y) + left, static_cast<std::size_t>(box.width) * 3,
                     share);
        }
    }

    OwnedDib Frame() const {
        OwnedDib frame(DibCreate(locked_->biWidth, locked_->biHeight, nullptr, locked_->biBitCount));
        const LockedDib out(frame.Get());
        if (!out) return {};
        DibCopyRect(out.Get(), 0, 0, locked_.Get(), 0, 0, locked_->biWidth, locked_->biHeight);
        return frame;
    }

private:
    OwnedDib dib_;
    LockedDib locked_;
    ConstRowView source_, target_;
    Array<std::uint8_t> colourRow_; // as wide as the picture; empty where pieces start as the source
};

/// Takes out every piece below 0. At exactly 0 a piece stays and shows the target twice: wanted.
void Retire(PieceList<FadingPiece>& active) {
    for (std::size_t i = 0; i < active.Count();) {
        if (active.begin()[i].alpha < 0) {
            (void)active.Take(i);
        } else {
            ++i;
        }
    }
}

int FadePieces(TransitionContext& context, const Cut& cut, Look look) {
    EffectRun run(context);
    if (!run || !Covers24(run.Source(), 1, 1) || !Covers24(run.Target(), run.Width(), run.Height())) {
        return kEffectFailed;
    }
    const CanvasSize size{run.Width(), run.Height()};
    const std::int64_t count = cut.count(size);
    const std::int64_t limit = cut.limit(size);
    const float fade = FadeStep();
    if (count == 0 || fade == 0) return kEffectFailed;
    PieceList<Box> remaining(static_cast<std::size_t>(count));
    PieceList<FadingPiece> active(static_cast<std::size_t>(std::min(count, limit)));
    Canvas canvas(run, context.image, look);
    if (!remaining || !active || !canvas) return kEffectFailed;
    cut.list(size, remaining);

    Random random(pluginSettings.RandomSeed);
    for (bool more = true; more;) {
        if (static_cast<std::int64_t>(active.Count()) + 1 < limit && remaining.Count() > 0) {
            active.Append({remaining.Take(random.Draw() % remaining.Count()), 255.0F});
        }
        for (const FadingPiece& piece : active) {
            canvas.Draw(piece);
        }
        if (!run.Emit(canvas.Frame())) return kEffectFailed;
        Retire(active);
        more = remaining.Count() > 0;
        for (FadingPiece& piece : active) {
            if (piece.alpha > 0) more = true;
            piece.alpha -= fade;
        }
    }
    return kEffectDone;
}

/// One piece is admitted a frame while there is a place; a place is held until the piece is below 0. The run
/// ends when the last piece has come down to 0 or below.
std::int64_t PieceFrames(CanvasSize canvas, const Cut& cut) {
    const std::int64_t count = cut.count(canvas);
    const float fade = FadeStep();
    if (count == 0 || fade == 0) return 0;
    std::int64_t above = 0; // frames that show the piece before it has come down
    float alpha = 255.0F;
    while (alpha > 0) {
        alpha -= fade;
        ++above;
    }
    const std::int64_t held = above + (alpha < 0 ? 1 : 2);
    const std::int64_t places = cut.limit(canvas) - 1;
    const std::int64_t last = count - 1;
    const std::int64_t admitted = places >= held ? last : last / places * held + last % places;
    return 1 + admitted + above + 1;
}

} // namespace

int AlphaHorizontalBarOpaque(TransitionContext& context) {
    return FadePieces(context, kHorizontalBars, Look::Opaque);
}
int AlphaHorizontalBarTransparent(TransitionContext& context) {
    return FadePieces(context, kHorizontalBars, Look::Transparent);
}
int AlphaVerticalBarOpaque(TransitionContext& context) {
    return FadePieces(context, kVerticalBars, Look::Opaque);
}
int AlphaVerticalBarTransparent(TransitionContext& context) {
    return FadePieces(context, kVerticalBars, Look::Transparent);
}
int AlphaTileOpaque(TransitionContext& context) { return FadePieces(context, kTiles, Look::Opaque); }
int AlphaTileTransparent(TransitionContext& context) {
    return FadePieces(context, kTiles, Look::Transparent);
}

std::int64_t AlphaHorizontalBarOpaqueFrames(CanvasSize canvas) {
    return PieceFrames(canvas, kHorizontalBars);
}
std::int64_t AlphaHorizontalBarTransparentFrames(CanvasSize canvas) {
    return PieceFrames(canvas, kHorizontalBars);
}
std::int64_t AlphaVerticalBarOpaqueFrames(CanvasSize canvas) { return PieceFrames(canvas, kVerticalBars); }
std::int64_t AlphaVerticalBarTransparentFrames(CanvasSize canvas) {
    return PieceFrames(canvas, kVerticalBars);
}
std::int64_t AlphaTileOpaqueFrames(CanvasSize canvas) { return PieceFrames(canvas, kTiles); }
std::int64_t AlphaTileTransparentFrames(CanvasSize canvas) { return PieceFrames(canvas, kTiles); }

} // namespace lumafold
