// Where an animation goes, and writing it there, frame by frame as it comes, but whole or not at all.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "hosts/cli/output_kind.h"
#include "hosts/cli/recording_host.h"
#include "platform/runner.h"

namespace lumafold {

/// Why nothing can be written there, as far as it can be known before; "" when nothing speaks against it.
std::string WhyNotWritable(const std::string& path, OutputKind kind);
std::string WhyNoFileCanStandAt(const std::string& path);

/// Whether two names are one file's, though they may be written differently; of files that are not there yet,
/// too.
bool SameFile(const std::string& one, const std::string& other);

/// Whether writing `kind` to `output` would replace the file `input`.
bool WouldReplace(const std::string& output, OutputKind kind, const std::string& input);

/// What the engine's task ended with.
struct FinishedTask {
    const std::string& comment;
    std::span<const std::int32_t>
        delays; ///< one for each frame, instead of what came with it; empty for that
    std::span<const SentCommand> commands;
};

/// What the frames of a build become. They are packed as they come, so that little more is held of them than
/// the file.
class AnimationOutput : public FrameSink {
public:
    /// How many bytes were written. Throws as the others do; what stood there before is then still there.
    virtual std::uint64_t Finish(const FinishedTask& task) = 0;
};

struct OutputRequest {
    OutputKind kind;
    std::string path; ///< "-" for the standard output, "" measures and writes nothing
    std::ostream& standardOutput;
    const Runner& runner;       ///< who packs
    std::optional<int> quality; ///< of a WebP, 0 to 100; without one it keeps every colour
    std::optional<int> effort;  ///< of PNG and MNG files, 1 to 12
};
/// The stream and the runner outlive it. What it throws names no path, but for a folder's files.
std::unique_ptr<AnimationOutput> NewOutput(const OutputRequest& request);

} // namespace lumafold
