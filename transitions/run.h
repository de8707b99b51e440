// The run of an effect over its gap, the same for all: append the still, lock both pictures, render frame
// after frame, append each with its delay, and leave nothing behind when something cannot be had.
//
// An effect family is a plan and a frame:
//
//     class Solarize {
//     public:
//         static std::optional<Solarize> Plan(const PluginSettings& settings, CanvasSize canvas); // none:
//         cannot run std::int64_t Frames() const;                                // between the stills
//         OwnedDib Frame(const Gap& gap, std::int64_t index) const;   // in any order; empty: memory is short
//         std::int32_t Delay(std::int64_t index, std::int32_t delay) const; // only where it is not the gap's
//     };
//
// A family that makes something once for the whole gap (a mask, a table) has, instead of Frame, a Start that
// returns a painter: `explicit operator bool` tells whether it could be had, and its Frame(index) is const
// where frames follow from their number. A painter whose Frame is not const remembers the frame before: it is
// asked for each frame in turn, and for the frame's delay right after it.
#pragma once

#include <concepts>
#include <memory>

#include "platform/runner.h"
#include "transitions/context.h"
#include "transitions/gap.h"

namespace lumafold {

/// What an effect function returns to the driver.
inline constexpr int kEffectDone = 1;
inline constexpr int kEffectFailed = 0;

/// The frames of one gap, whatever family they are of.
class FrameSource {
public:
    virtual ~FrameSource() = default;
    /// Whether frames may be rendered in any order, and several at once.
    virtual bool AnyOrder() const = 0;
    virtual OwnedDib Frame(std::int64_t index) = 0;
    virtual std::int32_t Delay(std::int64_t index, std::int32_t delay) = 0;
};

template <typename T>
concept HasDelay = requires(T& t) {
    { t.Delay(std::int64_t{}, std::int32_t{}) } -> std::same_as<std::int32_t>;
};
template <typename T>
concept HasFrame = requires(const T& t, const Gap& gap) {
    { t.Frame(gap, std::int64_t{}) } -> std::same_as<OwnedDib>;
};
template <typename T>
concept HasConstFrame = requires(const T& t) {
    { t.Frame(std::int64_t{}) } -> std::same_as<OwnedDib>;
};

/// The painter of a family that needs nothing made beforehand.
template <HasFrame Family>
class PlainPainter {
public:
    PlainPainter(const Family& family, const Gap& gap) : family_(family), gap_(gap) {}
    explicit operator bool() const { return true; }
    OwnedDib Frame(std::int64_t index) const { return family_.Frame(gap_, index); }

private:
    const Family& family_;
    const Gap& gap_;
};

template <typename Family>
auto StartPainter(const Family& family, const Gap& gap) {
    if constexpr (HasFrame<Family>) {
        return PlainPainter<Family>(family, gap);
    } else {
        return family.Start(gap);
    }
}

template <typename Family>
using PainterOf = decltype(StartPainter(std::declval<const Family&>(), std::declval<const Gap&>()));
/// Whether frames follow from their number, and so may be rendered in any order.
template <typename Family>
inline constexpr bool kAnyOrder = HasConstFrame<PainterOf<Family>>;

template <typename Family, typename Painter>
class PainterFrames final : public FrameSource {
public:
    PainterFrames(const Family& family, Painter& painter) : family_(family), painter_(painter) {}
    bool AnyOrder() const override { return kAnyOrder<Family>; }
    OwnedDib Frame(std::int64_t index) override { return painter_.Frame(index); }
    std::int32_t Delay(std::int64_t index, std::int32_t delay) override {
        if constexpr (HasDelay<Painter>) {
            return painter_.Delay(index, delay);
        } else if constexpr (HasDelay<const Family>) {
            return family_.Delay(index, delay);
        } else {
            return delay;
        }
    }

private:
    const Family& family_;
    Painter& painter_;
};

/// Appends a copy of the gap's first picture with the pause.
bool AppendStill(const TransitionContext& context);
/// Appends `count` frames; false when one cannot be had or the list cannot take it.
bool AppendFrames(const TransitionContext& context, FrameSource& frames, std::int64_t count,
                  const Runner& runner);
/// Whether source and target are what the driver makes of every picture: 24 bits deep and of one size.
bool IsGap(const DibHeader& source, const DibHeader& target);

/// An effect function of the table.
template <typename Family>
int RunEffect(TransitionContext& context, const PluginSettings& settings, const Runner& runner) {
    if (!AppendStill(context)) return kEffectFailed;
    const ReadDib source(context.image), target(context.nextImage);
    if (!source || !target || !IsGap(*source, *target)) return kEffectFailed;
    const Gap gap{*source, *target, {source->biWidth, source->biHeight}, settings, context.window};
    const std::optional<Family> family = Family::Plan(settings, gap.size);
    if (!family) return kEffectFailed;
    if (family->Frames() == 0) return kEffectDone;
    auto painter = StartPainter(*family, gap);
    if (!painter) return kEffectFailed;
    PainterFrames<Family, decltype(painter)> frames(*family, painter);
    return AppendFrames(context, frames, family->Frames(), runner) ? kEffectDone : kEffectFailed;
}

/// How many frames that appends, the still included; 0 when the effect cannot run.
template <typename Family>
std::int64_t CountFrames(const PluginSettings& settings, CanvasSize canvas) {
    const std::optional<Family> family = Family::Plan(settings, canvas);
    return family ? 1 + family->Frames() : 0;
}

} // namespace lumafold
