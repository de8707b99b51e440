// A screen of pixels as a window shows it: zoomed, and on a checkerboard where nothing is drawn.
#pragma once

#include "codecs/frame_screens.h"

namespace lumafold {

inline constexpr int kLeastZoom = 25, kMostZoom = 800; ///< percent

/// The largest zoom at which the picture fits a window: whole multiples above 100 %, so that pixels stay
/// square.
int FittingZoom(std::int32_t width, std::int32_t height, std::int32_t roomWidth, std::int32_t roomHeight);
/// The next step up or down of 25, 33, 50, 67, 100, 150, 200, 300, 400, 600, 800.
int NextZoom(int zoom, int direction);
/// A side at a zoom, never 0.
std::int32_t Zoomed(std::int32_t side, int zoom);

enum class Backdrop { Checkerboard, Plain };

/// The part of the zoomed picture that is in sight.
struct ViewPart {
    std::int32_t left, top, width, height;
};

/// Fills `out` with that part, 0x00RRGGBB row by row from the top as the system wants it: nearest pixels from
/// 100 % on, averages below.
void RenderView(const ScreenPixels& screen, std::int32_t width, std::int32_t height, int zoom,
                const ViewPart& part, Backdrop backdrop, std::vector<std::uint32_t>& out);

/// The whole picture averaged into `toWidth` x `toHeight`.
void RenderThumbnail(const ScreenPixels& screen, std::int32_t width, std::int32_t height,
                     std::int32_t toWidth, std::int32_t toHeight, std::vector<std::uint32_t>& out);

} // namespace lumafold
