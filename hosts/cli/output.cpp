#include "hosts/cli/output.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include "codecs/animation_writer.h"
#include "codecs/files.h"
#include "codecs/y4m_writer.h"
#if LUMAFOLD_WEBP
#include "codecs/webp_writer.h"
#endif
#include "hosts/cli/frames_folder.h"
#include "hosts/cli/standard_streams.h"
#include "hosts/common/paths.h"

namespace lumafold {
namespace {

namespace fs = std::filesystem;

/// False leaves why in errno.
bool MayMakeEntriesIn(const fs::path& folder) {
#ifdef _WIN32
    return _waccess(folder.c_str(), W_OK) == 0; // there is no search permission
#else
    return access(folder.c_str(), W_OK | X_OK) == 0;
#endif
}

std::string WhyNoEntryIn(const fs::path& folder) {
    std::error_code error;
    const std::string name = folder.empty() ? "." : NameOf(folder);
    const fs::file_status status = fs::status(folder.empty() ? "." : folder, error);
    if (status.type() == fs::file_type::not_found) return "the folder " + name + " does not exist";
    if (error) return error.message();
    if (status.type() != fs::file_type::directory) return name + " is not a folder";
    if (!MayMakeEntriesIn(folder.empty() ? "." : folder))
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

AnimationKind KindOfFrames(OutputKind kind) {
    switch (kind) {
    case OutputKind::Apng:
        return AnimationKind::Apng;
    case OutputKind::Mng:
        return AnimationKind::Mng;
    default:
        return AnimationKind::Gif;
    }
}

/// Frames are cut one after the other, for each is cut to what it changes, and packed at once.
std::vector<std::uint8_t> EncodeAtOnce(OutputKind kind, const Animation& animation,
                                       const PackingOptions& packing, std::string& error) {
    const AnimationFacts facts{animation.width, animation.height, animation.paletteBits, animation.palette,
                               animation.plays};
    return FileOrError(
        [&] {
            const auto writer =
                NewAnimationWriter(KindOfFrames(kind), facts, packing.effort.value_or(kUsualEffort));
            std::vector<FrameWork*> works;
            for (const AnimationFrame& frame : animation.frames) {
                if (!frame.image) throw AnimationError("a frame of the animation has no picture");
                works.push_back(&writer->Take({*frame.image, frame.delay, frame.transparentIndex}));
            }
            packing.pool.ForEach(works.size(), [&](std::size_t i) { works[i]->Pack(); });
            return writer->Finish(animation.comment);
        },
        error);
}

std::vector<std::uint8_t> Encode(OutputKind kind, const Animation& animation, const PackingOptions& packing,
                                 std::string& error) {
#if LUMAFOLD_WEBP
    if (kind == OutputKind::Webp) return EncodeWebp(animation, {packing.quality}, error);
#endif
    return EncodeAtOnce(kind, animation, packing, error);
}

/// A film goes on as it is made, for it may be very large.
bool SendFilm(const Animation& animation, std::ostream& standardOutput, std::uint64_t& bytes,
              std::string& error) {
    const ByteSink send = [&](std::span<const std::uint8_t> piece) {
        bytes += piece.size();
        return WriteAll(standardOutput, piece, error);
    };
    return WriteY4m(animation, {}, send, error);
}

bool CollectFilm(const Animation& animation, std::uint64_t most, std::vector<std::uint8_t>& film,
                 std::string& error) {
    const ByteSink collect = [&](std::span<const std::uint8_t> piece) {
        if (piece.size() > most - film.size()) return false;
        film.insert(film.end(), piece.begin(), piece.end());
        return true;
    };
    if (WriteY4m(animation, {}, collect, error)) return true;
    if (film.size() > 0)
        error = "the film is too large to be kept until it is whole, send it to a program with -o -";
    return false;
}

bool WriteFile(const std::string& path, OutputKind kind, const Animation& animation,
               const PackingOptions& packing, std::ostream& standardOutput, std::uint64_t& bytes,
               std::string& error) {
    bytes = 0;
    if (kind == OutputKind::Y4m && path == kStandardStream)
        return SendFilm(animation, standardOutput, bytes, error);
    std::vector<std::uint8_t> file;
    if (kind == OutputKind::Y4m) {
        if (!CollectFilm(animation, packing.mostBytes, file, error)) file.clear();
    } else {
        file = Encode(kind, animation, packing, error);
    }
    bytes = file.size();
    if (!file.empty() && path == kStandardStream) return WriteAll(standardOutput, file, error);
    if (!file.empty() && WriteFileSafely(path, file, error)) return true;
    error = path + ": " + error;
    return false;
}

/// Absolute, without links as far as it is there, and as the system compares names.
fs::path Settled(const std::string& name) {
    std::error_code failure;
    const fs::path path = fs::weakly_canonical(fs::absolute(PathOf(name), failure), failure);
#ifdef _WIN32
    std::wstring letters = path.native();
    CharLowerW(letters.data());
    return letters;
#else
    return path;
#endif
}

} // namespace

bool SameFile(const std::string& one, const std::string& other) {
    std::error_code failure;
    if (fs::equivalent(PathOf(one), PathOf(other), failure)) return true;
    const fs::path settled = Settled(one);
    return !settled.empty() && settled == Settled(other);
}

bool WouldReplace(const std::string& output, OutputKind kind, const std::string& input) {
    if (output == kStandardStream || input == kStandardStream) return false;
    if (kind != OutputKind::Folder) return SameFile(output, input);
    const std::string name = NameOf(PathOf(input).filename());
    const fs::path folder = PathOf(input).parent_path();
    return name.starts_with("frame-") && name.ends_with(".bmp") &&
           SameFile(output + "/.", (folder.empty() ? "." : NameOf(folder)) + "/.");
}

std::string WhyNoFileCanStandAt(const std::string& path) {
    std::error_code error;
    if (fs::is_directory(PathOf(path), error)) return "is a folder";
    return WhyNoEntryIn(PathOf(path).parent_path());
}

std::string WhyNotWritable(const std::string& path, OutputKind kind) {
    if (path == kStandardStream) return "";
    return kind == OutputKind::Folder ? WhyNoFolderAt(path) : WhyNoFileCanStandAt(path);
}

bool WriteOutput(const std::string& path, OutputKind kind, const RecordingHost& host,
                 const PackingOptions& packing, std::ostream& standardOutput, std::uint64_t& bytes,
                 std::string& error) {
    if (kind != OutputKind::Folder)
        return WriteFile(path, kind, host.Result(), packing, standardOutput, bytes, error);
    return WriteFramesFolder(path, host.Result(), host.Commands(), bytes, error);
}

bool MeasureOutput(OutputKind kind, const RecordingHost& host, const PackingOptions& packing,
                   std::uint64_t& bytes, std::string& error) {
    bytes = 0;
    if (kind == OutputKind::Y4m) {
        const ByteSink count = [&](std::span<const std::uint8_t> piece) {
            bytes += piece.size();
            return true;
        };
        return WriteY4m(host.Result(), {}, count, error);
    }
    bytes = kind == OutputKind::Folder ? FramesFolderBytes(host.Result(), host.Commands())
                                       : Encode(kind, host.Result(), packing, error).size();
    return bytes != 0;
}

} // namespace lumafold
