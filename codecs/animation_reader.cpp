#include "codecs/animation_reader.h"

#include <bit>
#include <new>
#include <unordered_map>

#include "codecs/decode.h"
#include "codecs/file_kinds.h"
#include "codecs/files.h"
#include "codecs/free_colour.h"
#include "codecs/picture_kinds.h"
#include "codecs/screens.h"

namespace lumafold {
namespace {

/// The colours of all screens together, and the index each gets; holes are one of them.
class ColourTable {
public:
    /// -1 where a 257th would be needed.
    int IndexOf(PixelValue colour) {
        const auto [entry, added] = indexes_.try_emplace(colour, static_cast<int>(colours_.size()));
        if (!added) return entry->second;
        if (colours_.size() == 256) return -1;
        colours_.push_back(colour);
        return entry->second;
    }
    std::int32_t Hole() const {
        const auto hole = std::find(colours_.begin(), colours_.end(), kNoPixel);
        return hole == colours_.end() ? -1 : static_cast<std::int32_t>(hole - colours_.begin());
    }
    int Bits() const {
        return std::max(1, static_cast<int>(std::bit_width(std::max<std::size_t>(colours_.size(), 1) - 1)));
    }
    PixelValue ColourOf(std::uint8_t index) const { return colours_[index]; }
    Palette Colours() const {
        Palette palette{};
        for (std::size_t i = 0; i < colours_.size(); ++i)
            palette[i] = colours_[i] == kNoPixel ? Rgb{} : RgbOf(colours_[i]);
        return palette;
    }

private:
    std::unordered_map<PixelValue, int> indexes_;
    std::vector<PixelValue> colours_; ///< by index
};

/// No picture where the table is too small. The picture's own table is not filled in yet.
OwnedDib IndexedPicture(const ShownScreen& screen, ColourTable& table) {
    PictureBuilder picture(static_cast<std::uint32_t>(screen.width),
                           static_cast<std::uint32_t>(screen.height), {}, 8);
    const PixelValue* from = screen.pixels.data();
    PixelValue colour = *from;
    int index = table.IndexOf(colour);
    for (std::int32_t y = 0; y < screen.height; ++y) {
        std::uint8_t* row = picture.Row(y);
        for (std::int32_t x = 0; x < screen.width; ++x, ++from) {
            if (*from != colour) index = table.IndexOf(colour = *from);
            if (index < 0) return {};
            row[x] = static_cast<std::uint8_t>(index);
        }
    }
    return picture.Finish();
}

AnimationFrame ColourFrame(const ShownScreen& screen, std::int32_t delay) {
    const bool holes = std::find(screen.pixels.begin(), screen.pixels.end(), kNoPixel) != screen.pixels.end();
    const PixelValue hole = holes ? FreeColour(screen.pixels) : kNoPixel;
    PictureBuilder picture(static_cast<std::uint32_t>(screen.width),
                           static_cast<std::uint32_t>(screen.height), {}, 24);
    const PixelValue* from = screen.pixels.data();
    for (std::int32_t y = 0; y < screen.height; ++y) {
        std::uint8_t* out = picture.Row(y);
        for (std::int32_t x = 0; x < screen.width; ++x, ++from, out += 3) {
            const Rgb colour = RgbOf(*from == kNoPixel ? hole : *from); // white where no colour is free
            out[0] = colour.blue;
            out[1] = colour.green;
            out[2] = colour.red;
        }
    }
    return {picture.Finish(), delay, static_cast<std::int32_t>(hole)};
}

using ShowFile = std::string (*)(std::span<const std::uint8_t>, const DecodeLimits&, const OnScreen&);

/// Screens as they come, made into frames with indexes as long as the colours of all so far find room in a
/// palette, and into frames of colours from then on.
class FrameCollector {
public:
    explicit FrameCollector(const DecodeLimits& limits) : budget_(limits.mostPixels) {}

