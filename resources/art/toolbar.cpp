// The icons of the desktop program's toolbar: plain shapes in a square of 24 units, drawn as sharp as each
// size allows.
#include <cmath>

#include "resources/art/art.h"
#include "resources/texts/toolbar_icons.h"

namespace lumafold::art {
namespace {

using paint::Point;

constexpr double kUnits = 24;
constexpr unsigned kInk = 0x3A4150, kBlue = 0x2F6FDB, kAmber = 0xF09A1A, kGreen = 0x2E9E5B, kPaper = 0xFFFFFF,
                   kFolder = 0xF2B84B, kFolderBack = 0xC98F22, kSteel = 0x8A93A5;

/// Shapes over each other, the last one on top.
class Icon {
public:
    void Polygon(std::vector<Point> outline, unsigned colour) {
        Put(colour, [outline = std::move(outline)](Point at) { return paint::Inside(at, outline); });
    }
    void Box(double left, double top, double right, double bottom, unsigned colour) {
        Put(colour, [=](Point at) { return at.x >= left && at.x < right && at.y >= top && at.y < bottom; });
    }
    void Disc(double x, double y, double radius, unsigned colour) {
        Put(colour, [=](Point at) { return std::hypot(at.x - x, at.y - y) < radius; });
    }
    /// With flat ends.
    void Line(Point from, Point to, double width, unsigned colour) {
        const double length = std::hypot(to.x - from.x, to.y - from.y);
        const double x = (to.y - from.y) / length * width / 2, y = (from.x - to.x) / length * width / 2;
        Polygon(
            {{from.x + x, from.y + y}, {to.x + x, to.y + y}, {to.x - x, to.y - y}, {from.x - x, from.y - y}},
            colour);
    }

    Sample At(Point at) const {
        for (auto shape = shapes_.rbegin(); shape != shapes_.rend(); ++shape) {
            if (shape->holds(at)) return {paint::Tint(shape->colour), 1};
        }
        return {{}, 0};
    }

private:
    struct Shape {
        std::function<bool(Point)> holds;
        unsigned colour;
    };
    void Put(unsigned colour, std::function<bool(Point)> holds) {
        shapes_.push_back({std::move(holds), colour});
    }

