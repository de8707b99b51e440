#include "hosts/desktop/saving.h"

#include <cstdio>
#include <filesystem>

#include "codecs/animation_writer.h"
#include "codecs/files.h"
#include "codecs/png_writer.h"
#include "codecs/frame_screens.h"
#include "hosts/desktop/screen_picture.h"

namespace lumafold {
std::string FileNamePart(const std::string& path) { return path.substr(path.find_last_of("\\/") + 1); }

std::string Stem(const std::string& path) {
    const std::string name = FileNamePart(path);
    return name.substr(0, name.find_last_of('.'));
}

bool SaveAnimation(const std::string& path, const Animation& animation, std::uint64_t& bytes,
                   std::string& error) {
    const std::optional<AnimationKind> kind = AnimationKindOf(path);
    if (!kind) {
        error = "the name must end in .gif, .png or .mng";
        return false;
    }
    const std::vector<std::uint8_t> file = EncodeAnimation(*kind, animation, error);
    bytes = file.size();
    return bytes > 0 && WriteFileSafely(path, file, error);
}

bool SaveFrames(const std::string& folder, const Animation& animation, std::string& error) {
    FrameScreens screens(animation);
    for (std::size_t i = 0; i < animation.frames.size(); ++i) {
        char name[32];
        std::snprintf(name, sizeof(name), "frame-%04u.png", static_cast<unsigned>(i));
        const OwnedDib picture = ScreenPicture(screens.At(i), animation.width, animation.height);
        error = "there is not enough memory";
        const std::vector<std::uint8_t> file =
            picture ? EncodePng(picture.Get(), error) : std::vector<std::uint8_t>();
        if (file.empty() || !WriteFileSafely((std::filesystem::path(folder) / name).string(), file, error)) {
            error.insert(0, std::string(name) + ": ");
            return false;
        }
    }
    return true;
}

} // namespace lumafold
