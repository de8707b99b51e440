#include "hosts/cli/output.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include "codecs/animation_writer.h"
#include "codecs/files.h"
#include "codecs/frame_screens.h"
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

/// Where the bytes of a file go. Throws AnimationError.
class Destination {
public:
    explicit Destination(const OutputRequest& request)
        : path_(request.path), standardOutput_(request.standardOutput) {}

    std::uint64_t Put(std::span<const std::uint8_t> file) const { return Put(FilePieces(&file, 1)); }
    std::uint64_t Put(FilePieces pieces) const {
        std::string error;
        if (!path_.empty() && path_ != kStandardStream && !WriteFileSafely(path_, pieces, error))
            throw AnimationError(error);
        std::uint64_t bytes = 0;
        for (const std::span<const std::uint8_t> piece : pieces) {
            if (path_ == kStandardStream && !WriteAll(standardOutput_, piece, error))
                throw AnimationError(error);
            bytes += piece.size();
        }
        return bytes;
    }

private:
    const std::string path_;
    std::ostream& standardOutput_;
};

class PackedFile final : public AnimationOutput {
public:
    explicit PackedFile(const OutputRequest& request)
        : to_(request), kind_(KindOfFrames(request.kind)), effort_(request.effort.value_or(kUsualEffort)),
          runner_(request.runner) {}

    void Begin(const AnimationFacts& facts, std::size_t) override {
        writer_ = NewAnimationWriter(kind_, facts, effort_, runner_);
    }
    void Add(const FrameView& frame) override { writer_->Add(frame); }
    std::uint64_t Finish(const FinishedTask& task) override {
        const PiecedFile file = writer_->Finish(task.comment, task.delays);
        writer_.reset();
        return to_.Put(file.Pieces());
    }

private:
    const Destination to_;
    const AnimationKind kind_;
    const int effort_;
    const Runner& runner_;
    std::unique_ptr<AnimationWriter> writer_;
};

class FilmFile final : public AnimationOutput {
public:
    explicit FilmFile(const OutputRequest& request) : to_(request) {}

    void Begin(const AnimationFacts& facts, std::size_t) override {
        writer_.emplace(facts.width, facts.height, Y4mOptions{});
        screen_.emplace(facts);
    }
    void Add(const FrameView& frame) override { writer_->Add(screen_->Show(frame), frame.delay); }
    std::uint64_t Finish(const FinishedTask&) override { return to_.Put(writer_->Finish()); }

private:
    const Destination to_;
    std::optional<Y4mWriter> writer_;
    std::optional<RunningScreen> screen_;
};

#if LUMAFOLD_WEBP
class WebpFile final : public AnimationOutput {
public:
    explicit WebpFile(const OutputRequest& request) : to_(request), options_{request.quality} {}

    void Begin(const AnimationFacts& facts, std::size_t) override {
        writer_.emplace(facts.width, facts.height, facts.plays, options_);
        screen_.emplace(facts);
    }
    void Add(const FrameView& frame) override { writer_->Add(screen_->Show(frame), frame.delay); }
    std::uint64_t Finish(const FinishedTask& task) override {
        const std::vector<std::uint8_t> file = writer_->Finish(task.delays);
        writer_.reset();
        return to_.Put(file);
    }

private:
    const Destination to_;
    const WebpOptions options_;
    std::optional<WebpWriter> writer_;
    std::optional<RunningScreen> screen_;
};
#endif

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
    const fs::path settled = Settled(input);
    const std::string name = NameOf(settled.filename());
    return (name == "task.json" || (name.starts_with("frame-") && name.ends_with(".bmp"))) &&
           SameFile(output + "/.", NameOf(settled.parent_path()) + "/.");
}

std::string WhyNoFileCanStandAt(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(PathOf(path), error);
    if (status.type() == fs::file_type::directory) return "is a folder";
    constexpr fs::perms kWritable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (fs::exists(status) && (status.permissions() & kWritable) == fs::perms::none)
        return "permission denied";
    return WhyNoEntryIn(PathOf(path).parent_path());
}

std::string WhyNotWritable(const std::string& path, OutputKind kind) {
    if (path == kStandardStream) return "";
    return kind == OutputKind::Folder ? WhyNoFolderAt(path) : WhyNoFileCanStandAt(path);
}

std::unique_ptr<AnimationOutput> NewOutput(const OutputRequest& request) {
    switch (request.kind) {
    case OutputKind::Folder:
        return std::make_unique<FramesFolder>(request.path);
    case OutputKind::Y4m:
        return std::make_unique<FilmFile>(request);
#if LUMAFOLD_WEBP
    case OutputKind::Webp:
        return std::make_unique<WebpFile>(request);
#endif
    default:
        return std::make_unique<PackedFile>(request);
    }
}

} // namespace lumafold
