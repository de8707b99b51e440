// Rollerblind: the source parts at its centre line and its halves slide to the edges. In the gap the target's
// two edges meet at that line, darkened towards it as if the gap were deep.
#include <numbers>

#include "numbers/portable_math.h"
#include "transitions/effect_run.h"
#include "transitions/effects.h"

namespace lumafold {
namespace {

/// The line the picture parts at: a row, the halves moving up and down, or a column.
enum class Line { Row, Column };

/// How the gap stands: `half` is the centre line, `reach` what each side has moved by.
struct Gap {
    std::int32_t half, reach;
};
Gap GapAt(std::int32_t size, std::int64_t percent) {
    const std::int32_t half = size / 2;
    return {half, static_cast<std::int32_t>(half * percent / 100)};
}

/// `count` whole rows or columns.
void CopyLines(Line line, DibHeader* frame, std::int32_t to, const DibHeader* picture, std::int32_t from,
               std::int32_t count) {
    if (line == Line::Row) {
        DibCopyRect(frame, 0, to, picture, 0, from, frame->biWidth, count);
    } else {
        DibCopyRect(frame, to, 0, picture, from, 0, count, frame->biHeight);
    }
}

void Part(Line line, Gap gap, DibHeader* frame, const DibHeader* source, const DibHeader* target) {
    const std::int32_t size = line == Line::Row ? frame->biHeight : frame->biWidth;
    const auto [half, reach] = gap;
    CopyLines(line, frame, 0, source, reach, half - reach);
    // One line more than half of an even picture has, for the odd ones; what is too much is clipped.
    CopyLines(line, frame, half + reach, source, half, half - reach + 1);
    CopyLines(line, frame, half - reach, target, 0, reach);
    CopyLines(line, frame, half, target, size - reach, reach);
}

/// The brightness out of 255 of each line of the gap, by its distance from the centre line.
Array<std::uint8_t> Shades(std::int32_t reach, std::int64_t percent) {
    Array<std::uint8_t> shades(static_cast<std::size_t>(reach));
    for (std::size_t i = 0; i < shades.size(); ++i) {
        const double depth = static_cast<double>(reach - static_cast<std::int32_t>(i) - 1) / reach;
        const double sine = PortableSin(depth * 90 * std::numbers::pi / 180);
        const int dark = static_cast<int>(static_cast<double>(100 - percent) * 0.01 * sine * 255);
        shades[i] = static_cast<std::uint8_t>(std::clamp(300 - dark, 0, 255));
    }
    return shades;
}

constexpr std::uint8_t Darken(std::uint8_t level, std::uint8_t shade) {
    return static_cast<std::uint8_t>(static_cast<std::uint16_t>(level * shade) / 255);
}

void DarkenRow(std::uint8_t* row, std::size_t bytes, std::uint8_t shade) {
    for (std::size_t i = 0; i < bytes; ++i) {
        row[i] = Darken(row[i], shade);
    }
}
void DarkenBytes(std::uint8_t* __restrict row, const std::uint8_t* __restrict shades, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        row[i] = Darken(row[i], shades[i]);
    }
}

// The centre line is darkened twice, from either side, and the gap's first line never: wanted.

void ShadeRows(const RowView& rows, std::int32_t half, const Array<std::uint8_t>& shades) {
    const std::size_t bytes = static_cast<std::size_t>(rows.Width()) * 3;
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(shades.size()); ++i) {
        const std::uint8_t shade = shades[static_cast<std::size_t>(i)];
        if (shade == 255) return; // and lighter still further out
        DarkenRow(rows.Row(half - i), bytes, shade);
        DarkenRow(rows.Row(half + i), bytes, shade);
    }
}

bool ShadeColumns(const RowView& rows, std::int32_t half, const Array<std::uint8_t>& shades) {
    const std::size_t columns = 2 * shades.size() - 1;
    Array<std::uint8_t> spread(columns * 3);
    if (!spread) return false;
    for (std::size_t i = 0; i < spread.size(); ++i) {
        const std::size_t column = i / 3, centre = shades.size() - 1;
        spread[i] = shades[column < centre ? centre - column : column - centre];
    }
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* centre = rows.Row(y) + static_cast<std::size_t>(half) * 3;
        DarkenRow(centre, 3, shades[0]);
        DarkenBytes(centre - (shades.size() - 1) * 3, spread.data(), spread.size());
    }
    return true;
}

bool Shade(Line line, Gap gap, std::int64_t percent, DibHeader* frame) {
    const Array<std::uint8_t> shades = Shades(gap.reach, percent);
    if (!shades) return false;
    const RowView rows(frame);
    if (line == Line::Column) return ShadeColumns(rows, gap.half, shades);
    ShadeRows(rows, gap.half, shades);
    return true;
}

OwnedDib RollerblindFrame(const EffectRun& run, Line line, std::int64_t percent, bool shading) {
    OwnedDib frame(DibCreate(run.Width(), run.Height(), nullptr, 24));
    const LockedDib locked(frame.Get());
    if (!locked) return {};
    const Gap gap = GapAt(line == Line::Row ? run.Height() : run.Width(), percent);
    Part(line, gap, locked.Get(), run.Source(), run.Target());
    if (shading && gap.reach > 1 && !Shade(line, gap, percent, locked.Get())) return {};
    return frame;
}

int Rollerblind(TransitionContext& context, Line line) {
    EffectRun run(context);
    const std::int64_t step = pluginSettings.TransitionRollerblindStep;
    if (!run || step == 0) return kEffectFailed;
    const bool shading = pluginSettings.TransitionRollerblindShading != 0;
    // The first frame repeats the source: wanted.
    for (std::int64_t p = 0; p < 100; p += step) {
        if (!run.Emit(RollerblindFrame(run, line, p, shading))) return kEffectFailed;
    }
    return kEffectDone;
}

} // namespace

int RollerblindHorizontal(TransitionContext& context) { return Rollerblind(context, Line::Row); }
int RollerblindVertical(TransitionContext& context) { return Rollerblind(context, Line::Column); }

std::int64_t RollerblindHorizontalFrames(CanvasSize) {
    const std::int64_t step = pluginSettings.TransitionRollerblindStep;
    return step == 0 ? 0 : 1 + LoopCount(0, 100, step);
}
std::int64_t RollerblindVerticalFrames(CanvasSize canvas) { return RollerblindHorizontalFrames(canvas); }

} // namespace lumafold
