// Where an animation goes, and writing it there, whole or not at all.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "hosts/cli/output_kind.h"
#include "hosts/cli/recording_host.h"
#include "hosts/common/thread_pool.h"

namespace lumafold {

/// Why nothing can be written there, as far as it can be known before; "" when nothing speaks against it.
std::string WhyNotWritable(const std::string& path, OutputKind kind);
std::string WhyNoFileCanStandAt(const std::string& path);

/// Whether two names are one file's, though they may be written differently; of files that are not there yet,
/// too.
bool SameFile(const std::string& one, const std::string& other);

/// Whether writing `kind` to `output` would replace the file `input`.
bool WouldReplace(const std::string& output, OutputKind kind, const std::string& input);

struct PackingOptions {
    const ThreadPool& pool;
    std::optional<int> quality;           ///< of a WebP, 0 to 100; without one it keeps every colour
    std::optional<int> effort;            ///< of PNG and MNG files, 1 to 12
    std::uint64_t mostBytes = UINT64_MAX; ///< that a film may take before it is written to a file
};

/// False with `error` in one line; what stood there before is then still there. `bytes` is what was written.
/// `standardOutput` takes what goes to "-".
bool WriteOutput(const std::string& path, OutputKind kind, const RecordingHost& host,
                 const PackingOptions& packing, std::ostream& standardOutput, std::uint64_t& bytes,
                 std::string& error);

/// How many bytes that would write; false with `error` in one line where it could not.
bool MeasureOutput(OutputKind kind, const RecordingHost& host, const PackingOptions& packing,
                   std::uint64_t& bytes, std::string& error);

} // namespace lumafold
