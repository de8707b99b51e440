// What a host does with the frames of a build: it copies them into an animation, from the command that opens
// the task to the one that finishes it.
#pragma once

#include <optional>

#include "codecs/animation.h"
#include "plugin/protocol/host_protocol.h"

namespace lumafold {

/// What the plug-in's delays mean, which a host's capability flags decide.
enum class DelayUnit { Hundredths, Milliseconds };
DelayUnit DelayUnitFor(std::uint32_t capabilityFlags);

/// Takes one task at a time and nothing on trust: what is no picture is refused. Members may throw
/// std::bad_alloc.
class TaskCollector {
public:
    explicit TaskCollector(DelayUnit unit) : unit_(unit) {}

    /// False for null, a canvas without pixels, and while a task is open.
    bool Open(const TaskRecord* task);
    bool IsOpen() const { return task_ != nullptr; }
    bool IsOpen(const TaskRecord* task) const { return IsOpen() && task == task_; }
    /// These are false for a task that is not the open one.
    bool Add(const TaskRecord* task, const ImageRecord* frame);
    bool Comment(const TaskRecord* task, const char* text);
    /// Ends the task. The animation, if it was told to be complete and has frames.
    std::optional<Animation> Finish(const TaskRecord* task, bool complete);
    /// Forgets the open task, if there is one.
    void Abandon();

private:
    DelayUnit unit_;
    const TaskRecord* task_ = nullptr; // whose frames are taken
    Animation animation_;
};

} // namespace lumafold
