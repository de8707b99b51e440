#include "colour/remap.h"
#include "image/colour_rows.h"

namespace lumafold {
namespace {

/// How channels lie in memory; the fourth word fills up.
struct StoredChannels {
    std::int16_t words[4];
};

/// Red, green and blue side by side in 16-bit words, for arithmetic on all three at once. The words wrap as
/// such storage does; shifts round down.
class Channels {
public:
    Channels() = default;
    explicit Channels(const StoredChannels& stored) { std::memcpy(&words_, &stored, sizeof(stored)); }
    explicit Channels(PixelValue colour)
        : words_{static_cast<std::int16_t>(RedOf(colour)), static_cast<std::int16_t>(GreenOf(colour)),
                 static_cast<std::int16_t>(BlueOf(colour))} {}

    void Store(StoredChannels& stored) const { std::memcpy(&stored, &words_, sizeof(stored)); }
    /// The colour, each channel clamped to 0..255.
    PixelValue Clamped() const {
        const Words low = words_ < 0 ? Words{} : words_;
        const Words level = low > 255 ? Words{} + 255 : low;
        return MakeColour(static_cast<unsigned>(level[0]), static_cast<unsigned>(level[1]),
                          static_cast<unsigned>(level[2]));
    }
    /// `weight` sixteenths.
    Channels Share(std::int16_t weight) const { return Channels(words_ * weight >> 4); }
    friend Channels operator+(Channels a, Channels b) { return Channels(a.words_ + b.words_); }
    friend Channels operator-(Channels a, Channels b) { return Channels(a.words_ - b.words_); }

private:
    using Words = std::int16_t __attribute__((vector_size(16)));
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
        (belowLeft_ + error.Share(3)).Store(errors_[x]);
        belowLeft_ = below_ + error.Share(5);
        below_ = error.Share(1);
    }
    /// The leftmost pixel never receives a share from its right.
    void KeepFirst() { first_ = belowLeft_; }
    void Finish(std::size_t width) {
        belowLeft_.Store(errors_[width]);
        first_.Store(errors_[1]);
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
    for (std::size_t i = 0; i < entries.size(); ++i) {
        entries[i] = {{palette[i].red, palette[i].green, palette[i].blue, 0}};
    }
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
        return index >= 0 ? static_cast<std::size_t>(index) : cache[CellOf(colour)];
    });
}

} // namespace lumafold
