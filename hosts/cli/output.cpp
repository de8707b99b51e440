#include "hosts/cli/output.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "codecs/animation_writer.h"
#include "codecs/files.h"
#include "hosts/cli/frames_folder.h"
#include "hosts/cli/paths.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr int kMakeEntries = W_OK; // there is no search permission, and asking for it is an error
#else
constexpr int kMakeEntries = W_OK | X_OK;
#endif

std::string WhyNoEntryIn(const fs::path& folder) {
    std::error_code error;
    const std::string name = folder.empty() ? "." : NameOf(folder);
    const fs::file_status status = fs::status(folder.empty() ? "." : folder, error);
    if (status.type() == fs::file_type::not_found) return "the folder " + name + " does not exist";
    if (error) return error.message();
    if (status.type() != fs::file_type::directory) return name + " is not a folder";
    if (access(name.c_str(), kMakeEntries) != 0)
        return std::string("cannot write into ") + name + ": " + std::strerror(errno);
    return {};
}

std::string WhyNoFolderAt(const std::string& path) {
    std::error_code error;
    const fs::path folder = PathOf(path + "/").parent_path(); // without slashes at its end
    const fs::file_status status = fs::status(folder, error);
    if (status.type() == fs::file_type::directory) return WhyNoEntryIn(folder);
    if (status.type() != fs::file_type::not_found) return "is not a folder";
    return WhyNoEntryIn(PathOf(path).lexically_normal().parent_path().parent_path());
}

/// How a kind of output that is one file is packed.
AnimationKind KindOfFile(OutputKind kind) {
    switch (kind) {
    case OutputKind::Apng:
        return AnimationKind::Apng;
    case OutputKind::Mng:
        return AnimationKind::Mng;
    case OutputKind::Gif:
    case OutputKind::Folder:
        break;
    }
    return AnimationKind::Gif;
}

bool WriteFile(const std::string& path, OutputKind kind, const Animation& animation, std::uint64_t& bytes,
               std::string& error) {
    const std::vector<std::uint8_t> file = EncodeAnimation(KindOfFile(kind), animation, error);
    bytes = file.size();
    if (!file.empty() && WriteFileSafely(path, file, error)) return true;
    error = path + ": " + error;
    return false;
}

} // namespace

std::string LowerSuffix(const std::string& path) {
    std::string suffix = NameOf(PathOf(path).extension());
    for (char& letter : suffix)
        letter = static_cast<char>(letter | (letter >= 'A' && letter <= 'Z' ? 0x20 : 0));
    return suffix;
}

std::optional<OutputKind> ClassifyOutput(const std::string& path, std::string& error) {
    std::error_code ignored;
    if (EndsInSeparator(path) || fs::is_directory(PathOf(path), ignored)) return OutputKind::Folder;
    if (const std::optional<AnimationKind> kind = AnimationKindOf(path)) {
        return *kind == AnimationKind::Gif    ? OutputKind::Gif
               : *kind == AnimationKind::Apng ? OutputKind::Apng
                                              : OutputKind::Mng;
    }
    const std::string suffix = LowerSuffix(path);
    error = "-o " + path + ": " + (suffix.empty() ? "a name without a suffix" : "the suffix " + suffix) +
            " means no known kind of file; known are .gif, .png, .mng, and a folder's name with / at its end";
    return std::nullopt;
}

std::uint32_t CapabilityFlags(OutputKind kind) {
    return kind == OutputKind::Gif ? kHostTakesSupercompression
                                   : kHostTakesSupercompression | kHostTakesTrueColour;
}

std::string WhyNoFileCanStandAt(const std::string& path) {
    std::error_code error;
    if (fs::is_directory(PathOf(path), error)) return "is a folder";
    return WhyNoEntryIn(PathOf(path).parent_path());
}

std::string WhyNotWritable(const std::string& path, OutputKind kind) {
    return kind == OutputKind::Folder ? WhyNoFolderAt(path) : WhyNoFileCanStandAt(path);
}

bool WriteOutput(const std::string& path, OutputKind kind, const RecordingHost& host, std::uint64_t& bytes,
                 std::string& error) {
    if (kind != OutputKind::Folder) return WriteFile(path, kind, host.Result(), bytes, error);
    return WriteFramesFolder(path, host.Result(), host.Commands(), bytes, error);
}

bool MeasureOutput(OutputKind kind, const RecordingHost& host, std::uint64_t& bytes, std::string& error) {
    bytes = kind == OutputKind::Folder ? FramesFolderBytes(host.Result(), host.Commands())
                                       : EncodeAnimation(KindOfFile(kind), host.Result(), error).size();
    return bytes != 0;
}

} // namespace lumafold
