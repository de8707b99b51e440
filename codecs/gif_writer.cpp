#include "codecs/writers.h"

#include <algorithm>
#include <bit>
#include <deque>
#include <span>
#include <utility>

#include "codecs/lzw_encoder.h"

namespace lumafold {
namespace {

constexpr std::int32_t kMostSide = 65535;
constexpr std::int32_t kMostDelay = 65535, kMostRepeats = 65535;

class GifBytes {
public:
    void U8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void U16(std::int32_t value) {
        U8(static_cast<std::uint32_t>(value) & 0xFF);
        U8(static_cast<std::uint32_t>(value) >> 8 & 0xFF);
    }
    void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
    /// Cut into pieces of at most 255 bytes, each after its length, and ended by an empty one.
    void SubBlocks(std::span<const std::uint8_t> data) {
        bytes_.reserve(bytes_.size() + data.size() + data.size() / 255 + 2);
        while (!data.empty()) {
            const auto piece = data.first(std::min<std::size_t>(data.size(), 255));
            U8(static_cast<std::uint32_t>(piece.size()));
            bytes_.insert(bytes_.end(), piece.begin(), piece.end());
            data = data.subspan(piece.size());
        }
        U8(0);
    }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

/// A sample is a sixteenth of the rows, by four.
enum class Rows { All, Sample };
/// Which of the pixels that do not change are left out: none; those in runs of several colours, or all, where
/// the encoder finds it better; or those in any case.
enum class LeftOut { None, ChoiceOfVaried, Choice, Varied, All };

class GifFrame final : public PackedFrame {
public:
    GifFrame(IndexCut cut, std::int32_t delay) : cut_(std::move(cut)), delay_(delay) {}

    /// Pixels that do not change may be drawn over with what is there or left out. The encoder can take what
    /// packs better at the moment; but a run of one colour is a string already that a hole would break, an
    /// entry for holes may cost more than it saves, and what is always the same makes longer strings. So
    /// several ways are tried.
    void Pack() override {
        Codes best{};
        for (const Way& way : WaysToTry()) {
            Codes codes = Encode(way, Rows::All);
            if (best.bytes.empty() || codes.bytes.size() < best.bytes.size()) best = std::move(codes);
        }
        cut_.pixels = std::vector<ChoicePixel>();
        hasHoles_ = best.hasHoles;
        GifBytes data;
        data.U8(static_cast<std::uint32_t>(best.bits));
        data.SubBlocks(best.bytes);
        data_ = data.Take();
    }

    void SetDelay(std::int32_t delay) { delay_ = delay; }
    /// Gives the packed data away.
    void Put(PiecedFile& file) {
        constexpr std::uint32_t kLeaveInPlace = 1 << 2;
        GifBytes head;
        head.Text("\x21\xF9\x04");
        head.U8(kLeaveInPlace | (hasHoles_ ? 1 : 0));
        head.U16(std::clamp(delay_, 0, kMostDelay));
        head.U8(static_cast<std::uint32_t>(hasHoles_ ? cut_.hole : 0));
        head.U8(0);
        head.U8(0x2C);
        head.U16(cut_.rect.left);
        head.U16(cut_.rect.top);
        head.U16(RectWidth(cut_.rect));
        head.U16(RectHeight(cut_.rect));
        head.U8(0);
        file.Add(head.Take());
        file.Add(std::exchange(data_, {}));
    }

private:
    struct Way {
        LeftOut leftOut;
        FullTable fullTable;
    };
    struct Codes {
        bool hasHoles;
        int bits;
        std::vector<std::uint8_t> bytes;
    };

    static void Draw(std::span<ChoicePixel> pixels) {
        for (ChoicePixel& pixel : pixels)
            pixel.other = pixel.drawn;
    }
    static void LeaveOut(std::span<ChoicePixel> pixels) {
        for (ChoicePixel& pixel : pixels)
            pixel.drawn = pixel.other;
    }
    static void DrawPlainRuns(std::span<ChoicePixel> pixels) {
        const auto isFree = [](ChoicePixel pixel) { return pixel.IsFree(); };
        for (auto run = pixels.begin(); run != pixels.end();) {
            run = std::find_if(run, pixels.end(), isFree);
            const auto end = std::find_if_not(run, pixels.end(), isFree);
            if (std::all_of(run, end, [&](ChoicePixel pixel) { return pixel.drawn == run->drawn; }))
                Draw({run, end});
            run = end;
        }
    }

