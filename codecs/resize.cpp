#include "codecs/resize.h"

#include <cmath>
#include <new>
#include <utility>

#define STB_IMAGE_RESIZE_IMPLEMENTATION
#define STB_IMAGE_RESIZE_STATIC
#include <stb/stb_image_resize.h>

#include "codecs/decode_common.h"
#include "image/resample.h"

namespace lumafold {
namespace {

std::int32_t Side(double exact) {
    return static_cast<std::int32_t>(std::lround(std::clamp(exact, 1.0, 2.0 * kLargestSide)));
}

PictureSize Times(PictureSize size, double factor) {
    return {Side(size.width * factor), Side(size.height * factor)};
}

enum class Within { Both, One };
/// By how much a picture grows to lie within both sides of `to`, or to fill both and lie within one.
double FactorTo(PictureSize from, PictureSize to, Within within) {
    const double across = static_cast<double>(to.width) / from.width;
    const double down = static_cast<double>(to.height) / from.height;
    return within == Within::Both ? std::min(across, down) : std::max(across, down);
}

/// What of the source is drawn, as parts of its sides, and how large.
struct Placing {
    PictureSize size;
    double left = 0, top = 0, right = 1, bottom = 1;
};

Placing PlacingOf(const SizeRequest& request, PictureSize from, PictureSize to) {
    Placing placing{to};
    if (request.kind != SizeRequest::Kind::Exact || request.fit == Fit::Stretch) return placing;
    if (request.fit == Fit::Contain) {
        const PictureSize inside = Times(from, FactorTo(from, to, Within::Both));
        placing.size = {std::min(inside.width, to.width), std::min(inside.height, to.height)};
        return placing;
    }
    const double factor = FactorTo(from, to, Within::One);
    placing.left = (1 - std::min(1.0, to.width / (from.width * factor))) / 2;
    placing.top = (1 - std::min(1.0, to.height / (from.height * factor))) / 2;
    placing.right = 1 - placing.left;
    placing.bottom = 1 - placing.top;
    return placing;
}

/// Draws into the middle of the target, by a filter that leaves a picture of its own size as it is. Stored
/// rows go from the bottom up, here and there.
void Draw(ConstRowView from, const Placing& placing, RowView to) {
    const std::int32_t left = (to.Width() - placing.size.width) / 2;
    const std::int32_t below = to.Height() - placing.size.height - (to.Height() - placing.size.height) / 2;
    const int drawn = stbir_resize_region(
        from.Stored(), from.Width(), from.Height(), static_cast<int>(from.Stride()),
        to.Stored() + to.Stride() * below + std::ptrdiff_t{3} * left, placing.size.width, placing.size.height,
        static_cast<int>(to.Stride()), STBIR_TYPE_UINT8, 3, STBIR_ALPHA_CHANNEL_NONE, 0, STBIR_EDGE_CLAMP,
        STBIR_EDGE_CLAMP, STBIR_FILTER_CATMULLROM, STBIR_FILTER_CATMULLROM, STBIR_COLORSPACE_SRGB, nullptr,
        static_cast<float>(placing.left), static_cast<float>(1 - placing.bottom),
        static_cast<float>(placing.right), static_cast<float>(1 - placing.top));
    if (drawn == 0) throw std::bad_alloc();
}

/// The resampler keeps as many rows as it makes one of, and counts their bytes in 32 bits: what becomes very
/// small does so in several steps.
OwnedDib Redrawn(OwnedDib picture, const SizeRequest& request, PictureSize to) {
    if (!picture) throw std::bad_alloc();
    constexpr std::int32_t kMostStep = 16;
    const Placing placing = PlacingOf(request, {picture->biWidth, picture->biHeight}, to);
    for (;;) {
        const PictureSize step{std::max(picture->biWidth / kMostStep, placing.size.width),
                               std::max(picture->biHeight / kMostStep, placing.size.height)};
        const bool last = step == placing.size;
        OwnedDib next =
            DibCreateFlat(last ? to.width : step.width, last ? to.height : step.height, request.matte);
        if (!next) throw std::bad_alloc();
        Draw(std::as_const(picture).Rows(), last ? placing : Placing{step}, next.Rows());
        if (last) return next;
        picture = std::move(next);
    }
}

OwnedDib ResizedOrThrow(OwnedDib picture, const SizeRequest& request, std::uint64_t mostPixels) {
    const PictureSize from{picture->biWidth, picture->biHeight}, to = SizeFor(request, from);
    if (to == from) return picture;
    CheckSize(static_cast<std::uint64_t>(to.width), static_cast<std::uint64_t>(to.height), {0, mostPixels});
    return Redrawn(picture->biBitCount == 24 ? std::move(picture) : DibToTrueColour(*picture), request, to);
}

} // namespace

PictureSize SizeFor(const SizeRequest& request, PictureSize from) {
    switch (request.kind) {
    case SizeRequest::Kind::Exact:
        return request.size;
    case SizeRequest::Kind::AtMost: {
        const double factor = FactorTo(from, request.size, Within::Both);
        return factor < 1 ? Times(from, factor) : from;
    }
    case SizeRequest::Kind::Scale:
        return Times(from, request.percent / 100);
    case SizeRequest::Kind::Keep:
        break;
    }
    return from;
}

DecodedPicture Resized(OwnedDib picture, const SizeRequest& request, std::uint64_t mostPixels) {
    return PictureOrError([&] { return ResizedOrThrow(std::move(picture), request, mostPixels); });
}

} // namespace lumafold
