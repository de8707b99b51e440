// Red, green and blue side by side in 16-bit words, for arithmetic on all three at once. The words wrap as
// such storage does; shifts round down.
#pragma once

#include "image/dib.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lumafold {

/// How channels lie in memory; the fourth word fills up.
struct StoredChannels {
    std::int16_t words[4];
};

#if defined(__SSE2__)

class Channels {
public:
    Channels() : words_(_mm_setzero_si128()) {}
    explicit Channels(const StoredChannels& stored)
        : words_(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&stored))) {}
    explicit Channels(PixelValue colour)
        : words_(_mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(colour)), _mm_setzero_si128())) {}

    void Store(StoredChannels& stored) const {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(&stored), words_);
    }
    /// The colour, each channel clamped to 0..255.
    PixelValue Clamped() const {
        return static_cast<PixelValue>(_mm_cvtsi128_si32(_mm_packus_epi16(words_, words_)));
    }
    /// `weight` sixteenths.
    Channels Share(std::int16_t weight) const {
        return Channels(_mm_srai_epi16(_mm_mullo_epi16(words_, _mm_set1_epi16(weight)), 4));
    }
    friend Channels operator+(Channels a, Channels b) { return Channels(_mm_add_epi16(a.words_, b.words_)); }
    friend Channels operator-(Channels a, Channels b) { return Channels(_mm_sub_epi16(a.words_, b.words_)); }

private:
    explicit Channels(__m128i words) : words_(words) {}
    __m128i words_;
};

#else

class Channels {
public:
    Channels() : words_{} {}
    explicit Channels(const StoredChannels& stored) : words_(stored) {}
    explicit Channels(PixelValue colour)
        : words_{{Word(RedOf(colour)), Word(GreenOf(colour)), Word(BlueOf(colour)), 0}} {}

    void Store(StoredChannels& stored) const { stored = words_; }
    /// The colour, each channel clamped to 0..255.
    PixelValue Clamped() const {
        const auto level = [&](int i) {
            return static_cast<unsigned>(std::clamp<int>(words_.words[i], 0, 255));
        };
        return MakeColour(level(0), level(1), level(2));
    }
    /// `weight` sixteenths.
    Channels Share(std::int16_t weight) const {
        return Each([&](int i) { return Word(words_.words[i] * weight) >> 4; });
    }
    friend Channels operator+(const Channels& a, const Channels& b) {
        return Each([&](int i) { return a.words_.words[i] + b.words_.words[i]; });
    }
    friend Channels operator-(const Channels& a, const Channels& b) {
        return Each([&](int i) { return a.words_.words[i] - b.words_.words[i]; });
    }

private:
    template <typename Number>
    static std::int16_t Word(Number number) {
        return static_cast<std::int16_t>(number);
    }
    template <typename Formula>
    static Channels Each(Formula formula) {
        return Channels(StoredChannels{{Word(formula(0)), Word(formula(1)), Word(formula(2)), 0}});
    }
    StoredChannels words_;
};

#endif

} // namespace lumafold
