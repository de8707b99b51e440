#include <bit>

#include "codecs/gif_reader.h"

namespace lumafold {
namespace {

/// The first frame on its screen.
struct GifStill {
    std::size_t screenWidth = 0, screenHeight = 0;
    std::size_t left = 0, top = 0, width = 0, height = 0;
    int transparent = -1;
    unsigned colourCount = 0; ///< entries in use, those that pixels name without a colour included
    Palette palette{};
    std::vector<std::uint8_t> indexes; ///< of the frame

    bool CoversScreen() const { return width == screenWidth && height == screenHeight; }
};

/// Reads up to the first frame's description; the transparent index announced before it, or -1.
int SkipToFrame(GifReader& gif) {
    int transparent = -1;
    for (;;) {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        gif.Check(DGifGetRecordType(gif.Get(), &record));
        if (record == IMAGE_DESC_RECORD_TYPE) return transparent;
        if (record == TERMINATE_RECORD_TYPE) throw DecodeError{"the GIF holds no picture"};
        int code = 0;
        GifByteType* block = nullptr; // length first
        gif.Check(DGifGetExtension(gif.Get(), &code, &block));
        if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr && block[0] >= 4) {
            transparent = (block[1] & 1) != 0 ? block[4] : -1;
        }
        while (block != nullptr) {
            gif.Check(DGifGetExtensionNext(gif.Get(), &block));
        }
    }
}

void ReadColours(const GifReader& gif, GifStill& still) {
    const ColorMapObject* map = gif->Image.ColorMap != nullptr ? gif->Image.ColorMap : gif->SColorMap;
    if (map == nullptr) throw DecodeError{"the GIF holds no colours"};
    still.colourCount = static_cast<unsigned>(std::min(map->ColorCount, 256));
    for (unsigned i = 0; i < still.colourCount; ++i) {
        still.palette[i] = {map->Colors[i].Red, map->Colors[i].Green, map->Colors[i].Blue};
    }
}

void ReadPixels(GifReader& gif, GifStill& still) {
    still.indexes = ReadGifIndexes(gif);
    for (const std::uint8_t index : still.indexes) {
        still.colourCount = std::max(still.colourCount, index + 1U);
    }
}

GifStill ReadStill(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    GifReader gif(file);
    GifStill still;
    still.transparent = SkipToFrame(gif);
    gif.Check(DGifGetImageDesc(gif.Get()));
    still.left = static_cast<std::size_t>(gif->Image.Left);
    still.top = static_cast<std::size_t>(gif->Image.Top);
    still.width = static_cast<std::size_t>(gif->Image.Width);
    still.height = static_cast<std::size_t>(gif->Image.Height);
    // Some files tell too small a screen, or none: it grows, and nothing of the picture is cut off.
    still.screenWidth = std::max(static_cast<std::size_t>(gif->SWidth), still.left + still.width);
    still.screenHeight = std::max(static_cast<std::size_t>(gif->SHeight), still.top + still.height);
    CheckSize(still.width, still.height, limits);
    CheckSize(still.screenWidth, still.screenHeight, limits);
    ReadColours(gif, still);
    ReadPixels(gif, still);
    return still;
}

/// Pixels per index, and whether anything of the screen shows the matte.
struct GifUse {
    std::array<bool, 256> used{};
    bool matte = false;
};
GifUse FindUse(const GifStill& still) {
    GifUse use;
    for (const std::uint8_t index : still.indexes) {
        use.used[index] = true;
    }
    use.matte = !still.CoversScreen() ||
                (still.transparent >= 0 && use.used[static_cast<std::size_t>(still.transparent)]);
    return use;
}

/// The table entry that shows the matte: the transparent one, a new one, one no pixel names; or -1.
int MatteEntry(const GifStill& still, const GifUse& use) {
    if (still.transparent >= 0) return still.transparent;
    if (still.colourCount < 256) return static_cast<int>(still.colourCount);
    for (int i = 0; i < 256; ++i) {
        if (!use.used[static_cast<std::size_t>(i)]) return i;
    }
    return -1;
}

OwnedDib IndexedPicture(GifStill& still, bool showsMatte, int matteEntry, PixelValue matte) {
    if (showsMatte) {
        still.palette[static_cast<std::size_t>(matteEntry)] = RgbOf(matte);
        still.colourCount = std::max(still.colourCount, static_cast<unsigned>(matteEntry) + 1);
    }
    const int bits = std::max(1, static_cast<int>(std::bit_width(still.colourCount - 1)));
    PictureBuilder picture(static_cast<std::uint32_t>(still.screenWidth),
                           static_cast<std::uint32_t>(still.screenHeight), still.palette, bits);
    std::vector<std::uint8_t> row(still.screenWidth);
    for (std::size_t y = 0; y < still.screenHeight; ++y) {
        std::fill(row.begin(), row.end(), static_cast<std::uint8_t>(std::max(matteEntry, 0)));
        if (y >= still.top && y - still.top < still.height) {
            std::memcpy(row.data() + still.left, still.indexes.data() + (y - still.top) * still.width,
                        still.width);
        }
        picture.PutIndexes(static_cast<std::int32_t>(y), row.data());
    }
    return picture.Finish();
}

/// For the frame that names all 256 entries and does not cover its screen.
OwnedDib TrueColourPicture(const GifStill& still, PixelValue matte) {
    PictureBuilder picture(static_cast<std::uint32_t>(still.screenWidth),
                           static_cast<std::uint32_t>(still.screenHeight), {}, 24);
    for (std::size_t y = 0; y < still.screenHeight; ++y) {
        std::uint8_t* out = picture.Row(static_cast<std::int32_t>(y));
        for (std::size_t x = 0; x < still.screenWidth; ++x, out += 3) {
            Rgb colour = RgbOf(matte);
            if (y >= still.top && y - still.top < still.height && x >= still.left &&
                x - still.left < still.width) {
                colour = still.palette[still.indexes[(y - still.top) * still.width + x - still.left]];
            }
            StoreColour(out, colour);
        }
    }
    return picture.Finish();
}

} // namespace

OwnedDib DecodeGif(std::span<const std::uint8_t> file, const DecodeLimits& limits) {
    GifStill still = ReadStill(file, limits);
    const GifUse use = FindUse(still);
    const int matteEntry = use.matte ? MatteEntry(still, use) : -1;
    if (use.matte && matteEntry < 0) return TrueColourPicture(still, limits.matte);
    return IndexedPicture(still, use.matte, matteEntry, limits.matte);
}

} // namespace lumafold
