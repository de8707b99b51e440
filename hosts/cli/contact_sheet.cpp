#include "hosts/cli/contact_sheet.h"

#include <algorithm>
#include <cstdio>
#include <new>

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

/// Lays the pixels that are not transparent over the screen, which is as large or larger.
void Overlay(DibHeader& screen, const FrameView& frame, const DibHeader& opaque) {
    for (std::int32_t y = 0; y < opaque.biHeight; ++y) {
        for (std::int32_t x = 0; x < opaque.biWidth; ++x) {
            if (DibGetPixel(frame.picture, x, y) == static_cast<PixelValue>(frame.transparentIndex)) continue;
            DibSetPixel(screen, x, y, DibGetPixel(opaque, x, y));
        }
    }
}

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

void SheetCells::Begin(const AnimationFacts& facts, std::size_t frames) {
    frames_ = frames;
    added_ = 0;
    chosen_.clear();
    screen_ = DibCreate(facts.width, facts.height, nullptr, 24);
    if (!screen_) throw std::bad_alloc();
}

void SheetCells::Show(const FrameView& frame) {
    OwnedDib opaque = DibToTrueColour(frame.picture);
    if (!opaque) throw std::bad_alloc();
    if (frame.transparentIndex < 0) {
        screen_ = std::move(opaque);
    } else {
        Overlay(*screen_, frame, *opaque);
    }
}

void SheetCells::Add(const FrameView& frame) {
    Show(frame);
    const std::size_t index = added_++, shown = std::min(frames_, most_), cell = chosen_.size();
    if (cell == shown || index != (shown < 2 ? 0 : cell * (frames_ - 1) / (shown - 1))) return;
    chosen_.push_back({index, frame.delay, SheetPicture(*screen_)});
    if (!chosen_.back().picture) throw std::bad_alloc();
}

std::vector<SheetCell> SheetCells::Take(std::span<const std::int32_t> delays) {
    std::vector<SheetCell> cells;
    for (Chosen& one : chosen_) {
        const std::int32_t delay = delays.empty() ? one.delay : delays[one.frame];
        cells.push_back({std::move(one.picture), FrameLabel(one.frame, delay)});
    }
    return cells;
}

} // namespace lumafold
