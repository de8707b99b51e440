// The 33 transitions, in alphabetical order of their display names. The row number is stored data and never
// changes.
#pragma once

#include <array>
#include <string_view>

#include "transitions/context.h"

namespace lumafold {

/// Appends the still frame and the frames between: 1, or 0 on any failure. Frames appended before stay in the
/// list.
using EffectFunction = int (*)(TransitionContext& context);

struct TransitionRow {
    EffectFunction effect;
    const char* name;
    std::uint32_t reserved;
};

inline constexpr int kTransitionCount = 33;
extern const std::array<TransitionRow, kTransitionCount> TransitionTable;

/// How many frames row `row` appends for a canvas of this size with the settings in force, the still frame
/// included; 0 when the effect would fail.
std::int64_t FrameCount(int row, std::int32_t width, std::int32_t height);

/// The configuration keys the row's effect reads, separated by blanks.
std::string_view TransitionSettings(int row);

} // namespace lumafold
