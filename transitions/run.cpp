#include "transitions/run.h"

namespace lumafold {

bool AppendFrames(const TransitionContext& context, FrameSource& frames, std::int64_t count,
                  std::int64_t atOnce, const Runner& runner) {
    std::array<OwnedDib, kMostFramesAtOnce> rendered;
    for (std::int64_t first = 0; first < count;) {
        const auto batch = static_cast<std::size_t>(std::min({atOnce, kMostFramesAtOnce, count - first}));
        runner.ForEach(
            batch, [&](std::size_t i) { rendered[i] = frames.Frame(first + static_cast<std::int64_t>(i)); });
        for (std::size_t i = 0; i < batch; ++i, ++first) {
            const std::int32_t delay = frames.Delay(first, context.delay);
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
