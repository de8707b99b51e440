#include "transitions/table.h"

#include "transitions/run.h"

namespace lumafold {
namespace {

/// The effect is another file's, and only its address is known before the program starts.
template <const Effect& kEffect>
int Run(TransitionContext& context, const PluginSettings& settings, const Runner& runner) {
    return kEffect.run(context, settings, runner);
}

struct Row {
    const Effect& effect;
    std::string_view keys;
};
constexpr Row kRows[] = {
#define LUMAFOLD_EFFECT(effect, name, keys) {k##effect, keys},
#include "transitions/effects.def"
#undef LUMAFOLD_EFFECT
};

const Row* RowAt(int row) { return row >= 0 && row < kTransitionCount ? &kRows[row] : nullptr; }

} // namespace

constinit const std::array<TransitionRow, kTransitionCount> TransitionTable = {{
#define LUMAFOLD_EFFECT(effect, name, keys) {Run<k##effect>, name, 0},
#include "transitions/effects.def"
#undef LUMAFOLD_EFFECT
}};

std::int64_t FrameCount(int row, const PluginSettings& settings, CanvasSize canvas) {
    const Row* known = RowAt(row);
    return known != nullptr ? known->effect.count(settings, canvas) : 0;
}

bool RendersInTurn(int row) {
    const Row* known = RowAt(row);
    return known != nullptr && known->effect.inTurn;
}

RenderNeed RenderNeedOf(int row, const PluginSettings& settings) {
    const Row* known = RowAt(row);
    return known != nullptr ? known->effect.need(settings) : RenderNeed();
}

std::string_view TransitionSettings(int row) {
    const Row* known = RowAt(row);
    return known != nullptr ? known->keys : std::string_view();
}

} // namespace lumafold
