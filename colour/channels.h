// Red, green and blue side by side in 16-bit words, for arithmetic on all three at once. The words wrap as
// such storage does; shifts round down.
#pragma once

#include "image/dib_format.h"

namespace lumafold {

/// How channels lie in memory; the fourth word fills up.
struct StoredChannels {
    std::int16_t words[4];
};

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

} // namespace lumafold