    void Add(const ShownScreen& screen, std::int32_t delay) {
        budget_.Take(screen);
        animation_.width = screen.width;
        animation_.height = screen.height;
        if (!colours_) {
            if (OwnedDib picture = IndexedPicture(screen, table_)) {
                animation_.frames.push_back({std::move(picture), delay, -1});
                return;
            }
            UseColours();
        }
        animation_.frames.push_back(ColourFrame(screen, delay));
    }

    Animation Finish(std::string comment) {
        if (animation_.frames.empty()) throw DecodeError{"the file holds no picture"};
        animation_.comment = std::move(comment);
        if (!colours_) {
            animation_.paletteBits = table_.Bits();
            animation_.palette = table_.Colours();
            for (AnimationFrame& frame : animation_.frames) {
                DibSetPalette(*frame.image, animation_.palette);
                frame.transparentIndex = table_.Hole();
            }
        }
        return std::move(animation_);
    }

private:
    void UseColours() {
        colours_ = true;
        ShownScreen screen(animation_.width, animation_.height);
        for (AnimationFrame& frame : animation_.frames) {
            const ConstRowView rows = std::as_const(frame.image).Rows();
            screen.Each({0, 0, screen.width, screen.height}, [&](PixelValue& pixel, std::size_t i) {
                const auto width = static_cast<std::size_t>(screen.width);
                pixel = table_.ColourOf(rows.Row(static_cast<std::int32_t>(i / width))[i % width]);
            });
            frame = ColourFrame(screen, frame.delay);
        }
    }

    ScreenBudget budget_;
    ColourTable table_;
    bool colours_ = false;
    Animation animation_;
};

Animation Collect(std::span<const std::uint8_t> file, ShowFile show, const DecodeLimits& limits) {
    FrameCollector collector(limits);
    std::string comment = show(
        file, limits, [&](const ShownScreen& screen, std::int32_t delay) { collector.Add(screen, delay); });
    return collector.Finish(std::move(comment));
}

ReadAnimation Still(std::span<const std::uint8_t> file, std::uint64_t mostPixels) {
    constexpr PixelValue kWhite = 0xFFFFFF;
    DecodedPicture decoded = DecodePicture(file, kWhite, mostPixels);
    if (!decoded.picture) return {std::nullopt, decoded.error};
    Animation animation;
    int bits = 0;
    DibQuery(decoded.picture.Get(), &animation.width, &animation.height, &bits, &animation.palette);
    animation.paletteBits = std::min(bits, 8);
    animation.frames.push_back({std::move(decoded.picture), 0, -1});
    return {std::move(animation), ""};
}

ReadAnimation Decode(std::span<const std::uint8_t> file, std::uint64_t mostPixels) {
    const DecodeLimits limits{0xFFFFFF, mostPixels};
    if (HasAt(file, 0, kMngSignature)) return {Collect(file, ShowMng, limits), ""};
    const PictureKind* kind = PictureKindOf(file);
    const auto decode = kind != nullptr ? kind->decode : nullptr;
    if (decode == DecodeGif) return {Collect(file, ShowGif, limits), ""};
    if (decode == DecodePng && IsAnimatedPng(file)) return {Collect(file, ShowApng, limits), ""};
    return Still(file, mostPixels);
}

} // namespace

void ScreenBudget::Take(const ShownScreen& screen) {
    if (screen.pixels.size() > left_) throw DecodeError{"the animation is too large"};
    left_ -= screen.pixels.size();
}

ReadAnimation DecodeAnimation(std::span<const std::uint8_t> file, std::uint64_t mostPixels) {
    try {
        return Decode(file, mostPixels);
    } catch (const DecodeError& failure) {
        return {std::nullopt, failure.text};
    } catch (const std::bad_alloc&) {
        return {std::nullopt, "there is not enough memory for the animation"};
    }
}

ReadAnimation DecodeAnimationFile(const std::string& path, std::uint64_t mostPixels) {
    Array<std::uint8_t> bytes;
    std::string error;
    if (!ReadKnownFile(path, bytes, error)) return {std::nullopt, error};
    return DecodeAnimation({bytes.data(), bytes.size()}, mostPixels);
}

} // namespace lumafold
