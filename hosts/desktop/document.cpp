#include "hosts/desktop/document.h"

#include "hosts/common/paths.h"
#include "hosts/common/report.h"
#include "hosts/desktop/view_picture.h"

namespace lumafold {
namespace {

/// What cannot be shown is not let in.
Animation Checked(Animation animation) {
    constexpr std::int32_t kMostSide = 32767;
    if (animation.frames.empty()) throw AnimationError("the animation has no frames");
    CheckSides(animation.width, animation.height, kMostSide, "the animation is too large");
    for (const AnimationFrame& frame : animation.frames) {
        if (!frame.image || frame.image->biWidth < 1 || frame.image->biHeight < 1)
            throw AnimationError("a frame of the animation has no picture");
    }
    return animation;
}

/// Spelled as in the plug-in's dialogs.
std::string ColorsText(const Animation& animation) {
    std::string text = ColoursText(animation);
    return text.erase(text.find("colour") + 4, 1);
}

std::vector<std::int32_t> Delays(const Animation& animation) {
    std::vector<std::int32_t> delays;
    for (const AnimationFrame& frame : animation.frames)
        delays.push_back(frame.delay);
    return delays;
}

Thumbnail EmptyThumbnail(const Animation& animation, std::int32_t height) {
    const std::int32_t most = kMostThumbnailWidth * height / kThumbnailHeight;
    const auto fitted = static_cast<std::int32_t>(std::int64_t{height} * animation.width / animation.height);
    if (fitted <= most) return {std::max(fitted, 1), height, {}};
    const auto low = static_cast<std::int32_t>(std::int64_t{most} * animation.height / animation.width);
    return {most, std::max(low, 1), {}};
}

} // namespace

Document::Document(Animation animation, std::string name, Origin origin, std::string path)
    : animation_(std::make_shared<const Animation>(Checked(std::move(animation)))), name_(std::move(name)),
      path_(std::move(path)), origin_(origin), unsaved_(origin == Origin::Build),
      trueColour_(lumafold::HasTrueColour(*animation_)), colours_(ColorsText(*animation_)),
      playback_(Delays(*animation_)), screens_(*animation_), thumbnailScreens_(*animation_) {
    SetThumbnailHeight(kThumbnailHeight);
}

void Document::MarkSaved(const std::string& path, std::uint64_t bytes) {
    path_ = path;
    name_ = FileNamePart(path);
    size_ = {bytes, false};
    unsaved_ = false;
}

void Document::SetThumbnailHeight(std::int32_t height) {
    if (!thumbnails_.empty() && thumbnailHeight_ == height) return;
    thumbnailHeight_ = height;
    thumbnails_.assign(animation_->frames.size(), EmptyThumbnail(*animation_, height));
    thumbnailsDrawn_ = 0;
}

bool Document::DrawThumbnails(std::size_t count) {
    for (; count > 0 && thumbnailsDrawn_ < thumbnails_.size(); --count, ++thumbnailsDrawn_) {
        Thumbnail& thumbnail = thumbnails_[thumbnailsDrawn_];
        RenderThumbnail(thumbnailScreens_.At(thumbnailsDrawn_), animation_->width, animation_->height,
                        thumbnail.width, thumbnail.height, thumbnail.pixels);
    }
    return thumbnailsDrawn_ < thumbnails_.size();
}

std::string Document::FramesText() const {
    const std::size_t frames = animation_->frames.size();
    return std::to_string(frames) + (frames == 1 ? " frame, " : " frames, ") +
           std::to_string(animation_->width) + "x" + std::to_string(animation_->height);
}

std::string Document::DurationText() const { return lumafold::DurationText(*animation_); }

std::string Document::FileSizeText() const {
    if (!IsMeasured()) return "";
    const std::string text = SizeText(size_.bytes);
    return (size_.estimated ? "about " : "") + text.substr(0, text.find(" ("));
}

std::string TitleOf(const Document& document) {
    std::string title = document.IsUnsaved() ? "* " : "";
    title += document.Name();
    if (document.GetOrigin() == Origin::Test) title += " [test]";
    title += " - " + document.FramesText() + ", " + document.ColoursText() + ", " + document.DurationText();
    const std::string size = document.FileSizeText();
    return size.empty() ? title : title + ", " + size;
}

} // namespace lumafold
