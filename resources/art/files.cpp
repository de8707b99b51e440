#include "resources/art/files.h"

#include <cmath>

namespace lumafold::art {
namespace {

constexpr std::uint32_t kFileHeader = 14, kInfoHeader = 40, kDirectory = 6, kDirectoryEntry = 16;

void Put16(Bytes& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void Put32(Bytes& bytes, std::uint32_t value) {
    Put16(bytes, value);
    Put16(bytes, value >> 16);
}

void Append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

void PadRow(Bytes& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

std::uint8_t Level(double value) {
    return static_cast<std::uint8_t>(std::lround(paint::Clamp01(value) * 255));
}

void PutColour(Bytes& bytes, paint::Colour colour) {
    bytes.insert(bytes.end(), {Level(colour.blue), Level(colour.green), Level(colour.red)});
}

void PutInfoHeader(Bytes& bytes, int width, int height, std::uint32_t bits, std::size_t size) {
    Put32(bytes, kInfoHeader);
    Put32(bytes, static_cast<std::uint32_t>(width));
    Put32(bytes, static_cast<std::uint32_t>(height));
    Put16(bytes, 1);
    Put16(bytes, bits);
    Put32(bytes, 0);
    Put32(bytes, static_cast<std::uint32_t>(size));
    for (int unused = 0; unused < 4; ++unused)
        Put32(bytes, 0);
}

Bytes BitmapFile(int width, int height, std::uint32_t bits, const Bytes& table, const Bytes& rows) {
    const auto before = static_cast<std::uint32_t>(kFileHeader + kInfoHeader + table.size());
    Bytes file{'B', 'M'};
    Put32(file, before + static_cast<std::uint32_t>(rows.size()));
    Put32(file, 0);
    Put32(file, before);
    PutInfoHeader(file, width, height, bits, rows.size());
    Append(file, table);
    Append(file, rows);
    return file;
}

bool Hides(const Sample& sample) { return sample.cover >= 0.5; }

/// Colours are stored as if they hid all behind them: the cover stands beside them.
Bytes ColourRows(const Surface& surface) {
    Bytes rows;
    for (int y = surface.height; y-- > 0;) {
        for (int x = 0; x < surface.width; ++x) {
            const Sample& sample = surface.At(x, y);
            PutColour(rows, sample.light * (sample.cover > 0 ? 1 / sample.cover : 0));
            rows.push_back(Level(sample.cover));
        }
    }
    return rows;
}

/// A set bit lets the screen through.
Bytes MaskRows(const Surface& surface) {
    Bytes rows;
    for (int y = surface.height; y-- > 0;) {
        for (int x = 0; x < surface.width; x += 8) {
            unsigned eight = 0;
            for (int i = 0; i < 8; ++i) {
                const bool clear = x + i >= surface.width || !Hides(surface.At(x + i, y));
                eight = eight << 1 | unsigned{clear};
            }
            rows.push_back(static_cast<std::uint8_t>(eight));
        }
        PadRow(rows);
    }
    return rows;
}

/// The header counts both pictures, the coloured one and its mask, as one of twice the height.
Bytes MaskedImage(const Surface& surface) {
    const Bytes colours = ColourRows(surface), mask = MaskRows(surface);
    Bytes image;
    PutInfoHeader(image, surface.width, surface.height * 2, 32, colours.size() + mask.size());
    Append(image, colours);
    Append(image, mask);
    return image;
}

enum class DirectoryKind : std::uint32_t { Icon = 1, Cursor = 2 };

/// `first` and `second` are planes and depth in an icon, the hot spot in a cursor.
Bytes Directory(DirectoryKind kind, std::span<const Surface> sizes, std::uint32_t first,
                std::uint32_t second) {
    Bytes file, images;
    Put16(file, 0);
    Put16(file, static_cast<std::uint32_t>(kind));
    Put16(file, static_cast<std::uint32_t>(sizes.size()));
    const std::size_t before = kDirectory + kDirectoryEntry * sizes.size();
    for (const Surface& surface : sizes) {
        const Bytes image = MaskedImage(surface);
        file.push_back(static_cast<std::uint8_t>(surface.width));
        file.push_back(static_cast<std::uint8_t>(surface.height));
        Put16(file, 0);
        Put16(file, first);
        Put16(file, second);
        Put32(file, static_cast<std::uint32_t>(image.size()));
        Put32(file, static_cast<std::uint32_t>(before + images.size()));
        Append(images, image);
    }
    Append(file, images);
    return file;
}

} // namespace

Bytes TrueColourBitmap(const Surface& surface) {
    Bytes rows;
    for (int y = surface.height; y-- > 0;) {
        for (int x = 0; x < surface.width; ++x)
            PutColour(rows, surface.At(x, y).light);
        PadRow(rows);
    }
    return BitmapFile(surface.width, surface.height, 24, {}, rows);
}

Bytes CoverBitmap(const Surface& surface) {
    return BitmapFile(surface.width, surface.height, 32, {}, ColourRows(surface));
}

Bytes GreyBitmap(int width, int height, std::span<const std::uint8_t> levels) {
    Bytes table, rows;
    for (unsigned level = 0; level < 256; ++level)
        Put32(table, level * 0x010101);
    for (int y = height; y-- > 0;) {
        const auto across = static_cast<std::size_t>(width);
        const auto row = levels.subspan(static_cast<std::size_t>(y) * across, across);
        rows.insert(rows.end(), row.begin(), row.end());
        PadRow(rows);
    }
    return BitmapFile(width, height, 8, table, rows);
}

Bytes Cursor(const Surface& surface, int hotX, int hotY) {
    return Directory(DirectoryKind::Cursor, {&surface, 1}, static_cast<std::uint32_t>(hotX),
                     static_cast<std::uint32_t>(hotY));
}

Bytes Icon(std::span<const Surface> sizes) { return Directory(DirectoryKind::Icon, sizes, 1, 32); }

} // namespace lumafold::art
