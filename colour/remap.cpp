#include "colour/remap.h"

#include "colour/palettes.h"
#include "colour/rows.h"
#include "settings/settings.h"

namespace lumafold {
namespace {

/// One-bit pictures know no palette: a pixel is set from this luminance on.
constexpr int kWhiteFrom = 129;
std::uint8_t BitOf(Rgb colour) { return Luminance(colour) < kWhiteFrom ? 0 : 1; }

} // namespace

Remapper::Remapper(const Palette& palette, int bits, int count)
    : palette_(palette), bits_(bits), count_(count) {}

DibHandle Remapper::Remap(DibHandle picture) { return Reduce(picture, &Remapper::FillNearest); }

DibHandle Remapper::Reduce(DibHandle picture, bool (Remapper::*fill)(const DibHeader*, DibHeader*)) {
    const LockedDib source(picture);
    if (!source || !IsReducible(*source) || bits_ < 1 || bits_ > 8) return 0;
    OwnedDib result(DibCreate(source->biWidth, source->biHeight, &palette_, bits_));
    {
        const LockedDib target(result.Get());
        if (!target || !(this->*fill)(source.Get(), target.Get())) return 0;
    }
    return result.Release();
}

bool Remapper::PrepareSearch() { return search_ || search_.Build(palette_, count_); }

bool Remapper::PrepareCache() {
    if (cache_) return true;
    // The search is far larger than the cache made from it, so it does not stay.
    NearestSearch search;
    if (!search.Build(palette_, count_)) return false;
    cache_ = BuildLookupCache(search);
    return static_cast<bool>(cache_);
}

/// What stands for black or white: an exact one if the fast way is chosen and there is one, else the nearest;
/// the fast way's nearest is its cell's.
int Remapper::FindExtreme(int level) const {
    if (pluginSettings.FastRemap == 0) return FindNearestColour(level, level, level, palette_, count_);
    const int exact = FindExactColour(level, level, level, palette_, count_);
    if (exact >= 0) return exact;
    const int cellLevel = level & 0xF8;
    return FindNearestColour(cellLevel, cellLevel, cellLevel, palette_, count_);
}

/// The index of each entry of an indexed picture's table.
Remapper::IndexMap Remapper::MapTable(const DibHeader& source) const {
    IndexMap map{};
    Palette table;
    const auto entries = static_cast<std::size_t>(DibGetPalette(&source, table));
    if (bits_ == 1) {
        for (std::size_t i = 0; i < entries; ++i)
            map[i] = BitOf(table[i]);
    } else if (source.biBitCount == 1) {
        map[0] = static_cast<std::uint8_t>(FindExtreme(0));
        map[1] = static_cast<std::uint8_t>(FindExtreme(255));
    } else {
        // As many entries as the depth allows, not count_: the black ones behind the palette's own can be
        // chosen.
        for (std::size_t i = 0; i < entries; ++i) {
            const Rgb colour = table[i];
            map[i] = static_cast<std::uint8_t>(
                FindNearestColour(colour.red, colour.green, colour.blue, palette_, 1 << bits_));
        }
    }
    return map;
}

bool Remapper::FillNearest(const DibHeader* source, DibHeader* target) {
    const ConstRowView rows(source);
    const auto width = static_cast<std::size_t>(rows.Width());
    if (rows.Bits() != 24) {
        const IndexMap map = MapTable(*source);
        return FillIndexed(target, [&](std::int32_t y, std::uint8_t* indices) {
            UnpackRow(rows.Row(y), rows.Bits(), rows.Width(), indices);
            for (std::size_t x = 0; x < width; ++x)
                indices[x] = map[indices[x]];
        });
    }
    if (bits_ == 1) {
        return FillIndexed(target, [&](std::int32_t y, std::uint8_t* indices) {
            const std::uint8_t* pixel = rows.Row(y);
            for (std::size_t x = 0; x < width; ++x, pixel += 3)
                indices[x] = BitOf({pixel[2], pixel[1], pixel[0]});
        });
    }
    // True colour goes through the cache whether or not the fast way is chosen.
    if (!PrepareCache()) return false;
    return FillIndexed(target, [&, cache = cache_.data()](std::int32_t y, std::uint8_t* indices) {
        const std::uint8_t* pixel = rows.Row(y);
        for (std::size_t x = 0; x < width; ++x, pixel += 3) {
            indices[x] = cache[CellOf(MakeColour(pixel[2], pixel[1], pixel[0]))];
        }
    });
}

DibHandle RemapImage(DibHandle picture, const Palette& palette, int bits, int count) {
    return Remapper(palette, bits, count).Remap(picture);
}

} // namespace lumafold
