#include "codecs/animation_reader.h"

#include <bit>
#include <new>
#include <string_view>
#include <unordered_map>

#include "codecs/decode.h"
#include "codecs/files.h"
#include "codecs/screens.h"

namespace lumafold {
namespace {

bool StartsWith(std::span<const std::uint8_t> file, std::string_view bytes) {
    return file.size() >= bytes.size() && std::memcmp(file.data(), bytes.data(), bytes.size()) == 0;
}

/// The colours of all screens together, and the index each gets; holes are one of them.
class ColourTable {
public:
    void Add(const ShownScreen& screen) {
        for (const PixelValue colour : screen.pixels) {
            if (Full() || colour == last_) continue;
            last_ = colour;
            indexes_.try_emplace(colour, static_cast<std::uint8_t>(indexes_.size()));
        }
    }
    bool Full() const { return indexes_.size() > 256; }
    std::uint8_t IndexOf(PixelValue colour) const { return indexes_.at(colour); }
    std::int32_t Hole() const {
        const auto hole = indexes_.find(kNoPixel);
        return hole == indexes_.end() ? -1 : hole->second;
    }
    int Bits() const {
        return std::max(1, static_cast<int>(std::bit_width(std::max<std::size_t>(indexes_.size(), 1) - 1)));
    }
    Palette Colours() const {
        Palette palette{};
        for (const auto& [colour, index] : indexes_) {
            if (colour != kNoPixel) palette[index] = RgbOf(colour);
        }
        return palette;
    }

private:
    std::unordered_map<PixelValue, std::uint8_t> indexes_;
    PixelValue last_ = 0x01000000; ///< no colour
};

AnimationFrame IndexedFrame(const ShownScreen& screen, const ColourTable& table, const Palette& palette,
                            std::int32_t delay) {
    PictureBuilder picture(static_cast<std::uint32_t>(screen.width),
                           static_cast<std::uint32_t>(screen.height), palette, 8);
    const PixelValue* from = screen.pixels.data();
    PixelValue colour = *from;
    std::uint8_t index = table.IndexOf(colour);
    for (std::int32_t y = 0; y < screen.height; ++y) {
        std::uint8_t* row = picture.Row(y);
        for (std::int32_t x = 0; x < screen.width; ++x, ++from) {
            if (*from != colour) index = table.IndexOf(colour = *from);
            row[x] = index;
        }
    }
    return {picture.Finish(), delay, table.Hole()};
}

/// A colour that no pixel has, for holes; kNoPixel when all are taken.
PixelValue FreeColour(const ShownScreen& screen) {
    constexpr PixelValue kFirst = 0xFF00FF, kStep = 0x010101, kColours = 0x1000000;
    std::vector<bool> taken(kColours); // a screen may have a great many: each is looked at once
    for (const PixelValue colour : screen.pixels) {
        if (colour != kNoPixel) taken[colour] = true;
    }
    for (PixelValue i = 0; i < kColours; ++i) {
        const PixelValue colour = (kFirst + i * kStep) % kColours;
        if (!taken[colour]) return colour;
    }
    return kNoPixel;
}

AnimationFrame ColourFrame(const ShownScreen& screen, std::int32_t delay) {
    const bool holes = std::find(screen.pixels.begin(), screen.pixels.end(), kNoPixel) != screen.pixels.end();
    const PixelValue hole = holes ? FreeColour(screen) : kNoPixel;
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

/// Once to count the colours, and once more to make the frames, so that never all screens are in memory.
Animation Collect(std::span<const std::uint8_t> file, ShowFile show, const DecodeLimits& limits) {
    ColourTable table;
    ScreenBudget budget(limits.mostPixels);
    show(file, limits, [&](const ShownScreen& screen, std::int32_t) {
        budget.Take(screen);
        table.Add(screen);
    });
    Animation animation;
    if (!table.Full()) {
        animation.paletteBits = table.Bits();
        animation.palette = table.Colours();
    }
    animation.comment = show(file, limits, [&](const ShownScreen& screen, std::int32_t delay) {
        animation.width = screen.width;
        animation.height = screen.height;
        animation.frames.push_back(table.Full() ? ColourFrame(screen, delay)
                                                : IndexedFrame(screen, table, animation.palette, delay));
    });
    if (animation.frames.empty()) throw DecodeError{"the file holds no picture"};
    return animation;
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
    if (StartsWith(file, "GIF8")) return {Collect(file, ShowGif, limits), ""};
    if (StartsWith(file, std::string_view("\x8AMNG\r\n\x1A\n", 8)))
        return {Collect(file, ShowMng, limits), ""};
    if (StartsWith(file, "\x89PNG") && IsAnimatedPng(file)) return {Collect(file, ShowApng, limits), ""};
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
    std::vector<std::uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path, bytes, error)) return {std::nullopt, error};
    return DecodeAnimation(bytes, mostPixels);
}

} // namespace lumafold
