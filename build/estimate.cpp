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

/// Of a gap with all workers, or of as many gaps as there are workers where frames follow from one another.
double RenderBytes(std::int32_t row, const PluginSettings& settings, std::size_t workers) {
    const RenderNeed need = RenderNeedOf(row, settings);
    const auto atOnce = static_cast<double>(workers);
    return RendersInTurn(row) ? atOnce * (need.gap + need.frame) : need.gap + atOnce * need.frame;
}

struct Held {
    std::uint64_t pictures;
    double render; ///< bytes a pixel
    bool marks;    ///< unchanged pixels, in masks
    bool reduces;  ///< to a palette
    std::size_t workers;
};

/// While frames are made all of them have 24 bits; each may get a mask before the first loses its depth.
void AddBytes(const Held& held, BuildEstimate& estimate) {
    const auto frames = static_cast<std::uint64_t>(estimate.frames);
    const std::uint64_t picture = PictureBytes(estimate, 24), reduced = PictureBytes(estimate, 8);
    const std::uint64_t masks = held.marks ? SaturatingProduct(frames, PictureBytes(estimate, 1)) : 0;
    const auto all = [&](std::uint64_t frame) {
        return SaturatingSum(SaturatingProduct(frames, frame + sizeof(FrameRecord)),
                             SaturatingProduct(held.pictures, picture));
    };
    const double pixels = static_cast<double>(estimate.width) * estimate.height;
    const std::uint64_t render = static_cast<std::uint64_t>(held.render * pixels);
    const std::uint64_t reduce =
        SaturatingSum(masks, held.reduces ? SaturatingProduct(held.workers, reduced) : 0);
    estimate.bytes = SaturatingSum(all(picture), std::max(render, reduce));
    estimate.handedOver = SaturatingSum(all(held.reduces ? reduced : picture), masks);
}

} // namespace

bool EstimateBuild(ImageList& list, TaskKind kind, const PluginSettings& settings, std::size_t workers,
                   BuildEstimate& estimate) {
    estimate = {};
    const std::int32_t count = list.Count();
    ImageEntry entry;
    for (std::int32_t i = 0; i < count; ++i) {
        std::int32_t width = 0, height = 0;
        if (!list.Read(i, entry) || !DibQuery(entry.image, &width, &height, nullptr, nullptr)) return false;
        estimate.width = std::max(estimate.width, width);
        estimate.height = std::max(estimate.height, height);
    }
    const bool reduces = settings.TransitionTruecolour == 0;
    Held held{static_cast<std::uint64_t>(std::max(count, 2)), 0,
              kind == TaskKind::Build && settings.Supercompress != 0, reduces, workers};
    const auto add = [&](std::int32_t row) {
        estimate.frames =
            SaturatingSum(estimate.frames, FrameCount(row, settings, {estimate.width, estimate.height}));
        held.render = std::max(held.render, RenderBytes(row, settings, workers));
    };
    for (std::int32_t i = 0; i < count; ++i) {
        if (!list.Read(i, entry)) return false;
        add(entry.transition);
    }
    // One picture alone gets the plain background beside it.
    if (count == 1) add(list.DefaultTransition());
    AddBytes(held, estimate);
    return true;
}

} // namespace lumafold
