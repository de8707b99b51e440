#include "codecs/png_pictures.h"

#include <algorithm>

namespace lumafold {
namespace {

/// How hard to pack to find out which way packs best: quickly, since the order of the ways hardly depends on
/// it. Of indexes the quickest search chose ways that packed up to 2 % worse.
constexpr int kIndexTrialEffort = 2, kColourTrialEffort = 1;
constexpr std::size_t kWorthSampling = 32 * 1024; // pixels
constexpr int kQuickEffort = 7, kSlowEffort = 10;

} // namespace

ChunkWriter::Data PngHeader(const Rect& rect, int bits, PngColours colours) {
    ChunkWriter::Data data;
    data.U32(static_cast<std::uint32_t>(RectWidth(rect))).U32(static_cast<std::uint32_t>(RectHeight(rect)));
    data.U8(static_cast<std::uint32_t>(bits)).U8(static_cast<std::uint32_t>(colours));
    return data.U8(0).U8(0).U8(0);
}

int BitsFor(int entries) { return entries <= 2 ? 1 : entries <= 4 ? 2 : entries <= 16 ? 4 : 8; }

ChunkWriter::Data PngPalette(std::span<const Rgb> colours) {
    ChunkWriter::Data data;
    for (const Rgb& colour : colours)
        data.U8(colour.red).U8(colour.green).U8(colour.blue);
    return data;
}

ChunkWriter::Data PngTransparentColour(PixelValue colour) {
    return ChunkWriter::Data().U16(RedOf(colour)).U16(GreenOf(colour)).U16(BlueOf(colour));
}

ColourCut CutColours(const Screen& screen, const Rect& rect, PixelValue hole) {
    ColourCut cut{rect, hole, false, {}};
    cut.pixels.reserve(static_cast<std::size_t>(RectWidth(rect)) *
                       static_cast<std::size_t>(RectHeight(rect)));
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* shown = screen.Row(y);
        const std::uint8_t* changed = screen.Changed(y);
        for (std::int32_t x = rect.left; x < rect.right; ++x) {
            if (shown[x] == kNoPixel && hole == kNoPixel)
                throw AnimationError("every colour is in use, and none left for holes");
            const bool free = changed[x] == 0 && shown[x] != kNoPixel && hole != kNoPixel;
            cut.mayLeaveOut |= free;
            cut.pixels.push_back(free ? shown[x] | kFreePixel : shown[x]);
        }
    }
    return cut;
}

bool Draws(const Screen& screen, const Rect& rect, PixelValue colour) {
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        const PixelValue* row = screen.Row(y);
        if (std::find(row + rect.left, row + rect.right, colour) != row + rect.right) return true;
    }
    return false;
}

int EffortOfFrame(int effort, std::size_t frame) {
    if (effort < 6 || effort > 9) return effort;
    const auto ofTwenty = static_cast<std::size_t>(7 + 3 * (effort - 6));
    return frame * ofTwenty % 20 < ofTwenty ? kSlowEffort : kQuickEffort;
}

PngPicture::PngPicture(IndexCut cut, int bits, std::int32_t delay, int effort, AfterPacking after)
    : rect_(cut.rect), bits_(bits), delay_(delay), effort_(effort), after_(after), indexes_(std::move(cut)) {}

PngPicture::PngPicture(ColourCut cut, std::int32_t delay, int effort)
    : rect_(cut.rect), bits_(24), delay_(delay), effort_(effort), colours_(std::move(cut)) {}

