// An animation as a folder: every frame a bitmap file with the very bytes the plug-in handed over, and
// task.json with all that was said about them. Other tools read this form, so it stays as it is.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "hosts/cli/recording_host.h"

namespace lumafold {

/// The packed bitmap behind a 14-byte file header; empty when it cannot be read.
std::vector<std::uint8_t> BitmapFile(DibHandle picture);

/// frame-0000.bmp and so on.
std::string FrameFileName(std::size_t index);

std::string TaskJson(const Animation& animation, std::span<const SentCommand> commands);

/// Makes the folder when it is missing and replaces what an earlier run left in it; other files stay. False,
/// with `error` in one line and the folder as it was, when anything cannot be written or an interrupt came.
bool WriteFramesFolder(const std::string& path, const Animation& animation,
                       std::span<const SentCommand> commands, std::uint64_t& bytes, std::string& error);

/// How many bytes that would write.
std::uint64_t FramesFolderBytes(const Animation& animation, std::span<const SentCommand> commands);

} // namespace lumafold
