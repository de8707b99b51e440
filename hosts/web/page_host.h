// The host that the page is: one callback that answers the driver's commands, collects the animation, and
// tells the page how far the build has come.
#pragma once

#include <functional>
#include <string>

#include "hosts/common/task_collector.h"
#include "platform/user.h"
#include "plugin/protocol/host_protocol.h"

namespace lumafold {

/// What is being done, and how much of it; a total of 0 means that nobody knows.
using TellProgress = std::function<void(const char* caption, std::int32_t position, std::int32_t total)>;

/// The callback has no place for an object, so there is one host at a time; it takes the engine's messages
/// too.
class PageHost {
public:
    PageHost(std::uint32_t capabilityFlags, TellProgress tell);
    PageHost(const PageHost&) = delete;
    PageHost& operator=(const PageHost&) = delete;
    ~PageHost();

    const HostContext& Context() const { return context_; }
    /// The animation, once the task was finished as complete.
    std::optional<Animation> Take() { return std::move(animation_); }
    /// What the engine said last; "" when it had nothing to say.
    const std::string& Message() const { return message_; }

private:
    static std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                               std::intptr_t lparam);
    static void KeepMessage(WindowHandle window, const char* text);
    std::int32_t Answer(TaskRecord* task, std::uint32_t command, std::uint32_t wparam, std::intptr_t lparam);

    HostContext context_{};
    TellProgress tell_;
    MessageHook messagesBefore_;
    TaskCollector task_;
    std::string caption_, message_;
    std::optional<Animation> animation_;
};

} // namespace lumafold
