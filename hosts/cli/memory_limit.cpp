#include "hosts/cli/memory_limit.h"

#include <algorithm>
#include <cstdio>

#include "build/build_driver.h"
#include "codecs/png_writer.h"
#include "platform/machine.h"

namespace lumafold {
namespace {

std::string Text(std::uint64_t bytes) {
    constexpr double kMega = 1e6, kGiga = 1e9;
    const auto amount = static_cast<double>(bytes);
    char text[40];
    if (amount < kGiga) {
        std::snprintf(text, sizeof(text), "%.1f MB", amount / kMega);
    } else {
        std::snprintf(text, sizeof(text), "%s%.1f GB", bytes == UINT64_MAX ? "more than " : "",
                      amount / kGiga);
    }
    return text;
}

} // namespace

std::uint64_t UsualMemoryLimit() { return std::min(PhysicalMemory() / 2, UsualBudget()); }

// As measured. A writer holds what two waiting frames change for each worker, and copies of the rows that are
// at work; the WebP library works on pictures of its own.
TakerNeed NeedOf(OutputKind kind, std::optional<int> quality, std::optional<double> packed,
                 std::size_t workers, std::int64_t frames) {
    const double all = static_cast<double>(frames), working = std::min(static_cast<double>(workers), all);
    const double waiting = workers == 1 ? 1 : std::min(2 * working, all - working);
    switch (kind) {
    case OutputKind::Folder:
        return {3, 0};
    case OutputKind::Y4m:
        return {8, 1.5};
    case OutputKind::Webp:
        return quality ? TakerNeed{25, packed.value_or(0) / 4} : TakerNeed{90, packed.value_or(0)};
    case OutputKind::Gif:
        return {9 + 2 * waiting + 3 * working, 0.3};
    default:
        return packed ? TakerNeed{9 + 4 * waiting + 6 * working, *packed}
                      : TakerNeed{9 + 2 * waiting + 3 * working, 0.3};
    }
}

double PackedBytes(ImageList& list) {
    constexpr std::int32_t kMostPictures = 8, kPixels = 1 << 16; // of each
    double bytes = 0, pixels = 1;
    ImageEntry entry;
    for (std::int32_t i = 0; i < std::min(list.Count(), kMostPictures); ++i) {
        const ReadDib picture(list.Read(i, entry) ? entry.image : 0);
        if (!picture || picture->biWidth < 1) continue;
        const std::int32_t rows = std::clamp(kPixels / picture->biWidth, 1, picture->biHeight);
        OwnedDib part = DibCreateLike(*picture, picture->biWidth, rows);
        if (!part) continue;
        DibCopyRect(*part, 0, 0, *picture, 0, (picture->biHeight - rows) / 2, picture->biWidth, rows);
        std::string error;
        bytes += static_cast<double>(EncodePng(part.Get(), error).size());
        pixels += static_cast<double>(rows) * picture->biWidth;
    }
    return bytes / pixels;
}

std::uint64_t CommandBytes(ImageList& list, const BuildEstimate& estimate, const TakerNeed& taker) {
    std::uint64_t bytes = 0;
    ImageEntry entry;
    for (std::int32_t i = 0; i < list.Count(); ++i) {
        if (list.Read(i, entry)) bytes += GlobalBytes(entry.image);
    }
    const double pixels = static_cast<double>(estimate.width) * estimate.height;
    const double taken = pixels * (taker.once + taker.frame * static_cast<double>(estimate.frames)) +
                         static_cast<double>(estimate.handedOver);
    constexpr double kMost = 1e18; // far beyond any memory, and no number that a sum could pass
    if (estimate.bytes >= static_cast<std::uint64_t>(kMost) || taken >= kMost) return UINT64_MAX;
    return bytes + std::max(estimate.bytes, static_cast<std::uint64_t>(taken));
}

std::string WhyTooLarge(const BuildEstimate& estimate, std::uint64_t bytes, std::uint64_t limit) {
    if (bytes <= limit) return "";
    return "would need " + Text(bytes) + ": " + std::to_string(estimate.frames) + " frames of " +
           std::to_string(estimate.width) + "x" + std::to_string(estimate.height) + "; the limit is " +
           Text(limit);
}

} // namespace lumafold
