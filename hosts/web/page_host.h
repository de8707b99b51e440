// The host that the page is: it collects the animation, and tells the page how far the build has come.
#pragma once

#include <functional>
#include <string>

#include "build/build_observer.h"
#include "hosts/common/command_host.h"
#include "hosts/common/task_collector.h"

namespace lumafold {

/// What is being done, and how much of it; a total of 0 means that nobody knows.
using TellProgress = std::function<void(const char* caption, std::int32_t position, std::int32_t total)>;

class PageHost final : public CommandHost, public BuildObserver {
public:
    PageHost(std::uint32_t capabilityFlags, const TellProgress& tell)
        : CommandHost(capabilityFlags), tell_(tell), task_(DelayUnitFor(capabilityFlags)) {}

    /// The animation, once the task was finished as complete.
    std::optional<Animation> Take() { return std::move(animation_); }
    /// Why the build was given up; "" when it was not.
    const std::string& Failure() const { return failure_; }

    void Fail(BuildFailure failure) override { failure_ = TextOf(failure); }

private:
    bool CreateTask(const TaskRecord* task, TaskKind kind) override;
    bool AddFrame(const TaskRecord* task, const ImageRecord* frame) override;
    bool AddComment(const TaskRecord* task, const char* text) override;
    bool FinishTask(const TaskRecord* task, TaskEnd end) override;
    void Caption(const char* text) override;
    void Position(std::int32_t position, std::int32_t total) override;

    const TellProgress& tell_;
    TaskCollector task_;
    std::string caption_, failure_;
    std::optional<Animation> animation_;
};

} // namespace lumafold
