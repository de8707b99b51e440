// An animation that is open in the program: what a build made or a file held, where playing it stands, and
// what is known about it.
#pragma once

#include <memory>

#include "codecs/frame_screens.h"
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
    /// `bytes` is the file's size, 0 when it is not one file.
    void MarkSaved(std::string name, std::uint64_t bytes);

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

    /// "1.2 MB", "about 1.2 MB", or "" while nobody has measured: the file that saving as GIF, or in true
    /// colour as PNG, would write, or the one that was saved last.
    std::string FileSizeText() const;
    /// Writes it in memory; of a long animation only the beginning, and takes the rest to be like it.
    void MeasureFile();

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
    bool measured_ = false, estimated_ = false;
};

/// What the window's title says: "* NAME [test] - 51 frames, 640x480, 216 colors, 5.50 s, 1.2 MB".
std::string TitleOf(const Document& document);
} // namespace lumafold
