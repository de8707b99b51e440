// An animation that is open in the program: what a build made or a file held, where playing it stands, and
// what is known about it.
#pragma once

#include <memory>

#include "hosts/desktop/frame_screens.h"
#include "hosts/desktop/playback.h"

namespace lumafold {

enum class Origin { Build, Test, File };

inline constexpr std::int32_t kThumbnailHeight = 60, kMostThumbnailWidth = 108;

struct Thumbnail {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> pixels; ///< 0x00RRGGBB; empty until it was drawn
};

/// The document keeps its animation's address, so it stays where it was made.
class Document {
public:
    /// Throws AnimationError for an animation that cannot be shown, and std::bad_alloc.
    Document(Animation animation, std::string name, Origin origin);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const Animation& GetAnimation() const { return animation_; }
    const std::string& Name() const { return name_; }
    Origin GetOrigin() const { return origin_; }
    /// Whether closing it would lose work. Tests are made to be looked at.
    bool IsUnsaved() const { return unsaved_; }
    void MarkSaved(std::string name);

    Playback& Player() { return playback_; }
    const Playback& Player() const { return playback_; }
    const ScreenPixels& Screen() { return screens_.At(playback_.Current()); }

    std::size_t ThumbnailsDrawn() const { return thumbnailsDrawn_; }
    /// Draws the next few; false when there are no more to draw.
    bool DrawThumbnails(std::size_t count);
    const Thumbnail& ThumbnailOf(std::size_t index) const { return thumbnails_.at(index); }

    /// "51 frames, 640x480", "216 colors", "5.50 s".
    std::string FramesText() const;
    const std::string& ColoursText() const { return colours_; }
    std::string DurationText() const;
    bool HasTrueColour() const { return trueColour_; }

    /// The size of the file that saving would write, 0 while nobody has measured it.
    std::uint64_t FileBytes() const { return fileBytes_; }
    /// Encodes it as GIF, or as PNG in true colour.
    void MeasureFile();
    /// Whether that is a matter of moments.
    bool IsQuicklyMeasured() const;

private:
    Animation animation_;
    std::string name_;
    Origin origin_;
    bool unsaved_;
    bool trueColour_;
    std::string colours_;
    Playback playback_;
    FrameScreens screens_, thumbnailScreens_;
    std::vector<Thumbnail> thumbnails_;
    std::size_t thumbnailsDrawn_ = 0;
    std::uint64_t fileBytes_ = 0;
    bool measured_ = false;
};

/// What the window's title says: "* NAME [test] - 51 frames, 640x480, 216 colors, 5.50 s, 1.2 MB".
std::string TitleOf(const Document& document);
/// "1.2 MB", or "?" for 0.
std::string ShortSize(std::uint64_t bytes);

} // namespace lumafold
