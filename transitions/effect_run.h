// What every effect does: append the still frame, lock both pictures, append frame after frame with the
// delay, and leave nothing behind when it gives up. An effect opens one run and keeps its own loop in sight.
#pragma once

#include "image/row_view.h"
#include "settings/settings.h"
#include "transitions/context.h"

namespace lumafold {

/// What an effect function returns to the driver.
inline constexpr int kEffectDone = 1;
inline constexpr int kEffectFailed = 0;

class EffectRun {
public:
    /// Appends a duplicate of the source with the pause and locks source and target. Check it before use.
    explicit EffectRun(const TransitionContext& context)
        : context_(context), still_(AppendStill(context)), source_(still_ ? context.image : 0),
          target_(still_ ? context.nextImage : 0) {}
    EffectRun(const EffectRun&) = delete;
    EffectRun& operator=(const EffectRun&) = delete;

    explicit operator bool() const { return still_ && source_ && target_; }

    const DibHeader* Source() const { return source_.Get(); }
    const DibHeader* Target() const { return target_.Get(); }
    std::int32_t Width() const { return source_->biWidth; }
    std::int32_t Height() const { return source_->biHeight; }
    std::int32_t Delay() const { return context_.delay; }
    WindowHandle Window() const { return context_.window; }

    /// Appends a frame; false when there is none or the list cannot take it, and then the frame is freed.
    [[nodiscard]] bool Emit(OwnedDib frame) { return Emit(std::move(frame), context_.delay); }
    [[nodiscard]] bool Emit(OwnedDib frame, std::int32_t delay) {
        return FrameListAddImage(*context_.frames, std::move(frame), delay);
    }

private:
    static bool AppendStill(const TransitionContext& context) {
        return FrameListAddImage(*context.frames, OwnedDib(GlobalDuplicate(context.image)), context.pause);
    }

    const TransitionContext& context_;
    bool still_;
    LockedDib source_, target_;
};

/// How often a loop `for (p = first; p < limit; p += step)` runs, step > 0.
constexpr std::int64_t LoopCount(std::int64_t first, std::int64_t limit, std::int64_t step) {
    return first >= limit ? 0 : (limit - first + step - 1) / step;
}

} // namespace lumafold
