#include "hosts/cli/contact_sheet.h"

#include <algorithm>
#include <cstdio>

#include "hosts/cli/sheet_font.h"
#include "image/resample.h"

namespace lumafold {
namespace {

constexpr PixelValue kPaper = MakeColour(0x1E, 0x20, 0x24);
constexpr PixelValue kInk = MakeColour(0xB8, 0xBC, 0xC4);
constexpr std::int32_t kMargin = 10, kLabelGap = 4;

void DrawLabel(DibHeader& sheet, std::int32_t x, std::int32_t y, const std::string& label,
               std::int32_t width) {
    const std::int32_t right = x + width;
    for (const char letter : label) {
        if (x + kGlyphWidth > right) return;
        const bool printable = letter >= ' ' && letter <= '~';
        const auto& glyph = kGlyphs[printable ? letter - ' ' : '?' - ' '];
        for (int column = 0; column < kGlyphWidth; ++column) {
            for (int row = 0; row < kGlyphHeight; ++row) {
                if (glyph[column] >> row & 1) DibSetPixel(sheet, x + column, y + row, kInk);
            }
        }
        x += kGlyphAdvance;
    }
}

/// Where things lie: all cells are as large as the largest picture.
struct Grid {
    std::int32_t columns, rows;
    std::int32_t cellWidth = 1, cellHeight = 1;

    Grid(std::span<const SheetCell> cells, std::size_t mostColumns) {
        const auto count = static_cast<std::int32_t>(cells.size());
        columns = std::min(count, static_cast<std::int32_t>(mostColumns));
        rows = (count + columns - 1) / columns;
        for (const SheetCell& cell : cells) {
            std::int32_t width = 0, height = 0;
            if (!DibQuery(cell.picture.Get(), &width, &height, nullptr, nullptr)) continue;
            cellWidth = std::max(cellWidth, width);
            cellHeight = std::max(cellHeight, height);
        }
    }
    std::int32_t StepX() const { return cellWidth + kMargin; }
    std::int32_t StepY() const { return cellHeight + kLabelGap + kGlyphHeight + kMargin; }
    /// How far the label of cell `index` may run.
    std::int32_t LabelWidth(std::span<const SheetCell> cells, std::size_t index) const {
        const auto inRow = static_cast<std::size_t>(columns);
        const std::size_t first = index++;
        while (index < cells.size() && index % inRow != 0 && cells[index].label.empty())
            ++index;
        return static_cast<std::int32_t>(index - first) * StepX() - kMargin;
    }
    std::int32_t Width() const { return columns * StepX() + kMargin; }
    std::int32_t Height() const { return rows * StepY() + kMargin; }
};

std::string FrameLabel(std::size_t index, std::int32_t delay) {
    char text[48];
    std::snprintf(text, sizeof(text), "%zu  %d.%02d s", index, delay / 100, std::max(delay, 0) % 100);
    return text;
}

/// What a viewer shows after each frame.
class Screen {
public:
    explicit Screen(const Animation& animation)
        : picture_(DibCreate(animation.width, animation.height, nullptr, 24)) {}

    bool Show(const AnimationFrame& frame) {
        OwnedDib opaque = frame.image ? DibToTrueColour(*frame.image) : OwnedDib();
        if (!opaque) return false;
        if (frame.transparentIndex < 0) {
            picture_ = std::move(opaque);
            return true;
        }
        return Overlay(frame, *opaque);
    }
    const DibHeader& Picture() const { return *picture_; }

private:
    bool Overlay(const AnimationFrame& frame, const DibHeader& opaque) {
        const DibHeader& indices = *frame.image;
        if (!picture_) return false;
        for (std::int32_t y = 0; y < indices.biHeight; ++y) {
            for (std::int32_t x = 0; x < indices.biWidth; ++x) {
                if (DibGetPixel(indices, x, y) == static_cast<PixelValue>(frame.transparentIndex)) continue;
                DibSetPixel(*picture_, x, y, DibGetPixel(opaque, x, y));
            }
        }
        return true;
    }

    OwnedDib picture_;
};

} // namespace

OwnedDib ShrinkPicture(const DibHeader& picture, std::int32_t percent) {
    OwnedDib colour = DibToTrueColour(picture);
    if (!colour || percent >= 100) return colour;
    // A very long side would leave nothing of the short one.
    const auto least = [](std::int32_t side) { return (99 + side) / side; };
    return DibScale(*colour, std::max(percent, least(colour->biWidth)),
                    std::max(percent, least(colour->biHeight)));
}

OwnedDib SheetPicture(const DibHeader& picture) {
    return ShrinkPicture(picture,
                         FitPercent(picture.biWidth, picture.biHeight, kSheetCellWidth, kSheetCellHeight));
}

OwnedDib LayOutSheet(std::span<const SheetCell> cells, std::size_t columns) {
    if (cells.empty()) return {};
    const Grid grid(cells, columns);
    OwnedDib sheet = DibCreateFlat(grid.Width(), grid.Height(), kPaper);
    if (!sheet) return sheet;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::int32_t x = kMargin + static_cast<std::int32_t>(i) % grid.columns * grid.StepX();
        const std::int32_t y = kMargin + static_cast<std::int32_t>(i) / grid.columns * grid.StepY();
        DrawLabel(*sheet, x, y + grid.cellHeight + kLabelGap, cells[i].label, grid.LabelWidth(cells, i));
        if (!cells[i].picture) continue;
        const OwnedDib source = DibToTrueColour(*cells[i].picture);
        if (!source) return {};
        DibCopyRect(*sheet, x + (grid.cellWidth - source->biWidth) / 2,
                    y + (grid.cellHeight - source->biHeight) / 2, *source, 0, 0, source->biWidth,
                    source->biHeight);
    }
    return sheet;
}

std::vector<SheetCell> AnimationCells(const Animation& animation, std::size_t most) {
    const std::size_t count = animation.frames.size();
    const std::size_t shown = std::min(count, most);
    const auto chosen = [&](std::size_t cell) { return shown < 2 ? 0 : cell * (count - 1) / (shown - 1); };
    std::vector<SheetCell> cells;
    Screen screen(animation);
    for (std::size_t i = 0; i < count && cells.size() < shown; ++i) {
        const bool wanted = i == chosen(cells.size());
        const bool shinesThrough = i + 1 < count && animation.frames[i + 1].transparentIndex >= 0;
        if (!wanted && !shinesThrough) continue;
        if (!screen.Show(animation.frames[i])) return {};
        if (!wanted) continue;
        cells.push_back({SheetPicture(screen.Picture()), FrameLabel(i, animation.frames[i].delay)});
        if (!cells.back().picture) return {};
    }
    return cells;
}

OwnedDib AnimationSheet(const Animation& animation) {
    return LayOutSheet(AnimationCells(animation, kMostSheetCells), kSheetColumns);
}

} // namespace lumafold
