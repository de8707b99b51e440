// What remapping and dithering mean, pixel by pixel through the accessors and one search at a time: slow, in
// the order of the rules, and what every result of the engine is held against.
#pragma once

#include <vector>

#include "colour/palettes.h"
#include "settings/settings.h"

namespace lumafold::test {

inline Rgb ToRgb(PixelValue v) {
    const auto byte = [](unsigned level) { return static_cast<std::uint8_t>(level); };
    return {byte(RedOf(v)), byte(GreenOf(v)), byte(BlueOf(v))};
}

/// A 24-bit picture of the colours, row by row.
inline OwnedDib PictureOf(const std::vector<Rgb>& colours, std::int32_t height = 1) {
    const auto width = static_cast<std::int32_t>(colours.size()) / height;
    OwnedDib picture(DibCreate(width, height, nullptr, 24));
    const LockedDib dib(picture.Get());
    for (std::int32_t i = 0; i < width * height; ++i) {
        const Rgb c = colours[static_cast<std::size_t>(i)];
        DibSetPixel(*dib, i % width, i / width, MakeColour(c.red, c.green, c.blue));
    }
    return picture;
}

class Definition {
public:
    Definition(const Palette& palette, int bits, int count) : palette_(palette), bits_(bits), count_(count) {}

    int Nearest(Rgb c, int count) const {
        int best = 0, bestDistance = 1000000;
        for (int i = 0; i < count; ++i) {
            const int r = c.red - Entry(i).red, g = c.green - Entry(i).green, b = c.blue - Entry(i).blue;
            const int distance = 3 * r * r + 4 * g * g + 2 * b * b;
            if (distance < bestDistance) bestDistance = distance, best = i;
        }
        return best;
    }
    int Exact(Rgb c) const {
        const auto end = palette_.begin() + count_, found = std::find(palette_.begin(), end, c);
        return found == end ? -1 : static_cast<int>(found - palette_.begin());
    }

    OwnedDib Remap(DibHandle picture) const {
        return Paint(picture, [&](const DibHeader* source, DibHeader* target) {
            for (int y = 0; y < source->biHeight; ++y) {
                for (int x = 0; x < source->biWidth; ++x)
                    DibSetPixel(target, x, y, static_cast<PixelValue>(RemapPixel(source, x, y)));
            }
        });
    }
    OwnedDib Dither(DibHandle picture) const {
        return Paint(picture, [&](const DibHeader* source, DibHeader* target) {
            bits_ == 1 ? DitherBits(source, target) : DitherColours(source, target);
        });
    }

private:
    Rgb Entry(int i) const { return palette_[static_cast<std::size_t>(i)]; }

    template <typename Work>
    OwnedDib Paint(DibHandle picture, Work work) const {
        const LockedDib source(picture);
        OwnedDib result(DibCreate(source->biWidth, source->biHeight, &palette_, bits_));
        work(source.Get(), LockedDib(result.Get()).Get());
        return result;
    }
    static Rgb ColourAt(const DibHeader* dib, int x, int y) {
        const PixelValue v = DibGetPixel(dib, x, y);
        if (dib->biBitCount == 24) return ToRgb(v);
        Palette table;
        DibGetPalette(dib, table);
        return table[v];
    }
    static int Gray(Rgb c) { return (c.red * 30 / 100 + c.green * 59 / 100 + c.blue * 11 / 100) % 256; }
    int FromCache(Rgb c) const {
        return Nearest(ToRgb(MakeColour(c.red, c.green, c.blue) & 0xF8F8F8), count_);
    }
    int ForDither(Rgb c) const {
        if (pluginSettings.FastRemap == 0) return Nearest(c, count_);
        const int exact = Exact(c);
        return exact >= 0 ? exact : FromCache(c);
    }

    int RemapPixel(const DibHeader* source, int x, int y) const {
        const Rgb c = ColourAt(source, x, y);
        if (bits_ == 1) return Gray(c) < 129 ? 0 : 1;
        if (source->biBitCount == 1) return ForDither(ToRgb(DibGetPixel(source, x, y) != 0 ? 0xFFFFFF : 0));
        return source->biBitCount <= 8 ? Nearest(c, 1 << bits_) : FromCache(c);
    }

    void DitherColours(const DibHeader* source, DibHeader* target) const {
        const int width = source->biWidth, height = source->biHeight;
        std::vector<std::array<int, 3>> given(static_cast<std::size_t>(width * height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const Rgb c = ColourAt(source, x, y);
                const auto& more = given[static_cast<std::size_t>(y * width + x)];
                const auto sum = [](int level, int share) {
                    return static_cast<std::uint8_t>(std::clamp(level + share, 0, 255));
                };
                const Rgb wanted{sum(c.red, more[0]), sum(c.green, more[1]), sum(c.blue, more[2])};
                const int index = ForDither(wanted);
                DibSetPixel(target, x, y, static_cast<PixelValue>(index));
                const Rgb chosen = Entry(index);
                const int errors[3] = {wanted.red - chosen.red, wanted.green - chosen.green,
                                       wanted.blue - chosen.blue};
                const auto give = [&](int toX, int toY, int sixteenths) {
                    if (toX >= width || toY >= height) return;
                    for (std::size_t i = 0; i < 3; ++i)
                        given[static_cast<std::size_t>(toY * width + toX)][i] += sixteenths * errors[i] >> 4;
                };
                give(x + 1, y, 7);
                if (x > 1) give(x - 1, y + 1, 3);
                give(x + 1, y + 1, 1);
                give(x, y + 1, 5);
            }
        }
    }

    static void DitherBits(const DibHeader* source, DibHeader* target) {
        const int width = source->biWidth, height = source->biHeight;
        std::vector<int> levels, work;
        double running = static_cast<double>(pluginSettings.DitherBrightness) - pluginSettings.DitherContrast;
        for (int i = 0; i < 256; ++i, running += 256.0 / (256.0 - 2.0 * pluginSettings.DitherContrast)) {
            levels.push_back(running < 1 ? 1 : running > 254 ? 254 : static_cast<int>(running));
        }
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                work.push_back(Gray(ColourAt(source, x, y)));
        }
        const int largest = *std::max_element(work.begin(), work.end());
        const int smallest = *std::min_element(work.begin(), work.end());
        const auto give = [&](int x, int y, int share) {
            if (x >= width || y >= height) return;
            int& level = work[static_cast<std::size_t>(y * width + x)];
            level = std::clamp(level + share, 0, 255);
        };
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int gray = work[static_cast<std::size_t>(y * width + x)];
                const int v = levels[static_cast<std::size_t>(gray)];
                const bool white = v > (largest + smallest) >> 1;
                DibSetPixel(target, x, y, white ? 1 : 0);
                const int e = (v - (white ? largest : smallest)) >> 4;
                give(x + 1, y + 1, e);
                // Left of the next row's first pixel lies the last one of this row.
                if (x == 0 && y + 1 < height) give(width - 1, y, 3 * e);
                if (x > 1) give(x - 1, y + 1, 3 * e);
                give(x, y + 1, 5 * e);
                give(x + 1, y, 7 * e);
            }
        }
    }

    const Palette palette_;
    const int bits_, count_;
};

} // namespace lumafold::test
