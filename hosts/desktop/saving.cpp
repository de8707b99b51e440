#include "hosts/desktop/saving.h"

#include <cstdio>

#include "codecs/animation_writer.h"
#include "codecs/delays.h"
#include "codecs/files.h"
#include "codecs/frame_screens.h"
#include "codecs/png_writer.h"
#include "hosts/common/paths.h"
#include "hosts/common/staged_folder.h"
#include "hosts/desktop/screen_picture.h"

namespace lumafold {
namespace {

std::string FrameName(std::size_t index) {
    char name[32];
    std::snprintf(name, sizeof(name), "frame-%04u.png", static_cast<unsigned>(index));
    return name;
}

} // namespace

bool SaveAnimation(const std::string& path, const Animation& animation, const FrameProgress& progress,
                   std::uint64_t& bytes, std::string& error) {
    const std::optional<AnimationKind> kind = AnimationKindOf(path);
    if (!kind) {
        error = "the name must end in .gif, .png or .mng";
        return false;
    }
    HeldDelays held;
    for (const AnimationFrame& frame : animation.frames)
        held.Add(frame.delay);
    const std::vector<std::uint8_t> file =
        EncodeAnimation(*kind, animation, error, {.goOn = progress, .delays = held.Settle()});
    bytes = file.size();
    return bytes > 0 && WriteFileSafely(path, file, error);
}

bool SaveFrames(const std::string& folder, const Animation& animation, const FrameProgress& progress,
                std::string& error) {
    const std::size_t count = animation.frames.size();
    FrameScreens screens(animation);
    StagedFolder files(folder);
    for (std::size_t i = 0; i < count; ++i) {
        error = folder + ": cancelled";
        if (progress && !progress(i, count)) return false;
        const OwnedDib picture = ScreenPicture(screens.At(i), animation.width, animation.height);
        std::string why = "there is not enough memory";
        const std::vector<std::uint8_t> file =
            picture ? EncodePng(picture.Get(), why) : std::vector<std::uint8_t>();
        error = FrameName(i) + ": " + why;
        if (file.empty() || !files.Add(FrameName(i), file, error)) return false;
    }
    error.clear();
    const auto isFormer = [](const std::string& name) {
        return !NumberBetween(name, "frame-", ".png", 4).empty();
    };
    return files.Finish(isFormer, error);
}

} // namespace lumafold
