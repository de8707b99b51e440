// The host that the command line is: it collects the animation, shows the progress, prints why a build was
// given up, and keeps a record of what was sent.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "build/build_observer.h"
#include "hosts/cli/progress.h"
#include "hosts/common/command_host.h"
#include "hosts/common/task_collector.h"

namespace lumafold {

struct SentCommand {
    std::uint32_t command;
    std::uint32_t wparam;
    std::string text; ///< the caption, the comment, or the total in decimal digits; else ""
};

class RecordingHost final : public CommandHost, public BuildObserver {
public:
    RecordingHost(std::uint32_t capabilityFlags, Progress& progress, std::ostream& errors)
        : CommandHost(capabilityFlags), progress_(progress), errors_(errors),
          task_(DelayUnitFor(capabilityFlags)) {}

    /// Whole once the task was finished as complete; empty when there was none or it was abandoned.
    const Animation& Result() const { return animation_; }
    Animation& Result() { return animation_; }
    bool Complete() const { return complete_; }
    /// Everything from the first caption on.
    const std::vector<SentCommand>& Commands() const { return commands_; }

    void Fail(BuildFailure failure) override;

private:
    void Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) override;
    bool CreateTask(const TaskRecord* task, TaskKind kind) override;
    bool AddFrame(const TaskRecord* task, const ImageRecord* frame) override;
    bool AddComment(const TaskRecord* task, const char* text) override;
    bool FinishTask(const TaskRecord* task, TaskEnd end) override;
    void Caption(const char* text) override { progress_.Caption(text); }
    void Position(std::int32_t position, std::int32_t total) override { progress_.Position(position, total); }

    Progress& progress_;
    std::ostream& errors_;
    TaskCollector task_;
    Animation animation_;
    bool complete_ = false;
    std::vector<SentCommand> commands_;
};

} // namespace lumafold