    std::vector<ChoicePixel> Pixels(Rows rows) const {
        if (rows == Rows::All) return cut_.pixels;
        const auto width = static_cast<std::size_t>(RectWidth(cut_.rect));
        std::vector<ChoicePixel> sample;
        for (std::size_t at = 0; at < cut_.pixels.size(); at += width) {
            const auto row = cut_.pixels.begin() + static_cast<std::ptrdiff_t>(at);
            // Not every sixty-fourth row, which could be the gap between lines of text.
            if (static_cast<std::uint32_t>(at / width / 4) * 0x9E3779B1U >> 28 == 0)
                sample.insert(sample.end(), row, row + static_cast<std::ptrdiff_t>(width));
        }
        return sample;
    }

    /// By a sample. Of photos, whose rows are alike, it tells which way is best. Text and drawings pack so
    /// well that it would mislead: of them, all ways that come near the best are tried, and more of them.
    std::vector<Way> WaysToTry() const {
        constexpr std::size_t kWorthSampling = 32 * 1024; // pixels
        constexpr std::size_t kSampled = 16, kPixelsOfByte = 4;
        constexpr LeftOut kLeftOut[] = {LeftOut::ChoiceOfVaried, LeftOut::Choice, LeftOut::None,
                                        LeftOut::Varied, LeftOut::All};
        constexpr std::size_t kForPhotos = 3;
        std::vector<Way> ways;
        for (const LeftOut leftOut : std::span(kLeftOut).first(cut_.mayLeaveOut ? std::size(kLeftOut) : 1))
            ways.push_back({leftOut, FullTable::Emptied});
        if (cut_.pixels.size() < kWorthSampling) {
            ways.push_back({ways.front().leftOut, FullTable::KeptWhileUseful});
            return ways;
        }
        std::vector<std::size_t> sizes;
        std::size_t least = cut_.pixels.size();
        const auto packsWell = [&] { return least * kSampled * kPixelsOfByte < cut_.pixels.size(); };
        while (sizes.size() < ways.size() && (sizes.size() < kForPhotos || packsWell())) {
            sizes.push_back(Encode(ways[sizes.size()], Rows::Sample).bytes.size());
            least = std::min(least, sizes.back());
        }
        Way best =
            ways[static_cast<std::size_t>(std::find(sizes.begin(), sizes.end(), least) - sizes.begin())];
        best.fullTable = FullTable::KeptWhileUseful;
        if (Encode(best, Rows::Sample).bytes.size() >= least) best.fullTable = FullTable::Emptied;
        std::vector<Way> worthTrying;
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            if (sizes[i] <= (packsWell() ? least + least / 8 : least))
                worthTrying.push_back({ways[i].leftOut, best.fullTable});
        }
        return worthTrying;
    }

    Codes Encode(const Way& way, Rows rows) const {
        const auto [leftOut, fullTable] = way;
        std::vector<ChoicePixel> pixels = Pixels(rows);
        if (leftOut == LeftOut::None) Draw(pixels);
        if (leftOut == LeftOut::ChoiceOfVaried || leftOut == LeftOut::Varied) DrawPlainRuns(pixels);
        if (leftOut == LeftOut::Varied || leftOut == LeftOut::All) LeaveOut(pixels);
        Codes codes{false, 0, {}};
        unsigned all = 0;
        for (const ChoicePixel pixel : pixels) {
            all |= static_cast<unsigned>(pixel.drawn) | pixel.other;
            codes.hasHoles |= pixel.other == cut_.hole;
        }
        // Fewer bits than the table has are enough where the higher entries do not occur.
        codes.bits = std::max(2, static_cast<int>(std::bit_width(all)));
        codes.bytes = EncodeLzw(pixels, codes.bits, fullTable);
        return codes;
    }

