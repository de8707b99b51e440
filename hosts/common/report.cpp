#include "hosts/common/report.h"

#include <algorithm>
#include <cstdio>

#include "image/row_view.h"

namespace lumafold {
void ColourCount::Add(const FrameView& frame) {
    const DibHeader& dib = frame.picture;
    trueColour_ |= dib.biBitCount > 8;
    if (trueColour_) return;
    std::array<bool, 256> here{};
    for (std::int32_t y = 0; y < dib.biHeight; ++y) {
        const std::uint8_t* row = ConstRowView(dib).Row(y);
        for (std::int32_t x = 0; x < dib.biWidth; ++x)
            here[dib.biBitCount == 8 ? row[x] : DibGetPixel(dib, x, y)] = true;
    }
    const auto hole = static_cast<std::size_t>(frame.transparentIndex);
    if (hole < here.size()) here[hole] = false;
    for (std::size_t i = 0; i < here.size(); ++i)
        used_[i] |= here[i];
}

std::string ColourCount::Text() const {
    if (trueColour_) return "true colour";
    const auto count = std::count(used_.begin(), used_.end(), true);
    return std::to_string(count) + (count == 1 ? " colour" : " colours");
}

std::string ColoursText(const Animation& animation) {
    ColourCount colours;
    for (const AnimationFrame& frame : animation.frames) {
        if (frame.image) colours.Add({*frame.image, frame.delay, frame.transparentIndex});
    }
    return colours.Text();
}

std::string DurationText(std::int64_t hundredths) {
    char text[48];
    std::snprintf(text, sizeof(text), "%.2f s", static_cast<double>(hundredths) / 100);
    return text;
}

std::string DurationText(const Animation& animation) {
    std::int64_t hundredths = 0;
    for (const AnimationFrame& frame : animation.frames)
        hundredths += frame.delay;
    return DurationText(hundredths);
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

} // namespace lumafold
