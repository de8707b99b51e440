// What the frames of an animation change on screen. Writers store only that: the smallest rectangle around
// the changes, and inside it freedom in what is shown already.
#pragma once

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

/// Why an animation cannot be written or shown, in one line.
struct AnimationError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline constexpr char kNoMemoryForFile[] = "there is not enough memory for the file";

/// What every writer gives its caller: the file, or nothing and why not. `encode` makes the file or throws.
template <typename Encode>
auto FileOrError(Encode encode, std::string& error) -> decltype(encode()) {
    error.clear();
    try {
        return encode();
    } catch (const AnimationError& failure) {
        error = failure.what();
    } catch (const std::bad_alloc&) {
        error = kNoMemoryForFile;
    }
    return {};
}

/// Throws where there are no pixels, or a side above `mostSide`.
void CheckSides(std::int32_t width, std::int32_t height, std::int32_t mostSide, const char* sideError);

/// Whether a frame is deeper than 8 bits. Frames without a picture are not.
bool HasTrueColour(const Animation& animation);

/// A frame's pixels, cut to the animation's size; kNoPixel where it leaves what is there.
struct FramePixels {
    std::int32_t width = 0, height = 0;
    std::vector<PixelValue> values;
};

/// Reads frames as table indexes or as colours. Entries of one colour look the same, so that the first of
/// them stands for all: equal values are equal on screen, and different ones are not.
class FrameReader {
public:
    FrameReader(std::int32_t width, std::int32_t height, const Palette& palette);

    /// Throws for a frame without pixels. Indexes are asked for only of pictures of at most 8 bits.
    FramePixels ReadIndexes(const FrameView& frame) const { return Read(frame, indexes_); }
    FramePixels ReadColours(const FrameView& frame) const { return Read(frame, colours_); }

private:
    using Values = std::array<PixelValue, 256>;
    FramePixels Read(const FrameView& frame, Values values) const;

    std::int32_t width_, height_;
    Values indexes_{}, colours_{};
};

/// What a viewer sees, frame after frame.
class Screen {
public:
    Screen(std::int32_t width, std::int32_t height);

    /// The smallest rectangle around what the frame changes. A frame that changes nothing keeps one pixel,
    /// for its delay's sake.
    Rect Show(const FramePixels& frame);
    /// Makes colours of the indexes that are shown.
    void Recolour(const Palette& palette);
    Rect Whole() const { return {0, 0, width_, height_}; }

    /// What is shown, kNoPixel where nothing has been drawn yet: there, frames must leave a hole.
    const PixelValue* Row(std::int32_t y) const { return shown_.data() + Place(y); }
    /// 1 where the last frame changed it and must draw, 0 where it may leave what was there.
    const std::uint8_t* Changed(std::int32_t y) const { return changed_.data() + Place(y); }

private:
    std::size_t Place(std::int32_t y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }

    std::int32_t width_, height_;
    std::vector<PixelValue> shown_;
    std::vector<std::uint8_t> changed_;
};

} // namespace lumafold
