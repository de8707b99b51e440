#include "transitions/run.h"

namespace lumafold {

bool AppendInTurn(const TransitionContext& context, FrameSource& frames, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        OwnedDib frame = frames.Frame(i);
        const std::int32_t delay = frames.Delay(i, context.delay);
        if (!FrameListAddImage(*context.frames, std::move(frame), delay)) return false;
    }
    return true;
}

/// Renders as many frames at once as there are workers, and a few more, so that none waits long for another.
bool AppendAtOnce(const TransitionContext& context, FrameSource& frames, std::int64_t count,
                  const Runner& runner) {
    constexpr std::int64_t kMostAtOnce = 64;
    const auto atOnce = std::min(static_cast<std::int64_t>(2 * runner.Workers()), kMostAtOnce);
    std::array<OwnedDib, kMostAtOnce> rendered;
    for (std::int64_t first = 0; first < count; first += atOnce) {
        const auto batch = static_cast<std::size_t>(std::min(atOnce, count - first));
        runner.ForEach(
            batch, [&](std::size_t i) { rendered[i] = frames.Frame(first + static_cast<std::int64_t>(i)); });
        for (std::size_t i = 0; i < batch; ++i) {
            const std::int32_t delay = frames.Delay(first + static_cast<std::int64_t>(i), context.delay);
            if (!FrameListAddImage(*context.frames, std::exchange(rendered[i], OwnedDib()), delay))
                return false;
        }
    }
    return true;
}

bool AppendStill(const TransitionContext& context) {
    return FrameListAddImage(*context.frames, OwnedDib(GlobalDuplicate(context.image)), context.pause);
}

bool IsGap(const DibHeader& source, const DibHeader& target) {
    return Covers24(source, 1, 1) && Covers24(target, source.biWidth, source.biHeight) &&
           target.biWidth == source.biWidth && target.biHeight == source.biHeight;
}

} // namespace lumafold
