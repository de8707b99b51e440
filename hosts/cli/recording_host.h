// The host that the command line is: it passes frames on as it gets them, shows the progress, prints why a
// build was given up, and keeps a record of what was sent.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "build/build_observer.h"
#include "hosts/cli/frame_sink.h"
#include "hosts/cli/progress.h"
#include "hosts/common/command_host.h"
#include "hosts/common/open_task.h"

namespace lumafold {

struct SentCommand {
    std::uint32_t command;
    std::uint32_t wparam;
    std::string text; ///< the caption, the comment, or the total in decimal digits; else ""
};

class RecordingHost final : public CommandHost, public BuildObserver {
public:
    /// All outlive it.
    RecordingHost(std::uint32_t capabilityFlags, Progress& progress, std::ostream& errors, FrameSink& frames)
        : CommandHost(capabilityFlags), progress_(progress), errors_(errors), frames_(frames),
          task_(DelayUnitFor(capabilityFlags)) {}

    /// Whether a task was finished as complete, and had frames.
    bool Complete() const { return complete_; }
    /// Why the frames were not taken; "" where nothing was wrong with them.
    const std::string& Fault() const { return fault_; }
    const AnimationFacts& Facts() const { return task_.Facts(); }
    std::size_t Frames() const { return static_cast<std::size_t>(task_.Frames()); }
    const std::string& Comment() const { return comment_; }
    /// Everything from the first caption on.
    const std::vector<SentCommand>& Commands() const { return commands_; }

    /// Nothing is printed where there is a fault, which says more.
    void Fail(BuildFailure failure) override;

private:
    void Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) override;
    void HearFault(const char* fault) override;
    bool CreateTask(const TaskRecord* task, TaskKind kind) override;
    bool AddFrame(const TaskRecord* task, const ImageRecord* frame) override;
    bool AddComment(const TaskRecord* task, const char* text) override;
    bool FinishTask(const TaskRecord* task, TaskEnd end) override;
    template <typename Work>
    bool Passed(Work work);
    void Caption(const char* text) override { progress_.Caption(text); }
    void Position(std::int32_t position, std::int32_t total) override { progress_.Position(position, total); }

    Progress& progress_;
    std::ostream& errors_;
    FrameSink& frames_;
    OpenTask task_;
    std::string comment_, fault_;
    bool complete_ = false;
    std::vector<SentCommand> commands_;
};

} // namespace lumafold
