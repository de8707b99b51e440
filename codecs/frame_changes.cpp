#include "codecs/frame_changes.h"

#include "image/row_view.h"

namespace lumafold {
namespace {

struct RowChanges {
    std::int32_t first, last; ///< first > last for none
};

/// Shows one row. The loop has no branches, so that it is done many pixels at a time.
RowChanges ShowRow(const PixelValue* frame, std::int32_t width, PixelValue* shown, std::uint8_t* changed) {
    unsigned any = 0;
    for (std::int32_t x = 0; x < width; ++x) {
        const bool differs = frame[x] != shown[x] && frame[x] != kNoPixel;
        shown[x] = differs ? frame[x] : shown[x];
        changed[x] = differs;
        any |= changed[x];
    }
    if (any == 0) return {width, -1};
    const std::uint8_t* end = changed + width;
    const auto first = std::find(static_cast<const std::uint8_t*>(changed), end, 1);
    while (end[-1] == 0)
        --end;
    return {static_cast<std::int32_t>(first - changed), static_cast<std::int32_t>(end - changed) - 1};
}

} // namespace

void CheckSides(std::int32_t width, std::int32_t height, std::int32_t mostSide, const char* sideError) {
    if (width < 1 || height < 1) throw AnimationError("the animation has no pixels");
    if (width > mostSide || height > mostSide) throw AnimationError(sideError);
}

bool HasTrueColour(const Animation& animation) {
    return std::any_of(animation.frames.begin(), animation.frames.end(), [](const AnimationFrame& frame) {
        return frame.image && frame.image->biBitCount > 8;
    });
}

FrameReader::FrameReader(std::int32_t width, std::int32_t height, const Palette& palette)
    : width_(width), height_(height) {
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto first = std::find(palette.begin(), palette.end(), palette[i]);
        indexes_[i] = static_cast<PixelValue>(first - palette.begin());
        colours_[i] = MakeColour(first->red, first->green, first->blue);
    }
}

FramePixels FrameReader::Read(const FrameView& frame, Values values) const {
    const DibHeader& dib = frame.picture;
    FramePixels read{std::min(dib.biWidth, width_), std::min(dib.biHeight, height_), {}};
    if (read.width < 1 || read.height < 1) throw AnimationError("a frame of the animation has no pixels");
    const auto width = static_cast<std::size_t>(read.width);
    read.values.resize(width * static_cast<std::size_t>(read.height));
    const ConstRowView rows(dib);
    const int bits = rows.Bits();
    const auto hole = static_cast<PixelValue>(frame.transparentIndex);
    // A byte or three for a pixel is what builds hand over; the other depths go by the accessors.
    if (hole < values.size()) values[hole] = kNoPixel;
    PixelValue* out = read.values.data();
    for (std::int32_t y = 0; y < read.height; ++y) {
        const std::uint8_t* row = rows.Row(y);
        for (std::int32_t x = 0; x < read.width; ++x, ++out) {
            if (bits <= 8) {
                *out = values[bits == 8 ? row[x] : DibGetPixel(dib, x, y)];
            } else {
                const PixelValue colour = bits == 24 ? MakeColour(row[3 * x + 2], row[3 * x + 1], row[3 * x])
                                                     : DibGetPixel(dib, x, y) & 0xFFFFFF;
                *out = colour == hole ? kNoPixel : colour;
            }
        }
    }
    return read;
}

Screen::Screen(std::int32_t width, std::int32_t height) : width_(width), height_(height) {
    const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    shown_.assign(pixels, kNoPixel);
    changed_.assign(pixels, 0);
}

Rect Screen::Show(const FramePixels& frame) {
    std::fill(changed_.begin(), changed_.end(), std::uint8_t{0});
    Rect around{width_, height_, 0, 0};
    for (std::int32_t y = 0; y < frame.height; ++y) {
        const PixelValue* row = frame.values.data() + static_cast<std::ptrdiff_t>(y) * frame.width;
        const RowChanges changes =
            ShowRow(row, frame.width, shown_.data() + Place(y), changed_.data() + Place(y));
        if (changes.first > changes.last) continue;
        around = {std::min(around.left, changes.first), std::min(around.top, y),
                  std::max(around.right, changes.last + 1), y + 1};
    }
    return around.right == 0 ? Rect{0, 0, 1, 1} : around;
}

void Screen::Recolour(const Palette& palette) {
    for (PixelValue& pixel : shown_) {
        const Rgb& colour = palette[pixel & 0xFF];
        if (pixel != kNoPixel) pixel = MakeColour(colour.red, colour.green, colour.blue);
    }
}

} // namespace lumafold
