// An animation that is open in the program: what a build made or a file held, where playing it stands, and
// what is known about it.
#pragma once

#include <memory>

#include "codecs/frame_screens.h"
#include "hosts/desktop/file_size.h"
#include "hosts/desktop/playback.h"

namespace lumafold {

enum class Origin { Build, Test, File };

/// On a screen of 96 dots an inch.
inline constexpr std::int32_t kThumbnailHeight = 60, kMostThumbnailWidth = 108;

struct Thumbnail {
    std::int32_t width = 0, height = 0;
    std::vector<std::uint32_t> pixels; ///< 0x00RRGGBB; empty until it was drawn
};

/// The document keeps its animation's address, so it stays where it was made.
class Document {
public:
    /// Throws AnimationError for an animation that cannot be shown, and std::bad_alloc.
    Document(Animation animation, std::string name, Origin origin, std::string path = "");
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const Animation& GetAnimation() const { return *animation_; }
    /// For who works with it on another thread, where the document may be closed meanwhile. Nobody changes
    /// it.
    const std::shared_ptr<const Animation>& Shared() const { return animation_; }
    const std::string& Name() const { return name_; }
    /// Where the file is that it came from or was saved to last; "" for none.
    const std::string& Path() const { return path_; }
    Origin GetOrigin() const { return origin_; }
    /// Whether closing it would lose work. Tests are made to be looked at.
    bool IsUnsaved() const { return unsaved_; }
    void MarkSaved(const std::string& path, std::uint64_t bytes);

    Playback& Player() { return playback_; }
    const Playback& Player() const { return playback_; }
    const ScreenPixels& Screen() { return screens_.At(playback_.Current()); }

    /// In pixels, for the screen that they are shown on; those drawn before are forgotten.
    void SetThumbnailHeight(std::int32_t height);
    std::size_t ThumbnailsDrawn() const { return thumbnailsDrawn_; }
    /// Draws the next few; false when there are no more to draw.
    bool DrawThumbnails(std::size_t count);
    const Thumbnail& ThumbnailOf(std::size_t index) const { return thumbnails_.at(index); }

    /// "51 frames, 640x480", "216 colors", "5.50 s".
    std::string FramesText() const;
    const std::string& ColoursText() const { return colours_; }
    std::string DurationText() const;
    bool HasTrueColour() const { return trueColour_; }

    /// "1.2 MB", "about 1.2 MB", or "" while it is not known: the file that saving would write, or the one
    /// that was saved last.
    std::string FileSizeText() const;
    bool IsMeasured() const { return size_.bytes > 0; }
    void TakeSize(const FileSize& size) { size_ = size; }

private:
    std::shared_ptr<const Animation> animation_;
    std::string name_, path_;
    Origin origin_;
    bool unsaved_;
    bool trueColour_;
    std::string colours_;
    Playback playback_;
    FrameScreens screens_, thumbnailScreens_;
    std::vector<Thumbnail> thumbnails_;
    std::int32_t thumbnailHeight_ = 0;
    std::size_t thumbnailsDrawn_ = 0;
    FileSize size_;
};

/// What the window's title says: "* NAME [test] - 51 frames, 640x480, 216 colors, 5.50 s, 1.2 MB".
std::string TitleOf(const Document& document);
} // namespace lumafold
