#include "hosts/desktop/view_picture.h"

namespace lumafold {
namespace {

constexpr int kZooms[] = {25, 33, 50, 67, 100, 150, 200, 300, 400, 600, 800};
constexpr std::int32_t kSquare = 8;
constexpr std::uint32_t kLightSquare = 0xFFFFFF, kDarkSquare = 0xD4D8DE, kPlain = 0xFFFFFF;

std::uint32_t BackdropAt(std::int32_t x, std::int32_t y, Backdrop backdrop) {
    if (backdrop == Backdrop::Plain) return kPlain;
    return ((x / kSquare + y / kSquare) & 1) != 0 ? kDarkSquare : kLightSquare;
}

std::uint32_t Shown(PixelValue colour) { return RedOf(colour) << 16 | GreenOf(colour) << 8 | BlueOf(colour); }

/// The source pixels behind one of `to` along an axis of `from`; never none.
struct Covered {
    std::int32_t first, end;
};
Covered CoveredBy(std::int32_t at, std::int32_t from, std::int32_t to) {
    const auto place = [&](std::int32_t step) {
        return static_cast<std::int32_t>(std::int64_t{step} * from / to);
    };
    const std::int32_t first = std::min(place(at), from - 1);
    return {first, std::max(first + 1, std::min(place(at + 1), from))};
}
std::vector<Covered> Axis(std::int32_t start, std::int32_t count, std::int32_t from, std::int32_t to) {
    std::vector<Covered> axis;
    axis.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (std::int32_t i = 0; i < count; ++i)
        axis.push_back(CoveredBy(start + i, from, to));
    return axis;
}

std::uint32_t Average(const ScreenPixels& screen, std::int32_t width, Covered across, Covered down,
                      std::uint32_t backdrop) {
    std::uint32_t red = 0, green = 0, blue = 0, count = 0;
    for (std::int32_t y = down.first; y < down.end; ++y) {
        const PixelValue* row = screen.data() + static_cast<std::ptrdiff_t>(y) * width;
        for (std::int32_t x = across.first; x < across.end; ++x, ++count) {
            const std::uint32_t colour = row[x] == kNoPixel ? backdrop : Shown(row[x]);
            red += colour >> 16;
            green += colour >> 8 & 0xFF;
            blue += colour & 0xFF;
        }
    }
    const std::uint32_t half = count / 2;
    return (red + half) / count << 16 | (green + half) / count << 8 | (blue + half) / count;
}

void Render(const ScreenPixels& screen, std::int32_t width, std::int32_t height, std::int32_t toWidth,
            std::int32_t toHeight, const ViewPart& part, Backdrop backdrop, std::vector<std::uint32_t>& out) {
    const std::vector<Covered> across = Axis(part.left, part.width, width, toWidth);
    const std::vector<Covered> down = Axis(part.top, part.height, height, toHeight);
    out.resize(across.size() * down.size());
    std::uint32_t* pixel = out.data();
    const bool single = toWidth >= width && toHeight >= height;
    for (std::int32_t y = 0; y < part.height; ++y) {
        const Covered rows = down[static_cast<std::size_t>(y)];
        const PixelValue* row = screen.data() + static_cast<std::ptrdiff_t>(rows.first) * width;
        for (std::int32_t x = 0; x < part.width; ++x, ++pixel) {
            const Covered columns = across[static_cast<std::size_t>(x)];
            const std::uint32_t behind = BackdropAt(part.left + x, part.top + y, backdrop);
            if (single) {
                const PixelValue colour = row[columns.first];
                *pixel = colour == kNoPixel ? behind : Shown(colour);
            } else {
                *pixel = Average(screen, width, columns, rows, behind);
            }
        }
    }
}

} // namespace

std::int32_t Zoomed(std::int32_t side, int zoom) {
    return std::max(1, static_cast<std::int32_t>(std::int64_t{side} * zoom / 100));
}

int FittingZoom(std::int32_t width, std::int32_t height, std::int32_t roomWidth, std::int32_t roomHeight) {
    if (width < 1 || height < 1) return 100;
    const std::int64_t fits =
        std::min(std::int64_t{roomWidth} * 100 / width, std::int64_t{roomHeight} * 100 / height);
    if (fits >= 100) return static_cast<int>(std::min<std::int64_t>(fits / 100 * 100, kMostZoom));
    return static_cast<int>(std::max<std::int64_t>(fits, 1));
}

int NextZoom(int zoom, int direction) {
    if (direction > 0) {
        const auto* next = std::upper_bound(std::begin(kZooms), std::end(kZooms), zoom);
        return next == std::end(kZooms) ? kMostZoom : *next;
    }
    const auto* next = std::lower_bound(std::begin(kZooms), std::end(kZooms), zoom);
    return next == std::begin(kZooms) ? kLeastZoom : next[-1];
}

void RenderView(const ScreenPixels& screen, std::int32_t width, std::int32_t height, int zoom,
                const ViewPart& part, Backdrop backdrop, std::vector<std::uint32_t>& out) {
    Render(screen, width, height, Zoomed(width, zoom), Zoomed(height, zoom), part, backdrop, out);
}

void RenderThumbnail(const ScreenPixels& screen, std::int32_t width, std::int32_t height,
                     std::int32_t toWidth, std::int32_t toHeight, std::vector<std::uint32_t>& out) {
    Render(screen, width, height, toWidth, toHeight, {0, 0, toWidth, toHeight}, Backdrop::Plain, out);
}

} // namespace lumafold
