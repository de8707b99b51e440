#include "hosts/common/report.h"

#include <bitset>
#include <cstdio>

#include "image/row_view.h"

namespace lumafold {
namespace {

void MarkUsed(const AnimationFrame& frame, std::bitset<256>& used) {
    std::bitset<256> here;
    const GlobalLocked<const DibHeader> dib(frame.image.Get());
    if (!dib || dib->biBitCount > 8) return;
    for (std::int32_t y = 0; y < dib->biHeight; ++y) {
        const std::uint8_t* row = ConstRowView(*dib).Row(y);
        for (std::int32_t x = 0; x < dib->biWidth; ++x)
            here.set(dib->biBitCount == 8 ? row[x] : DibGetPixel(*dib, x, y));
    }
    if (frame.transparentIndex >= 0 && frame.transparentIndex < 256) {
        here.reset(static_cast<std::size_t>(frame.transparentIndex));
    }
    used |= here;
}

} // namespace

std::string ColoursText(const Animation& animation) {
    std::bitset<256> used;
    int bits = 0;
    for (const AnimationFrame& frame : animation.frames) {
        if (DibQuery(frame.image.Get(), nullptr, nullptr, &bits, nullptr) && bits > 8) return "true colour";
        MarkUsed(frame, used);
    }
    return std::to_string(used.count()) + (used.count() == 1 ? " colour" : " colours");
}

std::string DurationText(const Animation& animation) {
    std::int64_t hundredths = 0;
    for (const AnimationFrame& frame : animation.frames)
        hundredths += frame.delay;
    char text[48];
    std::snprintf(text, sizeof(text), "%.2f s", static_cast<double>(hundredths) / 100);
    return text;
}

std::string SizeText(std::uint64_t bytes) {
    std::string exact = std::to_string(bytes) + " bytes";
    if (bytes < 1000) return exact;
    char text[32];
    const bool mega = bytes >= 1000000;
    std::snprintf(text, sizeof(text), mega ? "%.1f MB" : "%.1f kB",
                  static_cast<double>(bytes) / (mega ? 1e6 : 1e3));
    return std::string(text) + " (" + exact + ")";
}

std::string AnimationText(const Animation& animation, std::uint64_t bytes) {
    return std::to_string(animation.frames.size()) + " frames, " + std::to_string(animation.width) + "x" +
           std::to_string(animation.height) + ", " + ColoursText(animation) + ", " + DurationText(animation) +
           ", " + SizeText(bytes);
}

} // namespace lumafold
