// A host and a list for tests of whole builds: the host records every command, copies every frame, and fails
// where it is told to; the list keeps its entries in blocks as a list box does.
#pragma once

#include <string>
#include <vector>

#include "build/build_driver.h"

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

/// One at a time; the callback finds it by itself.
class RecordingHost {
public:
    RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;
    virtual ~RecordingHost();

    HostContext context{};
    std::vector<RecordedCommand> commands;
    TaskRecord task{};
    std::vector<RecordedFrame> frames;
    std::vector<std::string> messages;
    int waitCursors = 0; ///< showing now

    bool keepFrames = true; ///< else they are taken and forgotten, which allocates nothing
    bool refuseTask = false;
    std::int32_t refuseFrame = -1; ///< index of the frame that is not taken

protected:
    virtual std::int32_t Answer(TaskRecord* sent, std::uint32_t command, std::uint32_t wparam,
                                std::intptr_t lparam);

private:
    static std::int32_t LUMAFOLD_CALL Callback(TaskRecord* task, std::uint32_t command, std::uint32_t wparam,
                                               std::intptr_t lparam);
};

class TestList final : public ImageList {
public:
    /// Owns the picture.
    void Add(OwnedDib picture, std::int32_t transition, std::int32_t pause, std::int32_t delay);
    ~TestList() override;

    std::int32_t Count() override { return static_cast<std::int32_t>(blocks_.size()); }
    bool Read(std::int32_t index, ImageEntry& entry) override;
    bool Write(std::int32_t index, const ImageEntry& entry) override;
    bool AddTemporary(GlobalHandle entry) override;
    void DeleteFirst() override;
    std::int32_t DefaultTransition() override { return defaultTransition; }
    std::int32_t DefaultPause() override { return 31; }
    std::int32_t DefaultDelay() override { return 4; }

    std::int32_t defaultTransition = 14;
    bool refuseTemporary = false;

private:
    std::vector<GlobalHandle> blocks_;
};

} // namespace lumafold::test
