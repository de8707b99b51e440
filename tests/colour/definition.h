// What remapping and dithering mean, pixel by pixel through the accessors and one search at a time: slow, in
// the order of the rules, and what every result of the engine is held against.
#pragma once

#include <vector>

#include "colour/palettes.h"
#include "settings/settings.h"

namespace lumafold::test {

class Definition {
public:
    Definition(const Palette& palette, int bits, int count) : palette_(palette), bits_(bits), count_(count) {}

    int Nearest(int r, int g, int b, int count) const {
        const int exact = Exact(r, g, b, count);
        if (exact >= 0) return exact;
        int best = 0, bestDistance = 1000000;
        for (int i = 0; i < count; ++i) {
            const Rgb e = Entry(i);
            const int distance = 3 * (r - e.red) * (r - e.red) + 4 * (g - e.green) * (g - e.green) +
                                 2 * (b - e.blue) * (b - e.blue);
            if (distance < bestDistance) bestDistance = distance, best = i;
        }
        return best;
    }
    int Exact(int r, int g, int b, int count) const {
        for (int i = 0; i < count; ++i) {
            if (Entry(i) == Rgb{Byte(r), Byte(g), Byte(b)}) return i;
        }
        return -1;
    }

    OwnedDib Remap(DibHandle picture) const {
        return Paint(picture, [&](const DibHeader* source, DibHeader* target) {
            for (int y = 0; y < source->biHeight; ++y) {
                for (int x = 0; x < source->biWidth; ++x)
                    DibSetPixel(target, x, y, RemapPixel(source, x, y));
            }
        });
    }
    OwnedDib Dither(DibHandle picture) const {
        return Paint(picture, [&](const DibHeader* source, DibHeader* target) {
            bits_ == 1 ? DitherBits(source, target) : DitherColours(source, target);
        });
    }

private:
    static std::uint8_t Byte(int v) { return static_cast<std::uint8_t>(v); }
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
        if (dib->biBitCount == 24) return {Byte(v & 255), Byte(v >> 8 & 255), Byte(v >> 16)};
        Palette table;
        DibGetPalette(dib, table);
        return table[v];
    }
    static int Gray(Rgb c) { return (c.red * 30 / 100 + c.green * 59 / 100 + c.blue * 11 / 100) % 256; }
    int FromCache(int r, int g, int b) const { return Nearest(r / 8 * 8, g / 8 * 8, b / 8 * 8, count_); }
    int Fast(int r, int g, int b) const {
        const int exact = Exact(r, g, b, count_);
        return exact >= 0 ? exact : FromCache(r, g, b);
    }

    PixelValue RemapPixel(const DibHeader* source, int x, int y) const {
        const Rgb c = ColourAt(source, x, y);
        int index;
        if (bits_ == 1) {
            index = Gray(c) < 129 ? 0 : 1;
        } else if (source->biBitCount == 1) {
            const int level = DibGetPixel(source, x, y) != 0 ? 255 : 0;
            index =
                pluginSettings.FastRemap ? Fast(level, level, level) : Nearest(level, level, level, count_);
        } else if (source->biBitCount <= 8) {
            index = Nearest(c.red, c.green, c.blue, 1 << bits_);
        } else {
            index = FromCache(c.red, c.green, c.blue);
        }
        return static_cast<PixelValue>(index);
    }

    void DitherColours(const DibHeader* source, DibHeader* target) const {
        const int width = source->biWidth, height = source->biHeight;
        using Row = std::vector<std::array<std::int16_t, 3>>;
        Row current(static_cast<std::size_t>(width)), next = current;
        for (int y = 0; y < height; ++y) {
            const auto give = [](Row& row, int x, std::size_t channel, int share) {
                std::int16_t& word = row[static_cast<std::size_t>(x)][channel];
                word = static_cast<std::int16_t>(word + share);
            };
            for (int x = 0; x < width; ++x) {
                const Rgb c = ColourAt(source, x, y);
                give(current, x, 0, c.red), give(current, x, 1, c.green), give(current, x, 2, c.blue);
            }
            const bool hasNext = y + 1 < height;
            for (int x = 0; x < width; ++x) {
                int v[3];
                for (std::size_t i = 0; i < 3; ++i) {
                    const int sum = current[static_cast<std::size_t>(x)][i];
                    v[i] = sum < 1 ? 0 : sum > 254 ? 255 : sum;
                }
                const int index =
                    pluginSettings.FastRemap ? Fast(v[0], v[1], v[2]) : Nearest(v[0], v[1], v[2], count_);
                DibSetPixel(target, x, y, static_cast<PixelValue>(index));
                const Rgb chosen = Entry(index);
                const int errors[3] = {v[0] - chosen.red, v[1] - chosen.green, v[2] - chosen.blue};
                for (std::size_t i = 0; i < 3; ++i) {
                    if (x + 1 < width) give(current, x + 1, i, 7 * errors[i] >> 4);
                    if (x - 1 > 0 && hasNext) give(next, x - 1, i, 3 * errors[i] >> 4);
                    if (x + 1 < width && hasNext) give(next, x + 1, i, 1 * errors[i] >> 4);
                    if (hasNext) give(next, x, i, 5 * errors[i] >> 4);
                }
            }
            current = next;
            next.assign(static_cast<std::size_t>(width), {});
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
        const auto give = [&](int at, int share) {
            int& level = work[static_cast<std::size_t>(at)];
            level = std::clamp(level + share, 0, 255);
        };
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int at = y * width + x, nextStart = (y + 1) * width;
                const int v = levels[static_cast<std::size_t>(work[static_cast<std::size_t>(at)])];
                const bool white = v > (largest + smallest) >> 1;
                DibSetPixel(target, x, y, white ? 1 : 0);
                const int e = (v - (white ? largest : smallest)) >> 4;
                const bool hasNext = y + 1 < height;
                if (x + 1 < width && hasNext) give(nextStart + x + 1, e);
                if (x == 0 && hasNext) give(nextStart - 1, 3 * e);
                if (x > 1 && hasNext) give(nextStart + x - 1, 3 * e);
                if (hasNext) give(nextStart + x, 5 * e);
                if (x + 1 < width) give(at + 1, 7 * e);
            }
        }
    }

    const Palette palette_;
    const int bits_, count_;
};

} // namespace lumafold::test
