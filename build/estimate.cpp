#include "build/estimate.h"

#include <limits>

#include "transitions/table.h"

namespace lumafold {
namespace {

template <typename T>
T SaturatingSum(T a, T b) {
    T sum;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<T>::max() : sum;
}
std::uint64_t SaturatingProduct(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product;
    return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<std::uint64_t>::max() : product;
}

/// Of a size that a picture has, or the most there can be.
std::uint64_t PictureBytes(const BuildEstimate& estimate, int bits) {
    return DibBlockBytes(estimate.width, estimate.height, bits).value_or(kMostDibBytes);
}

/// While frames are made all of them have 24 bits; each may get a mask before the first loses its depth.
std::uint64_t BytesOf(const BuildEstimate& estimate, std::uint64_t pictures, bool masks) {
    const std::uint64_t picture = PictureBytes(estimate, 24);
    const std::uint64_t frame = picture + sizeof(FrameRecord) + (masks ? PictureBytes(estimate, 1) : 0);
    return SaturatingSum(SaturatingProduct(static_cast<std::uint64_t>(estimate.frames), frame),
                         SaturatingProduct(pictures, picture));
}

} // namespace

bool EstimateBuild(ImageList& list, TaskKind kind, const PluginSettings& settings, BuildEstimate& estimate) {
    estimate = {};
    const std::int32_t count = list.Count();
    ImageEntry entry;
    for (std::int32_t i = 0; i < count; ++i) {
        std::int32_t width = 0, height = 0;
        if (!list.Read(i, entry) || !DibQuery(entry.image, &width, &height, nullptr, nullptr)) return false;
        estimate.width = std::max(estimate.width, width);
        estimate.height = std::max(estimate.height, height);
    }
    const auto add = [&](std::int32_t row) {
        estimate.frames =
            SaturatingSum(estimate.frames, FrameCount(row, settings, {estimate.width, estimate.height}));
    };
    for (std::int32_t i = 0; i < count; ++i) {
        if (!list.Read(i, entry)) return false;
        add(entry.transition);
    }
    // One picture alone gets the plain background beside it.
    if (count == 1) add(list.DefaultTransition());
    const std::int64_t pictures = std::max<std::int64_t>(count, 2);
    const bool masks = kind == TaskKind::Build && settings.Supercompress != 0;
    estimate.bytes = BytesOf(estimate, static_cast<std::uint64_t>(pictures), masks);
    return true;
}

} // namespace lumafold
