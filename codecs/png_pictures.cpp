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

/// Pixels that do not change may be drawn once more or left out, rows of colours filtered or not, and
/// repetitions said or runs alone; which packs best depends on the pictures.
void PngPicture::Pack() {
    const std::vector<Way> ways = WaysToTry();
    for (const Way& way : ways) {
        bool hasHoles = false;
        const std::vector<std::uint8_t> rows = Filtered(way, Rows::All, hasHoles);
        if (&way == &ways.back()) colours_.pixels = std::vector<PixelValue>();
        std::vector<std::uint8_t> data = Packed(way, rows);
        if (!data_.empty() && data.size() >= data_.size()) continue;
        data_ = std::move(data);
        hasHoles_ = hasHoles;
    }
    if (after_ == AfterPacking::DropPixels) indexes_.pixels = std::vector<ChoicePixel>();
}

/// By a sample, where there is enough of one: the best way to say repetitions, the best to say runs, or both
/// where they come near each other.
std::vector<PngPicture::Way> PngPicture::WaysToTry() const {
    const std::vector<Way> ways = Ways();
    if (ways.size() == 1) return ways;
    const Rows tried = Width() * Height() >= kWorthSampling ? Rows::Sample : Rows::All;
    bool hasHoles = false;
    Way repetitions = ways.front(), runs = repetitions;
    std::size_t least = ~std::size_t{0}, leastOfRuns = least, unpacked = 0;
    for (const Way& way : ways) {
        const std::vector<std::uint8_t> rows = Filtered(way, tried, hasHoles);
        unpacked = rows.size();
        const bool saysRuns = way.saying == Saying::Runs;
        const int effort = std::min(effort_, HasPalette() ? kIndexTrialEffort : kColourTrialEffort);
        const std::size_t bytes = (saysRuns ? DeflateRuns(rows) : Deflate(rows, effort)).size();
        if (bytes >= (saysRuns ? leastOfRuns : least)) continue;
        (saysRuns ? runs : repetitions) = way;
        (saysRuns ? leastOfRuns : least) = bytes;
    }
    // A better search may find more repetitions: more than runs, or of text and drawings in rows as they are.
    const auto packed = [&](const Way& way) {
        return Deflate(Filtered(way, tried, hasHoles), effort_).size();
    };
    if (leastOfRuns >= least) {
        constexpr std::size_t kMayBeDrawn = 4; // times smaller, by the quick search
        if (HasPalette() || least * kMayBeDrawn > unpacked) return {repetitions};
        Way other = repetitions;
        other.filter = other.filter == RowFilter::None ? RowFilter::Least : RowFilter::None;
        return {packed(other) < packed(repetitions) ? other : repetitions};
    }
    least = packed(repetitions);
    const std::size_t near = std::min(least, leastOfRuns) / 32;
    if (leastOfRuns + near < least) return {runs};
    if (least + near < leastOfRuns) return {repetitions};
    return {runs, repetitions};
}

std::vector<std::uint8_t> PngPicture::Packed(const Way& way, std::span<const std::uint8_t> rows) const {
    std::vector<std::uint8_t> data = way.saying == Saying::Runs ? DeflateRuns(rows) : Deflate(rows, effort_);
    const auto orWith = [&](int effort) {
        std::vector<std::uint8_t> other = Deflate(rows, effort);
        if (other.size() < data.size()) data = std::move(other);
    };
    if (way.saying == Saying::Runs) {
        if (effort_ >= kSlowEffort) orWith(effort_);
        return data;
    }
    // Text and drawings gain most from a long search, and flat pictures from zlib's.
    constexpr std::size_t kPacksWell = 8, kFlat = 32;
    if (!HasPalette()) {
        if (effort_ >= kUsualEffort && effort_ <= 8 && data.size() * kPacksWell < rows.size()) orWith(9);
        return data;
    }
    if (effort_ == kQuickEffort && data.size() * kPacksWell < rows.size()) orWith(kSlowEffort);
    if (effort_ < kQuickEffort || data.size() * kFlat >= rows.size()) return data;
    std::vector<std::uint8_t> flat = DeflateFlat(rows);
    return flat.size() < data.size() ? flat : data;
}

void PngPicture::Repack(int bits) {
    bits_ = bits;
    data_.clear();
    Pack();
}

std::vector<PngPicture::Way> PngPicture::Ways() const {
    std::vector<Way> ways;
    for (const Kept kept : {Kept::Drawn, Kept::LeftOut}) {
        if (kept == Kept::LeftOut && !indexes_.mayLeaveOut && !colours_.mayLeaveOut) continue;
        ways.push_back({kept, RowFilter::None, Saying::Repetitions});
        if (HasPalette()) continue;
        ways.push_back({kept, RowFilter::Least, Saying::Repetitions});
        ways.push_back({kept, RowFilter::Least, Saying::Runs});
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
