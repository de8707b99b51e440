#include "hosts/desktop/saving.h"

#include <cstdio>

#include "codecs/animation_writer.h"
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
    const std::vector<std::uint8_t> file = EncodeAnimation(*kind, animation, error, {.goOn = progress});
    bytes = file.size();
    return bytes > 0 && WriteFileSafely(path, file, error);
}

bool SaveFrames(const std::string& folder, const Animation& animation, const FrameProgress& progress,
                std::string& error) {
    const std::size_t count = animation.frames.size();
    FrameScreens screens(animation);
    FilesForFolder files;
    for (std::size_t i = 0; i < count; ++i)
        files.names.push_back(FrameName(i));
    files.make = [&](std::size_t index, std::string& why) {
        const OwnedDib picture = ScreenPicture(screens.At(index), animation.width, animation.height);
        why = "there is not enough memory";
        return picture ? EncodePng(picture.Get(), why) : std::vector<std::uint8_t>();
    };
    files.isFormer = [](const std::string& name) {
        return !NumberBetween(name, "frame-", ".png", 4).empty();
    };
    files.whyNotOn = [&](std::size_t index) {
        return std::string(progress && !progress(index, count) ? "cancelled" : "");
    };
    std::uint64_t bytes = 0;
    return WriteStagedFolder(folder, files, bytes, error);
}

} // namespace lumafold
