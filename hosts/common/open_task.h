// The plug-in's task as a host keeps it in mind, from the command that opens it to the one that finishes it.
// Takes nothing on trust: what is no picture is refused.
#pragma once

#include "codecs/animation.h"
#include "plugin/protocol/host_protocol.h"

namespace lumafold {

/// What the plug-in's delays mean, which a host's capability flags decide.
enum class DelayUnit { Hundredths, Milliseconds };
DelayUnit DelayUnitFor(std::uint32_t capabilityFlags);

class OpenTask {
public:
    explicit OpenTask(DelayUnit unit) : unit_(unit) {}

    /// False for null, a canvas without pixels, and while a task is open.
    bool Open(const TaskRecord* task);
    bool IsOpen() const { return task_ != nullptr; }
    bool IsOpen(const TaskRecord* task) const { return IsOpen() && task == task_; }
    void Close() { task_ = nullptr; }

    /// Of the task opened last.
    const AnimationFacts& Facts() const { return facts_; }
    /// How many frames of it were taken.
    std::int32_t Frames() const { return frames_; }
    /// How many frames the task said would follow.
    std::int32_t ToldFrames() const { return toldFrames_; }

    /// Calls `take(frame)` with the next frame of the open task, whose picture belongs to the plug-in and is
    /// locked meanwhile. False for any other frame and for what is no picture; else what `take` returns.
    template <typename Take>
    bool Add(const TaskRecord* task, const ImageRecord* frame, Take take) {
        if (!IsOpen(task) || frame == nullptr || frame->index != frames_ || !IsWholePicture(frame->image))
            return false;
        const ReadDib picture(frame->image);
        if (!picture || !take(FrameView{*picture, Hundredths(frame->delay), frame->transparentIndex}))
            return false;
        ++frames_;
        return true;
    }

private:
    static bool IsWholePicture(DibHandle handle);
    std::int32_t Hundredths(std::int32_t delay) const;

    DelayUnit unit_;
    const TaskRecord* task_ = nullptr; // whose frames are taken
    AnimationFacts facts_;
    std::int32_t frames_ = 0, toldFrames_ = 0;
};

} // namespace lumafold
