#include "colour/remap.h"
#include "image/colour_rows.h"
#include "platform/simd.h"

namespace lumafold {
namespace {

/// Red, green and blue as 16-bit words that lie side by side; the fourth fills up.
using StoredChannels = std::int64_t;

/// Such words, for arithmetic on all three at once. They wrap as such storage does; shifts round down.
class Channels {
public:
    Channels() = default;
    explicit Channels(StoredChannels stored) : words_(reinterpret_cast<Words>(Halves{stored, 0})) {}
    explicit Channels(PixelValue colour)
        : words_(reinterpret_cast<Words>(__builtin_shufflevector(reinterpret_cast<Bytes>(Halves{colour, 0}),
                                                                 Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20,
                                                                 5, 21, 6, 22, 7, 23))) {}

    StoredChannels Stored() const { return reinterpret_cast<Halves>(words_)[0]; }
    /// The colour, each channel clamped to 0..255.
    PixelValue Clamped() const {
#if LUMAFOLD_SSE2
        const auto words = reinterpret_cast<__m128i>(words_);
        return static_cast<PixelValue>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
#else
        const auto level = [&](int i) { return static_cast<unsigned>(std::clamp<int>(words_[i], 0, 255)); };
        return MakeColour(level(0), level(1), level(2));
#endif
    }
    /// `weight` sixteenths.
    Channels Share(std::int16_t weight) const { return Channels(words_ * weight >> 4); }
    friend Channels operator+(Channels a, Channels b) { return Channels(a.words_ + b.words_); }
    friend Channels operator-(Channels a, Channels b) { return Channels(a.words_ - b.words_); }

private:
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    using Words = std::int16_t __attribute__((vector_size(16)));
    using Halves = std::int64_t __attribute__((vector_size(16)));
    explicit Channels(Words words) : words_(words) {}
    Words words_{};
};

/// Spreads one row's errors over the row itself and the next. `errors` holds what each pixel was given from
/// above, pixel x at x + 1, and afterwards what the pixels below are given; slot 0 takes what falls off to
/// the left.
class ErrorRow {
public:
    explicit ErrorRow(StoredChannels* errors) : errors_(errors) {}

