#include "colour/remap.h"

#include "image/index_rows.h"

namespace lumafold {
namespace {

/// One-bit pictures know no palette: a pixel is set from this luminance on.
constexpr int kWhiteFrom = 129;
std::uint8_t BitOf(Rgb colour) { return Luminance(colour) < kWhiteFrom ? 0 : 1; }

} // namespace

RemapOptions RemapOptionsOf(const PluginSettings& settings) {
    return {settings.TransitionDither != 0 ? Dithering::Diffused : Dithering::None, settings.FastRemap != 0,
            settings.DitherBrightness, settings.DitherContrast};
}

int UnditheredIndex(Rgb colour, const Palette& palette, int bits, int count) {
    if (bits == 1) return BitOf(colour);
    return FindNearestColour(colour.red & 0xF8, colour.green & 0xF8, colour.blue & 0xF8, palette, count);
}

Remapper::Remapper(const Palette& palette, int bits, int count, const RemapOptions& options)
    : palette_(palette), bits_(bits), count_(count), options_(options),
      ready_(bits >= 1 && bits <= 8 && PrepareTables()) {}

/// To one bit no palette is looked at, so nothing is prepared.
bool Remapper::PrepareTables() {
    if (bits_ == 1) return true;
    if (!search_.Build(palette_, count_)) return false;
    if (SearchesEach()) return true;
    cache_ = BuildLookupCache(search_);
    search_ = NearestSearch(); // far larger than the cache made from it
    return static_cast<bool>(cache_);
}

OwnedDib Remapper::Reduce(const DibHeader& picture) const {
    const int bits = picture.biBitCount;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24) return {};
    OwnedDib target = DibCreate(picture.biWidth, picture.biHeight, &palette_, bits_);
    const bool diffused = options_.dithering == Dithering::Diffused;
    const bool filled = target && (diffused ? FillDiffused(picture, *target) : FillNearest(picture, *target));
    return filled ? std::move(target) : OwnedDib();
}

/// What stands for black or white: the nearest, but if the fast way is chosen an exact one or, where there is
/// none, its cell's.
int Remapper::FindExtreme(int level) const {
    if (!options_.fast) return FindNearestColour(level, level, level, palette_, count_);
    const int exact = FindExactColour(level, level, level, palette_, count_);
    if (exact >= 0) return exact;
    const auto channel = static_cast<std::uint8_t>(level);
    return UnditheredIndex({channel, channel, channel}, palette_, bits_, count_);
}

/// The index of each entry of an indexed picture's table.
Remapper::IndexMap Remapper::MapTable(const DibHeader& source) const {
    IndexMap map{};
    Palette table;
    const auto entries = static_cast<std::size_t>(DibGetPalette(source, table));
    if (bits_ == 1) {
        for (std::size_t i = 0; i < entries; ++i)
            map[i] = BitOf(table[i]);
    } else if (source.biBitCount == 1) {
        map[0] = static_cast<std::uint8_t>(FindExtreme(0));
        map[1] = static_cast<std::uint8_t>(FindExtreme(255));
    } else {
        // As many entries as the depth allows, not count_: the black ones behind the palette's own can be
        // chosen.
        for (std::size_t i = 0; i < entries; ++i)
            map[i] = static_cast<std::uint8_t>(
                FindNearestColour(table[i].red, table[i].green, table[i].blue, palette_, 1 << bits_));
    }
    return map;
}

bool Remapper::FillNearest(const DibHeader& source, DibHeader& target) const {
    const ConstRowView rows(source);
    const auto width = static_cast<std::size_t>(rows.Width());
    if (rows.Bits() != 24) {
        const IndexMap map = MapTable(source);
        return FillIndexed(target, [&](std::int32_t y, std::uint8_t* indices) {
            UnpackIndices(rows.Row(y), rows.Bits(), {indices, width});
            for (std::size_t x = 0; x < width; ++x)
                indices[x] = map[indices[x]];
        });
    }
    const auto fill = [&](auto indexOf) {
        return FillIndexed(target, [&](std::int32_t y, std::uint8_t* indices) {
            const std::uint8_t* pixel = rows.Row(y);
            for (std::size_t x = 0; x < width; ++x, pixel += 3)
                indices[x] = indexOf(pixel);
        });
    };
    if (bits_ == 1) return fill([](const std::uint8_t* pixel) { return BitOf(LoadRgb(pixel)); });
    // True colour goes through the cache whether or not the fast way is chosen.
    return fill([cache = cache_.data()](const std::uint8_t* pixel) { return cache[CellOf(LoadRgb(pixel))]; });
}

} // namespace lumafold