/// Pixels that do not change may be drawn once more or left out, and rows of colours filtered or not; which
/// packs best depends on the pictures.
void PngPicture::Pack() {
    const std::vector<Way> ways = Ways();
    Way best = ways.front();
    bool hasHoles = false;
    if (ways.size() > 1) {
        const Rows tried = Width() * Height() >= kWorthSampling ? Rows::Sample : Rows::All;
        const int effort = std::min(effort_, HasPalette() ? kIndexTrialEffort : kColourTrialEffort);
        std::size_t least = ~std::size_t{0};
        for (const Way& way : ways) {
            const std::size_t bytes = Deflate(Filtered(way, tried, hasHoles), effort).size();
            if (bytes < least) best = way;
            least = std::min(least, bytes);
        }
    }
    hasHoles_ = false;
    const std::vector<std::uint8_t> rows = Filtered(best, Rows::All, hasHoles_);
    colours_.pixels = std::vector<PixelValue>();
    data_ = Deflate(rows, effort_);
    // Text and drawings gain most from a long search.
    constexpr std::size_t kPacksWell = 8;
    if (HasPalette() && effort_ == kQuickEffort && data_.size() * kPacksWell < rows.size())
        data_ = Deflate(rows, kSlowEffort);
    if (after_ == AfterPacking::DropPixels) indexes_.pixels = std::vector<ChoicePixel>();
}

void PngPicture::Repack(int bits) {
    bits_ = bits;
    Pack();
}

std::vector<PngPicture::Way> PngPicture::Ways() const {
    std::vector<Way> ways;
    for (const Kept kept : {Kept::Drawn, Kept::LeftOut}) {
        if (kept == Kept::LeftOut && !indexes_.mayLeaveOut && !colours_.mayLeaveOut) continue;
        ways.push_back({kept, RowFilter::None});
        if (!HasPalette()) ways.push_back({kept, RowFilter::Least});
    }
    return ways;
}

std::vector<std::uint8_t> PngPicture::Filtered(const Way& way, Rows rows, bool& hasHoles) const {
    const Filled filled = Fill(way.kept, rows);
    hasHoles |= filled.hasHoles;
    const std::size_t rowBytes = (Width() * static_cast<std::size_t>(bits_) + 7) / 8;
    return FilterRows({rowBytes, HasPalette() ? 1U : 3U, filled.bytes}, way.filter);
}

/// A sample is four rows in thirty-two, and tells of the rest which way packs best.
PngPicture::Filled PngPicture::Fill(Kept kept, Rows rows) const {
    Filled filled;
    filled.bytes.reserve(Width() * Height() * (HasPalette() ? 1 : 3) / (rows == Rows::Sample ? 7 : 1));
    for (std::size_t y = 0; y < Height(); ++y) {
        if (rows == Rows::All || y / 4 % 8 == 0) FillRow(y, kept, filled);
    }
    return filled;
}

void PngPicture::FillRow(std::size_t y, Kept kept, Filled& to) const {
    const std::size_t start = to.bytes.size();
    if (HasPalette()) {
        const auto bits = static_cast<std::size_t>(bits_);
        to.bytes.resize(start + (Width() * bits + 7) / 8);
        const ChoicePixel* from = indexes_.pixels.data() + y * Width();
        for (std::size_t x = 0; x < Width(); ++x, ++from) {
            const std::uint8_t entry = kept == Kept::Drawn ? from->drawn : from->other;
            to.hasHoles |= entry == indexes_.hole;
            to.bytes[start + x * bits / 8] |= static_cast<std::uint8_t>(entry << (8 - bits - x * bits % 8));
        }
        return;
    }
    to.bytes.resize(start + Width() * 3);
    const PixelValue* from = colours_.pixels.data() + y * Width();
    std::uint8_t* out = to.bytes.data() + start;
    for (std::size_t x = 0; x < Width(); ++x, ++from, out += 3) {
        const bool hole = *from == kNoPixel || (kept == Kept::LeftOut && (*from & kFreePixel) != 0);
        const PixelValue colour = hole ? colours_.hole : *from;
        to.hasHoles |= hole;
        out[0] = static_cast<std::uint8_t>(RedOf(colour));
        out[1] = static_cast<std::uint8_t>(GreenOf(colour));
        out[2] = static_cast<std::uint8_t>(BlueOf(colour));
    }
}

} // namespace lumafold
