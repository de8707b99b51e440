// Rollerblind: the source parts at its centre line and its halves slide to the edges. In the opening the
// target's two edges meet at that line, darkened towards it as if the opening were deep.
#include <numbers>

#include "numbers/portable_math.h"
#include "transitions/run.h"

namespace lumafold {
namespace {

/// The line the picture parts at: a row, the halves moving up and down, or a column.
enum class BlindLine { Row, Column };

/// `half` is the centre line, `reach` what each side has moved by.
struct Opening {
    std::int32_t half, reach;
};

/// `count` whole rows or columns.
void CopyLines(BlindLine line, DibHeader& frame, std::int32_t to, const DibHeader& picture, std::int32_t from,
               std::int32_t count) {
    if (line == BlindLine::Row) {
        DibCopyRect(frame, 0, to, picture, 0, from, frame.biWidth, count);
    } else {
        DibCopyRect(frame, to, 0, picture, from, 0, count, frame.biHeight);
    }
}

/// The source parted over the target, of which both edges show; `size` is the way's.
void Part(BlindLine line, Opening opening, std::int32_t size, const Gap& gap, DibHeader& frame) {
    const auto [half, reach] = opening;
    CopyLines(line, frame, 0, gap.source, reach, half - reach);
    // One line more than half of an even picture has, for the odd ones; what is too much is clipped.
    CopyLines(line, frame, half + reach, gap.source, half, half - reach + 1);
    CopyLines(line, frame, half - reach, gap.target, 0, reach);
    CopyLines(line, frame, half, gap.target, size - reach, reach);
}

/// The brightness out of 255 of each line of the opening, by its distance from the centre line.
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
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = Darken(row[i], shade);
}
void DarkenBytes(std::uint8_t* __restrict row, const std::uint8_t* __restrict shades, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = Darken(row[i], shades[i]);
}

// The centre line is darkened twice, from either side, and the opening's first line never (docs/quirks.md
// 45).

void ShadeRows(const RowView& rows, std::int32_t half, const Array<std::uint8_t>& shades) {
    for (std::int32_t i = 0; i < static_cast<std::int32_t>(shades.size()); ++i) {
        const std::uint8_t shade = shades[static_cast<std::size_t>(i)];
        if (shade == 255) return; // and lighter still further out
        DarkenRow(rows.Row(half - i), rows.RowBytes(), shade);
        DarkenRow(rows.Row(half + i), rows.RowBytes(), shade);
    }
}

bool ShadeColumns(const RowView& rows, std::int32_t half, const Array<std::uint8_t>& shades) {
    const std::size_t columns = 2 * shades.size() - 1, centre = shades.size() - 1;
    Array<std::uint8_t> spread(columns * 3);
    if (!spread) return false;
    for (std::size_t i = 0; i < spread.size(); ++i) {
        const std::size_t column = i / 3;
        spread[i] = shades[column < centre ? centre - column : column - centre];
    }
    for (std::int32_t y = 0; y < rows.Height(); ++y) {
        std::uint8_t* line = rows.Row(y) + static_cast<std::size_t>(half) * 3;
        DarkenRow(line, 3, shades[0]);
        DarkenBytes(line - centre * 3, spread.data(), spread.size());
    }
    return true;
}

struct Rollerblind {
    std::int64_t step; ///< percent a frame
    bool shades;
    BlindLine line;

    static std::optional<Rollerblind> Plan(const PluginSettings& settings, CanvasSize, BlindLine line) {
        if (settings.TransitionRollerblindStep == 0) return {};
        return Rollerblind{settings.TransitionRollerblindStep, settings.TransitionRollerblindShading != 0,
                           line};
    }
    std::int64_t Frames() const { return LoopCount(0, 100, step); }

    /// The first frame repeats the source (docs/quirks.md 38).
    OwnedDib Frame(const Gap& gap, std::int64_t index) const {
        OwnedDib frame = DibCreate(gap.size.width, gap.size.height, nullptr, 24);
        if (!frame) return frame;
        const std::int32_t size = line == BlindLine::Row ? gap.size.height : gap.size.width;
        const std::int64_t percent = index * step;
        const Opening opening{size / 2, static_cast<std::int32_t>(size / 2 * percent / 100)};
        Part(line, opening, size, gap, *frame);
        if (!shades || opening.reach <= 1) return frame;
        return Shade(opening, percent, frame.Rows()) ? std::move(frame) : OwnedDib();
    }

    bool Shade(Opening opening, std::int64_t percent, const RowView& rows) const {
        const Array<std::uint8_t> levels = Shades(opening.reach, percent);
        if (!levels) return false;
        if (line == BlindLine::Column) return ShadeColumns(rows, opening.half, levels);
        ShadeRows(rows, opening.half, levels);
        return true;
    }
};

} // namespace

constinit const Effect kRollerblindHorizontal = EffectOf<Rollerblind, BlindLine::Row>();
constinit const Effect kRollerblindVertical = EffectOf<Rollerblind, BlindLine::Column>();

} // namespace lumafold
