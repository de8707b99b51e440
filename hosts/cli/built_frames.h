// What the build command does with each frame as it comes: into the output with a delay that players keep to,
// into the contact sheet, and into what is told of the whole.
#pragma once

#include "codecs/delays.h"
#include "hosts/cli/build_options.h"
#include "hosts/cli/contact_sheet.h"
#include "hosts/cli/output.h"
#include "hosts/common/report.h"

namespace lumafold {

class BuiltFrames final : public FrameSink {
public:
    /// Both outlive it.
    BuiltFrames(const OutputRequest& output, const BuildOptions& options);

    void Begin(const AnimationFacts& facts, std::size_t frames) override;
    void Add(const FrameView& frame) override;

    // After the last frame:
    /// How many frames are shown for longer than they were told to be.
    std::size_t Held() const { return delays_.Short(); }
    /// How many are shown for less, since the file cannot say more.
    std::size_t Cut() const { return cut_; }
    /// None when memory is short.
    OwnedDib Sheet();
    /// How many bytes were written. Throws as the output does.
    std::uint64_t Finish(const RecordingHost& host);
    /// "216 colours, 5.50 s", once it is finished.
    std::string Text() const { return colours_.Text() + ", " + DurationText(hundredths_); }

private:
    /// What every frame is shown for where that is not what it came with.
    std::span<const std::int32_t> Settled();

    const BuildOptions& options_;
    const bool plays_;           ///< whether players show it
    const std::int32_t longest_; ///< delay, in hundredths of a second
    const std::unique_ptr<AnimationOutput> output_;
    SheetCells cells_{kMostSheetCells};
    HeldDelays delays_;
    ColourCount colours_;
    std::int64_t hundredths_ = 0;
    std::size_t cut_ = 0;
};

} // namespace lumafold
