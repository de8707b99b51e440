// What the frames of an animation change on screen. Writers store only that: the smallest rectangle around
// the changes, and inside it freedom in what is shown already.
#pragma once

#include <new>
#include <string>
#include <vector>

#include "codecs/animation.h"

namespace lumafold {

/// Why an animation cannot be written. Thrown among the writers, never out of them.
struct AnimationError {
    const char* text;
};

/// What every writer gives its caller: the file, or none and why not. `encode` makes the file or throws.
template <typename Encode>
std::vector<std::uint8_t> FileOrError(Encode encode, std::string& error) {
    error.clear();
    try {
        return encode();
    } catch (const AnimationError& failure) {
        error = failure.text;
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory for the file";
    }
    return {};
}

/// Throws where there is nothing to write: no frames, no pixels, sides above `mostSide`.
void CheckAnimation(const Animation& animation, std::int32_t mostSide, const char* sideError);
/// Whether a frame is deeper than 8 bits. Throws for a frame without a picture.
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
    enum class Values { Indexes, Colours };
    FrameReader(const Animation& animation, Values values);

    /// Throws for a frame without pixels. Indexes are asked for only where no frame has true colour.
    FramePixels Read(const AnimationFrame& frame) const;

private:
    std::int32_t width_, height_;
    std::array<PixelValue, 256> values_{};
};

/// As the task said, 1 to 8, but never too few for the indexes that occur: fixed palettes are searched beyond
/// their count.
int TableBits(const Animation& animation, const FrameReader& reader);

/// What a viewer sees, frame after frame.
class Screen {
public:
    Screen(std::int32_t width, std::int32_t height);

    /// The smallest rectangle around what the frame changes. A frame that changes nothing keeps one pixel,
    /// for its delay's sake.
    Rect Show(const FramePixels& frame);
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
