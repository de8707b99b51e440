// The run of an effect over its gap, the same for all: append the still, lock both pictures, render frame
// after frame, append each with its delay, and leave nothing behind when something cannot be had.
//
// An effect family is a plan and a frame:
//
//     struct Solarize {
//         /// None where the effect cannot run; the parameters tell its kinds apart, if it has several.
//         static std::optional<Solarize> Plan(const PluginSettings& settings, CanvasSize canvas, kinds...);
//         std::int64_t Frames() const; // between the stills
//         OwnedDib Frame(const Gap& gap, std::int64_t index) const; // in any order; empty: memory is short
//         std::int32_t Delay(std::int64_t index, std::int32_t delay) const; // where it is not the gap's
//         static RenderNeed Need(const PluginSettings& settings, kinds...); // where it is not next to
//         nothing
//     };
//     constinit const Effect kSolarize = EffectOf<Solarize>();
//
// A family that makes something once for the whole gap (a mask, a table) has a `Start(gap)` that returns it,
// false where it could not be had; Frame then takes it behind the gap. A Frame that takes it to change it
// remembers the frame before: it is called for each frame in turn, and a `Delay(made, index, delay)` after
// it.
#pragma once

#include "transitions/table.h"

namespace lumafold {

/// What an effect function returns to the driver.
inline constexpr int kEffectDone = 1;
inline constexpr int kEffectFailed = 0;

/// What the table knows of an effect.
struct Effect {
    EffectFunction run;
    std::int64_t (*count)(const PluginSettings& settings, CanvasSize canvas); ///< as FrameCount
    bool inTurn;                                                              ///< as RendersInTurn
    RenderNeed (*need)(const PluginSettings& settings);                       ///< as RenderNeedOf
};
#define LUMAFOLD_EFFECT(effect, name, keys) extern const Effect k##effect;
#include "transitions/effects.def"
#undef LUMAFOLD_EFFECT

/// The frames of one gap, whatever family they are of.
class FrameSource {
public:
    virtual ~FrameSource() = default;
    virtual OwnedDib Frame(std::int64_t index) = 0;
    virtual std::int32_t Delay(std::int64_t index, std::int32_t delay) = 0;
};

template <typename Family>
auto StartGap(const Family& family, const Gap& gap) {
    if constexpr (requires { family.Start(gap); }) {
        return family.Start(gap);
    } else {
        return true;
    }
}

template <typename Family>
class FamilyFrames final : public FrameSource {
    using Made = decltype(StartGap(std::declval<const Family&>(), std::declval<const Gap&>()));

public:
    static constexpr bool kAnyOrder = requires(const Family& family, const Gap& gap) {
        family.Frame(gap, std::int64_t{});
    }
    || requires(const Family& family, const Gap& gap, const Made& made) {
        family.Frame(gap, made, std::int64_t{});
    };

    FamilyFrames(const Family& family, const Gap& gap)
        : family_(family), gap_(gap), made_(StartGap(family, gap)) {}
    explicit operator bool() const { return static_cast<bool>(made_); }

    OwnedDib Frame(std::int64_t index) override {
        if constexpr (requires { family_.Frame(gap_, index); }) {
            return family_.Frame(gap_, index);
        } else {
            return family_.Frame(gap_, made_, index);
        }
    }
    std::int32_t Delay(std::int64_t index, std::int32_t delay) override {
        if constexpr (requires { family_.Delay(index, delay); }) {
            return family_.Delay(index, delay);
        } else if constexpr (requires { family_.Delay(made_, index, delay); }) {
            return family_.Delay(made_, index, delay);
        } else {
            return delay;
        }
    }

private:
    const Family& family_;
    const Gap& gap_;
    Made made_;
};

/// Appends a copy of the gap's first picture with the pause.
bool AppendStill(const TransitionContext& context);
/// Whether source and target are what the driver makes of every picture: 24 bits deep and of one size.
bool IsGap(const DibHeader& source, const DibHeader& target);
/// Appends `count` frames, at most `atOnce` of them rendered at once; false when one cannot be had or the
/// list cannot take it.
bool AppendFrames(const TransitionContext& context, FrameSource& frames, std::int64_t count,
                  std::int64_t atOnce, const Runner& runner);

template <typename Family, auto... kKinds>
int RunEffect(TransitionContext& context, const PluginSettings& settings, const Runner& runner) {
    if (!AppendStill(context)) return kEffectFailed;
    const ReadDib source(context.image), target(context.nextImage);
    if (!source || !target || !IsGap(*source, *target)) return kEffectFailed;
    const Gap gap{*source, *target, {source->biWidth, source->biHeight}, settings, context.window};
    const std::optional<Family> family = Family::Plan(settings, gap.size, kKinds...);
    if (!family) return kEffectFailed;
    const std::int64_t count = family->Frames();
    if (count == 0) return kEffectDone;
    FamilyFrames<Family> frames(*family, gap);
    if (!frames) return kEffectFailed;
    // A few more frames than workers, so that none waits long for another.
    const bool severalAtOnce = FamilyFrames<Family>::kAnyOrder && runner.Workers() > 1;
    const auto atOnce = severalAtOnce ? 2 * static_cast<std::int64_t>(runner.Workers()) : 1;
    return AppendFrames(context, frames, count, atOnce, runner) ? kEffectDone : kEffectFailed;
}

template <typename Family, auto... kKinds>
std::int64_t CountFrames(const PluginSettings& settings, CanvasSize canvas) {
    const std::optional<Family> family = Family::Plan(settings, canvas, kKinds...);
    return family ? 1 + family->Frames() : 0;
}

/// As measured, of families that hold more than next to nothing.
template <typename Family, auto... kKinds>
RenderNeed NeedOf(const PluginSettings& settings) {
    if constexpr (requires { Family::Need(settings, kKinds...); }) {
        return Family::Need(settings, kKinds...);
    } else {
        return {};
    }
}

/// The effect that a family is with these arguments behind its plan's own.
template <typename Family, auto... kKinds>
constexpr Effect EffectOf() {
    return {RunEffect<Family, kKinds...>, CountFrames<Family, kKinds...>, !FamilyFrames<Family>::kAnyOrder,
            NeedOf<Family, kKinds...>};
}

} // namespace lumafold