    IndexCut cut_;
    std::int32_t delay_;
    bool hasHoles_ = false;
    std::vector<std::uint8_t> data_;
};

class GifWriter final : public AnimationWriter {
public:
    GifWriter(const AnimationFacts& facts, const Runner& runner)
        : AnimationWriter(runner), facts_(facts), reader_(facts.width, facts.height, facts.palette),
          screen_(facts.width, facts.height) {}
    ~GifWriter() override { AwaitPacking(); }

private:
    PackedFrame& Take(const FrameView& frame) override {
        if (frame.picture.biBitCount > 8) throw AnimationError("GIF cannot hold true-colour frames");
        const FramePixels pixels = reader_.ReadIndexes(frame);
        const Rect changed = screen_.Show(pixels);
        // The first frame stays whole: viewers take it for the picture itself.
        const Rect rect = frames_.empty() ? Rect{0, 0, pixels.width, pixels.height} : changed;
        const IndexUse use(screen_, rect);
        table_.Admit(use);
        return frames_.emplace_back(table_.Cut(screen_, rect, ChooseHole(use)), frame.delay);
    }

    std::size_t Frames() const override { return frames_.size(); }
    void SetDelay(std::size_t frame, std::int32_t delay) override { frames_[frame].SetDelay(delay); }

    PiecedFile Assemble(const std::string& comment) override {
        PiecedFile file;
        file.Add(Head(comment));
        for (GifFrame& frame : frames_)
            frame.Put(file);
        file.Add({0x3B});
        return file;
    }

    /// As the task said, but never too few for the indexes that occur: fixed palettes are searched beyond
    /// their count.
    int TableBits() const {
        return std::max({1, std::min(facts_.paletteBits, 8),
                         static_cast<int>(std::bit_width(static_cast<unsigned>(table_.Entries() - 1)))});
    }

    /// An entry that no changing pixel of the frame has, -1 when all are taken: the first that nothing else
    /// in the rectangle shows either, else the first of all.
    int ChooseHole(const IndexUse& use) const {
        if (!use.anyKept && !use.holes) return -1;
        std::array<bool, FileTable::kMostEntries> drawn{}, kept{};
        for (PixelValue index = 0; index < use.drawn.size(); ++index) {
            if (!table_.Has(index)) continue;
            const auto entry = static_cast<std::size_t>(table_.EntryOf(index));
            drawn[entry] = use.drawn[index] > 0;
            kept[entry] = use.kept[index] > 0;
        }
        int choice = -1;
        for (int entry = (1 << TableBits()) - 1; entry >= 0; --entry) {
            const auto at = static_cast<std::size_t>(entry);
            if (!drawn[at] && (choice < 0 || !kept[at] || kept[static_cast<std::size_t>(choice)]))
                choice = entry;
        }
        if (choice < 0 && use.holes) throw AnimationError("every colour is in use, and none left for holes");
        return choice;
    }

    std::vector<std::uint8_t> Head(const std::string& comment) const {
        const int bits = TableBits();
        GifBytes file;
        file.Text("GIF89a");
        file.U16(facts_.width);
        file.U16(facts_.height);
        file.U8(0x80 | 7U << 4 | static_cast<std::uint32_t>(bits - 1));
        file.U8(0);
        file.U8(0);
        for (const Rgb& colour : table_.Colours(facts_.palette, std::size_t{1} << bits)) {
            file.U8(colour.red);
            file.U8(colour.green);
            file.U8(colour.blue);
        }
        // The block says how often it runs again, 0 for ever; without one it runs once.
        if (facts_.plays != 1) {
            file.Text("\x21\xFF\x0BNETSCAPE2.0\x03\x01");
            file.U16(std::clamp(facts_.plays - 1, 0, kMostRepeats));
            file.U8(0);
        }
        if (!comment.empty()) {
            file.Text("\x21\xFE");
            file.SubBlocks({reinterpret_cast<const std::uint8_t*>(comment.data()), comment.size()});
        }
        return file.Take();
    }

    AnimationFacts facts_;
    FrameReader reader_;
    Screen screen_;
    FileTable table_;
    std::deque<GifFrame> frames_;
};

} // namespace

std::unique_ptr<AnimationWriter> NewGifWriter(const AnimationFacts& facts, const Runner& runner) {
    CheckSides(facts.width, facts.height, kMostSide, "GIF cannot hold sides above 65535 pixels");
    return std::make_unique<GifWriter>(facts, runner);
}

} // namespace lumafold
