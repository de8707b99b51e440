// The host's side of the protocol: one callback that takes every command of the plug-in apart. A host says
// what it answers by the functions it overrides; a command that it knows nothing of is refused.
#pragma once

#include "plugin/protocol/host.h"

namespace lumafold {

/// The callback has no place for an object, so there is one host at a time on each thread: the one made last
/// there, until it goes. On a thread that made none it is the last of all. Functions may throw: the command
/// has failed then, since the plug-in knows no exceptions.
class CommandHost {
public:
    explicit CommandHost(std::uint32_t capabilityFlags);
    CommandHost(const CommandHost&) = delete;
    CommandHost& operator=(const CommandHost&) = delete;
    virtual ~CommandHost();

    const HostContext& Context() const { return context_; }

protected:
    /// Hears of every command before it is answered.
    virtual void Hear(HostCommand, std::uint32_t, std::intptr_t) {}
    /// Hears why an answer was given up.
    virtual void HearFault(const char*) {}
    /// What the plug-in gets; by default what the functions below say.
    virtual std::int32_t Answer(TaskRecord* task, HostCommand command, std::uint32_t wparam,
                                std::intptr_t lparam);

    // Pointers are the plug-in's and may be null.
    virtual bool CreateTask(const TaskRecord* task, TaskKind kind) = 0;
    virtual bool AddFrame(const TaskRecord* task, const ImageRecord* frame) = 0;
    virtual bool AddComment(const TaskRecord* task, const char* text) = 0;
    virtual bool FinishTask(const TaskRecord* task, TaskEnd end) = 0;
    virtual void Caption(const char*) {}
    virtual void Position(std::int32_t, std::int32_t) {}
    virtual bool ChooseFiles(WindowHandle, char*) { return false; }
    /// The picture becomes the plug-in's.
    virtual OwnedDib LoadPicture(const char*) { return {}; }
    virtual OwnedDib ClipboardPicture(WindowHandle) { return {}; }
    virtual bool ShowHelp(const char*) { return false; }
    virtual bool ChooseColour(ColourRecord*) { return false; }

private:
    static std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                               std::intptr_t lparam);

    HostContext context_{};
    CommandHost* before_;
};

} // namespace lumafold
