// An animation as a folder: every frame a bitmap file with the very bytes the plug-in handed over, and
// task.json with all that was said about them. Other tools read this form, so it stays as it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "hosts/cli/output.h"

namespace lumafold {

/// frame-0000.bmp and so on.
std::string FrameFileName(std::size_t index);

/// Makes the folder when it is missing and replaces what an earlier run left in it; other files stay. Frames
/// are written aside as they come, and all is taken back unless it was finished. Interrupts wait from the
/// first frame on until this goes; the next frame is refused then.
class FramesFolder final : public AnimationOutput {
public:
    /// "" for `path` writes nothing, and tells only how much it would be.
    explicit FramesFolder(const std::string& path);
    ~FramesFolder() override;

    void Begin(const AnimationFacts& facts, std::size_t frames) override;
    void Add(const FrameView& frame) override;
    std::uint64_t Finish(const FinishedTask& task) override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumafold
