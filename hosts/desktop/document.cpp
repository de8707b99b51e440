#include "hosts/desktop/document.h"

#include <bitset>
#include <cstdio>

#include "hosts/codecs/apng_writer.h"
#include "hosts/codecs/gif_writer.h"
#include "hosts/common/report.h"
#include "hosts/desktop/view_picture.h"

namespace lumafold {
namespace {

/// What cannot be shown is not let in.
Animation Checked(Animation animation) {
    constexpr std::int32_t kMostSide = 32767;
    CheckAnimation(animation, kMostSide, "the animation is too large");
    for (const AnimationFrame& frame : animation.frames) {
        const LockedDib dib(frame.image.Get());
        if (!dib || dib->biWidth < 1 || dib->biHeight < 1)
            throw AnimationError{"a frame of the animation has no picture"};
    }
    return animation;
}

std::vector<std::int32_t> Delays(const Animation& animation) {
    std::vector<std::int32_t> delays;
    for (const AnimationFrame& frame : animation.frames)
        delays.push_back(frame.delay);
    return delays;
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
      unsaved_(origin == Origin::Build), trueColour_(lumafold::HasTrueColour(animation_)),
      colours_(lumafold::ColoursText(animation_)), playback_(Delays(animation_)), screens_(animation_),
      thumbnailScreens_(animation_),
      thumbnails_(animation_.frames.size(), EmptyThumbnail(animation_.width, animation_.height)) {}

void Document::MarkSaved(std::string name) {
    name_ = std::move(name);
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

void Document::MeasureFile() {
    if (measured_) return;
    measured_ = true;
    std::string error;
    fileBytes_ = (trueColour_ ? EncodeApng(animation_, error) : EncodeGif(animation_, error)).size();
}

bool Document::IsQuicklyMeasured() const {
    constexpr std::uint64_t kQuickPixels = 48'000'000, kQuickColours = 6'000'000;
    const std::uint64_t pixels = static_cast<std::uint64_t>(animation_.width) *
                                 static_cast<std::uint64_t>(animation_.height) * animation_.frames.size();
    return pixels <= (trueColour_ ? kQuickColours : kQuickPixels);
}

std::string TitleOf(const Document& document) {
    std::string title = document.IsUnsaved() ? "* " : "";
    title += document.Name();
    if (document.GetOrigin() == Origin::Test) title += " [test]";
    title += " - " + document.FramesText() + ", " + document.ColoursText() + ", " + document.DurationText();
    if (document.FileBytes() > 0) title += ", " + ShortSize(document.FileBytes());
    return title;
}

std::string ShortSize(std::uint64_t bytes) {
    if (bytes == 0) return "?";
    const std::string text = SizeText(bytes);
    return text.substr(0, text.find(" ("));
}

} // namespace lumafold