    std::vector<Shape> shapes_;
};

void DrawRun(Icon& icon) {
    icon.Polygon({{3, 6}, {12, 3}, {12, 18}, {3, 21}}, kAmber);
    icon.Polygon({{12, 3}, {21, 6}, {21, 21}, {12, 18}}, kBlue);
    icon.Polygon({{12, 3}, {16, 4.4}, {16, 19.4}, {12, 18}}, 0x5C90E8);
    icon.Polygon({{8, 4.4}, {12, 3}, {12, 18}, {8, 19.4}}, 0xFFC15C);
}
void DrawOpen(Icon& icon) {
    icon.Polygon({{2, 5}, {9, 5}, {11, 7}, {20, 7}, {20, 20}, {2, 20}}, kFolderBack);
    icon.Box(5, 9, 19, 16, kPaper);
    icon.Polygon({{5, 11}, {23, 11}, {20, 20}, {2, 20}}, kFolder);
}
void DrawSave(Icon& icon) {
    icon.Polygon({{3, 3}, {18, 3}, {21, 6}, {21, 21}, {3, 21}}, kBlue);
    icon.Box(7, 3, 17, 9, kPaper);
    icon.Box(13, 4, 15.5, 8, kBlue);
    icon.Box(6, 12, 18, 21, kPaper);
    icon.Box(8, 14, 16, 15, kSteel);
    icon.Box(8, 17, 16, 18, kSteel);
}
void DrawCopy(Icon& icon) {
    icon.Box(3, 3, 15, 17, kSteel);
    icon.Box(4, 4, 14, 16, kPaper);
    icon.Box(8, 7, 21, 22, kBlue);
    icon.Box(9, 8, 20, 21, kPaper);
    icon.Polygon({{10, 19}, {13.5, 13}, {16, 17}, {17, 15.5}, {19, 19}}, kGreen);
    icon.Disc(17.2, 11.6, 1.5, kAmber);
}
void DrawFirst(Icon& icon) {
    icon.Box(5, 5, 7.5, 19, kInk);
    icon.Polygon({{19, 5}, {19, 19}, {8.5, 12}}, kInk);
}
void DrawPrevious(Icon& icon) {
    icon.Polygon({{14, 5}, {14, 19}, {4, 12}}, kInk);
    icon.Box(16, 5, 19, 19, kInk);
}
void DrawPlay(Icon& icon) { icon.Polygon({{6, 3.5}, {20.5, 12}, {6, 20.5}}, kGreen); }
void DrawPause(Icon& icon) {
    icon.Box(5, 4, 10, 20, kAmber);
    icon.Box(14, 4, 19, 20, kAmber);
}
void DrawNext(Icon& icon) {
    icon.Box(5, 5, 8, 19, kInk);
    icon.Polygon({{10, 5}, {20, 12}, {10, 19}}, kInk);
}
void DrawLast(Icon& icon) {
    icon.Polygon({{5, 5}, {15.5, 12}, {5, 19}}, kInk);
    icon.Box(16.5, 5, 19, 19, kInk);
}
void DrawGlass(Icon& icon) {
    icon.Line({15, 15}, {21.5, 21.5}, 3.4, kInk);
    icon.Disc(10, 10, 7.6, kInk);
    icon.Disc(10, 10, 5.8, 0xEAF2FF);
}
void DrawZoomOut(Icon& icon) {
    DrawGlass(icon);
    icon.Box(6.5, 9, 13.5, 11, kBlue);
}
void DrawZoomIn(Icon& icon) {
    DrawZoomOut(icon);
    icon.Box(9, 6.5, 11, 13.5, kBlue);
}
void DrawFit(Icon& icon) {
    icon.Box(7, 8, 17, 16, kBlue);
    icon.Box(8, 9, 16, 15, 0xDCE8FC);
    for (const double x : {3.0, 21.0}) {
        for (const double y : {4.0, 20.0}) {
            const double inX = x < 12 ? 1 : -1, inY = y < 12 ? 1 : -1;
            icon.Polygon({{x, y}, {x + 5 * inX, y}, {x + 5 * inX, y + 2 * inY}, {x, y + 2 * inY}}, kInk);
            icon.Polygon({{x, y}, {x + 2 * inX, y}, {x + 2 * inX, y + 5 * inY}, {x, y + 5 * inY}}, kInk);
        }
    }
}
void DrawActual(Icon& icon) {
    icon.Box(2, 5, 22, 19, kInk);
    icon.Box(3, 6, 21, 18, kPaper);
    icon.Polygon({{5.5, 9.4}, {8, 8}, {8, 16}, {6.2, 16}, {6.2, 10.4}, {5.5, 10.8}}, kInk);
    icon.Polygon({{15.5, 9.4}, {18, 8}, {18, 16}, {16.2, 16}, {16.2, 10.4}, {15.5, 10.8}}, kInk);
    icon.Disc(12, 10.3, 1.2, kInk);
    icon.Disc(12, 14.2, 1.2, kInk);
}
void DrawCheckerboard(Icon& icon) {
    icon.Box(3, 3, 21, 21, kInk);
    for (int square = 0; square < 16; ++square) {
        const int column = square % 4, row = square / 4;
        icon.Box(4 + 4 * column, 4 + 4 * row, 8 + 4 * column, 8 + 4 * row,
                 (column + row) % 2 != 0 ? 0xA9B2C2 : kPaper);
    }
}
void DrawHelp(Icon& icon) {
    icon.Disc(12, 12, 9.6, kBlue);
    icon.Polygon({{8, 9.6},
                  {8.4, 7.6},
                  {10, 6},
                  {12.2, 5.6},
                  {14.6, 6.2},
                  {16, 8},
                  {15.8, 10.2},
                  {14.2, 11.8},
                  {13.2, 12.8},
                  {13, 14.4},
                  {10.8, 14.4},
                  {11, 12.2},
                  {12.4, 10.8},
                  {13.6, 9.6},
                  {13.4, 8.2},
                  {12.2, 7.6},
                  {10.8, 8},
                  {10.2, 9.6}},
                 kPaper);
    icon.Disc(11.9, 17.1, 1.4, kPaper);
}

constexpr struct {
    int place;
    void (*draw)(Icon&);
} kIcons[] = {
    {LUMAFOLD_ICON_RUN, DrawRun},
    {LUMAFOLD_ICON_OPEN, DrawOpen},
    {LUMAFOLD_ICON_SAVE, DrawSave},
    {LUMAFOLD_ICON_COPY, DrawCopy},
    {LUMAFOLD_ICON_FIRST, DrawFirst},
    {LUMAFOLD_ICON_PREVIOUS, DrawPrevious},
    {LUMAFOLD_ICON_PLAY, DrawPlay},
    {LUMAFOLD_ICON_PAUSE, DrawPause},
    {LUMAFOLD_ICON_NEXT, DrawNext},
    {LUMAFOLD_ICON_LAST, DrawLast},
    {LUMAFOLD_ICON_SMALLER, DrawZoomOut},
    {LUMAFOLD_ICON_LARGER, DrawZoomIn},
    {LUMAFOLD_ICON_ACTUAL, DrawActual},
    {LUMAFOLD_ICON_FIT, DrawFit},
    {LUMAFOLD_ICON_CHECKERBOARD, DrawCheckerboard},
    {LUMAFOLD_ICON_HELP, DrawHelp},
};
static_assert(std::size(kIcons) == LUMAFOLD_ICONS);

/// Half-way to a light grey of its own brightness, and half as strong.
Sample Faded(const Sample& sample) {
    const double cover = sample.cover;
    if (cover == 0) return sample;
    const paint::Colour colour = sample.light * (1 / cover);
    const double grey = std::max(0.3 * colour.red + 0.6 * colour.green + 0.1 * colour.blue, 0.44);
    return {paint::Colour{grey, grey, grey} * (cover / 3), cover / 3};
}

} // namespace

Surface ToolbarIcons(int size, IconState state) {
    std::vector<Icon> icons(LUMAFOLD_ICONS);
    for (const auto& icon : kIcons)
        icon.draw(icons[static_cast<std::size_t>(icon.place)]);
    const double scale = kUnits / size;
    Surface strip = Draw(size * LUMAFOLD_ICONS, size, 6, [&](Point at) {
        const auto place = static_cast<std::size_t>(at.x / size);
        return icons[place].At({(at.x - static_cast<double>(place) * size) * scale, at.y * scale});
    });
    if (state == IconState::Faded) {
        for (Sample& sample : strip.pixels)
            sample = Faded(sample);
    }
    return strip;
}

} // namespace lumafold::art
