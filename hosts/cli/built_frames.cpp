#include "hosts/cli/built_frames.h"

#include <numeric>

namespace lumafold {

BuiltFrames::BuiltFrames(const OutputRequest& output, const BuildOptions& options)
    : options_(options), plays_(output.kind != OutputKind::Folder && output.kind != OutputKind::Y4m),
      longest_(LongestDelay(output.kind)), output_(NewOutput(output)) {}

void BuiltFrames::Begin(const AnimationFacts& facts, std::size_t frames) {
    AnimationFacts played = facts;
    played.plays = static_cast<std::int32_t>(options_.plays.times);
    if (!options_.sheet.empty()) cells_.Begin(played, frames);
    output_->Begin(played, frames);
}

void BuiltFrames::Add(const FrameView& frame) {
    const bool holds = plays_ && options_.delays == DelayRule::AtLeastTwoHundredths;
    const std::int32_t delay = std::min(frame.delay, longest_);
    if (delay < frame.delay) ++cut_;
    const FrameView shown{frame.picture, holds ? delays_.Add(delay) : delay, frame.transparentIndex};
    hundredths_ += shown.delay;
    const bool tells = options_.estimate || options_.talk != Talk::Quiet;
    if (tells && !options_.json) colours_.Add(shown);
    if (!options_.sheet.empty()) cells_.Add(shown);
    output_->Add(shown);
}

std::span<const std::int32_t> BuiltFrames::Settled() {
    if (delays_.Short() == 0) return {};
    return delays_.Settle();
}

OwnedDib BuiltFrames::Sheet() { return LayOutSheet(cells_.Take(Settled()), kSheetColumns); }

std::uint64_t BuiltFrames::Finish(const RecordingHost& host) {
    const std::span<const std::int32_t> delays = Settled();
    if (!delays.empty()) hundredths_ = std::accumulate(delays.begin(), delays.end(), std::int64_t{0});
    return output_->Finish({host.Comment(), delays, host.Commands()});
}

} // namespace lumafold
