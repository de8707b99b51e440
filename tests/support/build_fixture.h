// A host for tests of whole builds: it records every command and every failure, copies every frame, and
// refuses what it is told to.
#pragma once

#include <string>
#include <vector>

#include "build/build_driver.h"
#include "hosts/common/command_host.h"
#include "hosts/common/memory_list.h"
#include "tests/support/checksum.h"

namespace lumafold::test {

struct RecordedCommand {
    std::uint32_t command, wparam;
    std::string text; ///< what it sent of text, or the total of a position
    friend bool operator==(const RecordedCommand&, const RecordedCommand&) = default;
};

struct RecordedFrame {
    OwnedDib image;
    std::int32_t delay, index, transparentIndex;
};

class RecordingHost : public CommandHost, public BuildObserver {
public:
    RecordingHost() : CommandHost(kHostTakesSupercompression | kHostTakesTrueColour) {}

    /// The list's build for this host.
    int Build(ImageList& list, const PluginSettings& settings, TaskKind kind = TaskKind::Build,
              const Runner& runner = Runner(), std::uint64_t budget = UINT64_MAX) {
        return BuildAnimation({list, 0, Context(), kind, settings, *this, runner, budget});
    }
    /// All that it was given: commands, the task with its palette, and the frames with their tables.
    std::uint64_t Sum() const;
    void Forget();

    std::vector<RecordedCommand> commands;
    TaskRecord task{};
    std::vector<RecordedFrame> frames;
    std::vector<BuildFailure> failures;
    int waiting = 0; ///< builds that have begun and not ended

    bool keepFrames = true; ///< else they are taken and forgotten, which allocates nothing
    bool refuseTask = false;
    std::int32_t refuseFrame = -1; ///< index of the frame that is not taken

    void Begin() override { ++waiting; }
    void End() override { --waiting; }
    void Fail(BuildFailure failure) override { failures.push_back(failure); }

protected:
    void Hear(HostCommand command, std::uint32_t wparam, std::intptr_t lparam) override;
    bool CreateTask(const TaskRecord* made, TaskKind kind) override;
    bool AddFrame(const TaskRecord* made, const ImageRecord* frame) override;
    bool AddComment(const TaskRecord*, const char*) override { return true; }
    bool FinishTask(const TaskRecord*, TaskEnd) override { return true; }
};

/// A list whose controls say: the row given, a pause of 31, a delay of 4.
class TestList : public MemoryList {
public:
    explicit TestList(std::int32_t defaultTransition = 14) : MemoryList({defaultTransition, 31, 4}) {}
    void Add(OwnedDib picture, std::int32_t transition, std::int32_t pause, std::int32_t delay) {
        MemoryList::Add(std::move(picture), "", {transition, pause, delay});
    }
    bool AddTemporary(GlobalHandle entry) override {
        return !refuseTemporary && MemoryList::AddTemporary(entry);
    }

    bool refuseTemporary = false;
};

} // namespace lumafold::test
