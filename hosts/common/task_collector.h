// What a host does that keeps the frames of a build to show them: it copies them into an animation, from the
// command that opens the task to the one that finishes it.
#pragma once

#include <optional>

#include "hosts/common/open_task.h"

namespace lumafold {

/// Takes one task at a time. Members may throw std::bad_alloc.
class TaskCollector {
public:
    explicit TaskCollector(DelayUnit unit) : task_(unit) {}

    /// False for null, a canvas without pixels, and while a task is open.
    bool Open(const TaskRecord* task);
    bool IsOpen() const { return task_.IsOpen(); }
    bool IsOpen(const TaskRecord* task) const { return task_.IsOpen(task); }
    /// These are false for a task that is not the open one.
    bool Add(const TaskRecord* task, const ImageRecord* frame);
    bool Comment(const TaskRecord* task, const char* text);
    /// Ends the task. The animation, if it was told to be complete and has frames.
    std::optional<Animation> Finish(const TaskRecord* task, bool complete);
    /// Forgets the open task, if there is one.
    void Abandon();

private:
    OpenTask task_;
    Animation animation_;
};

} // namespace lumafold
