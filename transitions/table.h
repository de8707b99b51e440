// The 33 transitions, in alphabetical order of their display names. The row number is stored data and never
// changes.
#pragma once

#include <array>
#include <string_view>

#include "platform/runner.h"
#include "transitions/context.h"
#include "transitions/gap.h"

namespace lumafold {

/// Appends the still frame and the frames between: 1, or 0 on any failure. Frames appended before stay in the
/// list.
using EffectFunction = int (*)(TransitionContext& context, const PluginSettings& settings,
                               const Runner& runner);

struct TransitionRow {
    EffectFunction effect;
    const char* name;
    std::uint32_t reserved;
};

/// The rows' numbers, by the effects' names in code.
enum class TransitionNumber : int {
#define LUMAFOLD_EFFECT(effect, name, keys) effect,
#include "transitions/effects.def"
#undef LUMAFOLD_EFFECT
    Count
};
inline constexpr int kTransitionCount = static_cast<int>(TransitionNumber::Count);
extern const std::array<TransitionRow, kTransitionCount> TransitionTable;

/// How many frames row `row` appends for a canvas of this size, the still frame included; 0 when the effect
/// cannot run with these settings, or there is no such row.
std::int64_t FrameCount(int row, const PluginSettings& settings, CanvasSize canvas);

/// Whether the row's frames follow from one another, so that one worker renders a gap.
bool RendersInTurn(int row);

/// How many are rendered at once at the most: frames of a gap in any order, and gaps with frames in turn.
inline constexpr std::int64_t kMostFramesAtOnce = 64;
inline constexpr std::int32_t kMostGapsAtOnce = 16;

/// Nothing where there is no such row.
RenderNeed RenderNeedOf(int row, const PluginSettings& settings);

/// The configuration keys the row's effect reads, separated by blanks.
std::string_view TransitionSettings(int row);

} // namespace lumafold