    /// What pixel x should show: its colour and the errors it was given.
    PixelValue Aim(std::size_t x, PixelValue colour) const {
        return (Channels(errors_[x + 1]) + Channels(colour) + right_).Clamped();
    }
    void Give(std::size_t x, Channels error) {
        right_ = error.Share(7);
        errors_[x] = (belowLeft_ + error.Share(3)).Stored();
        belowLeft_ = below_ + error.Share(5);
        below_ = error.Share(1);
    }
    /// The leftmost pixel never receives a share from its right.
    void KeepFirst() { first_ = belowLeft_; }
    void Finish(std::size_t width) {
        errors_[width] = belowLeft_.Stored();
        errors_[1] = first_.Stored();
    }

private:
    StoredChannels* errors_;
    Channels right_, belowLeft_, below_, first_;
};

/// `choose` gives the index for a colour aimed at.
template <typename Choose>
bool Diffuse(const DibHeader& source, DibHeader& target, const Palette& palette, Choose choose) {
    ColourRows rows(source);
    const auto width = static_cast<std::size_t>(source.biWidth);
    Array<StoredChannels> errors(width + 1);
    if (!rows || !errors) return false;
    if (width == 0) return true;

    std::array<StoredChannels, 256> entries;
    std::transform(palette.begin(), palette.end(), entries.begin(),
                   [](Rgb entry) { return Channels(ColourOf(entry)).Stored(); });
    return FillIndexed(target, [&](std::int32_t y, std::uint8_t* indices) {
        const std::uint8_t* pixels = rows.Row(y);
        ErrorRow row(errors.data());
        const auto place = [&](std::size_t x) {
            const PixelValue aim = row.Aim(x, LoadColour(pixels + 3 * x));
            const std::size_t index = choose(aim);
            indices[x] = static_cast<std::uint8_t>(index);
            row.Give(x, Channels(aim) - Channels(entries[index]));
        };
        place(0);
        row.KeepFirst();
        for (std::size_t x = 1; x < width; ++x)
            place(x);
        row.Finish(width);
    });
}

using LevelTable = std::array<std::uint8_t, 256>;

/// Settings out of their range may make the step infinite or negative: levels are clamped before they are
/// cut.
LevelTable MakeLevels(double brightness, double contrast) {
    LevelTable levels;
    const double step = 256.0 / (256.0 - 2.0 * contrast);
    double level = brightness - contrast;
    for (std::uint8_t& entry : levels) {
        entry = static_cast<std::uint8_t>(std::clamp(level, 1.0, 254.0));
        level += step;
    }
    return levels;
}

/// Luminances of a whole picture, one byte a pixel, without padding between the rows.
struct Grays {
    Array<std::uint8_t> levels;
    int smallest = 255, largest = 0;
};

Grays ReadGrays(const DibHeader& source) {
    Grays grays;
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(source.biWidth) * static_cast<std::uint32_t>(source.biHeight);
    ColourRows rows(source);
    if (!rows || pixels > SIZE_MAX) return grays;
    grays.levels = Array<std::uint8_t>(static_cast<std::size_t>(pixels));
    if (!grays.levels) return grays;
    std::uint8_t* level = grays.levels.data();
    for (std::int32_t y = 0; y < source.biHeight; ++y) {
        const std::uint8_t* pixel = rows.Row(y);
        for (std::int32_t x = 0; x < source.biWidth; ++x, pixel += 3) {
            *level = Luminance(LoadRgb(pixel));
            grays.smallest = std::min<int>(grays.smallest, *level);
            grays.largest = std::max<int>(grays.largest, *level);
            ++level;
        }
    }
    return grays;
}

void Give(std::uint8_t& level, int share) {
    level = static_cast<std::uint8_t>(std::clamp(level + share, 0, 255));
}

bool DiffuseBits(const DibHeader& source, DibHeader& target, const LevelTable& table) {
    Grays grays = ReadGrays(source);
    if (!grays.levels) return false;
    const auto width = static_cast<std::size_t>(source.biWidth);
    const int threshold = (grays.largest + grays.smallest) >> 1;
    return FillIndexed(target, [&](std::int32_t y, std::uint8_t* bits) {
        std::uint8_t* here = grays.levels.data() + width * static_cast<std::size_t>(y);
        std::uint8_t* below = here + width;
        const bool hasBelow = y + 1 < source.biHeight;
        for (std::size_t x = 0; x < width; ++x) {
            const int level = table[here[x]];
            const bool white = level > threshold;
            bits[x] = white ? 1 : 0;
            // Divided before it is weighted, and given in this order, as each step clamps.
            const int share = (level - (white ? grays.largest : grays.smallest)) >> 4;
            const bool hasRight = x + 1 < width;
            if (hasBelow && hasRight) Give(below[x + 1], share);
            // The column to the left is off by one: x = 1 gives nothing, x = 0 gives to the end of its own
            // row.
            if (hasBelow && x != 1) Give(*(below + x - 1), 3 * share);
            if (hasBelow) Give(below[x], 5 * share);
            if (hasRight) Give(here[x + 1], 7 * share);
        }
    });
}

} // namespace

bool Remapper::FillDiffused(const DibHeader& source, DibHeader& target) const {
    if (bits_ == 1) return DiffuseBits(source, target, MakeLevels(options_.brightness, options_.contrast));
    if (SearchesEach()) {
        return Diffuse(source, target, palette_,
                       [&](PixelValue colour) { return static_cast<std::size_t>(search_.Find(colour)); });
    }
    const ExactColours exact(palette_, count_);
    return Diffuse(source, target, palette_, [&, cache = cache_.data()](PixelValue colour) -> std::size_t {
        const int index = exact.Find(colour);
        return index >= 0 ? static_cast<std::size_t>(index) : cache[CellOf(RgbOf(colour))];
    });
}

} // namespace lumafold
