// Many files into one folder, all of them or none: written into a hidden folder inside it first, and moved to
// their places when all of them stand.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lumafold {

/// What goes into the folder. The functions may throw std::bad_alloc.
struct FilesForFolder {
    /// In the order in which they are moved in. Whoever finds the last one finds all of them.
    std::vector<std::string> names;
    /// The bytes of a file by its number, never none; empty, with the reason in `error`, when it cannot be
    /// made.
    std::function<std::vector<std::uint8_t>(std::size_t index, std::string& error)> make;
    /// Whether a file that is in the folder is of an earlier run, and goes.
    std::function<bool(const std::string& name)> isFormer;
    /// Asked before each file; a text ends it all with that as the reason.
    std::function<std::string(std::size_t index)> whyNotOn = [](std::size_t) { return std::string(); };
};

/// Makes the folder when it is missing and replaces what an earlier run left in it; other files stay.
/// `bytes` is what was written. False, with `error` in one line and the folder as it was, when anything
/// cannot be written.
bool WriteStagedFolder(const std::string& path, const FilesForFolder& files, std::uint64_t& bytes,
                       std::string& error);

/// The number in a name like "frame-0012.png", which has `digits` digits at least; "" for another name.
std::string NumberBetween(const std::string& name, const std::string& start, const std::string& end,
                          std::size_t digits);

} // namespace lumafold
