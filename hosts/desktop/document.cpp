#include "hosts/desktop/document.h"

#include <span>

#include "codecs/animation_writer.h"
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
        const LockedDib dib(frame.image.Get());
        if (!dib || dib->biWidth < 1 || dib->biHeight < 1)
            throw AnimationError("a frame of the animation has no picture");
    }
    return animation;
}

bool HasDeepFrame(const Animation& animation) {
    return std::any_of(animation.frames.begin(), animation.frames.end(), [](const AnimationFrame& frame) {
        return frame.image->biBitCount > 8;
    });
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

/// What is written within moments, in pixels.
constexpr std::uint64_t kQuickIndexes = 24'000'000, kQuickColours = 4'000'000;

std::uint64_t EncodedBytes(const Animation& animation, bool trueColour) {
    std::string error;
    return EncodeAnimation(trueColour ? AnimationKind::Apng : AnimationKind::Gif, animation, error).size();
}

Animation Beginning(const Animation& animation, std::size_t frames) {
    Animation beginning;
    beginning.width = animation.width;
    beginning.height = animation.height;
    beginning.paletteBits = animation.paletteBits;
    beginning.palette = animation.palette;
    for (const AnimationFrame& frame : std::span(animation.frames).first(frames))
        beginning.frames.push_back(
            {OwnedDib(GlobalDuplicate(frame.image.Get())), frame.delay, frame.transparentIndex});
    return beginning;
}

Thumbnail EmptyThumbnail(std::int32_t width, std::int32_t height) {
    const std::int32_t fitted = static_cast<std::int32_t>(std::int64_t{kThumbnailHeight} * width / height);
    if (fitted <= kMostThumbnailWidth) return {std::max(fitted, 1), kThumbnailHeight, {}};
    const auto low = static_cast<std::int32_t>(std::int64_t{kMostThumbnailWidth} * height / width);
    return {kMostThumbnailWidth, std::max(low, 1), {}};
}

} // namespace

Document::Document(Animation animation, std::string name, Origin origin)
    : animation_(Checked(std::move(animation))), name_(std::move(name)), origin_(origin),
      unsaved_(origin == Origin::Build), trueColour_(HasDeepFrame(animation_)),
      colours_(ColorsText(animation_)), playback_(Delays(animation_)), screens_(animation_),
      thumbnailScreens_(animation_),
      thumbnails_(animation_.frames.size(), EmptyThumbnail(animation_.width, animation_.height)) {}

void Document::MarkSaved(std::string name, std::uint64_t bytes) {
    name_ = std::move(name);
    fileBytes_ = bytes;
    measured_ = true;
    estimated_ = false;
    unsaved_ = false;
}

bool Document::DrawThumbnails(std::size_t count) {
    for (; count > 0 && thumbnailsDrawn_ < thumbnails_.size(); --count, ++thumbnailsDrawn_) {
        Thumbnail& thumbnail = thumbnails_[thumbnailsDrawn_];
        RenderThumbnail(thumbnailScreens_.At(thumbnailsDrawn_), animation_.width, animation_.height,
                        thumbnail.width, thumbnail.height, thumbnail.pixels);
    }
    return thumbnailsDrawn_ < thumbnails_.size();
}

std::string Document::FramesText() const {
    const std::size_t frames = animation_.frames.size();
    return std::to_string(frames) + (frames == 1 ? " frame, " : " frames, ") +
           std::to_string(animation_.width) + "x" + std::to_string(animation_.height);
}

std::string Document::DurationText() const { return lumafold::DurationText(animation_); }

std::string Document::FileSizeText() const {
    if (fileBytes_ == 0) return "";
    const std::string text = SizeText(fileBytes_);
    return (estimated_ ? "about " : "") + text.substr(0, text.find(" ("));
}

void Document::MeasureFile() {
    if (measured_) return;
    measured_ = true;
    const std::uint64_t framePixels =
        static_cast<std::uint64_t>(animation_.width) * static_cast<std::uint64_t>(animation_.height);
    const std::uint64_t affordable = (trueColour_ ? kQuickColours : kQuickIndexes) / framePixels;
    const std::uint64_t count = animation_.frames.size();
    estimated_ = affordable < count;
    if (!estimated_) {
        fileBytes_ = EncodedBytes(animation_, trueColour_);
        return;
    }
    const std::uint64_t sample = std::max<std::uint64_t>(affordable, 1);
    fileBytes_ =
        EncodedBytes(Beginning(animation_, static_cast<std::size_t>(sample)), trueColour_) * count / sample;
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
