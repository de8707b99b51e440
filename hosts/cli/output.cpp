#include "hosts/cli/output.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "codecs/apng_writer.h"
#include "codecs/files.h"
#include "codecs/gif_writer.h"
#include "codecs/mng_writer.h"
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

std::vector<std::uint8_t> Encode(OutputKind kind, const Animation& animation, std::string& error) {
    switch (kind) {
    case OutputKind::Gif:
        return EncodeGif(animation, error);
    case OutputKind::Apng:
        return EncodeApng(animation, error);
    case OutputKind::Mng:
        return EncodeMng(animation, error);
    case OutputKind::Folder:
        break;
    }
    return {};
}

bool WriteFile(const std::string& path, OutputKind kind, const Animation& animation, std::uint64_t& bytes,
               std::string& error) {
    const std::vector<std::uint8_t> file = Encode(kind, animation, error);
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
    const std::string suffix = LowerSuffix(path);
    if (suffix == ".gif") return OutputKind::Gif;
    if (suffix == ".png" || suffix == ".apng") return OutputKind::Apng;
    if (suffix == ".mng") return OutputKind::Mng;
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
                                       : Encode(kind, host.Result(), error).size();
    return bytes != 0;
}

} // namespace lumafold
