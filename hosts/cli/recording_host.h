// The host that the command line is: one callback that answers every command, collects the animation, shows
// the progress, and keeps a record of what was sent.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "hosts/cli/progress.h"
#include "hosts/common/task_collector.h"
#include "plugin/protocol/host_protocol.h"

namespace lumafold {

struct SentCommand {
    std::uint32_t command;
    std::uint32_t wparam;
    std::string text; ///< the caption, the comment, or the total in decimal digits; else ""
};

/// The callback has no place for an object, so there is one host at a time; it takes the engine's messages
/// too, each as a line on `errors`.
class RecordingHost {
public:
    RecordingHost(std::uint32_t capabilityFlags, Progress& progress, std::ostream& errors);
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;
    ~RecordingHost();

    const HostContext& Context() const { return context_; }
    /// Whole once the task was finished as complete; empty when there was none or it was abandoned.
    const Animation& Result() const { return animation_; }
    Animation& Result() { return animation_; }
    bool Complete() const { return complete_; }
    /// Everything from the first caption on.
    const std::vector<SentCommand>& Commands() const { return commands_; }

private:
    static std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                               std::intptr_t lparam);
    static void ShowLine(WindowHandle window, const char* text);

    std::int32_t Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam, std::intptr_t lparam);
    void Record(std::uint32_t command, std::uint32_t wparam, std::intptr_t lparam);
    bool FinishTask(const TaskRecord* task, bool complete);

    HostContext context_{};
    Progress& progress_;
    std::ostream& errors_;
    MessageHook messagesBefore_;
    TaskCollector task_;
    Animation animation_;
    bool complete_ = false;
    std::vector<SentCommand> commands_;
};

} // namespace lumafold
