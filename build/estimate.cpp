#include "build/estimate.h"

#include "transitions/table.h"

namespace lumafold {
namespace {

std::uint64_t WholeBytes(double bytes) {
    return bytes < 0x1p64 ? static_cast<std::uint64_t>(bytes) : UINT64_MAX;
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
    double render = 0;
    const auto add = [&](std::int32_t row) {
        const std::int64_t frames = FrameCount(row, settings, {estimate.width, estimate.height});
        if (__builtin_add_overflow(estimate.frames, frames, &estimate.frames)) estimate.frames = INT64_MAX;
        // All workers are at one gap, or at one each where frames follow from one another.
        const bool inTurn = RendersInTurn(row);
        const std::int64_t pieces =
            inTurn ? std::min(count, kMostGapsAtOnce) : std::min(frames, kMostFramesAtOnce);
        const double atOnce = std::min(static_cast<double>(workers), static_cast<double>(pieces));
        const RenderNeed need = RenderNeedOf(row, settings);
        render = std::max(render, need.gap * (inTurn ? atOnce : 1) + need.frame * atOnce);
    };
    for (std::int32_t i = 0; i < count; ++i) {
        if (!list.Read(i, entry)) return false;
        add(entry.transition);
    }
    // One picture alone gets the plain background beside it.
    if (count == 1) add(list.DefaultTransition());

    // Of a size that a picture has, or the most there can be.
    const auto picture = [&](int bits) {
        return static_cast<double>(
            DibBlockBytes(estimate.width, estimate.height, bits).value_or(kMostDibBytes));
    };
    const auto frames = static_cast<double>(estimate.frames);
    const bool reduces = settings.TransitionTruecolour == 0;
    const bool marks = kind == TaskKind::Build && settings.Supercompress != 0;
    // While frames are made all of them have 24 bits; each may get a mask before the first loses its depth.
    const double masks = marks ? frames * picture(1) : 0;
    const double atWork = reduces ? std::min(frames, static_cast<double>(workers)) : 0;
    const double rendered = render * estimate.width * estimate.height, reduced = masks + atWork * picture(8);
    const double always = frames * sizeof(FrameRecord) + std::max(count, 2) * picture(24);
    estimate.bytes = WholeBytes(always + frames * picture(24) + std::max(rendered, reduced));
    estimate.handedOver = WholeBytes(always + frames * picture(reduces ? 8 : 24) + masks);
    return true;
}

} // namespace lumafold
