// Saved animations of every format: what is read has frames of one size, each with pixels at every place.
#include "codecs/animation_reader.h"
#include "image/row_view.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/fuzz/png_mutator.h"

using namespace lumafold;
using namespace lumafold::test;

LUMAFOLD_FUZZ_TARGET(animations) {
    constexpr std::uint64_t kMostPixels = 1 << 20;
    const ReadAnimation read = DecodeAnimation(input, kMostPixels);
    Require(read.animation.has_value() == read.error.empty(), "either an animation or an error");
    Require(read.error.find('\n') == std::string::npos, "an error is one line");
    if (!read.animation) return;
    Require(!read.animation->frames.empty(), "an animation has frames");
    std::uint64_t pixels = 0;
    for (const AnimationFrame& frame : read.animation->frames) {
        const LockedDib dib(frame.image.Get());
        Require(dib && dib->biWidth == read.animation->width && dib->biHeight == read.animation->height,
                "frames are whole screens");
        const ConstRowView rows(*dib);
        Require(DibRowsOffset(*dib) + rows.StoredBytes() <= GlobalBytes(frame.image.Get()),
                "with all their pixels");
        pixels += static_cast<std::uint64_t>(dib->biWidth) * static_cast<std::uint64_t>(dib->biHeight);
    }
    Require(pixels <= kMostPixels, "no more pixels than allowed");
}
